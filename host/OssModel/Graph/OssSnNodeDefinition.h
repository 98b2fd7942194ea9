#pragma once

#include "OssCore/Values/OssCustomAttribute.h"
#include "OssModel/Graph/OssSnPorts.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <QVector>

#include <memory>

/// What a node has from its type, with the wires that its ports had.
struct OssSnNodeDefinition
{
    std::shared_ptr<const OssSnNodeType> type;
    QString pathKey;
    QString versionUUID;
    QString versionHashCreated;
    QString versionDate;
    QVector<OssSnInputPort> inputs;
    QVector<OssSnOutputPoint> outputs;
    QVector<OssCustomAttribute> attributes;
    std::shared_ptr<OssSnBaseNode> look; ///< its contexts hold what the contexts' look was
};
