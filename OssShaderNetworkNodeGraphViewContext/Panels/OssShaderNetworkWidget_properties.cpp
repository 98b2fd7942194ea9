#include "OssShaderNetworkWidget.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Properties/OssNodePropertyPanel.h"
#include "OssInterface/Properties/OssPropertyEditor.h"
#include "OssInterface/Properties/OssPropertyRow.h"
#include "OssInterface/Widgets/OssExpandableListHeading.h"
#include "OssInterface/Widgets/OssExpandableListWidget.h"
#include "OssInterface/Widgets/OssFormLayout.h"
#include "OssModel/Nodes/OssSnChannelInputNode.h"
#include "OssModel/Types/OssSnTags.h"
#include "OssShaderNetworkView.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QAction>
#include <QApplication>
#include <QEvent>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>

// The list of panels. What a panel is made of: OssShaderNetworkWidget_panel.cpp.

namespace {

constexpr const char *Source = "OssShaderNetworkWidget";
const QString SettingsGroup = QStringLiteral("OssSnNodePropertiesWidget");
const QString MaxPanelsKey = QStringLiteral("MaxPanels");
constexpr int MaxPanelsDefault = 10;

QList<OssExpandableListWidget *> sectionsOf(QWidget *panel)
{
    QList<OssExpandableListWidget *> sections;
    if (!qobject_cast<OssExpandableListWidget *>(panel))
        return sections;
    const auto all = panel->findChildren<OssExpandableListWidget *>();
    for (OssExpandableListWidget *section : all) {
        if (section->heading())
            sections.append(section);
    }
    return sections;
}

/// The attribute whose row has the keyboard; empty when none has.
QString focusedAttribute(const QWidget *panel)
{
    const auto *properties = qobject_cast<const OssNodePropertyPanel *>(panel);
    const OssPropertyRow *row = properties ? properties->focusedRow() : nullptr;
    return row ? row->name() : QString();
}

void focusAttribute(const QWidget *panel, const QString &attribute)
{
    const auto *properties = qobject_cast<const OssNodePropertyPanel *>(panel);
    if (const OssPropertyRow *row = properties ? properties->row(attribute) : nullptr)
        row->editor()->setFocus();
}

constexpr const char *Pinned = "pinned"; // of panels

bool isPinned(const QWidget *panel)
{
    return panel && panel->property(Pinned).toBool();
}

/// The panel as another one is that it takes the place of.
void fold(QWidget *panel, const QWidget *as)
{
    auto *list = qobject_cast<OssExpandableListWidget *>(panel);
    const auto *other = qobject_cast<const OssExpandableListWidget *>(as);
    if (list && other && other->isCollapsed())
        list->collapse();
}

} // namespace

OssSnNodePropertiesWidget::OssSnNodePropertiesWidget(OssShaderNetworkView *view, QWidget *parent)
    : QWidget(parent)
{
    if (!view) {
        OssDebug(Source, __LINE__, "View is NULL");
        return;
    }
    setWindowTitle(tr("Node Properties"));
    makeScrollArea();
    makeBar(makeDeleteAction());
    connect(view, &OssShaderNetworkView::nodeDoubleClicked, this,
            &OssSnNodePropertiesWidget::openProperty);
    connect(OssStatusManager::instance(), &OssStatusManager::endProcessing, this,
            &OssSnNodePropertiesWidget::onEndProcessing);
    setAttribute(Qt::WA_Hover);
}

OssSnNodePropertiesWidget::~OssSnNodePropertiesWidget() = default;

// --- making

void OssSnNodePropertiesWidget::makeScrollArea()
{
    m_scrollArea = new QScrollArea(this);
    m_scrollArea->setFrameShape(QFrame::NoFrame);
    m_scrollArea->setFocusPolicy(
        Qt::NoFocus);              // a click beside the fields leaves the graph its keys
    auto *container = new QWidget; // the scroll area takes it
    m_panelLayout = new QVBoxLayout(container);
    m_panelLayout->setContentsMargins(1, 1, 1, 1);
    m_panelLayout->setSpacing(2);
    m_panelLayout->addStretch();
    m_panelLayout->setSizeConstraint(QLayout::SetMinimumSize);
    m_scrollArea->setWidget(container);
    m_scrollArea->setWidgetResizable(true);
}

QAction *OssSnNodePropertiesWidget::makeDeleteAction()
{
    const QString path = QStringLiteral("/Ossa/NodeGraph/Delete All Properties");
    QAction *action = OssCommandTable::makeAction(path, this);
    action->setShortcuts(OssCommandTable::keys(path)); // the button makes them act
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    if (!tree->hasAction(QStringLiteral("/Ossa/NodeGraph/Delete all Properties")))
        tree->registerAction(QStringLiteral("/Ossa/NodeGraph/"), action);
    connect(action, &QAction::triggered, this, &OssSnNodePropertiesWidget::deleteAllProperties);
    return action;
}

