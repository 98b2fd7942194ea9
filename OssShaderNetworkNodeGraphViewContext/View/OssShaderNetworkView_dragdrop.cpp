#include "OssShaderNetworkView.h"

#include "Manager/ImageNodeTypes.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssSnNodeGraphViewContextManager.h"
#include "View/Backdrops.h"

#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>
#include <QScopedValueRollback>

namespace {

constexpr const char *Source = "OssShaderNetworkView";
constexpr int NodeGraphTarget = OssImageManager::NodeGraphTarget;

QStringList imageAttributes(const QString &nodeType)
{
    if (nodeType == ImageNodeTypes::Tiled)
        return {QStringLiteral("TileImage")};
    if (nodeType == ImageNodeTypes::TriPlanar)
        return {QStringLiteral("frontImage"), QStringLiteral("topImage"),
                QStringLiteral("rightImage")};
    return {};
}

} // namespace

void OssShaderNetworkView::dragEnterEvent(QDragEnterEvent *event)
{
    if (!scene()) {
        QGraphicsView::dragEnterEvent(event);
        return;
    }
    m_offer = m_network ? DropContents::of(event->mimeData()) : DropContents();
    tellUser(m_offer.inWords());
    if (m_offer.count() == 0) {
        // The scene would take anything, for the sake of items that might; none does.
        QGraphicsView::dragEnterEvent(event);
        event->ignore();
        return;
    }
    interruptGesture();
    if (!OssImageManager::instance()->processDragEvent(event, NodeGraphTarget)
        || !m_offer.nodesText.isEmpty())
        m_offer.accept(event);
}

void OssShaderNetworkView::dragMoveEvent(QDragMoveEvent *event)
{
    if (!scene()) {
        QGraphicsView::dragMoveEvent(event);
        return;
    }
    if (m_offer.count() > 0) {
        tellUser(m_offer.inWords()); // for as long as it is held there
        m_dropWire.show(this, event->mimeData(), event->pos());
        // A wire that lights says where.
        showDropGhost(event->pos(), m_dropWire.wire() ? 0 : m_offer.count());
    }
    m_offer.accept(event);
}

void OssShaderNetworkView::dragLeaveEvent(QDragLeaveEvent *event)
{
    endOffer();
    QGraphicsView::dragLeaveEvent(event);
}

void OssShaderNetworkView::endOffer()
{
    hideDropGhost();
    m_dropWire.hide();
    if (m_offer.count() > 0)
        tellUser(QString());
    m_offer = {};
}

void OssShaderNetworkView::dropEvent(QDropEvent *event)
{
    const DropWire lit = m_dropWire;
    endOffer();
    if (!scene()) {
        QGraphicsView::dropEvent(event);
        return;
    }
    setFocus(Qt::MouseFocusReason); // the next keys are for what was dropped
    if (dropObjects(event, lit)) {
        event->acceptProposedAction();
        QGraphicsView::dropEvent(event);
        return;
    }
    const DropContents contents = DropContents::of(event->mimeData());
    if (contents.count() == 0) {
        QGraphicsView::dropEvent(event);
        event->ignore();
        return;
    }
    contents.accept(event);
    NodeImport import{mapToScene(event->pos()), {}, {}, {}};
    {
        const OssUndoManager::Gathering gathering(
            contents.count() == contents.images ? tr("Drop Images") : tr("Drop"));
        importFiles(contents.materials, NodeFileKind::material(), &import);
        importFiles(contents.customProcedurals, NodeFileKind::customProcedural(), &import);
        importFiles(contents.nodeFiles, NodeFileKind::nodes(), &import);
        dropText(contents.nodesText, &import);
        if (contents.images > 0)
            import.nodes.append(dropImages(event, *import.place)); // beside what came from files
        if (m_network && !import.nodes.isEmpty())
            m_network->selectOnly(import.nodes);
    }
    import.tellErrors();
}

bool OssShaderNetworkView::dropObjects(const QDropEvent *event, const DropWire &lit)
{
    const QMimeData *mime = event->mimeData();
    OssDragAndDropManager *objects = OssDragAndDropManager::instance();
    if (!objects->acceptDragEnter(mime, NodeGraphTarget))
        return false;
    const QScopedValueRollback<std::optional<QPoint>> place(m_menuPoint, event->pos());
    const QVariantMap parameters{
        {QStringLiteral("NodeGraph"), QVariant::fromValue<QObject *>(m_network)},
        {QStringLiteral("Position"), mapToScene(event->pos())}};
    if (!lit.wire())
        return objects->drop(mime, NodeGraphTarget, parameters);
    const OssUndoManager::Gathering gathering(tr("Drop"));
    scene()->clearSelection(); // the wire says what it is connected to
    if (!objects->drop(mime, NodeGraphTarget, parameters))
        return false;
    const QList<OssSnBaseNode *> made = selectedNodes();
    if (made.size() == 1) {
        lit.takeIn(OssSnNodeGraphViewContextManager::guiNodeOf(made.first()),
                   mapToScene(event->pos()));
        Backdrops::settleNew(made.first());
    }
    return true;
}

QList<OssSnBaseNode *> OssShaderNetworkView::dropImages(const QDropEvent *event,
                                                        const QPointF &place)
{
    // Files that the project does not have yet are opened in the same step.
    const QList<OssImage *> images = OssImageManager::instance()->dropped(event);
    if (images.isEmpty())
        return {};
    QString nodeType = ImageNodeTypes::Tiled;
    if (QGuiApplication::keyboardModifiers() & Qt::ShiftModifier) {
        OssDebug(Source, __LINE__, "[ -- ] Modifer Shift key pressed -> will create TriPlanar");
        nodeType = ImageNodeTypes::TriPlanar;
    }
    const OssUndoManager::AutoMacro macro(
        tr("Drag and drop : creating %1 %2 of type '%3'")
            .arg(images.size())
            .arg(images.size() == 1 ? tr("node") : tr("nodes"), nodeType));
    if (scene())
        scene()->clearSelection();
    QList<OssSnBaseNode *> made;
    for (OssImage *image : images) {
        if (OssSnBaseNode *node = makeDropNode(image, nodeType, place))
            made.append(node);
    }
    return made;
}

void OssShaderNetworkView::createNodeFromDropImage(OssImage *Image, QString NodeType)
{
    createNodeFromDropImage(Image, NodeType, QPointF());
}

void OssShaderNetworkView::createNodeFromDropImage(OssImage *Image, QString NodeType,
                                                   QPointF NodeScenePos)
{
    makeDropNode(Image, NodeType, NodeScenePos);
}

OssSnBaseNode *OssShaderNetworkView::makeDropNode(const OssImage *image, const QString &nodeType,
                                                  const QPointF &scenePos)
{
    const OssUndoManager::AutoMacro macro(tr("Creating %1").arg(nodeType));
    if (!m_network)
        return nullptr;
    OssSnBaseNode *node = m_network->createNodesFromNodePathKey(nodeType, true).value(0);
    if (!node)
        return nullptr;
    const QStringList attributes = image ? imageAttributes(nodeType) : QStringList();
    for (const QString &attribute : attributes)
        node->setAttribute(attribute, OssImageList(image->uniqueId()).toVariant(), true);
    if (OssNgNode *item = OssSnNodeGraphViewContextManager::guiNodeOf(node)) {
        item->setPosition(scenePos.isNull() ? mapToScene(viewport()->rect().center()) : scenePos);
        placeNodeInSight(node);
        Backdrops::settleNew(node);
    }
    Q_EMIT nodeAdded(node);
    return node;
}
