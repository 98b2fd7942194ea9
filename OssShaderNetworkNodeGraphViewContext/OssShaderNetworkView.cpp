#include "OssShaderNetworkView.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "ZelGL/ZelTextureToken.h"

#include <QFocusEvent>
#include <QTimer>

namespace {

const ZelTextureToken TextureToken;
constexpr int BindingDelay = 500; // ms: the manager that makes the view may not be done itself

} // namespace

OssShaderNetworkView::OssShaderNetworkView(QWidget *parent)
    : PlacingView(parent)
{
    setAcceptDrops(true);
    connect(this, &OssNgView::shakeToExtractTriggered, this,
            &OssShaderNetworkView::onShakeToExtractTriggered);
    connect(this, &OssNgView::cursorTrackingModeChanged, this,
            &OssShaderNetworkView::showSeverMode);
    connect(OssStatusManager::instance(), &OssStatusManager::stopAsked, this,
            &OssNgView::endSeverMode);
    // A press that took no node in hand moves none: what others move until its release is theirs.
    connect(OssUndoManager::instance(), &OssUndoManager::aboutToEdit, this, [this] {
        if (!hasGesture())
            m_nodeStartPositions.clear();
    });
    // Once the release is over: what opens then has a loop of its own.
    connect(this, &OssNgView::wireDroppedOnCanvas, this,
            [this](OssNgNode *node, const QString &port, bool fromOutput, const QPointF &place) {
                QTimer::singleShot(0, this,
                                   [this, node = QPointer<OssNgNode>(node), port, fromOutput,
                                    place] { createAtWireEnd(node, port, fromOutput, place); });
            });
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosed, this,
            &OssShaderNetworkView::onProjectClosed);
    QTimer::singleShot(BindingDelay, this,
                       &OssShaderNetworkView::deferredConnectToViewContextManager);
}

OssShaderNetworkView::~OssShaderNetworkView() = default;

OssShaderNetwork *OssShaderNetworkView::network() const
{
    return m_network;
}

void OssShaderNetworkView::setNetwork(OssShaderNetwork *network)
{
    if (m_network)
        disconnect(m_network, &OssShaderNetwork::allowViewUpdateChanged, this,
                   &OssShaderNetworkView::allowViewUpdateChanged);
    m_network = network;
    if (!m_network)
        return;
    setUpdatesEnabled(m_network->allowViewUpdate());
    connect(m_network, &OssShaderNetwork::allowViewUpdateChanged, this,
            &OssShaderNetworkView::allowViewUpdateChanged);
}

bool OssShaderNetworkView::isAutoInsertOn() const
{
    return OssSnNodeGraphViewContextManager::instance()->isAutoInsertOn();
}

void OssShaderNetworkView::tellUser(const QString &text)
{
    OssStatusManager::instance()->showMessage(text);
}

// --- host and preferences

void OssShaderNetworkView::deferredConnectToViewContextManager()
{
    using Manager = OssSnNodeGraphViewContextManager;
    const Manager *manager = Manager::instance();
    connect(manager, &Manager::zoomToChanged, this, &OssShaderNetworkView::onZoomToChanged);
    onZoomToChanged();
    connect(manager, &Manager::shakeToExtractEnabledChanged, this,
            &OssShaderNetworkView::onShakeToExtractEnabledChanged);
    connect(manager, &Manager::shakeToExtractShakesChanged, this,
            &OssShaderNetworkView::onShakeToExtractShakesChanged);
    connect(manager, &Manager::shakeToExtractTimeChanged, this,
            &OssShaderNetworkView::onShakeToExtractTimeChanged);
    onShakeToExtractEnabledChanged(manager->shakeToExtractEnabled());
    onShakeToExtractShakesChanged(manager->shakeToExtractShakes());
    onShakeToExtractTimeChanged(manager->shakeToExtractTime());
}

void OssShaderNetworkView::onZoomToChanged()
{
    switch (OssSnNodeGraphViewContextManager::instance()->zoomToAsInt()) {
    case OssSnNodeGraphViewContextManager::Center:
        setTransformationAnchor(QGraphicsView::AnchorViewCenter);
        break;
    case OssSnNodeGraphViewContextManager::Cursor:
        setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
        break;
    default:
        break;
    }
}

void OssShaderNetworkView::allowViewUpdateChanged(bool AllowViewUpdate)
{
    setUpdatesEnabled(AllowViewUpdate);
}

void OssShaderNetworkView::onProjectClosed()
{
    setCursorTrackingMode(NormalTracking);
}

void OssShaderNetworkView::setNavigationControlType(QString ControlType)
{
    m_navigationControlType = ControlType;
}

void OssShaderNetworkView::onShakeToExtractEnabledChanged(bool Enabled)
{
    if (m_shakeToExtractEnabled == Enabled)
        return;
    m_shakeToExtractEnabled = Enabled;
    if (!Enabled && cursorTrackingMode() == ShakeTracking)
        setCursorTrackingMode(NormalTracking);
}

void OssShaderNetworkView::onShakeToExtractShakesChanged(int Shakes)
{
    m_shakeToExtractShakes = Shakes;
}

void OssShaderNetworkView::onShakeToExtractTimeChanged(int Time)
{
    m_shakeToExtractTime = Time;
}

void OssShaderNetworkView::onShakeToExtractTriggered()
{
    if (!m_network)
        return;
    const OssUndoManager::AutoMacro macro(tr("Extract Nodes"), m_dragKey,
                                          OssUndoManager::AutoMacro::Joining::Always);
    m_network->extractNodes(m_network->selectedNodes(), true);
}

void OssShaderNetworkView::focusOutEvent(QFocusEvent *event)
{
    deactivateDotableMode();
    event->ignore();
}
