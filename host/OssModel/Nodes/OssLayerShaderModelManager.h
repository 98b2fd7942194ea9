#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/Types/OssLayerShaderModel.h"

#include <QPair>

#include <map>

class OssSnBaseNode;
class OssSnMultiChannelGroupNode;

/// The shader models of the process: one for each shader among the node types.
class OSSMODEL_EXPORT OssLayerShaderModelManager : public OssService<OssLayerShaderModelManager>
{
public:
    OssLayerShaderModelManager() = default;

    /// Stays valid for the process. Null for an id that is not known.
    const OssLayerShaderModel *model(const QString &id);
    /// By name.
    QStringList modelIds();

    /// The two as multi-channel nodes when they carry the same streams; null pointers otherwise.
    QPair<OssSnMultiChannelGroupNode *, OssSnMultiChannelGroupNode *> matchingShaderModelNodePair(
        OssSnBaseNode *first, OssSnBaseNode *second);

private:
    void readModels();

    std::map<QString, OssLayerShaderModel> m_models;
};
