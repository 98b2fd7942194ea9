#pragma once

#include "OssCore/Program/OssService.h"
#include "OssCore/Values/OssResult.h"
#include "OssModel/Images/OssImageUniqueId.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QUrl>
#include <QVector>

class OssImage;
class QDropEvent;
class QMimeData;

/// Whoever holds images: the open project.
class OSSMODEL_EXPORT OssImageHolder
{
public:
    OssImageHolder() = default;
    OssImageHolder(const OssImageHolder &) = delete;
    OssImageHolder &operator=(const OssImageHolder &) = delete;
    virtual ~OssImageHolder();

    /// In the order of loading.
    virtual QList<OssImage *> images() const = 0;
    /// Owned by the holder. Undoable.
    virtual OssImage *addImage(const QString &path, const QString &category) = 0;
    /// Width and height of new images, in pixels.
    virtual int newResolution() const = 0;
};

/// The images of the open project, and the actions that every image's menu offers.
class OSSMODEL_EXPORT OssImageManager
    : public QObject
    , public OssService<OssImageManager>
{
    Q_OBJECT

public:
    struct ContextMenuAction
    {
        QPointer<QObject> action; ///< a QAction
        QString menuTitle;
        QString iconPath;
    };

    /// What opening a file yields: one for each picture in it.
    struct ImageLayer
    {
        QString name;
        OssImage *image;
    };

    enum OpenFlag {
        TellFailures = 1 << 10,  ///< in the log
        GatherPatches = 1 << 13, ///< files that differ in their UDIM number are one image
    };

    /// Where a drag goes.
    enum DropTarget { NodeGraphTarget = 4 };

    OssImageManager() = default;
    ~OssImageManager() override;

    /// Not owned; null while no project is open.
    void setHolder(OssImageHolder *holder) { m_holder = holder; }

    static QString defaultCategory() { return QStringLiteral("Images"); }

    static constexpr int UsualResolution = 2048;

    /// Of new images of the open project.
    int newResolution() const { return m_holder ? m_holder->newResolution() : UsualResolution; }

    /// In the order of loading.
    QList<OssImage *> images() const;
    /// Null when the project has none of that id.
    OssImage *getImage(const OssImageUniqueId &id) const;
    /// Adds the file to the project; one that is there already is not added again. Undoable. Empty
    /// when it is no picture or there is no project.
    QList<ImageLayer> open(const QString &path, int flags, const QString &category);
    /// Why the file, or the first of a pattern's, cannot be an image; ok when it can.
    static OssResult check(const QString &path);
    /// By its suffix.
    static bool isPictureFile(const QString &path);
    /// For OssFileDialog: "Images (*.exr *.png ...)".
    static QString fileFilter();
    /// The pictures among what is dragged from outside, folders opened; each UDIM row once.
    static QStringList picturesOf(const QList<QUrl> &urls);

    /// Images of the list, paths of image files, or pictures and folders of them from outside: how
    /// many of them the project has or can open. Looks at the files.
    int imageCount(const QMimeData *data) const;
    static bool bringsImages(const QMimeData *data);
    /// True, and the event accepted, when it brings images for the target.
    bool processDragEvent(QDropEvent *event, int target) const;
    /// The files that a drop of image paths, or of pictures from outside, brings.
    QList<QUrl> dropEvent_AcceptURLs(const QDropEvent *event) const;
    /// The images that a drop brings; files are opened. Undoable.
    QList<OssImage *> dropped(const QDropEvent *event);

    /// Actions of one title share a submenu. They are not owned.
    void registerGlobalContextMenuAction(QObject *action, const QString &menuTitle,
                                         const QString &iconPath);
    QVector<ContextMenuAction> globalContextMenuActions() const;

Q_SIGNALS:
    void imagesChanged();

private:
    /// Those of its ids that the project has.
    QList<OssImage *> knownImages(const QMimeData *data) const;

    OssImageHolder *m_holder = nullptr;
    QVector<ContextMenuAction> m_actions;
};
