#include "OssModel/Nodes/OssLayerShaderModelManager.h"

#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"
#include "OssModel/Types/OssSnTags.h"

void OssLayerShaderModelManager::readModels()
{
    const OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    const QStringList keys = networks->nodePathKeys();
    for (const QString &key : keys) {
        const auto type = networks->nodeType(key);
        // A shader by itself; groups that make one are no models.
        if (!type || !type->tags.contains(OssSnTags::shader())
            || type->className != QLatin1String("OssSnBaseNode")
            || m_models.count(type->baseName()) > 0)
            continue;
        QVector<OssLayerShaderModelInput> inputs;
        for (const OssSnNodeType::Port &port : type->inputs)
            inputs.append(OssLayerShaderModelInput(port.name, port.kind));
        m_models.emplace(type->baseName(), OssLayerShaderModel(type->baseName(), inputs));
    }
}

const OssLayerShaderModel *OssLayerShaderModelManager::model(const QString &id)
{
    auto found = m_models.find(id);
    if (found == m_models.end()) {
        readModels(); // types may have come since
        found = m_models.find(id);
    }
    return found == m_models.end() ? nullptr : &found->second;
}

QStringList OssLayerShaderModelManager::modelIds()
{
    readModels();
    QStringList ids;
    for (const auto &model : m_models)
        ids.append(model.first);
    return ids;
}

QPair<OssSnMultiChannelGroupNode *, OssSnMultiChannelGroupNode *>
OssLayerShaderModelManager::matchingShaderModelNodePair(OssSnBaseNode *first, OssSnBaseNode *second)
{
    auto *a = qobject_cast<OssSnMultiChannelGroupNode *>(first);
    auto *b = qobject_cast<OssSnMultiChannelGroupNode *>(second);
    if (!a || !b || !a->shaderModel() || a->shaderModel() != b->shaderModel())
        return {nullptr, nullptr};
    return {a, b};
}
