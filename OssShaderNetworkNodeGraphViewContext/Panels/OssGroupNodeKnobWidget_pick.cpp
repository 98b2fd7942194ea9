#include "OssGroupNodeKnobWidget.h"

#include "OssCore/Documents/OssObjectReferenceManager.h"
#include "OssCore/Program/OssIcon.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "Panels/GroupInFront.h"

#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSet>
#include <QShortcut>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

#include <algorithm>
#include <functional>

// Picking attributes of nodes inside the group.

namespace {

constexpr int UserAttributeRole = Qt::UserRole + 1;

/// A dialog that no key closes, so that Enter in its search field searches.
class OssEnterIgnorantDialog : public QDialog
{
public:
    using QDialog::QDialog;

protected:
    void keyPressEvent(QKeyEvent *event) override
    {
        if (event->key() == Qt::Key_Enter)
            event->accept();
    }
};

/// Tells of clicks and keys on its rows, also of such that change no selection.
class PickTree : public QTreeWidget
{
public:
    std::function<void()> touched;

protected:
    void mousePressEvent(QMouseEvent *event) override
    {
        touched();
        QTreeWidget::mousePressEvent(event);
    }

    void keyPressEvent(QKeyEvent *event) override
    {
        touched();
        QTreeWidget::keyPressEvent(event);
    }
};

/// A system's own nodes, and those whose images are no values, are not offered.
bool isOffered(const OssSnBaseNode *node)
{
    return OssSnGroupNode::offersKnobs(node) && !qobject_cast<const OssSnImageSetNodeBase *>(node);
}

QPushButton *makeButton(const QString &icon, const QString &accessibleName)
{
    auto *button = new QPushButton(OssIcon::createIconFromFilename(icon), QString());
    button->setAccessibleName(accessibleName);
    button->setToolTip(accessibleName);
    button->setAutoDefault(false);
    return button;
}

/// No key closes the dialog; Escape leads to the button that does.
void leadEscapeTo(QPushButton *cancel, QDialog *dialog)
{
    cancel->setToolTip(OssGroupNodeKnobWidget::tr("Esc comes here, Return presses it"));
    const auto *escape = new QShortcut(QKeySequence(Qt::Key_Escape), dialog); // owned
    QObject::connect(escape, &QShortcut::activated, cancel,
                     [cancel] { cancel->setFocus(Qt::ShortcutFocusReason); });
}

} // namespace

QHBoxLayout *OssGroupNodeKnobWidget::makeSearchRow(QLineEdit *search)
{
    auto *row = new QHBoxLayout;
    auto *label = new QLabel(tr("Search"));
    label->setBuddy(search);
    QPushButton *previous = makeButton(QStringLiteral("Left.png"), tr("Previous"));
    QPushButton *next = makeButton(QStringLiteral("Right.png"), tr("Next"));
    row->addWidget(label);
    row->addWidget(search);
    row->addWidget(previous);
    row->addWidget(next);
    using Widget = OssGroupNodeKnobWidget;
    connect(search, &QLineEdit::returnPressed, this, &Widget::findNextPickItem);
    connect(next, &QPushButton::pressed, this, &Widget::findNextPickItem);
    connect(previous, &QPushButton::pressed, this, &Widget::findPreviousPickItem);
    return row;
}

