#include "OssCoreModules/Network/OssSnCustomProceduralNode.h"

#include "OssCoreModules/Network/OssNodeArchive.h"

OssResult OssSnCustomProceduralNode::importFromFile(OssShaderNetwork *network, const QString &path,
                                                    QList<OssSnBaseNode *> *inserted)
{
    return OssNodeArchive::read(network, OssNodeArchive::Kind::CustomProcedural, path, inserted);
}
