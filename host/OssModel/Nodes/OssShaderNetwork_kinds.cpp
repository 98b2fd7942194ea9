// What a network makes of particular kinds of nodes.
#include "OssModel/Graph/OssShaderNetwork.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Nodes/OssSnMultiChannelMergeNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssShadingContext.h"
#include "OssModel/Types/OssLayerShaderModel.h"

OssSnBaseNode *OssShaderNetwork::createPaintableNode(const QPointF &scenePos,
                                                     const QString &pathKey)
{
    // The kind that users create is filed elsewhere than what stands in the graph.
    const QString key = pathKey.isEmpty() ? QStringLiteral("Channel Input/Paint") : pathKey;
    const OssUndoManager::AutoMacro macro(tr("Add Paint Node"));
    auto *node = qobject_cast<OssSnImageSetNodeBase *>(createNode(key));
    if (!node)
        return nullptr;
    if (OssSnBaseContext *context = node->viewContext())
        context->setNodePosition(scenePos);
    node->needImageSet();
    return node;
}

OssImageSet *OssShaderNetwork::createImageSet(const QString &name, const OssImageSet *like,
                                              int resolution)
{
    OssShadingContext *shading = shadingContext();
    if (!shading)
        return nullptr;
    OssImageSet *set = imagesLike(shading->freeImageSetName(name), like, resolution).release();
    shading->addImageSet(set); // takes it
    return set;
}

std::unique_ptr<OssImageSet> OssShaderNetwork::imagesLike(const QString &name,
                                                          const OssImageSet *like, int resolution)
{
    auto set = std::make_unique<OssImageSet>(name);
    if (like)
        set->copySettings(*like);
    else
        set->setDepth(OssImageSet::HalfDepth);
    set->setResolution(resolution);
    return set;
}

OssSnMultiChannelMergeNode *OssShaderNetwork::createMultiChannelMergeNode(
    const OssLayerShaderModel *model)
{
    if (!model)
        return nullptr;
    return qobject_cast<OssSnMultiChannelMergeNode *>(
        createNode(QStringLiteral("_System/MultiChannelMerge"), {}, model->id()));
}
