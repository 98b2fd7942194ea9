#pragma once

#include "OssCoreModules/Network/OssSnGroupNode.h"

/// A group that carries all channels of a material at once, one stream each.
class OSSCOREMODULES_EXPORT OssSnMultiChannelGroupNode : public OssSnGroupNode
{
    Q_OBJECT

public:
    explicit OssSnMultiChannelGroupNode(std::shared_ptr<const OssSnNodeType> type);
    ~OssSnMultiChannelGroupNode() override;

    /// What each port carries, "Base Base Color" rather than "Base", in the order of the ports.
    QStringList descriptiveInputNameList() const { return prettyInputNameList(); }

    QStringList descriptiveOutputNameList() const { return prettyOutputNameList(); }

    /// Whether every stream of the shader model has its ports.
    bool isValid() const { return m_valid; }

    void setValid(bool valid);

Q_SIGNALS:
    void validityChanged();

private:
    bool m_valid = true;
};
