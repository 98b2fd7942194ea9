#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssModel/Nodes/OssSnMultiChannelGroupNode.h"

/// A material: all streams of a shader model, made inside. One tagged "_shader" also makes a surface of them, to look at it as a whole.
class OSSMODEL_EXPORT OssSnMaterialNode : public OssSnMultiChannelGroupNode
{
    Q_OBJECT

public:
    /// The nodes of an archive, all or none; see OssNodeArchive.
    static OssResult importFromFile(OssShaderNetwork *network, const QString &path,
                                    QList<OssSnBaseNode *> *inserted);
    using OssSnMultiChannelGroupNode::OssSnMultiChannelGroupNode;

    /// Inside, a shader of the model that takes the streams and feeds the output "Material". Does
    /// nothing when it is there. One undo step.
    void connectPreviewShaderNetwork();

    /// Writes a picture of the material, a lit ball of `size` pixels, whole or not at all.
    OssResult generateMaterialThumbnail(const QString &path, int size = 256) const;

    void onMadeFresh() override;

protected:
    void configureStream(const OssLayerShaderModelInput &stream) override;
    QStringList inputsOf(const QString &stream) const override;
};
