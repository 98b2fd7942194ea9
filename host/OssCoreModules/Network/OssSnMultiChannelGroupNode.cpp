#include "OssCoreModules/Network/OssSnMultiChannelGroupNode.h"

#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Layers/OssLayerShaderModelManager.h"
#include "OssCoreModules/Layers/OssLayerStreamUtils.h"

OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode(std::shared_ptr<const OssSnNodeType> type)
    : OssSnGroupNode(std::move(type))
{
}

OssSnMultiChannelGroupNode::~OssSnMultiChannelGroupNode()
{
    deleteContexts();
}

void OssSnMultiChannelGroupNode::setValid(bool valid)
{
    if (m_valid == valid)
        return;
    m_valid = valid;
    Q_EMIT validityChanged();
}

const OssLayerShaderModel *OssSnMultiChannelGroupNode::shaderModel() const
{
    return hasShaderModel() ? OssLayerShaderModelManager::instance()->model(m_shaderModelId)
                            : nullptr;
}

void OssSnMultiChannelGroupNode::setShaderModelId(const QString &id)
{
    if (m_shaderModelId == id)
        return;
    const auto apply = [this](const QString &value) {
        m_shaderModelId = value;
        Q_EMIT shaderModelChanged();
    };
    const QString before = m_shaderModelId;
    apply(id);
    OssUndoManager::instance()->record(
        tr("Set Shader Model"), [apply, before] { apply(before); }, [apply, id] { apply(id); });
}

bool OssSnMultiChannelGroupNode::batchConnectInputNode(const QString &role,
                                                       OssSnMultiChannelGroupNode *source)
{
    const OssLayerShaderModel *model = shaderModel();
    if (!model || (source && source->shaderModel() != model))
        return false;
    const bool over = role == OssLayerStreamUtils::overInputName({});
    const auto portOf = [over](const QString &stream) {
        return over ? OssLayerStreamUtils::overInputName(stream)
                    : OssLayerStreamUtils::baseInputName(stream);
    };
    const QStringList streams = model->inputList();
    for (const QString &stream : streams) {
        if (!hasInput(portOf(stream)) || (source && !source->hasOutputPoint(stream)))
            return false;
    }
    OssUndoManager::AutoMacro macro(tr("Connect Streams of %1").arg(name()));
    for (const QString &stream : streams) {
        if (!setInputNode(portOf(stream), source, source ? stream : QString())) {
            macro.cancel();
            return false;
        }
    }
    return true;
}
