#include "OssShaderNetworkWidget.h"

#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssShaderNetworkView.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "ZelGL/ZelTextureToken.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTabBar>
#include <QTimer>

namespace {

constexpr const char *Source = "OssShaderNetworkWidget";
const ZelTextureToken TextureToken;

constexpr int LongestName = 40;
constexpr int KeptAtEachEnd = 20;

QString shortened(const QString &name)
{
    if (name.size() <= LongestName)
        return name;
    return name.left(KeptAtEachEnd) + QStringLiteral("...") + name.right(KeptAtEachEnd);
}

} // namespace

OssSnNodeGraphWidget::OssSnNodeGraphWidget(const QString &controlType, QWidget *parent)
    : QTabWidget(parent)
    , m_rootView(new OssShaderNetworkView(this))
    , m_navigationControlType(controlType)
{
    setWindowTitle(tr("Node Graph"));
    setMinimumSize(100, 100);
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Preferred);
    setTabsClosable(true);
    connect(this, &QTabWidget::tabCloseRequested, this, &OssSnNodeGraphWidget::hideTab);
    connect(this, &QTabWidget::currentChanged, this, &OssSnNodeGraphWidget::onCurrentTabChanged);
    connect(this, &QTabWidget::tabBarClicked, this, [this](int index) {
        if (QWidget *page = widget(index))
            page->setFocus(Qt::MouseFocusReason);
    });
    tabBar()->setFocusPolicy(Qt::NoFocus); // its keys are the page's
    addRootView();
}

OssSnNodeGraphWidget::~OssSnNodeGraphWidget() = default;

void OssSnNodeGraphWidget::addRootView()
{
    insertTab(0, m_rootView, QStringLiteral("Root"));
    for (const QTabBar::ButtonPosition side : {QTabBar::LeftSide, QTabBar::RightSide}) {
        if (QWidget *button = tabBar()->tabButton(0, side))
            button->hide();
    }
}

OssShaderNetworkView *OssSnNodeGraphWidget::currentView() const
{
    return qobject_cast<OssShaderNetworkView *>(currentWidget());
}

void OssSnNodeGraphWidget::refreshCurrentChanged()
{
    Q_EMIT currentChanged(currentIndex());
}

void OssSnNodeGraphWidget::selectTabForNetwork(OssShaderNetwork *network)
{
    for (int i = 0; i < count(); ++i) {
        const auto *page = qobject_cast<OssShaderNetworkView *>(widget(i));
        if (page && page->network() == network) {
            setCurrentIndex(i);
            return;
        }
    }
}

void OssSnNodeGraphWidget::hideTab(int Index)
{
    const bool hadFocus = isAncestorOf(QApplication::focusWidget());
    removeTab(Index);
    // Qt hands it to whatever comes next, another palette for instance, and the graph's keys are dead.
    if (hadFocus && currentView())
        currentView()->setFocus();
}

void OssSnNodeGraphWidget::updateRootLevelText(OssShaderNetwork *Network)
{
    disconnect(m_rootNamed);
    if (widget(0) != m_rootView)
        return;
    const OssGeoEntity *entity = Network ? Network->geoEntity() : nullptr;
    const auto show = [this](const QString &name, const QString &prefix) {
        setTabText(0, OssMenu::asTyped(prefix) + QStringLiteral("Root"));
        setTabToolTip(0, name);
    };
    if (!entity) {
        show({}, {});
        return;
    }
    const auto showName = [this, show](const QString &name) {
        if (widget(0) == m_rootView)
            show(name, shortened(name) + QStringLiteral(" - "));
    };
    showName(entity->name());
    m_rootNamed = connect(entity, &OssGeoEntity::nameChanged, this, showName);
}

void OssSnNodeGraphWidget::setNavigationControlType(QString ControlType)
{
    m_navigationControlType = ControlType;
    OssDebug(Source, __LINE__, "[ -- ] Nodegraph navigation set to '%s'",
             ControlType.toLocal8Bit().constData());
    for (int i = 0; i < count(); ++i) {
        if (auto *page = qobject_cast<OssShaderNetworkView *>(widget(i)))
            page->setNavigationControlType(m_navigationControlType);
    }
}

void OssSnNodeGraphWidget::showGroupNodeSubgraph(const OssSnGroupNode *GroupNode)
{
    if (!GroupNode) {
        OssDebug(Source, __LINE__, "GroupNode is NULL");
        return;
    }
    auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(GroupNode->viewContext());
    if (!context) {
        OssDebug(Source, __LINE__, "Context is NULL");
        return;
    }
    context->showGroupNodeTab();
}

void OssSnNodeGraphWidget::onCurrentTabChanged(int Index)
{
    if (const auto *page = qobject_cast<OssShaderNetworkView *>(widget(Index)))
        OssShaderNetworkManager::instance()->setCurrentViewNetwork(page->network());
    setNavigationControlType(m_navigationControlType);
    setFocusProxy(currentWidget()); // not the tab bar: whoever gives the graph the focus means this
    takeFocus();
}

void OssSnNodeGraphWidget::takeFocus()
{
    const QWidget *focus = window()->focusWidget();
    const bool typing = focus && focus->testAttribute(Qt::WA_InputMethodEnabled);
    const bool asked = QApplication::activePopupWidget() || QApplication::activeModalWidget();
    if (currentWidget() && isVisible() && !typing && !asked)
        currentWidget()->setFocus(Qt::OtherFocusReason);
}

void OssSnNodeGraphWidget::showEvent(QShowEvent *event)
{
    QTabWidget::showEvent(event);
    // Once the docks around it, which give the focus to the last that was added, are shown.
    QTimer::singleShot(0, this, &OssSnNodeGraphWidget::takeFocus);
}

void OssSnNodeGraphWidget::mousePressEvent(QMouseEvent *event)
{
    // The position is the widget's own and not the tab bar's; beside the tabs none stays current.
    if (event->button() == Qt::LeftButton)
        setCurrentIndex(tabBar()->tabAt(event->pos()));
    QTabWidget::mousePressEvent(event);
}
