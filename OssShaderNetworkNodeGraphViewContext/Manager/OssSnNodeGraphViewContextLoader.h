#pragma once

#include "OssModel/Graph/OssShaderNetworkContextLoader.h"

/// Makes the node-graph context that a node type's description asks for and gives it the look that
/// stands there. Faulty XML ends the reading; what was set until then stays.
class OssSnNodeGraphViewContextLoader : public OssShaderNetworkContextLoader
{
    Q_OBJECT

public:
    using OssShaderNetworkContextLoader::OssShaderNetworkContextLoader;

    QList<OssSnBaseContext *> load(const QString &description, OssSnBaseNode *node) override;
};
