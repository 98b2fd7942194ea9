#pragma once

#include "OssSnNodeGraphViewContext.h"

class OssSnBakePointNode;

/// Context of bake points: shows on the item whether there is a result and whether it still fits,
/// and what of the bake is limited.
class OssSnBakePointNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT

public:
    explicit OssSnBakePointNodeGraphViewContext(QObject *node);
    ~OssSnBakePointNodeGraphViewContext() override;

    void initializeGui() override;
    bool attributeIsStub(const QString &name, bool flag) const override;

public Q_SLOTS:
    void setText(QString text) override;

protected Q_SLOTS:
    void onBakedStateChanged();
    void onGeoChannelChanged();
    void onLimitBakeChanged();
    void onFilteredChanged();
    void updateGUIText();

private:
    OssSnBakePointNode *bakePoint() const;
    void setIconVisible(int icon, bool visible);

    int m_geoChannelIcon = -1;
    int m_patchRangeIcon = -1;
    int m_filteredIcon = -1;
};

/// Context of nodes that read a geo-channel.
class OssSnGeoChannelNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT

public:
    explicit OssSnGeoChannelNodeGraphViewContext(QObject *node);
    ~OssSnGeoChannelNodeGraphViewContext() override;

    void initializeGui() override;

public Q_SLOTS:
    void setText(QString text) override;

protected Q_SLOTS:
    void onGeoChannelImageSetValidChanged(bool Valid);
    void updateGUIText();
};

/// Context of both ends of a teleport.
class OssSnBaseTeleportNodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT

public:
    explicit OssSnBaseTeleportNodeGraphViewContext(QObject *node);
    ~OssSnBaseTeleportNodeGraphViewContext() override;

    void initializeGui() override;

public Q_SLOTS:
    void setText(QString text) override;

protected Q_SLOTS:
    void updateNodeState();
};
