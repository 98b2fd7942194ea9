#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"

#include <QString>

class OssShaderNetwork;
class OssSnBaseNode;

/// What is looked at as a whole material. An object has at most one proxy for it, a node of its own
/// that goes to the network of what it stands for and feeds the viewer's input 0.
class OSSMODEL_EXPORT OssLayerManager : public OssService<OssLayerManager>
{
public:
    OssLayerManager() = default;

    /// Makes an output of the node the current material of its object. `stream` names one stream of
    /// a multi-channel node; empty means the output as it is. One undo step. False when there is
    /// nothing to connect; then nothing changes.
    bool connectNodeToCurrentMaterialProxy(OssShaderNetwork *network, OssSnBaseNode *node,
                                           const QString &outputPoint, const QString &stream);

    /// The object's proxy; null when there is none yet.
    static OssSnBaseNode *currentMaterialProxy(const OssShaderNetwork *network);

private:
};
