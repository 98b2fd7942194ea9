#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssModel/Graph/OssSnGroupNode.h"

/// A group that is used like a node of a type of its own: its inside is not shown.
class OSSMODEL_EXPORT OssSnCustomProceduralNode : public OssSnGroupNode
{
    Q_OBJECT

public:
    /// The nodes of an archive, all or none; see OssNodeArchive.
    static OssResult importFromFile(OssShaderNetwork *network, const QString &path,
                                    QList<OssSnBaseNode *> *inserted);
    using OssSnGroupNode::OssSnGroupNode;
};
