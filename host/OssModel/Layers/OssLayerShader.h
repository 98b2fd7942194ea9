#pragma once

#include "OssModel/OssModel_export.h"

#include <QObject>

class OssSnBaseNode;

/// A shader node in its part as a shader. Owned by the node.
class OSSMODEL_EXPORT OssLayerShader : public QObject
{
    Q_OBJECT

public:
    explicit OssLayerShader(OssSnBaseNode *node);

    OssSnBaseNode *node() const;
    /// Whether a stack of layers feeds it, so that displacement is the stack's and not its own (tag
    /// "_stackShader").
    bool isStackShader() const;
};
