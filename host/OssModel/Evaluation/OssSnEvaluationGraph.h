#pragma once

#include "OssModel/OssModel_export.h"

#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVector>

#include <memory>
#include <string>

class OssEvGraph;
class OssLivePaint;
class OssSnBaseNode;
struct OssSnWireEnd;

/// What has to be computed for an output, copied out of the document: plain values that workers can
/// keep while the user goes on editing. GUI thread.
struct OSSMODEL_EXPORT OssSnEvaluationGraph
{
    std::shared_ptr<const OssEvGraph> graph;
    int node = -1;
    int output = 0;
    bool isData = false; ///< numbers, not colours
    /// The document's nodes that were copied: other values there, other pixels.
    QVector<QPointer<const OssSnBaseNode>> sources;
    /// That the images have: it can be read as long as this is there.
    QVector<std::shared_ptr<const OssLivePaint>> paint;
    QString error;      ///< why there is nothing to compute; empty when there is
    std::string faulty; ///< name in the graph of the node that is to blame; empty when none is

    /// Tells OssProblems what the engine said of the node of that name, which may be none.
    void tellProblem(const std::string &name, const QString &reason) const;
    /// All that was copied could be computed.
    void tellSuccess() const;

    /// Says that the input is switched off, in words; nothing for a null node.
    static QString switchedOff(const OssSnWireEnd &input);

    static OssSnEvaluationGraph of(const OssSnBaseNode *node, const QString &outputPoint);

    /// An output in the graph; a node of -1 where nothing computes it.
    struct Link
    {
        int node = -1;
        int output = -1;
    };

    /// Several outputs of one node, in one graph; its own `node`, `output` and faults say nothing then.
    /// `links` gets one for each name. A shader has each of its channels as an output, too.
    static OssSnEvaluationGraph ofAll(const OssSnBaseNode *node, const QStringList &outputPoints,
                                      QVector<Link> *links);
};
