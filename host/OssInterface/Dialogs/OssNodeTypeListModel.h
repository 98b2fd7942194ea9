#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QAbstractListModel>
#include <QColor>
#include <QStringList>
#include <QVector>

#include <functional>

class OssSnNodeType;

/// The node types that can be made in a graph and fit a search text, best first: by name, by
/// another name people know the thing by, by menu path. With an empty text the ones used last come
/// first, then the favourites, then all in the order of their menu paths.
class OSSINTERFACE_EXPORT OssNodeTypeListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Role {
        PathKeyRole = Qt::UserRole,
        FolderRole,      ///< "Filter" of "Filter/Blur"
        DescriptionRole, ///< one sentence
        FavouriteRole,
        SectionRole, ///< heading above the row; empty for most
        ColorRole    ///< of the type's category
    };

    /// Mime type of drags: path keys, one in a line.
    static const QString MimeType;

    explicit OssNodeTypeListModel(QObject *parent = nullptr);

    /// Path keys; keys of types that are not there are left out of the list, not forgotten.
    void setLastUsed(const QStringList &pathKeys);
    void setFavourites(const QStringList &pathKeys);

    QStringList favourites() const { return m_favourites; }

    /// The colour that nodes of a path key bear in the graph.
    void setColors(std::function<QColor(const QString &pathKey)> colorOf);

    /// Keeps the types that the filter lets through and forgets the others.
    void setFilter(const std::function<bool(const OssSnNodeType &type)> &fits);

    void toggleFavourite(const QModelIndex &index);
    void setSearchText(const QString &text);

    int rowCount(const QModelIndex &parent = {}) const override;
    QVariant data(const QModelIndex &index, int role) const override;
    Qt::ItemFlags flags(const QModelIndex &index) const override;
    QStringList mimeTypes() const override;
    QMimeData *mimeData(const QModelIndexList &indexes) const override;

private:
    struct Type
    {
        QString pathKey;
        QString name;
        QString folder;
        QString description;
        QStringList aliases;
    };

    struct Row
    {
        int type;
        int score;
        QString section;
    };

    int scoreOf(const Type &type) const;
    int typeIndex(const QString &pathKey) const;
    void rebuild();
    void listEverything(QVector<Row> *rows) const;

    QVector<Type> m_types;
    QVector<Row> m_rows;
    QStringList m_lastUsed;
    QStringList m_favourites;
    std::function<QColor(const QString &)> m_colorOf;
    QString m_text;
};
