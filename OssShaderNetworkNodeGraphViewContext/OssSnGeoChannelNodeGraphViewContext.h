#pragma once

#include "OssSnNodeGraphViewContext.h"

/// Context of bake points.
class OssSnBakePointNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT

public:
    explicit OssSnBakePointNodeGraphViewContext(QObject *node);
    ~OssSnBakePointNodeGraphViewContext() override;
};

/// Context of nodes that read a geo-channel.
class OssSnGeoChannelNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT

public:
    explicit OssSnGeoChannelNodeGraphViewContext(QObject *node);
    ~OssSnGeoChannelNodeGraphViewContext() override;
};

/// Context of both ends of a teleport.
class OssSnBaseTeleportNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT

public:
    explicit OssSnBaseTeleportNodeGraphViewContext(QObject *node);
    ~OssSnBaseTeleportNodeGraphViewContext() override;
};
