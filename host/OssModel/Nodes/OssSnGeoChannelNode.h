#pragma once

#include "OssModel/Graph/OssSnBaseNode.h"

class OssGeoImageSet;

/// Reads a geo-channel of the object.
class OSSMODEL_EXPORT OssSnGeoChannelNode : public OssSnBaseNode
{
    Q_OBJECT

public:
    explicit OssSnGeoChannelNode(std::shared_ptr<const OssSnNodeType> type);

    QString geoChannelName() const;
    /// Null when the object has none of that name.
    OssGeoImageSet *geoImageSet() const;

    bool isGeoChannelImageSetValid() const { return m_valid; }

Q_SIGNALS:
    void geoChannelNameChanged(QString name);
    /// Whether the geo-channel is there and has images.
    void geoChannelImageSetValidChanged(bool valid);

protected:
    void onUserAttributeSet(const OssCustomAttribute &attribute, bool added) override;

private:
    void follow();
    void check();

    QPointer<QObject> m_followed;
    bool m_valid = false;
};
