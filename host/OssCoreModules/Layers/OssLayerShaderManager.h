#pragma once

#include "OssCoreModules/OssCoreModules_export.h"

#include <QObject>

class OssSnBaseNode;

/// What is known of shaders among the nodes.
class OSSCOREMODULES_EXPORT OssLayerShaderManager : public QObject
{
    Q_OBJECT

public:
    static OssLayerShaderManager *instance();

    /// Whether the application itself made the node as part of shading, so that users look at it
    /// but do not build with it. With `includeInside` a node inside such a node counts too.
    bool isSystemShaderNode(const OssSnBaseNode *node, bool includeInside) const;

private:
    OssLayerShaderManager() = default;
};
