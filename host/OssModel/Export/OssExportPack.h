#pragma once

#include "OssEvaluation/Files/OssEvBake.h"
#include "OssModel/Evaluation/OssSnEvaluationGraph.h"
#include "OssModel/Export/OssExportPlan.h"

/// The channels of a material as the engine takes them: copied out of the document once for all files.
struct OssExportSource
{
    OssSnEvaluationGraph graph;
    QStringList channels;
    QVector<OssSnEvaluationGraph::Link> links; ///< of the channels
    /// Object, mesh and images; its graph says nothing.
    OssEvTarget target;
    /// In which the channels are.
    OssEvColorSpaces::Pointer colors;
    OssResult state; ///< why nothing of it can be written

    /// GUI thread. May handle events, while fresh paint is settled.
    static OssExportSource of(const OssExportMaterial &material);
    /// The same without paint that is in no image yet, and without events.
    static OssExportSource withoutFreshPaint(const OssExportMaterial &material);

    /// What writes a file. Depends on nothing but the channels that the file has. Any thread.
    OssEvBake::Job job(const OssExportFile &file) const;
};
