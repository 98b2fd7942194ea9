#include "OssModel/Types/OssLayerShaderModel.h"

OssLayerShaderModel::OssLayerShaderModel(QString id, QVector<OssLayerShaderModelInput> inputs)
    : m_id(std::move(id))
    , m_inputs(std::move(inputs))
{
}

QStringList OssLayerShaderModel::inputList() const
{
    QStringList names;
    for (const OssLayerShaderModelInput &input : m_inputs)
        names.append(input.streamName());
    return names;
}

const OssLayerShaderModelInput *OssLayerShaderModel::input(const QString &streamName) const
{
    for (const OssLayerShaderModelInput &input : m_inputs) {
        if (input.streamName() == streamName)
            return &input;
    }
    return nullptr;
}
