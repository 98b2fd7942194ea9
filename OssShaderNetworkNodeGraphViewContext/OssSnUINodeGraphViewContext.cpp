#include "OssSnUINodeGraphViewContext.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssColor.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgDotNode.h"
#include "OssNodeGraph/Items/OssNgUINode.h"
#include "OssShaderNetworkView.h"
#include "ZelGL/ZelTextureToken.h"

namespace {

constexpr const char *Source = "OssSnUINodeGraphViewContext";
const ZelTextureToken TextureToken;

std::shared_ptr<OssNgNode> makeGuiNode(const QString &guiNodeClass)
{
    if (guiNodeClass == QLatin1String("Backdrop"))
        return std::make_shared<OssNgBackdropNode>();
    if (guiNodeClass == QLatin1String("Dot"))
        return std::make_shared<OssNgDotNode>();
    return std::make_shared<OssNgUINode>();
}

} // namespace

OssSnUINodeGraphViewContext::OssSnUINodeGraphViewContext(QObject *node)
    : OssSnNodeGraphViewContext(node, false)
{
}

OssSnUINodeGraphViewContext::~OssSnUINodeGraphViewContext() = default;

void OssSnUINodeGraphViewContext::setGuiNodeClass(const QString &guiNodeClass)
{
    m_guiNodeClass = guiNodeClass;
    if (guiNodeClass.isEmpty() || hasGuiNode())
        return;
    adoptGuiNode(makeGuiNode(guiNodeClass));
    upgradeOldBackdrop();
}

void OssSnUINodeGraphViewContext::upgradeOldBackdrop()
{
    OssSnBaseNode *node = parentNode();
    if (!node || !node->pathKey().isEmpty() || m_guiNodeClass != QLatin1String("Backdrop"))
        return;
    const QString key = QStringLiteral("Misc/Backdrop");
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    node->setPathKey(key);
    node->setVersionUUID(networks->convertPathKeyToVersionUUID(key));
    networks->upgradeNode(node);
}

void OssSnUINodeGraphViewContext::initializeGui()
{
    if (!hasGuiNode())
        setGuiNodeClass(QStringLiteral("StickyNote"));
    OssSnNodeGraphViewContext::initializeGui();
    OssSnBaseNode *node = parentNode();
    if (!node)
        return;
    connectContainer(node);
    if (const auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiNode()))
        connect(backdrop, &OssNgBackdropNode::zOrderChanged, node, &OssSnBaseNode::zOrderChanged);
}

void OssSnUINodeGraphViewContext::connectContainer(const OssSnBaseNode *node)
{
    using Node = OssSnBaseNode;
    using Context = OssSnUINodeGraphViewContext;
    connect(node, &Node::containerChildrenRefreshed, this, &Context::onContainerChildrenRefreshed);
    connect(node, &Node::containerStretchedBy, this, &Context::onContainerStretchedBy);
    connect(node, &Node::containerPeersStretched, this, &Context::onContainerPeersStretched);
    connect(node, &Node::containerRespacedWrt, this, &Context::onContainerRespacedWrt);
    connect(node, &Node::containerMovedDown, this, &Context::onContainerMovedDown);
    connect(node, &Node::containerMovedToFreshLocation, this,
            &Context::onContainerMovedToFreshLocation);
    connect(node, &Node::zOrderChanged, this, &Context::onZOrderChanged);
}

void OssSnUINodeGraphViewContext::setText(QString text)
{
    OssSnNodeGraphViewContext::setText(text);
}

void OssSnUINodeGraphViewContext::selectGuiNode(bool selected)
{
    applySelection(selected);
}

void OssSnUINodeGraphViewContext::applySelection(bool selected)
{
    OssSnNodeGraphViewContext::applySelection(selected);
}

// --- user attributes

void OssSnUINodeGraphViewContext::onUserAttributeChanged(OssCustomAttribute Attribute,
                                                         OssSnBaseNode *)
{
    OssNgNode *item = guiNode();
    if (!item || !Attribute.isValid())
        return;
    const QString name = Attribute.name();
    if (name == QLatin1String("BackgroundColor")) {
        showBackground(Attribute);
    } else if (name == QLatin1String("TitleText")) {
        showText(Attribute, "setTitleText");
    } else if (name == QLatin1String("Label")) {
        showText(Attribute, "setLabel");
    } else if (name == QLatin1String("ZOrder")) {
        if (auto *backdrop = qobject_cast<OssNgBackdropNode *>(item))
            backdrop->setZOrder(Attribute.value().toInt());
    }
}

