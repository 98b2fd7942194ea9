#pragma once

#include "OssCore/Values/OssCustomAttribute.h"
#include "OssModel/Nodes/OssSnProducer.h"

#include <QVector>

#include <functional>

/// The walk over everything that an output's pixels depend on, and what they depend on beside wires.
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

/// Whether it is a node that hands an attribute of a group around it on.
OSSMODEL_EXPORT bool readsAttributeAround(const OssSnBaseNode *node);

/// That attribute, found by its name or the name that is shown, of the innermost group that has one. Invalid
/// where there is none, and for other nodes.
OSSMODEL_EXPORT OssCustomAttribute attributeAround(const OssSnBaseNode *node);

} // namespace OssSnUpstream
