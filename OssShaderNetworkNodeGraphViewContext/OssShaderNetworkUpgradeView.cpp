#include "OssShaderNetworkUpgradeView.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "ZelGL/ZelTextureToken.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QMap>
#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr const char *Source = "OssShaderNetworkUpgradeView";
const ZelTextureToken TextureToken;

enum Column { UUID, Hash, Date, Same, Different, Older, Newer, Custom, ColumnCount };

const QString Empty = QStringLiteral("<EMPTY>");
constexpr int ShownLosses = 4;

struct StateColor
{
    Column column;
    QColor color;
};

/// Beside the words: what is well, what waits for an upgrade, what a user changed.
const StateColor StateColors[] = {
    {Same, QColor(0x7f, 0xc0, 0x8a)},   {Different, QColor(0xd7, 0xda, 0xe0)},
    {Older, QColor(0xe6, 0xc2, 0x5a)},  {Newer, QColor(0x5a, 0xa9, 0xff)},
    {Custom, QColor(0xd0, 0x9a, 0xe8)},
};

OssSnBaseNode *nodeAt(const QTreeWidgetItem *row, int column)
{
    return qobject_cast<OssSnBaseNode *>(row->data(column, Qt::UserRole).value<QObject *>());
}

void addCount(QTreeWidgetItem *versionRow, int column, int change)
{
    const int count = versionRow->text(column).toInt() + change;
    versionRow->setText(column, count > 0 ? QStringLiteral("%1").arg(count) : QString());
}

void setNode(QTreeWidgetItem *row, int column, OssSnBaseNode *node)
{
    row->setText(column, node ? node->path() : QString());
    row->setToolTip(column, row->text(column));
    row->setData(column, Qt::UserRole, node ? QVariant::fromValue<QObject *>(node) : QVariant());
}

void setDated(QTreeWidgetItem *row, const QString &hash, const QString &date)
{
    row->setText(Hash, hash);
    row->setToolTip(Hash, hash);
    row->setData(Hash, Qt::UserRole, hash);
    row->setText(Date, date.isEmpty() ? OssShaderNetworkUpgradeView::tr("<EMPTY>") : date);
    row->setData(Date, Qt::UserRole, date);
}

/// All types by their keys: first those that nodes can become.
void fillConversions(QMenu *menu)
{
    const OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    QStringList keys = networks->nodePathKeys();
    keys.sort();
    std::stable_partition(keys.begin(), keys.end(), [networks](const QString &key) {
        return networks->canConvertToKeyPath(key);
    });
    for (const QString &key : qAsConst(keys)) {
        QAction *action = menu->addAction(OssMenu::asTyped(key));
        action->setData(key);
        action->setEnabled(networks->canConvertToKeyPath(key));
    }
}

bool isInDocument(const OssSnBaseNode *node)
{
    while (node && node->network()) {
        const OssSnGroupNode *group = node->network()->parentGroupNode();
        if (!group)
            return true;
        node = group;
    }
    return false;
}

} // namespace

OssShaderNetworkUpgradeView::OssShaderNetworkUpgradeView(QWidget *parent)
    : QDialog(parent)
    , m_tree(new QTreeWidget(this))
    , m_report(new QLabel(this))
{
    setWindowTitle(tr("Node Version Control"));
    setMinimumSize(1024, 480);
    auto *layout = new QVBoxLayout(this);
    m_tree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_tree->setColumnCount(ColumnCount);
    m_tree->setHeaderLabels({QStringLiteral("UUID"), QStringLiteral("Hash"), QStringLiteral("Date"),
                             QStringLiteral("Same"), QStringLiteral("Different"),
                             QStringLiteral("Older"), QStringLiteral("Newer"),
                             QStringLiteral("Custom")});
    m_tree->setMouseTracking(true);
    m_tree->setUniformRowHeights(true);
    m_tree->setAccessibleName(windowTitle());
    m_tree->setContextMenuPolicy(Qt::CustomContextMenu);
    m_tree->setTextElideMode(Qt::ElideMiddle);
    m_tree->ensurePolished(); // rows are measured when they come
    m_tree->header()->resizeSection(UUID, 230);
    m_tree->header()->resizeSection(Hash, 100);
    m_tree->header()->resizeSection(Date, 110);
    for (int column = Same; column <= Custom; ++column)
        m_tree->header()->setSectionResizeMode(column, QHeaderView::Stretch);
    connect(m_tree, &QWidget::customContextMenuRequested, this,
            &OssShaderNetworkUpgradeView::onTreeWidgetCustomContextMenuRequested);
    connect(m_tree, &QTreeWidget::itemEntered, this,
            &OssShaderNetworkUpgradeView::onTreeWidgetItemEntered);
    layout->addWidget(m_tree);
    m_report->setObjectName(QStringLiteral("Warning"));
    m_report->setWordWrap(true);
    m_report->setTextFormat(Qt::PlainText);
    m_report->hide();
    layout->addWidget(m_report);
    auto *row = new QHBoxLayout;
    auto *close = new QPushButton(tr("Close"), this);
    row->addStretch();
    row->addWidget(close);
    layout->addLayout(row);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    connect(OssShaderNetworkManager::instance(),
            &OssShaderNetworkManager::registeredNodePopulationChanged, this,
            [this] { showAnew(shownNodes()); });
}

