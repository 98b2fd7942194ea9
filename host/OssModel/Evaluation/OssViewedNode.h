#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/Nodes/OssSnProducer.h"
#include "OssModel/OssModel_export.h"

#include <QObject>
#include <QPointer>

class OssSnBaseNode;

/// Which node's picture is looked at: the one that is looked at by itself (OssSolo), or else what feeds
/// the viewer's current input. It alone is active for those that show nodes. GUI thread.
class OSSMODEL_EXPORT OssViewedNode
    : public QObject
    , public OssService<OssViewedNode>
{
    Q_OBJECT

public:
    OssViewedNode();

    /// As things are now; a null node where nothing is looked at.
    static OssSnProducer now();
    /// The input, the viewer's or one before it, that keeps everything from being seen because it is
    /// switched off. A null node where that is not why.
    static OssSnWireEnd off();

private:
    void mark();

    QPointer<OssSnBaseNode> m_marked;
};
