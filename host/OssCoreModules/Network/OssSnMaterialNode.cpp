#include "OssCoreModules/Network/OssSnMaterialNode.h"

#include "OssCore/OssAtomicFile.h"
#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Evaluation/OssMaterialThumbnail.h"
#include "OssCoreModules/Layers/OssLayerShaderModel.h"
#include "OssCoreModules/Layers/OssLayerStreamUtils.h"
#include "OssCoreModules/Network/OssNodeArchive.h"

#include <QBuffer>
#include <QImage>

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
    if (hasTag(QStringLiteral("_shader")))
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

OssResult OssSnMaterialNode::generateMaterialThumbnail(const QString &path, int size) const
{
    QImage picture;
    const OssResult made = OssMaterialThumbnail::make(this, size, &picture);
    if (!made)
        return made;
    QBuffer file;
    file.open(QIODevice::WriteOnly);
    if (!picture.save(&file, "PNG"))
        return OssResult::failure(tr("%1: the picture could not be written").arg(path));
    return OssAtomicFile::write(path, file.data());
}

OssResult OssSnMaterialNode::importFromFile(OssShaderNetwork *network, const QString &path,
                                            QList<OssSnBaseNode *> *inserted)
{
    return OssNodeArchive::read(network, OssNodeArchive::Kind::Material, path, inserted);
}