OssShaderNetworkUpgradeView::~OssShaderNetworkUpgradeView() = default;

// --- filling

void OssShaderNetworkUpgradeView::populateNodes(const QList<OssSnBaseNode *> &nodes)
{
    QMap<QString, QList<OssSnBaseNode *>> versions;
    for (OssSnBaseNode *node : nodes) {
        if (!node) {
            OssDebug(Source, __LINE__, "Node is NULL");
            continue;
        }
        m_nodes.append(node);
        versions[node->versionUUID()].append(node);
    }
    QList<QTreeWidgetItem *> rows;
    for (auto version = versions.begin(); version != versions.end(); ++version) {
        std::stable_sort(
            version->begin(), version->end(),
            [](const OssSnBaseNode *a, const OssSnBaseNode *b) { return a->name() < b->name(); });
        rows.append(addVersionRow(version.key(), *version));
    }
    m_tree->addTopLevelItems(rows);
}

QTreeWidgetItem *OssShaderNetworkUpgradeView::addVersionRow(const QString &versionUUID,
                                                            const QList<OssSnBaseNode *> &nodes)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    const QString hash = networks->hashStringForVersionUUID(versionUUID);
    const QString date = networks->versionDatePresent(versionUUID);
    auto *row = new QTreeWidgetItem; // the tree takes it
    row->setText(UUID, versionUUID.isEmpty() ? Empty : versionUUID);
    row->setText(Hash, hash.isEmpty() ? Empty : hash);
    row->setToolTip(Hash, hash);
    row->setToolTip(UUID, row->text(UUID));
    row->setText(Date, date);
    for (const StateColor &state : StateColors)
        row->setForeground(state.column, state.color);
    for (OssSnBaseNode *node : nodes)
        addNodeRow(row, node, hash, date);
    return row;
}

void OssShaderNetworkUpgradeView::addNodeRow(QTreeWidgetItem *versionRow, OssSnBaseNode *node,
                                             const QString &installedHash,
                                             const QString &installedDate)
{
    const QString present = node->versionHashPresent();
    const QString date = node->versionDate();
    auto *row = new QTreeWidgetItem(versionRow);
    setDated(row, present, date);
    for (const StateColor &state : StateColors)
        row->setForeground(state.column, state.color);
    if (present.isEmpty() || installedHash.isEmpty()) {
        setNode(row, Same, node); // nothing to compare with: not counted
        return;
    }
    const auto show = [&](int column) {
        setNode(row, column, node);
        addCount(versionRow, column, 1);
    };
    if (present == installedHash) {
        show(Same);
        return;
    }
    show(Different);
    if (present != node->versionHashCreated())
        show(Custom);
    else if (OssSnBaseNode::versionDateLT(installedDate, date))
        show(Newer);
    else if (OssSnBaseNode::versionDateLT(date, installedDate))
        show(Older);
}

// --- menu

void OssShaderNetworkUpgradeView::onTreeWidgetItemEntered(QTreeWidgetItem *item, int column)
{
    m_enteredItem = item;
    m_enteredColumn = column;
}

void OssShaderNetworkUpgradeView::onTreeWidgetCustomContextMenuRequested(QPoint pos)
{
    QTreeWidgetItem *item = m_tree->itemAt(pos);
    if (!item)
        return;
    QMenu menu(this);
    const QMap<int, QAction *> upgrades{{Different, menu.addAction(tr("All"))},
                                        {Older, menu.addAction(tr("Old"))},
                                        {Newer, menu.addAction(tr("New"))},
                                        {Custom, menu.addAction(tr("Custom"))}};
    const QAction *dump = menu.addAction(tr("Dump"));
    QMenu *convert = menu.addMenu(tr("Convert To"));
    fillConversions(convert);
    if (QAction *active = upgrades.value(m_enteredColumn))
        menu.setActiveAction(active);
    const int filling = m_fillings;
    QAction *chosen = menu.exec(m_tree->viewport()->mapToGlobal(pos));
    if (!chosen || filling != m_fillings) // what was pointed at may be gone
        return;
    if (chosen == dump)
        dumpRows(item);
    else if (convert->actions().contains(chosen))
        convertSelectedRows(chosen->data().toString());
    else
        upgradeRows(item, upgrades.key(chosen, -1));
}

