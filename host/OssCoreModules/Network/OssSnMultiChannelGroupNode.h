#pragma once

#include "OssCoreModules/Network/OssSnGroupNode.h"

class OssLayerShaderModel;

/// A group that carries all channels of a material at once, one stream each.
class OSSCOREMODULES_EXPORT OssSnMultiChannelGroupNode : public OssSnGroupNode
{
    Q_OBJECT
    Q_PROPERTY(
        QString shaderModelId READ shaderModelId WRITE setShaderModelId STORED hasShaderModel)

public:
    explicit OssSnMultiChannelGroupNode(std::shared_ptr<const OssSnNodeType> type);
    ~OssSnMultiChannelGroupNode() override;

    /// What each port carries, "Base Base Color" rather than "Base", in the order of the ports.
    QStringList descriptiveInputNameList() const { return prettyInputNameList(); }

    QStringList descriptiveOutputNameList() const { return prettyOutputNameList(); }

    /// Null while none is set or the one set is not known here.
    const OssLayerShaderModel *shaderModel() const;

    QString shaderModelId() const { return m_shaderModelId; }

    bool hasShaderModel() const { return !m_shaderModelId.isEmpty(); }

    /// Undoable. The ports are the caller's.
    void setShaderModelId(const QString &id);
    /// Wires all streams of a role, "Base" or "Over", from another node of the same model; a null
    /// source disconnects them. One undo step; false when a stream has no port on either side, and
    /// then nothing changes.
    bool batchConnectInputNode(const QString &role, OssSnMultiChannelGroupNode *source);

    /// Whether every stream of the shader model has its ports.
    bool isValid() const { return m_valid; }

    void setValid(bool valid);

Q_SIGNALS:
    void validityChanged();

private:
    QString m_shaderModelId;
    bool m_valid = true;
};
