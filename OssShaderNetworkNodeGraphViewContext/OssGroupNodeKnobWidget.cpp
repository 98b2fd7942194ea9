#include "OssGroupNodeKnobWidget.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssIsAlphanumericUnderscore.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "ZelGL/ZelTextureToken.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QInputDialog>
#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace {

constexpr const char *Source = "OssGroupNodeKnobWidget";
const ZelTextureToken TextureToken;

enum KnobRole {
    LinkedNodeRole = Qt::UserRole + 1,
    LinkedAttributeRole = Qt::UserRole + 2,
    KnobNameRole = Qt::UserRole + 4,
    GroupNameRole = Qt::UserRole + 5,
    PrettyNameRole = Qt::UserRole + 6
};

const QColor BrokenColor(0xe5, 0x86, 0x8a);

bool isGroupItem(const QTreeWidgetItem *item)
{
    return !item->parent();
}

QString fullName(const QString &group, const QString &knob)
{
    return group.isEmpty() ? knob : group + QLatin1Char('/') + knob;
}

/// Whether an attribute of the list stands in the section.
bool isInGroup(const QString &nodeAttribute, const QString &group)
{
    return group.isEmpty() ? !nodeAttribute.contains(QLatin1Char('/'))
                           : nodeAttribute.startsWith(group + QLatin1Char('/'));
}

QString nodeNameOf(const OssLinkedCustomAttributeManager::Link &link)
{
    return link.node ? link.node->name() : link.nodePath.section(QLatin1Char('/'), -1);
}

} // namespace

// --- dialog

OssGroupNodeKnobDialog::OssGroupNodeKnobDialog(OssSnGroupNode *groupNode)
{
    setWindowTitle(tr("Group Node Knobs"));
    setWindowFlags(windowFlags() | Qt::WindowStaysOnTopHint);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    auto *knobs = new OssGroupNodeKnobWidget(groupNode, this);
    layout->addWidget(knobs);
    connect(knobs->buttonBox(), &QDialogButtonBox::accepted, this, &QDialog::accept);
    if (groupNode)
        connect(groupNode, &QObject::destroyed, this, &QDialog::reject);
}

OssGroupNodeKnobDialog::~OssGroupNodeKnobDialog() = default;

// --- widget

OssGroupNodeKnobWidget::OssGroupNodeKnobWidget(OssSnGroupNode *groupNode, QWidget *parent)
    : QWidget(parent)
    , m_groupNode(groupNode)
    , m_knobTree(new QTreeWidget(this))
    , m_buttonBox(new QDialogButtonBox(QDialogButtonBox::Ok, Qt::Vertical, this))
{
    m_knobTree->setHeaderHidden(true);
    m_knobTree->ensurePolished(); // rows are measured when they come
    m_knobTree->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_knobTree->setAccessibleName(tr("Knobs"));
    m_knobTree->setContextMenuPolicy(Qt::CustomContextMenu);
    auto *layout = new QHBoxLayout(this);
    layout->addWidget(m_knobTree);
    layout->addWidget(m_buttonBox);
    using Widget = OssGroupNodeKnobWidget;
    addButton(tr("Pick"), &Widget::showGizmoPropertySelection);
    m_edit = addButton(tr("Edit"), &Widget::editKnob);
    m_link = addButton(tr("Link"), &Widget::linkKnobs);
    m_delete = addButton(tr("Delete"), &Widget::deleteKnob);
    m_up = addButton(tr("Up"), &Widget::moveSelectedKnobUp);
    m_down = addButton(tr("Down"), &Widget::moveSelectedKnobDown);
    connect(m_knobTree, &QTreeWidget::itemSelectionChanged, this, &Widget::itemSelectionChanged);
    connect(m_knobTree, &QTreeWidget::itemDoubleClicked, this, &Widget::editKnob);
    connect(m_knobTree, &QWidget::customContextMenuRequested, this, &Widget::openContextMenu);
    refreshKnobList(QString(), false);
    itemSelectionChanged();
}

OssGroupNodeKnobWidget::~OssGroupNodeKnobWidget() = default;

QPushButton *OssGroupNodeKnobWidget::addButton(const QString &text,
                                               void (OssGroupNodeKnobWidget::*slot)())
{
    QPushButton *button = m_buttonBox->addButton(text, QDialogButtonBox::ActionRole);
    button->setAutoDefault(false);
    connect(button, &QPushButton::pressed, this, slot);
    return button;
}

