#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"

#include <QObject>

/// Holds back what multi-channel nodes reckon from their ports (streams, clusters, errors, which inputs
/// are shared) while many changes are made. GUI thread.
class OSSMODEL_EXPORT OssLayerRefreshSuspensionManager
    : public QObject
    , public OssService<OssLayerRefreshSuspensionManager>
{
    Q_OBJECT

public:
    OssLayerRefreshSuspensionManager() = default;

    /// Scope in which refreshes wait; scopes nest.
    class OSSMODEL_EXPORT RefreshStateSuspender
    {
    public:
        RefreshStateSuspender();
        RefreshStateSuspender(const RefreshStateSuspender &) = delete;
        RefreshStateSuspender &operator=(const RefreshStateSuspender &) = delete;
        ~RefreshStateSuspender();
    };

    bool isSuspended() const { return m_depth > 0; }

Q_SIGNALS:
    /// The last scope ended: whoever put a refresh off does it now.
    void resumed();

private:
    int m_depth = 0;
};
