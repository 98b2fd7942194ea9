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

    /// As everything stands, with paint that is in no image yet. GUI thread.
    static OssExportSource of(const OssExportMaterial &material);
    /// Has such paint settled before, as the user wants it; handles events meanwhile.
    static OssExportSource withPaintSettled(const OssExportMaterial &material);

    /// What writes a file. Depends on nothing but the channels that the file has. Any thread.
    OssEvBake::Job job(const OssExportFile &file) const;
};
