#include "OssInterface/Dialogs/OssNodeTypeListModel.h"

#include "OssCore/Values/OssFuzzyMatch.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "OssModel/Types/OssSnTypeHelp.h"

#include <QMimeData>

#include <algorithm>

namespace {

constexpr int NameBonus = 2000;
constexpr int AliasBonus = 1000;

} // namespace

const QString OssNodeTypeListModel::MimeType = QStringLiteral("application/x-ossa-node-types");

OssNodeTypeListModel::OssNodeTypeListModel(QObject *parent)
    : QAbstractListModel(parent)
{
    const OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    const QStringList keys = networks->nodeGraphPathKeys();
    for (const QString &key : keys) {
        const auto type = networks->nodeType(key);
        QStringList parts = networks->nodeMenuPath(key).split(QLatin1Char('/'), Qt::SkipEmptyParts);
        if (!type || parts.isEmpty() || parts.first().startsWith(QLatin1Char('_')))
            continue;
        const QString name = parts.takeLast();
        m_types.append(
            {key, name, parts.join(QStringLiteral(" \u203a ")), type->description, type->aliases});
    }
    std::sort(m_types.begin(), m_types.end(), [](const Type &a, const Type &b) {
        return a.folder != b.folder ? a.folder < b.folder : a.name < b.name;
    });
    rebuild();
}

int OssNodeTypeListModel::typeIndex(const QString &pathKey) const
{
    const auto found = std::find_if(m_types.cbegin(), m_types.cend(),
                                    [&](const Type &type) { return type.pathKey == pathKey; });
    return found == m_types.cend() ? -1 : int(found - m_types.cbegin());
}

void OssNodeTypeListModel::setLastUsed(const QStringList &pathKeys)
{
    m_lastUsed = pathKeys;
    rebuild();
}

void OssNodeTypeListModel::setFavourites(const QStringList &pathKeys)
{
    m_favourites = pathKeys;
    rebuild();
}

void OssNodeTypeListModel::setColors(std::function<QColor(const QString &)> colorOf)
{
    m_colorOf = std::move(colorOf);
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1), {ColorRole});
}

void OssNodeTypeListModel::setFilter(const std::function<bool(const OssSnNodeType &)> &fits)
{
    const auto drops = [&fits](const Type &row) {
        const auto type = OssShaderNetworkManager::instance()->nodeType(row.pathKey);
        return !type || !fits(*type);
    };
    m_types.erase(std::remove_if(m_types.begin(), m_types.end(), drops), m_types.end());
    rebuild();
}

void OssNodeTypeListModel::setSearchText(const QString &text)
{
    m_text = text.trimmed();
    rebuild();
}

void OssNodeTypeListModel::toggleFavourite(const QModelIndex &index)
{
    const QString key = index.data(PathKeyRole).toString();
    if (key.isEmpty())
        return;
    if (!m_favourites.removeOne(key))
        m_favourites.append(key);
    Q_EMIT dataChanged(this->index(0), this->index(rowCount() - 1), {FavouriteRole});
}

int OssNodeTypeListModel::scoreOf(const Type &type) const
{
    const int byName = OssFuzzyMatch::score(m_text, type.name);
    if (byName >= 0)
        return byName + NameBonus;
    int best = -1;
    for (const QString &alias : type.aliases)
        best = std::max(best, OssFuzzyMatch::score(m_text, alias));
    if (best >= 0)
        return best + AliasBonus;
    return OssFuzzyMatch::score(m_text, type.folder + QLatin1Char(' ') + type.name);
}

void OssNodeTypeListModel::listEverything(QVector<Row> *rows) const
{
    QSet<int> listed;
    const auto addSection = [&](const QStringList &keys, const QString &title) {
        QString section = title;
        for (const QString &key : keys) {
            const int type = typeIndex(key);
            if (type < 0 || listed.contains(type))
                continue;
            listed.insert(type);
            rows->append({type, 0, section});
            section.clear();
        }
    };
    addSection(m_lastUsed, tr("Used last"));
    addSection(m_favourites, tr("Favourites"));
    QString section = tr("All nodes");
    for (int type = 0; type < m_types.size(); ++type) {
        if (listed.contains(type))
            continue;
        rows->append({type, 0, rows->isEmpty() ? QString() : section});
        section.clear();
    }
}

void OssNodeTypeListModel::rebuild()
{
    QVector<Row> rows;
    if (m_text.isEmpty()) {
        listEverything(&rows);
    } else {
        for (int i = 0; i < m_types.size(); ++i) {
            int score = scoreOf(m_types.at(i));
            if (score < 0)
                continue;
            // Among equals, what the user works with comes first.
            score += m_lastUsed.contains(m_types.at(i).pathKey) ? 2 : 0;
            score += m_favourites.contains(m_types.at(i).pathKey) ? 1 : 0;
            rows.append({i, score, {}});
        }
        std::stable_sort(rows.begin(), rows.end(),
                         [](const Row &a, const Row &b) { return a.score > b.score; });
    }
    beginResetModel();
    m_rows = rows;
    endResetModel();
}

int OssNodeTypeListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_rows.size();
}

QVariant OssNodeTypeListModel::data(const QModelIndex &index, int role) const
{
    if (!index.isValid() || index.row() >= m_rows.size())
        return {};
    const Row &row = m_rows.at(index.row());
    const Type &type = m_types.at(row.type);
    switch (role) {
    case Qt::DisplayRole:
        return type.name;
    case Qt::ToolTipRole: {
        const auto described = OssShaderNetworkManager::instance()->nodeType(type.pathKey);
        return described ? OssSnTypeHelp::brief(*described) : type.description;
    }
    case DescriptionRole:
        return type.description;
    case Qt::AccessibleTextRole:
        return QStringList{type.name, type.folder, type.description}.join(QStringLiteral(", "));
    case PathKeyRole:
        return type.pathKey;
    case FolderRole:
        return type.folder;
    case FavouriteRole:
        return m_favourites.contains(type.pathKey);
    case SectionRole:
        return row.section;
    case ColorRole:
        return m_colorOf ? QVariant(m_colorOf(type.pathKey)) : QVariant();
    default:
        return {};
    }
}

Qt::ItemFlags OssNodeTypeListModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags row = index.isValid() ? Qt::ItemIsDragEnabled : Qt::NoItemFlags;
    return QAbstractListModel::flags(index) | row;
}

QStringList OssNodeTypeListModel::mimeTypes() const
{
    return {MimeType};
}

QMimeData *OssNodeTypeListModel::mimeData(const QModelIndexList &indexes) const
{
    QStringList keys;
    for (const QModelIndex &index : indexes)
        keys.append(index.data(PathKeyRole).toString());
    auto *data = new QMimeData; // the drag takes it
    data->setData(MimeType, keys.join(QLatin1Char('\n')).toUtf8());
    return data;
}