void OssSnUINodeGraphViewContext::showBackground(const OssCustomAttribute &attribute)
{
    OssNgNode *item = guiNode();
    if (item->metaObject()->indexOfMethod("setNodeBackgroundColour(QColor)") < 0) {
        const OssSnBaseNode *node = parentNode();
        OssDebug(Source, __LINE__, "[ !! ] Invalid attribute 'BackgroundColor' on node '%s'",
                 node ? qPrintable(node->path()) : "");
        return;
    }
    const QVariant held = OssAttributeKind::like(QVariant::fromValue(OssColor()),
                                                 attribute.value());
    if (!held.isValid())
        return;
    const auto value = held.value<OssColor>();
    QColor color;
    color.setRgbF(value.red(), value.green(), value.blue(), value.alpha());
    QMetaObject::invokeMethod(item, "setNodeBackgroundColour", Qt::DirectConnection,
                              Q_ARG(QColor, color));
}

void OssSnUINodeGraphViewContext::showText(const OssCustomAttribute &attribute, const char *method)
{
    OssNgNode *item = guiNode();
    const QByteArray signature = QByteArray(method) + "(QString)";
    if (item->metaObject()->indexOfMethod(signature.constData()) < 0)
        return;
    QMetaObject::invokeMethod(item, method, Qt::DirectConnection,
                              Q_ARG(QString, attribute.value().toString()));
}

void OssSnUINodeGraphViewContext::onZOrderChanged(int ZOrder)
{
    OssSnBaseNode *node = parentNode();
    if (!node)
        return;
    OssCustomAttribute attribute = node->userAttribute(QStringLiteral("ZOrder"));
    if (!attribute.isValid() || attribute.value().toInt() == ZOrder)
        return;
    attribute.setValue(ZOrder);
    node->setUserAttribute(attribute, true);
}

QList<OssSnBaseNode *> OssSnUINodeGraphViewContext::childrenNodes() const
{
    QList<OssSnBaseNode *> nodes;
    const auto *backdrop = qobject_cast<OssNgBackdropNode *>(guiNode());
    const QList<OssNgNode *> inside = backdrop ? backdrop->nodesInside() : QList<OssNgNode *>();
    for (const OssNgNode *item : inside) {
        if (auto *node = qobject_cast<OssSnBaseNode *>(item->businessNode()))
            nodes.append(node);
    }
    return nodes;
}

// --- container

void OssSnUINodeGraphViewContext::onContainerChildrenRefreshed(QList<OssSnBaseNode *> MemberNodes,
                                                               bool containerChildrenRefreshed)
{
    OssShaderNetworkView *view = viewOrComplain();
    OssSnBaseNode *node = parentNode();
    if (!view || !node)
        return;
    const OssUndoManager::AutoMacro macro(tr("Refresh Container"));
    // A member that was dragged off is no longer among those that lie on it.
    const QList<OssSnBaseNode *> all = node->network() ? node->network()->nodes()
                                                       : QList<OssSnBaseNode *>();
    for (OssSnBaseNode *member : all) {
        if (member->container() == node && !MemberNodes.contains(member))
            member->setContainer(nullptr);
    }
    for (OssSnBaseNode *member : qAsConst(MemberNodes)) {
        if (member)
            member->setContainer(node);
    }
    view->holdInContainer(node, MemberNodes, containerChildrenRefreshed);
}

void OssSnUINodeGraphViewContext::onContainerStretchedBy(OssSnBaseNode *ReferenceNode)
{
    if (OssShaderNetworkView *view = viewOrComplain())
        view->stretchContainerBy(parentNode(), ReferenceNode);
}

void OssSnUINodeGraphViewContext::onContainerPeersStretched(
    QList<OssSnBaseNode *> ContainerNodeToStretchList)
{
    OssShaderNetworkView *view = viewOrComplain();
    if (!view)
        return;
    if (!ContainerNodeToStretchList.contains(parentNode()))
        ContainerNodeToStretchList.prepend(parentNode());
    view->stretchPeers(ContainerNodeToStretchList);
}

void OssSnUINodeGraphViewContext::onContainerRespacedWrt(OssSnBaseNode *ReferenceNode)
{
    OssShaderNetworkView *view = viewOrComplain();
    OssSnBaseNode *node = parentNode();
    if (!view || !node || !ReferenceNode)
        return;
    OssDebug(Source, __LINE__, "[ -- ] About to respace container '%s' wrt '%s'",
             qPrintable(node->name()), qPrintable(ReferenceNode->name()));
    view->respaceContainer(node, ReferenceNode);
}

void OssSnUINodeGraphViewContext::onContainerMovedDown(OssSnBaseNode *ReferenceNode)
{
    OssShaderNetworkView *view = viewOrComplain();
    OssSnBaseNode *node = parentNode();
    if (!view || !node || !ReferenceNode)
        return;
    OssDebug(Source, __LINE__, "[ -- ] About to move container '%s' down wrt to %s'",
             qPrintable(node->name()), qPrintable(ReferenceNode->name()));
    view->moveContainerDown(node, ReferenceNode);
}

void OssSnUINodeGraphViewContext::onContainerMovedToFreshLocation(bool PreserveY)
{
    if (OssShaderNetworkView *view = viewOrComplain())
        view->moveContainerToFreshLocation(parentNode(), PreserveY);
}
