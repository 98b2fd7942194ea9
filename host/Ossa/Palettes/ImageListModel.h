#pragma once

#include <QAbstractListModel>
#include <QHash>
#include <QImage>
#include <QList>
#include <QPointer>
#include <QThreadPool>

class OssImage;

/// The images of the open project with small pictures of them, which are read on a thread of its
/// own. Rows can be dragged into the graph; picture files dropped here join the project.
class ImageListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    static constexpr int pictureSide = 48; ///< device-independent pixels

    explicit ImageListModel(QObject *parent = nullptr);
    ~ImageListModel() override;

    /// Null when there is no such row, or the image has died.
    OssImage *image(const QModelIndex &index) const;

    /// Adds files to the project, as one undo step, and says what could not be added and why.
    static QStringList add(const QStringList &paths);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;
    bool canDropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                         const QModelIndex &parent) const override;
    bool dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                      const QModelIndex &parent) override;

Q_SIGNALS:
    /// Dropped files could not be added; one line for each.
    void refused(const QStringList &reasons);

private:
    void refresh();
    void readPicture(const QString &path);

    QList<QPointer<OssImage>> m_images;
    QHash<QString, QImage> m_pictures; ///< by file; null while it is being read or cannot be
    QThreadPool m_readers;
};
