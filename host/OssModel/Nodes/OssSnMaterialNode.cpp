#include "OssModel/Nodes/OssSnMaterialNode.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Nodes/OssNodeArchive.h"
#include "OssModel/Types/OssLayerShaderModel.h"
#include "OssModel/Types/OssSnTags.h"

namespace {

const QString MaterialOutput = QStringLiteral("Material");

} // namespace

QStringList OssSnMaterialNode::inputsOf(const QString &) const
{
    return {};
}

void OssSnMaterialNode::onMadeFresh()
{
    OssSnMultiChannelGroupNode::onMadeFresh();
    if (hasTag(OssSnTags::shader()))
        connectPreviewShaderNetwork();
}

void OssSnMaterialNode::configureStream(const OssLayerShaderModelInput &stream)
{
    const QString key = stream.kind() == OssSnDataKind::Scalar ? QStringLiteral("Procedural/Scalar")
                                                               : QStringLiteral("Procedural/Color");
    wireOutput(createInside(key, stream.streamName() + tr(" Value"), rowPlace(stream)), stream);
}

void OssSnMaterialNode::connectPreviewShaderNetwork()
{
    if (!shaderModel() || hasOutputPoint(MaterialOutput))
        return;
    const OssUndoManager::AutoMacro macro(tr("Connect Preview of %1").arg(name()));
    OssSnBaseNode *shader = createInside(QStringLiteral("Shaders/") + shaderModelId(),
                                         tr("Preview"), {900.0, 0.0});
    if (!shader)
        return;
    for (const OssLayerShaderModelInput &stream : shaderModel()->inputs()) {
        const OssSnBaseNode *port = outputNodeInside(stream.streamName());
        OssSnBaseNode *source = port ? port->inputNode(port->inputNames().first()) : nullptr;
        wire(source, shader, stream.streamName());
    }
    OssSnBaseNode *out = createOutput(MaterialOutput, OssSnDataKind::Material);
    if (out)
        wire(shader, out, out->inputNames().first());
}

OssResult OssSnMaterialNode::importFromFile(OssShaderNetwork *network, const QString &path,
                                            QList<OssSnBaseNode *> *inserted)
{
    return OssNodeArchive::read(network, OssNodeArchive::Kind::Material, path, inserted);
}