void OssSnNodePropertiesWidget::makeBar(QAction *deleteAll)
{
    auto *button = new QPushButton(this);
    button->setIcon(deleteAll->icon());
    button->setMaximumSize(24, 24);
    button->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    button->setToolTip(deleteAll->statusTip());
    button->setWhatsThis(deleteAll->statusTip());
    button->setAccessibleName(deleteAll->statusTip());
    button->setFocusPolicy(Qt::TabFocus);
    // Where the action acts on its keys itself, the button's would make them ambiguous.
    const auto follow = [button, deleteAll] {
        const Qt::ShortcutContext context = deleteAll->shortcutContext();
        const bool acts = context == Qt::WidgetWithChildrenShortcut
                          || context == Qt::ApplicationShortcut;
        button->setShortcut(acts ? QKeySequence() : deleteAll->shortcut());
    };
    connect(deleteAll, &QAction::changed, button, follow);
    follow();
    // A style's padding leaves no room for the icon in a button as small as this.
    button->setStyleSheet(QStringLiteral("padding: 0;"));
    connect(button, &QPushButton::clicked, deleteAll, &QAction::trigger);

    m_maxPanels = new QLineEdit(this);
    m_maxPanels->setMaximumWidth(30);
    auto *validator = new QIntValidator(m_maxPanels);
    validator->setBottom(1);
    m_maxPanels->setValidator(validator);
    m_maxPanels->setToolTip(tr("Max number of panels to display"));
    m_maxPanels->setWhatsThis(tr("Max number of panels to display"));
    m_maxPanels->setAccessibleName(tr("Max number of panels to display"));
    m_maxPanels->setStyleSheet(QStringLiteral("padding: 3px 2px;"));
    connect(m_maxPanels, &QLineEdit::editingFinished, this,
            &OssSnNodePropertiesWidget::onMaxPanelsEditingFinished);
    OssSettings settings;
    settings.beginGroup(SettingsGroup);
    m_maxPanels->setText(QString::number(settings.value(MaxPanelsKey, MaxPanelsDefault).toInt()));

    auto *bar = new QHBoxLayout;
    bar->setContentsMargins(1, 1, 1, 1);
    bar->addWidget(m_maxPanels);
    bar->addWidget(button);
    bar->addStretch();
    auto *outer = new QVBoxLayout(this);
    outer->setContentsMargins(0, 0, 0, 0);
    outer->setSpacing(1);
    outer->addLayout(bar);
    outer->addWidget(m_scrollArea);
}

// --- opening

QWidget *OssSnNodePropertiesWidget::panel(const OssSnBaseNode *node) const
{
    return m_panels.value(const_cast<OssSnBaseNode *>(node));
}

void OssSnNodePropertiesWidget::openProperty(OssSnBaseNode *Node)
{
    m_showsOpened = createPropertyWidget(Node, 0) != nullptr;
    Q_EMIT nodeDoubledClicked();
}

void OssSnNodePropertiesWidget::insertBefore(OssSnBaseNode *node, const OssSnBaseNode *target)
{
    insertBeside(node, target, 0);
}

void OssSnNodePropertiesWidget::insertAfter(OssSnBaseNode *node, const OssSnBaseNode *target)
{
    insertBeside(node, target, 1);
}

void OssSnNodePropertiesWidget::insertBeside(OssSnBaseNode *node, const OssSnBaseNode *target,
                                             int offset)
{
    if (!m_panelLayout || node == target)
        return;
    int index = panel(target) ? m_panelLayout->indexOf(panel(target)) : -1;
    const int own = panel(node) ? m_panelLayout->indexOf(panel(node)) : -1;
    if (own >= 0 && own < index)
        --index; // it is taken out first
    createPropertyWidget(node, index < 0 ? 0 : index + offset);
}

void OssSnNodePropertiesWidget::replacePanel(OssSnBaseNode *old, OssSnBaseNode *replacement)
{
    QWidget *panel = m_panels.value(old);
    if (!panel)
        return;
    const int index = m_panelLayout->indexOf(panel);
    const bool pinned = isPinned(panel);
    dismiss(panel);
    m_panels.remove(old);
    QWidget *made = createPropertyWidget(replacement, index);
    if (made && pinned)
        made->setProperty(Pinned, true);
    fold(made, panel);
}