void OssShaderNetworkUpgradeView::dumpRows(const QTreeWidgetItem *item) const
{
    QList<const QTreeWidgetItem *> open{item};
    while (!open.isEmpty()) {
        const QTreeWidgetItem *row = open.takeFirst();
        for (int i = 0; i < row->childCount(); ++i)
            open.append(row->child(i));
        const OssSnBaseNode *node = nodeAt(row, Same) ? nodeAt(row, Same) : nodeAt(row, Different);
        if (node)
            OssDebug(Source, __LINE__, "[ -- ] %s\n%s", qPrintable(node->path()),
                     qPrintable(node->versionHashSourcePresentDump()));
    }
}

// --- upgrading

void OssShaderNetworkUpgradeView::upgradeRows(QTreeWidgetItem *item, int column)
{
    if (column < Different || column > Custom)
        return;
    if (!item) {
        OssDebug(Source, __LINE__, "Item is NULL");
        return;
    }
    const int lostBefore = m_lost.size();
    {
        const OssUndoManager::AutoMacro macro(tr("Upgrade Nodes"));
        QList<QTreeWidgetItem *> open{item};
        while (!open.isEmpty()) {
            QTreeWidgetItem *row = open.takeFirst();
            if (OssSnBaseNode *node = nodeAt(row, column))
                upgradeRow(row, node);
            for (int i = 0; i < row->childCount(); ++i)
                open.append(row->child(i));
        }
    }
    if (m_lost.size() > lostBefore)
        report(m_lost);
}

bool OssShaderNetworkUpgradeView::upgradeRow(QTreeWidgetItem *row, OssSnBaseNode *node)
{
    if (!OssShaderNetworkManager::instance()->upgradeNode(node, &m_lost))
        return false;
    setDated(row, node->versionHashCreated(), node->versionDate());
    QTreeWidgetItem *versionRow = row->parent();
    for (int column = Different; column <= Custom; ++column) {
        if (row->text(column).isEmpty())
            continue;
        setNode(row, column, nullptr);
        addCount(versionRow, column, -1);
    }
    setNode(row, Same, node);
    addCount(versionRow, Same, 1);
    return true;
}

// --- converting

QList<QTreeWidgetItem *> OssShaderNetworkUpgradeView::selectedNodeRows() const
{
    QList<QTreeWidgetItem *> rows;
    const auto add = [&rows](QTreeWidgetItem *row) {
        if (row->parent() && !rows.contains(row))
            rows.append(row);
    };
    const QList<QTreeWidgetItem *> selected = m_tree->selectedItems();
    for (QTreeWidgetItem *row : selected) {
        add(row);
        for (int i = 0; i < row->childCount(); ++i)
            add(row->child(i));
    }
    return rows;
}

void OssShaderNetworkUpgradeView::convertSelectedRows(const QString &pathKey)
{
    QList<OssSnBaseNode *> shown = shownNodes();
    QList<QPointer<OssSnBaseNode>> wanted;
    const QList<QTreeWidgetItem *> rows = selectedNodeRows();
    for (const QTreeWidgetItem *row : rows) {
        OssSnBaseNode *node = nodeAt(row, Same) ? nodeAt(row, Same) : nodeAt(row, Different);
        if (node)
            wanted.append(node);
        else
            OssDebug(Source, __LINE__, "Node is NULL");
    }
    {
        const OssUndoManager::AutoMacro macro(tr("Convert Nodes"));
        for (const QPointer<OssSnBaseNode> &node : qAsConst(wanted)) {
            // What is inside a group leaves the document when the group is converted.
            if (!node || !isInDocument(node))
                continue;
            OssSnBaseNode *converted = OssShaderNetworkManager::instance()->convertNodeToKeyPath(
                node, pathKey, &m_lost);
            const int index = shown.indexOf(node);
            if (converted && index >= 0)
                shown[index] = converted;
        }
    }
    showAnew(shown); // nodes of another type stand under another version
    if (!m_lost.isEmpty())
        report(m_lost);
}

QList<OssSnBaseNode *> OssShaderNetworkUpgradeView::shownNodes() const
{
    QList<OssSnBaseNode *> shown;
    for (const QPointer<OssSnBaseNode> &node : m_nodes) {
        if (node)
            shown.append(node);
    }
    return shown;
}

void OssShaderNetworkUpgradeView::showAnew(QList<OssSnBaseNode *> nodes)
{
    nodes.erase(std::remove_if(nodes.begin(), nodes.end(),
                               [](const OssSnBaseNode *node) { return !isInDocument(node); }),
                nodes.end());
    ++m_fillings;
    m_enteredItem = nullptr;
    m_tree->clear();
    m_nodes.clear();
    populateNodes(nodes);
    m_tree->expandAll();
}

void OssShaderNetworkUpgradeView::report(const QStringList &lost)
{
    QStringList shown = lost.mid(qMax(0, lost.size() - ShownLosses));
    if (shown.size() < lost.size())
        shown.append(tr("and %n more, see the log", "", lost.size() - shown.size()));
    m_report->setText(shown.join(QLatin1Char('\n')));
    m_report->show();
}
