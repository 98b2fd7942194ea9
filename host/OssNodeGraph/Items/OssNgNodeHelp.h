#pragma once

#include <QString>

/// Says in words what a node and its ports are, for who rests the pointer on one. Plain text, asked only
/// then: it may look things up. GUI thread.
class OssNgNodeHelp
{
public:
    /// What the node does; empty when there is nothing to say.
    virtual QString nodeHelp() const = 0;
    /// Of the port, besides what it is called.
    virtual QString portHelp(const QString &port, bool isInput) const = 0;

protected:
    ~OssNgNodeHelp() = default;
};