QList<QTreeWidgetItem *> OssGroupNodeKnobWidget::selectedKnobs() const
{
    QList<QTreeWidgetItem *> knobs;
    const QList<QTreeWidgetItem *> selected = m_knobTree->selectedItems();
    for (QTreeWidgetItem *item : selected) {
        if (!isGroupItem(item))
            knobs.append(item);
    }
    return knobs;
}

bool OssGroupNodeKnobWidget::isGroupSelected() const
{
    return selectedKnobs().size() != m_knobTree->selectedItems().size();
}

void OssGroupNodeKnobWidget::itemSelectionChanged()
{
    const int count = m_knobTree->selectedItems().size();
    const bool group = isGroupSelected();
    m_edit->setEnabled(!group && count == 1);
    m_link->setEnabled(!group && count >= 1);
    m_delete->setEnabled(count >= 1);
    m_up->setEnabled(count == 1);
    m_down->setEnabled(count == 1);
}

// --- the list

void OssGroupNodeKnobWidget::refreshKnobList(QString CurrentKnobName, bool CurrentKnobIsNode)
{
    m_knobTree->clear();
    if (!m_groupNode)
        return;
    const QStringList attributes = m_groupNode->nodeAttributes();
    OssDebug(Source, __LINE__, "[ -- ] Group node attributes : '%s'",
             qPrintable(attributes.join(QLatin1String(", "))));
    for (const QString &attribute : attributes)
        addKnobItem(attribute, CurrentKnobName, CurrentKnobIsNode);
    m_knobTree->setFocus();
}

QTreeWidgetItem *OssGroupNodeKnobWidget::groupItem(const QString &group, bool current)
{
    for (int i = 0; i < m_knobTree->topLevelItemCount(); ++i) {
        if (m_knobTree->topLevelItem(i)->text(0) == group)
            return m_knobTree->topLevelItem(i);
    }
    auto *item = new QTreeWidgetItem(m_knobTree, {group}); // the tree owns it
    item->setData(0, GroupNameRole, group);
    item->setExpanded(true);
    if (current) {
        item->setSelected(true);
        m_knobTree->setCurrentItem(item);
    }
    return item;
}

void OssGroupNodeKnobWidget::addKnobItem(const QString &nodeAttribute, const QString &currentKnob,
                                         bool currentIsNode)
{
    const QString name = m_groupNode->nodeAttributeNameAsUserAttributeName(nodeAttribute);
    const QString group = OssSnGroupNode::getAttributeGroupName(nodeAttribute);
    const QString prettyName = m_groupNode->userAttribute(name).prettyName();
    const auto links = OssLinkedCustomAttributeManager::instance()->links(m_groupNode, name);
    QStringList texts;
    bool broken = false;
    for (const auto &link : links) {
        const QString text = QStringLiteral("%1.%2").arg(nodeNameOf(link), link.attribute);
        const bool gone = OssLinkedCustomAttributeManager::isBroken(m_groupNode, name, link);
        texts.append(gone ? tr("%1 (broken)").arg(text) : text);
        broken = broken || gone;
    }
    QTreeWidgetItem *parent = groupItem(group, currentIsNode && group == currentKnob);
    auto *item = new QTreeWidgetItem(
        parent, {QStringLiteral("%1 { %2 }").arg(prettyName, texts.join(QLatin1String(", ")))});
    item->setFlags(item->flags() | Qt::ItemIsSelectable);
    if (!links.isEmpty()) {
        item->setData(0, LinkedNodeRole, QVariant::fromValue<QObject *>(links.first().node.data()));
        item->setData(0, LinkedAttributeRole, links.first().attribute);
    }
    item->setData(0, KnobNameRole, name);
    item->setData(0, GroupNameRole, group);
    item->setData(0, PrettyNameRole, prettyName);
    if (broken) {
        item->setForeground(0, BrokenColor);
        item->setToolTip(0, tr("What this knob stood for is gone. The menu removes broken links."));
    }
    if (!currentIsNode && name == currentKnob) {
        item->setSelected(true);
        m_knobTree->setCurrentItem(item);
    }
}