void OssSnNodePropertiesWidget::followNode(OssSnBaseNode *node)
{
    using Node = OssSnBaseNode;
    using Widget = OssSnNodePropertiesWidget;
    const auto once = Qt::UniqueConnection;
    connect(node, &QObject::destroyed, this, &Widget::onNodeRemoved, once);
    connect(node, &Node::nodeRemovedFromNetwork, this, &Widget::onNodeRemoved, once);
    connect(node, &Node::selectedChanged, this, &Widget::refreshPanel, once);
    connect(node, &Node::nodeStateRefreshed, this, &Widget::refreshPanel, once);
    connect(node, &Node::cacheActiveChanged, this, &Widget::refreshPanel, once);
    connect(node, &Node::nodeRefreshed, this, &Widget::onUserAttributePopulationChanged, once);
    connect(node, &Node::visibleNodeAttributeRemoved, this,
            &Widget::onUserAttributePopulationChanged, once);
    connect(node, &Node::nodeAttributesSet, this, &Widget::onUserAttributePopulationChanged, once);
    connect(node, &Node::nodeAttributeCreated, this, &Widget::onUserAttributeChanged, once);
    connect(node, &Node::nodeAttributePrettyNameChanged, this, &Widget::onUserAttributeChanged,
            once);
    connect(node, &Node::nodeAttributeRenamed, this, &Widget::onUserAttributeRenamed, once);
}

QWidget *OssSnNodePropertiesWidget::createPropertyWidget(OssSnBaseNode *Node, int InsertionPoint)
{
    if (!Node) {
        OssDebug(Source, __LINE__, "Node is NULL");
        return nullptr;
    }
    if (!m_panelLayout || Node->hasTag(OssSnTags::dot()) || Node->hasTag(OssSnTags::viewer()))
        return nullptr;
    QWidget *panel = m_panels.value(Node);
    if (!panel) {
        panel = makePanel(Node);
        followNode(Node);
        if (auto *paint = qobject_cast<OssSnChannelInputNode *>(Node))
            paint->enablePropertiesBasedOnManagedByChannel();
        OssFormLayout::alignLabels(panel);
        m_panels.insert(Node, panel);
    }
    m_panelLayout->removeWidget(panel);
    m_panelLayout->insertWidget(InsertionPoint, panel);
    panel->show();
    m_scrollArea->verticalScrollBar()->setValue(
        panel->inputMethodQuery(Qt::ImCursorRectangle).toRect().top());
    deletePanelsExceedingMax();
    return panel;
}

// --- closing

void OssSnNodePropertiesWidget::giveFocusBack()
{
    const auto *manager = OssSnNodeGraphViewContextManager::instance();
    if (OssShaderNetworkView *view = manager ? manager->currentView() : nullptr) {
        view->window()->activateWindow();
        view->setFocus();
    }
}

void OssSnNodePropertiesWidget::dismiss(QWidget *panel)
{
    // Qt hands it to whatever comes next, and the graph's keys are dead; behind a dialog, too, which
    // gives it back to its window when it closes.
    const auto *manager = OssSnNodeGraphViewContextManager::instance();
    OssShaderNetworkView *view = manager ? manager->currentView() : nullptr;
    if (panel->isAncestorOf(QApplication::focusWidget()))
        giveFocusBack();
    else if (view && view->window() == panel->window()
             && panel->isAncestorOf(panel->window()->focusWidget()))
        view->setFocus();
    m_panelLayout->removeWidget(panel);
    panel->hide();
    panel->deleteLater();
}

void OssSnNodePropertiesWidget::deletePanelsExceedingMax()
{
    if (!m_panelLayout)
        return;
    const int max = m_maxPanels->text().toInt();
    for (int i = m_panelLayout->count() - 2; i >= max; --i) {
        QWidget *oldest = m_panelLayout->itemAt(i)->widget();
        if (!isPinned(oldest))
            dismiss(oldest);
    }
}

void OssSnNodePropertiesWidget::onMaxPanelsEditingFinished()
{
    OssSettings settings;
    settings.beginGroup(SettingsGroup);
    settings.setValue(MaxPanelsKey, m_maxPanels->text().toInt());
}

void OssSnNodePropertiesWidget::deleteAllProperties()
{
    if (std::all_of(m_panels.cbegin(), m_panels.cend(),
                    [](const QWidget *panel) { return !panel || isPinned(panel); }))
        OssStatusManager::instance()->showMessage(
            m_panels.isEmpty() ? tr("No panel is open") : tr("Panels that are pinned stay"));
    for (auto entry = m_panels.begin(); entry != m_panels.end();) {
        QWidget *panel = *entry;
        if (isPinned(panel)) {
            ++entry;
            continue;
        }
        if (panel)
            dismiss(panel);
        entry = m_panels.erase(entry);
    }
}

