#pragma once

#include "OssModel/Graph/OssSnGroupNode.h"

class OssLayerShaderModel;
class OssLayerShaderModelInput;

/// A group that carries all channels of a material at once, one stream each.
class OSSMODEL_EXPORT OssSnMultiChannelGroupNode : public OssSnGroupNode
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

    /// Makes ports and what is inside for the streams of the model; for a node that is still empty.
    /// One undo step. False when there is no model.
    bool configureStreams();

    /// Whether every stream of the shader model has its ports. While layers are not refreshed
    /// (OssLayerRefreshSuspensionManager) it stays what it was, as do errors and shared inputs.
    bool isValid() const { return m_valid; }

    void onEndLoad() override;
    void onMadeFresh() override;

    bool hasStreams() const override { return true; }

    void chooseStreams(const QString &shaderModelId) override { setShaderModelId(shaderModelId); }

Q_SIGNALS:
    void validityChanged();

protected:
    /// Inside: what one stream runs through. The ports are made here, with createInput() and
    /// createOutput().
    virtual void configureStream(const OssLayerShaderModelInput &stream);

    /// Before the streams.
    virtual void configureShared() {}

    /// Names of the ports that the stream needs.
    virtual QStringList inputsOf(const QString &stream) const;
    virtual QStringList outputsOf(const QString &stream) const;

    static void wire(OssSnBaseNode *source, OssSnBaseNode *target, const QString &input);
    /// Makes the stream's output and feeds it.
    void wireOutput(OssSnBaseNode *source, const OssLayerShaderModelInput &stream);
    /// Where what belongs to the stream stands inside.
    QPointF rowPlace(const OssLayerShaderModelInput &stream) const;
    OssSnBaseNode *createInside(const QString &pathKey, const QString &name, const QPointF &place);

private:
    void checkValidity();

    QString m_shaderModelId;
    bool m_valid = true;
    bool m_validityWaits = false; ///< for layers to be refreshed again
};