void OssGroupNodeKnobWidget::showGizmoPropertySelection()
{
    if (!qobject_cast<QPushButton *>(sender()) || !m_groupNode)
        return;
    const GroupInFront inFront(m_groupNode); // where picked nodes light up
    OssEnterIgnorantDialog dialog(this);
    dialog.setModal(true);
    dialog.setWindowTitle(tr("Pick Knobs to Add"));
    PickTree tree;
    QLineEdit search;
    m_pickTree = &tree;
    m_inFront = &inFront;
    m_search = &search;

    tree.setHeaderHidden(true);
    tree.setSelectionMode(QAbstractItemView::ExtendedSelection);
    tree.setAccessibleName(tr("Attributes"));
    tree.ensurePolished(); // rows are measured when they come
    fillPickTree();
    connect(&tree, &QTreeWidget::itemSelectionChanged, this, [this] { highlightPickedNodes(); });
    connect(&tree, &QTreeWidget::currentItemChanged, this, [this] { highlightPickedNodes(); });
    // What the user touches after it was found is the user's choice from then on.
    tree.touched = [this] {
        m_found = nullptr;
    };
    QDialogButtonBox buttons(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, Qt::Horizontal);
    connect(&buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    connect(&buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);

    leadEscapeTo(buttons.button(QDialogButtonBox::Cancel), &dialog);

    QVBoxLayout layout(&dialog);
    layout.addLayout(makeSearchRow(&search));
    layout.addWidget(&tree);
    layout.addWidget(&buttons);
    dialog.resize(600, 400);
    search.setFocus();
    if (dialog.exec() == QDialog::Accepted && m_groupNode)
        createPickedKnobs();
    m_pickTree = nullptr;
    m_inFront = nullptr;
    m_search = nullptr;
    m_found = nullptr;
    highlightPickedNodes();
}

bool OssGroupNodeKnobWidget::isKnobAlready(const OssSnBaseNode *node,
                                           const QString &attribute) const
{
    const auto knobs = OssLinkedCustomAttributeManager::instance()->knobsOf(node, attribute);
    return std::any_of(knobs.cbegin(), knobs.cend(),
                       [this](const auto &knob) { return knob.group == m_groupNode; });
}

void OssGroupNodeKnobWidget::fillPickTree()
{
    const QList<OssSnBaseNode *> nodes = m_groupNode->groupNetwork()->nodes();
    for (const OssSnBaseNode *node : nodes) {
        if (!isOffered(node))
            continue;
        auto *nodeItem = new QTreeWidgetItem(m_pickTree, {node->name()}); // the tree owns it
        nodeItem->setData(0, Qt::UserRole, node->uuidString());
        nodeItem->setFlags(nodeItem->flags() & ~Qt::ItemIsSelectable);
        const QStringList attributes = node->nodeAttributes();
        for (const QString &attribute : attributes) {
            const QString name = node->nodeAttributeNameAsUserAttributeName(attribute);
            if (name.startsWith(QLatin1Char('_')))
                continue;
            const QString prettyName = node->userAttribute(name).prettyName();
            const QString text = prettyName == name
                                     ? name
                                     : QStringLiteral("%1 (%2)").arg(prettyName, name);
            auto *item = new QTreeWidgetItem(nodeItem, {text});
            item->setData(0, UserAttributeRole, name);
            item->setFlags(item->flags() | Qt::ItemIsSelectable);
            if (!isKnobAlready(node, name))
                continue;
            QFont bold = item->font(0);
            bold.setBold(true);
            item->setFont(0, bold);
            item->setToolTip(0, tr("This is a knob of the group already"));
        }
    }
}

void OssGroupNodeKnobWidget::highlightPickedNodes()
{
    QSet<QString> ids;
    QString current;
    QList<QTreeWidgetItem *> items;
    if (m_pickTree) // null once the dialog is closed
        items = m_pickTree->selectedItems() << m_pickTree->currentItem();
    for (const QTreeWidgetItem *item : qAsConst(items)) {
        if (!item)
            continue;
        current = (item->parent() ? item->parent() : item)->data(0, Qt::UserRole).toString();
        ids.insert(current);
    }
    const QList<OssSnBaseNode *> nodes = m_groupNode ? m_groupNode->groupNetwork()->nodes()
                                                     : QList<OssSnBaseNode *>();
    for (const OssSnBaseNode *node : nodes) {
        OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node);
        if (!item)
            continue;
        item->setPointedOut(ids.contains(node->uuidString()));
        if (m_inFront && node->uuidString() == current)
            m_inFront->reveal(item, m_pickTree->window());
    }
}

void OssGroupNodeKnobWidget::createPickedKnobs()
{
    {
        const OssUndoManager::AutoMacro macro(tr("Creating Knobs"));
        for (QTreeWidgetItemIterator it(m_pickTree, QTreeWidgetItemIterator::Selected); *it; ++it) {
            const QTreeWidgetItem *parent = (*it)->parent();
            if (!parent)
                continue;
            auto *node = qobject_cast<OssSnBaseNode *>(
                OssObjectReferenceManager::instance()->getPointer(
                    parent->data(0, Qt::UserRole).toString()));
            m_groupNode->createKnob(node, (*it)->data(0, UserAttributeRole).toString());
        }
    }
    OssShaderNetworkManager::instance()->emitNodeGraphIsManuallyChanged();
    refreshKnobList();
}

// --- search

void OssGroupNodeKnobWidget::findNextPickItem()
{
    findPickItem(1);
}

void OssGroupNodeKnobWidget::findPreviousPickItem()
{
    findPickItem(-1);
}

void OssGroupNodeKnobWidget::findPickItem(int step)
{
    if (!m_pickTree || !m_search)
        return;
    QList<QTreeWidgetItem *> items;
    for (QTreeWidgetItemIterator it(m_pickTree); *it; ++it)
        items.append(*it);
    const QRegExp pattern(m_search->text(), Qt::CaseInsensitive, QRegExp::WildcardUnix);
    const int count = items.size();
    const int current = items.indexOf(m_pickTree->currentItem());
    // Once round, the current one last; without one from the first resp. last one on.
    const int start = current >= 0 ? current : step > 0 ? -1 : count;
    for (int i = 1; i <= count; ++i) {
        QTreeWidgetItem *item = items.at(((start + i * step) % count + count) % count);
        if (pattern.indexIn(item->text(0)) < 0)
            continue;
        if (item->childCount() > 0)
            item->setExpanded(true);
        // What the user picked stays picked; what only the search came by does not.
        if (m_found && m_found != item)
            m_found->setSelected(false);
        m_found = item->isSelected() ? nullptr : item;
        m_pickTree->setCurrentItem(item, 0, QItemSelectionModel::Select);
        return;
    }
}
