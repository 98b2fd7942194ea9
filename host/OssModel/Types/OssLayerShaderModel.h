#pragma once

#include "OssModel/OssModel_export.h"
#include "OssModel/Types/OssSnDataKind.h"

#include <QString>
#include <QStringList>
#include <QVector>

/// One of the things that a shader wants to be told: a stream of pixels with a name.
class OSSMODEL_EXPORT OssLayerShaderModelInput
{
public:
    OssLayerShaderModelInput(QString streamName, OssSnDataKind kind)
        : m_streamName(std::move(streamName))
        , m_kind(kind)
    {
    }

    QString streamName() const { return m_streamName; }

    OssSnDataKind kind() const { return m_kind; }

private:
    QString m_streamName;
    OssSnDataKind m_kind;
};

/// What a kind of shader takes: the streams that multi-channel nodes carry together. Made from the
/// shader's node type and shared by all, unchanged.
class OSSMODEL_EXPORT OssLayerShaderModel
{
public:
    OssLayerShaderModel(QString id, QVector<OssLayerShaderModelInput> inputs);

    /// "Standard Surface".
    QString id() const { return m_id; }

    /// Names of the streams, in order.
    QStringList inputList() const;
    /// Null when there is none of that name.
    const OssLayerShaderModelInput *input(const QString &streamName) const;

    const QVector<OssLayerShaderModelInput> &inputs() const { return m_inputs; }

private:
    QString m_id;
    QVector<OssLayerShaderModelInput> m_inputs;
};
