#pragma once

#include "OssModel/OssModel_export.h"

#include <QString>
#include <QVector>

#include <memory>

class OssEvGraph;
class OssSnBaseNode;

/// What has to be computed for an output, copied out of the document: plain values that workers can
/// keep while the user goes on editing. GUI thread.
struct OSSMODEL_EXPORT OssSnEvaluationGraph
{
    std::shared_ptr<const OssEvGraph> graph;
    int node = -1;
    int output = 0;
    /// The document's nodes that were copied: other values there, other pixels.
    QVector<const OssSnBaseNode *> sources;
    QString error; ///< why there is nothing to compute; empty when there is

    static OssSnEvaluationGraph of(const OssSnBaseNode *node, const QString &outputPoint);
};