void OssSnNodePropertiesWidget::onNodeRemoved()
{
    // Without a cast: the node may be half gone.
    const auto found = m_panels.find(static_cast<OssSnBaseNode *>(sender()));
    if (found == m_panels.end())
        return;
    if (QWidget *panel = *found) {
        if (auto *properties = qobject_cast<OssNodePropertyPanel *>(panel))
            properties->letGo();
        dismiss(panel);
    }
    m_panels.erase(found);
}

// --- keeping in step

void OssSnNodePropertiesWidget::refreshPanel()
{
    auto *node = qobject_cast<OssSnBaseNode *>(sender());
    if (!node)
        return;
    if (OssStatusManager::instance()->inProgress())
        m_refreshPending = true;
    else if (QWidget *panel = m_panels.value(node))
        restyle(node, panel);
}

void OssSnNodePropertiesWidget::restyle(const OssSnBaseNode *node, QWidget *panel)
{
    const QString style = frameStyle(node, panel);
    // A style sheet is worked out for every widget inside, so an equal one is not set again.
    if (panel->styleSheet() != style)
        panel->setStyleSheet(style);
}

void OssSnNodePropertiesWidget::onEndProcessing()
{
    if (!m_refreshPending)
        return;
    m_refreshPending = false;
    // The work ends while others still hear of it; frames follow when the loop is free.
    QMetaObject::invokeMethod(
        this,
        [this] {
            for (auto entry = m_panels.cbegin(); entry != m_panels.cend(); ++entry) {
                if (*entry)
                    restyle(entry.key(), *entry);
            }
        },
        Qt::QueuedConnection);
}

void OssSnNodePropertiesWidget::onUserAttributePopulationChanged()
{
    if (auto *node = qobject_cast<OssSnBaseNode *>(sender()))
        refreshPropertiesForNode(node);
}

bool OssSnNodePropertiesWidget::isVisibleAttribute(const OssSnBaseNode *node, const QString &name)
{
    return node && node->exists(name) && node->userAttribute(name).isVisible();
}

void OssSnNodePropertiesWidget::onUserAttributeChanged(QString AttributeName)
{
    auto *node = qobject_cast<OssSnBaseNode *>(sender());
    if (isVisibleAttribute(node, AttributeName))
        refreshPropertiesForNode(node);
}

void OssSnNodePropertiesWidget::onUserAttributeRenamed(QString OldAttributeName,
                                                       QString NewAttributeName)
{
    auto *node = qobject_cast<OssSnBaseNode *>(sender());
    if (!isVisibleAttribute(node, NewAttributeName))
        return;
    const bool hadFocus = focusedAttribute(m_panels.value(node)) == OldAttributeName;
    refreshPropertiesForNode(node);
    if (hadFocus)
        focusAttribute(m_panels.value(node), NewAttributeName);
}

void OssSnNodePropertiesWidget::refreshPropertiesForNode(OssSnBaseNode *Node)
{
    QWidget *panel = Node ? m_panels.value(Node).data() : nullptr;
    const int index = panel ? m_panelLayout->indexOf(panel) : -1;
    if (index < 0)
        return;
    QHash<QString, bool> collapsed;
    const QList<OssExpandableListWidget *> before = sectionsOf(panel);
    for (const OssExpandableListWidget *section : before)
        collapsed.insert(section->heading()->text(), section->isCollapsed());
    const QString focused = focusedAttribute(panel);
    m_panels.remove(Node);
    dismiss(panel);
    QWidget *made = createPropertyWidget(Node, index);
    fold(made, panel);
    const QList<OssExpandableListWidget *> after = sectionsOf(made);
    for (OssExpandableListWidget *section : after) {
        const auto known = collapsed.constFind(section->heading()->text());
        if (known == collapsed.cend())
            continue;
        if (*known)
            section->collapse();
        else
            section->expand();
    }
    focusAttribute(made, focused);
}

// --- pointer

OssSnBaseNode *OssSnNodePropertiesWidget::nodeUnderMouse() const
{
    for (auto entry = m_panels.cbegin(); entry != m_panels.cend(); ++entry) {
        if (*entry && (*entry)->testAttribute(Qt::WA_UnderMouse))
            return entry.key();
    }
    return nullptr;
}

bool OssSnNodePropertiesWidget::event(QEvent *Event)
{
    const QEvent::Type type = Event->type();
    if (type == QEvent::HoverEnter || type == QEvent::HoverMove || type == QEvent::HoverLeave) {
        OssSnBaseNode *now = type == QEvent::HoverLeave ? nullptr : nodeUnderMouse();
        if (now != m_nodeUnderMouse) {
            OssSnBaseNode *before = m_nodeUnderMouse;
            m_nodeUnderMouse = now;
            Q_EMIT propertiesUnderMouseChanged(now, before);
        }
    }
    return QWidget::event(Event);
}
