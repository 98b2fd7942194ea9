#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"

#include <QObject>

class OssLayerShader;
class OssShaderNetwork;
class OssSnBaseNode;

/// What is known of shaders among the nodes, and which one is looked at.
class OSSMODEL_EXPORT OssLayerShaderManager
    : public QObject
    , public OssService<OssLayerShaderManager>
{
    Q_OBJECT

public:
    OssLayerShaderManager() = default;

    /// Whether the application itself made the node as part of shading, so that users look at it
    /// but do not build with it. With `includeInside` a node inside such a node counts too.
    bool isSystemShaderNode(const OssSnBaseNode *node, bool includeInside) const;
    /// A node that makes a material by itself, as a renderer's surface.
    bool isLayerShader(const OssSnBaseNode *node) const;
    /// Null for a node that is none.
    OssLayerShader *getLayerShader(OssSnBaseNode *node) const;

    /// What the viewer's input 0 shows: a layer shader, which is wired there in one undo step, or
    /// the current-material proxy. Null is ignored.
    void setCurrentShader(OssSnBaseNode *shader);

    /// Null while nothing was made the current material.
    OssSnBaseNode *getCurrentMaterialProxyShader(const OssShaderNetwork *network) const;
};
