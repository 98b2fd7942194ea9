#pragma once

#include <QObject>

/// What the items of a scene ask of the views that show it. They look for it among those views.
class OssNgItemHost
{
public:
    /// Whether a node dropped on a wire is spliced into it. Asked each time.
    virtual bool isAutoInsertOn() const = 0;

protected:
    ~OssNgItemHost() = default;
};

Q_DECLARE_INTERFACE(OssNgItemHost, "OssNgItemHost")
