#pragma once

#include "OssModel/Nodes/OssSnProducer.h"

#include <QVector>

#include <functional>

/// The walk over everything that an output's pixels depend on.
namespace OssSnUpstream {

/// An input and what computes what it is fed; a null node where nothing does.
struct Input
{
    QString name;
    OssSnProducer source;
};

using Visit = std::function<void(const OssSnBaseNode *node, const QVector<Input> &inputs)>;

/// Visits each producer once, sources before what they feed; where teleports close a loop, one of its
/// nodes comes before its source. Nodes that have pixels of their own have no inputs here. Deep
/// graphs do not use the stack of the process. GUI thread.
OSSMODEL_EXPORT void walk(const OssSnBaseNode *producer, const Visit &visit);

} // namespace OssSnUpstream
