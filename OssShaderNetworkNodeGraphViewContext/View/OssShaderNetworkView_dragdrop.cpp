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
#include "OssModel/Layers/OssMaterialPaintManager.h"
#include "OssModel/Types/OssNodeSuffixes.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QDropEvent>
#include <QGuiApplication>
#include <QMimeData>

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

int thingsIn(const QMimeData *mime)
{
    if (mime->hasFormat(OssImage::MimeType))
        return OssImageUniqueId::imageIdListFromString(
                   QString::fromUtf8(mime->data(OssImage::MimeType)))
            .size();
    return std::max(1, OssImageManager::picturesOf(mime->urls()).size());
}

} // namespace

void OssShaderNetworkView::dragEnterEvent(QDragEnterEvent *event)
{
    if (!scene()) {
        QGraphicsView::dragEnterEvent(event);
        return;
    }
    const QMimeData *mime = event->mimeData();
    const OssMaterialPaintManager *archives = OssMaterialPaintManager::instance();
    if (OssDragAndDropManager::instance()->acceptDragEnter(mime, NodeGraphTarget)
        || archives->draggableMaterialType(mime) || archives->draggableCustomProceduralType(mime)) {
        event->acceptProposedAction();
        return;
    }
    if (!OssImageManager::instance()->processDragEvent(event, NodeGraphTarget))
        QGraphicsView::dragEnterEvent(event);
}

void OssShaderNetworkView::dragMoveEvent(QDragMoveEvent *event)
{
    if (!scene()) {
        QGraphicsView::dragMoveEvent(event);
        return;
    }
    showDropGhost(event->pos(), thingsIn(event->mimeData()));
    event->acceptProposedAction();
}

void OssShaderNetworkView::dragLeaveEvent(QDragLeaveEvent *event)
{
    hideDropGhost();
    QGraphicsView::dragLeaveEvent(event);
}

void OssShaderNetworkView::dropEvent(QDropEvent *event)
{
    hideDropGhost();
    if (!scene()) {
        QGraphicsView::dropEvent(event);
        return;
    }
    setFocus(Qt::MouseFocusReason); // the next keys are for what was dropped
    const QMimeData *mime = event->mimeData();
    OssDragAndDropManager *objects = OssDragAndDropManager::instance();
    if (objects->acceptDragEnter(mime, NodeGraphTarget)) {
        const QVariantMap parameters{
            {QStringLiteral("NodeGraph"), QVariant::fromValue<QObject *>(m_network)},
            {QStringLiteral("Position"), mapToScene(event->pos())}};
        if (objects->drop(mime, NodeGraphTarget, parameters)) {
            event->acceptProposedAction();
            QGraphicsView::dropEvent(event);
            return;
        }
    }
    if (!OssImageManager::bringsImages(mime)) {
        dropArchives(event);
        return;
    }
    dropImages(event);
}

void OssShaderNetworkView::dropArchives(QDropEvent *event)
{
    const QMimeData *mime = event->mimeData();
    const OssMaterialPaintManager *archives = OssMaterialPaintManager::instance();
    const QStringList paths = archives->pathListFromMimeData(mime);
    const auto ofSuffix = [&paths](const QString &suffix) {
        QStringList chosen;
        for (const QString &path : paths) {
            if (path.endsWith(suffix, Qt::CaseInsensitive))
                chosen.append(path);
        }
        return chosen;
    };
    if (archives->draggableMaterialType(mime))
        importMaterial(ofSuffix(OssNodeSuffixes::Material), event->pos());
    if (archives->draggableCustomProceduralType(mime))
        importCustomProcedural(ofSuffix(OssNodeSuffixes::CustomProcedural), event->pos());
    if (paths.isEmpty())
        QGraphicsView::dropEvent(event);
    else
        event->acceptProposedAction();
}

void OssShaderNetworkView::dropImages(QDropEvent *event)
{
    // Files that the project does not have yet are opened in the same step.
    const OssUndoManager::Gathering gathering(tr("Drop Images"));
    const QList<OssImage *> images = OssImageManager::instance()->dropped(event);
    if (images.isEmpty())
        return;
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
    for (OssImage *image : images) {
        OssSnBaseNode *node = makeDropNode(image, nodeType,
                                           mapToScene(viewport()->mapFromGlobal(QCursor::pos())));
        if (node)
            node->setSelected(true);
    }
    event->acceptProposedAction();
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
        placeNode(node);
    }
    Q_EMIT nodeAdded(node);
    return node;
}