void OssGroupNodeKnobWidget::openContextMenu(const QPoint &position)
{
    if (!m_groupNode)
        return;
    QMenu menu(this);
    QAction *removeBroken = menu.addAction(tr("Remove Broken Links"));
    const QStringList knobs = OssLinkedCustomAttributeManager::instance()->knobs(m_groupNode);
    removeBroken->setEnabled(std::any_of(knobs.cbegin(), knobs.cend(), [this](const QString &knob) {
        return m_groupNode->brokenLinkCount(knob) > 0;
    }));
    QAction *print = menu.addAction(tr("Print Info"));
    print->setEnabled(!selectedKnobs().isEmpty());
    const QAction *chosen = menu.exec(m_knobTree->viewport()->mapToGlobal(position));
    if (chosen == print) {
        printInfoOfKnobItem();
    } else if (chosen == removeBroken && m_groupNode) {
        m_groupNode->removeBrokenLinks();
        OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
        refreshKnobList();
    }
}

void OssGroupNodeKnobWidget::printInfoOfKnobItem()
{
    const QList<QTreeWidgetItem *> knobs = selectedKnobs();
    for (const QTreeWidgetItem *item : knobs) {
        const auto *node = qobject_cast<const OssSnBaseNode *>(
            item->data(0, LinkedNodeRole).value<QObject *>());
        OssDebug(Source, __LINE__, "[ -- ] Selected: this.'%s' ('%s') --> '%s'.'%s'",
                 qPrintable(item->data(0, KnobNameRole).toString()),
                 qPrintable(item->data(0, PrettyNameRole).toString()),
                 node ? qPrintable(node->name()) : "",
                 qPrintable(item->data(0, LinkedAttributeRole).toString()));
    }
}

// --- changes

bool OssGroupNodeKnobWidget::askForKnobName(QString *name)
{
    const QString title = tr("Link Knobs");
    for (;;) {
        bool accepted = false;
        *name = QInputDialog::getText(this, title, tr("Name of New Knob"), QLineEdit::Normal, *name,
                                      &accepted);
        if (!accepted || !m_groupNode)
            return false;
        if (!OssIsAlphanumericUnderscore(*name)) {
            OssDebug(Source, __LINE__, "Entry must consist of alphabets, numbers and underscores.");
            OssMessageBox::information(
                this, title,
                tr("The new name must consist of alphabets, numbers and underscores."));
        } else if (m_groupNode->exists(*name)) {
            OssDebug(Source, __LINE__, "There already is an user attribute with the same name : %s",
                     qPrintable(*name));
            OssMessageBox::information(this, title,
                                       tr("There is a node attribute of the same name. The new "
                                          "knob name must be unique."));
        } else {
            return true;
        }
    }
}

void OssGroupNodeKnobWidget::linkKnobs()
{
    if (isGroupSelected() || !m_groupNode)
        return;
    const QList<QTreeWidgetItem *> items = selectedKnobs();
    if (items.size() < 2) {
        OssMessageBox::warning(this, tr("Link Knobs"),
                               tr("More than one knob needs to be selected in order to link."));
        return;
    }
    QStringList knobs;
    QString typeName;
    for (const QTreeWidgetItem *item : items) {
        const QString knob = item->data(0, KnobNameRole).toString();
        const auto *node = qobject_cast<const OssSnBaseNode *>(
            item->data(0, LinkedNodeRole).value<QObject *>());
        const QString linked = item->data(0, LinkedAttributeRole).toString();
        // A broken link still has its knob's type.
        const QVariant value = node && node->exists(linked) ? node->attribute(linked)
                                                            : m_groupNode->attribute(knob);
        const QString type = QString::fromLatin1(value.typeName());
        if (!typeName.isEmpty() && type != typeName) {
            OssMessageBox::warning(this, tr("Link Knobs"),
                                   tr("Cannot link knobs of differing types."));
            return;
        }
        typeName = type;
        knobs.append(knob);
    }
    const OssResult can = m_groupNode->canLinkKnobs(knobs);
    if (!can) {
        OssMessageBox::warning(this, tr("Link Knobs"),
                               tr("Cannot link these knobs: %1.").arg(can.error()));
        return;
    }
    QString name;
    if (!askForKnobName(&name))
        return;
    {
        const OssUndoManager::AutoMacro macro(tr("Link Knobs: %1").arg(name));
        m_groupNode->linkKnobs(name, knobs);
    }
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    refreshKnobList(name);
}

