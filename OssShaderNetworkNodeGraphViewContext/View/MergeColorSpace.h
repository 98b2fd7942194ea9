#pragma once

#include <QSet>

class OssSnBaseNode;

/// Merges above 8-bit paint are to blend in a colour space that keeps precision. What is above leads
/// through groups, but never through a merge's mask. Changes are undo steps. GUI thread.
namespace MergeColorSpace {

/// Whether what is kept at the node is 8-bit colour.
bool holdsByteColor(OssSnBaseNode *node);

/// Whether the node is a merge that does not blend so, and may be set.
bool isOff(const OssSnBaseNode *node);

QSet<OssSnBaseNode *> mergesAbove(OssSnBaseNode *node);

/// Of a merge that nobody has set yet: as what is below it wants it.
void setBlendingColorspaceOnMergeNodeCreation(OssSnBaseNode *merge);

/// Sets the merges above what keeps 8-bit paint, except those that are known; asks before, as the
/// preference says. Nothing for other nodes and null.
void update(OssSnBaseNode *endPoint, const QSet<OssSnBaseNode *> &known = {});

} // namespace MergeColorSpace
