#include "OssModel/Export/OssExportMaterials.h"

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"
#include "OssModel/Nodes/OssSnProducer.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Types/OssLayerShaderModel.h"
#include "OssModel/Types/OssMaterialTypes.h"
#include "OssModel/Types/OssSnTags.h"

#include <QSet>

#include <algorithm>
#include <iterator>

namespace {

QVector<OssExportMaterial::Channel> streamsOf(const OssSnMaterialNode *material)
{
    QVector<OssExportMaterial::Channel> channels;
    const OssLayerShaderModel *model = material->shaderModel();
    if (!model)
        return channels;
    for (const OssLayerShaderModelInput &stream : model->inputs())
        channels.append({stream.streamName(), stream.kind(), true});
    return channels;
}

QVector<OssExportMaterial::Channel> inputsOf(const OssSnBaseNode *shader)
{
    QVector<OssExportMaterial::Channel> channels;
    for (const OssSnBaseNode::InputPort &port : shader->inputPorts())
        channels.append({port.name, port.kind, port.source != nullptr});
    return channels;
}

void addOf(const OssShaderNetwork *network, QVector<OssExportMaterial> *materials)
{
    const QList<OssSnBaseNode *> nodes = network->nodes();
    for (const OssSnBaseNode *node : nodes) {
        const auto *group = qobject_cast<const OssSnGroupNode *>(node);
        if (!node->enabledAsBool() || node->isBypassed())
            continue;
        const OssExportMaterial found = OssExportMaterial::of(node);
        if (found.node) {
            if (!found.channels.isEmpty())
                materials->append(found);
        } else if (group && !qobject_cast<const OssSnMaterialNode *>(node)) {
            const int before = materials->size();
            addOf(group->groupNetwork(), materials);
            if (materials->size() == before + 1 && OssMaterialTypes::isMaterial(group->pathKey()))
                materials->last().within = group;
        }
    }
}

/// Materials of which others are made.
QSet<const OssSnBaseNode *> partsOf(const OssShaderNetwork *network)
{
    QSet<const OssSnBaseNode *> parts;
    const QList<OssSnBaseNode *> nodes = network->getAllNodes();
    for (const OssSnBaseNode *node : nodes) {
        if (node->hasTag(OssSnTags::splitMaterial()) && !node->inputNames().isEmpty())
            parts.insert(OssSnProducer::ofInput(node, node->inputNames().first()).node);
    }
    return parts;
}

} // namespace

QString OssExportMaterial::name() const
{
    const OssSnBaseNode *known = within ? within : node;
    return known ? known->name() : QString();
}

QString OssExportMaterial::object() const
{
    return entity ? entity->name() : QString();
}

const OssExportMaterial::Channel *OssExportMaterial::channel(const QString &name) const
{
    const auto found = std::find_if(channels.cbegin(), channels.cend(),
                                    [&name](const Channel &one) { return one.name == name; });
    return found == channels.cend() ? nullptr : &*found;
}

OssExportMaterial OssExportMaterial::of(const OssSnBaseNode *node)
{
    OssExportMaterial found;
    const auto *material = qobject_cast<const OssSnMaterialNode *>(node);
    const bool isGroup = qobject_cast<const OssSnGroupNode *>(node);
    if (!node || !node->hasTag(OssSnTags::shader()) || (isGroup && !material))
        return found;
    found.node = node;
    found.entity = node->network() ? node->network()->geoEntity() : nullptr;
    found.channels = material ? streamsOf(material) : inputsOf(node);
    return found;
}

OssSnProducer OssExportMaterial::behind(const OssSnProducer &shown)
{
    if (!shown.node || of(shown.node).node)
        return shown;
    const OssSnProducer made = OssSnProducer::of(shown.node, shown.outputPoint);
    return of(made.node).node ? made : shown;
}

QMap<int, std::vector<int>> OssExportMaterial::slotsOf(const OssEvMesh &mesh,
                                                       const QVector<OssExportMaterial> &materials)
{
    QMap<int, std::vector<int>> slots;
    const std::size_t count = std::max<std::size_t>(mesh.materialNames.size(), 1);
    for (std::size_t slot = 0; slot < count && !materials.isEmpty(); ++slot) {
        const QString name = slot < mesh.materialNames.size()
                                 ? QString::fromStdString(mesh.materialNames[slot])
                                 : QString();
        const auto isIt = [&name](const OssExportMaterial &one) {
            return one.name().compare(name, Qt::CaseInsensitive) == 0;
        };
        const auto found = std::find_if(materials.cbegin(), materials.cend(), isIt);
        const auto owner = found != materials.cend() ? found : materials.cbegin();
        slots[int(owner - materials.cbegin())].push_back(int(slot));
    }
    return slots;
}

QVector<OssExportMaterial> OssExportMaterial::of(const OssProject *project)
{
    QVector<OssExportMaterial> materials;
    const QList<OssShadingGroup *> groups = project->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        QVector<OssExportMaterial> found;
        addOf(group->network(), &found);
        const QSet<const OssSnBaseNode *> parts = partsOf(group->network());
        std::copy_if(found.cbegin(), found.cend(), std::back_inserter(materials),
                     [&parts](const OssExportMaterial &one) { return !parts.contains(one.node); });
    }
    return materials;
}