void OssGroupNodeKnobWidget::editKnob()
{
    const QTreeWidgetItem *item = m_knobTree->currentItem();
    if (!item || isGroupItem(item) || isGroupSelected() || !m_groupNode)
        return;
    const auto *node = qobject_cast<const OssSnBaseNode *>(
        item->data(0, LinkedNodeRole).value<QObject *>());
    const QString knob = item->data(0, KnobNameRole).toString();
    const QString before = item->data(0, PrettyNameRole).toString();
    const QString linked = QStringLiteral("%1.%2").arg(
        node ? node->name() : QString(), item->data(0, LinkedAttributeRole).toString());
    const QString after = QInputDialog::getText(this, tr("Knob linked to \"%1\"").arg(linked),
                                                tr("Name:"), QLineEdit::Normal, before);
    if (after.isEmpty() || after == before || !m_groupNode)
        return;
    m_groupNode->renameKnobName(knob, before, after);
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    refreshKnobList(knob);
}

void OssGroupNodeKnobWidget::deleteKnob()
{
    if (!m_groupNode)
        return;
    QStringList knobs;
    const QList<QTreeWidgetItem *> selected = m_knobTree->selectedItems();
    for (const QTreeWidgetItem *item : selected) {
        if (!isGroupItem(item))
            knobs.append(item->data(0, KnobNameRole).toString());
        for (int i = 0; i < item->childCount(); ++i)
            knobs.append(item->child(i)->data(0, KnobNameRole).toString());
    }
    knobs.removeDuplicates();
    {
        const OssUndoManager::AutoMacro macro(tr("Delete Knobs"));
        for (const QString &knob : qAsConst(knobs))
            m_groupNode->deleteAttribute(knob);
    }
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    refreshKnobList();
}

// --- order

void OssGroupNodeKnobWidget::moveSelectedKnobUp()
{
    moveSelectedKnob(-1);
}

void OssGroupNodeKnobWidget::moveSelectedKnobDown()
{
    moveSelectedKnob(1);
}

void OssGroupNodeKnobWidget::moveSelectedKnob(int step)
{
    const QTreeWidgetItem *item = m_knobTree->currentItem();
    if (!item || !m_groupNode)
        return;
    if (isGroupItem(item))
        moveGroup(item, step);
    else
        moveKnob(item, step);
}

void OssGroupNodeKnobWidget::storeOrder(const QStringList &order, const QString &current,
                                        bool isNode)
{
    m_groupNode->setNodeAttributesUndo(order);
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    refreshKnobList(current, isNode);
}

void OssGroupNodeKnobWidget::moveKnob(const QTreeWidgetItem *item, int step)
{
    const QString group = item->data(0, GroupNameRole).toString();
    const QString knob = item->data(0, KnobNameRole).toString();
    QStringList order = m_groupNode->nodeAttributes();
    const int index = order.indexOf(fullName(group, knob));
    const int target = index + step;
    if (index < 0 || target < 0 || target >= order.size() || !isInGroup(order.at(target), group))
        return;
    order.move(index, target);
    storeOrder(order, knob, false);
}

void OssGroupNodeKnobWidget::moveGroup(const QTreeWidgetItem *item, int step)
{
    const QTreeWidgetItem *neighbour = m_knobTree->topLevelItem(
        m_knobTree->indexOfTopLevelItem(const_cast<QTreeWidgetItem *>(item)) + step);
    if (!neighbour)
        return;
    const QString group = item->data(0, GroupNameRole).toString();
    const QString other = neighbour->data(0, GroupNameRole).toString();
    QStringList block;
    QStringList order;
    const QStringList all = m_groupNode->nodeAttributes();
    for (const QString &attribute : all)
        (isInGroup(attribute, group) ? block : order).append(attribute);
    int at = -1;
    for (int i = 0; i < order.size(); ++i) {
        if (isInGroup(order.at(i), other) && (at < 0 || step > 0))
            at = step > 0 ? i + 1 : i;
    }
    if (at < 0)
        return;
    storeOrder(order.mid(0, at) + block + order.mid(at), group, true);
}
