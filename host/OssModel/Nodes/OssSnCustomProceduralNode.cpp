#include "OssModel/Nodes/OssSnCustomProceduralNode.h"

#include "OssModel/Nodes/OssNodeArchive.h"

OssResult OssSnCustomProceduralNode::importFromFile(OssShaderNetwork *network, const QString &path,
                                                    QList<OssSnBaseNode *> *inserted)
{
    return OssNodeArchive::read(network, OssNodeArchive::Kind::CustomProcedural, path, inserted);
}
