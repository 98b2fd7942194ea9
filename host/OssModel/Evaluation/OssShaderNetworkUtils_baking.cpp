#include "OssModel/Graph/OssShaderNetworkUtils.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/BakePointBake.h"
#include "OssModel/Evaluation/OssBakeProgress.h"
#include "OssModel/Graph/OssBakeReport.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssShaderNetworkUtils", text);
}

/// Leaves nothing behind when it fails.
OssResult bakeOne(OssSnBakePointNode *node, const std::function<bool(int, int)> &onProgress)
{
    BakePointBake bake;
    OssResult baked = BakePointBake::prepare(node, &bake);
    if (baked)
        baked = OssEvaluationService::instance()->run(bake.pixels, onProgress);
    if (baked)
        baked = bake.take();
    else
        bake.discard();
    return BakePointBake::tell(node, baked);
}

/// Pixels that are up to date are computed again only for who wants them again.
OssResult bakeChosen(const QList<OssSnBakePointNode *> &nodes, const BakeChoice &choice,
                     OssBakeReport *wanted)
{
    const OssUndoManager::AutoMacro macro(tr("Bake"));
    const QList<OssSnBakePointNode *> sorted = BakePointBake::sourcesFirst(nodes);
    OssBakeProgress progress(tr("Baking"), sorted.size());
    OssBakeReport own;
    OssBakeReport &report = wanted ? *wanted : own;
    BakePointBake::knowFiles(sorted, [&progress] { return !progress.isStopped(); });
    report.isStopped = progress.isStopped();
    for (int i = 0; i < sorted.size() && !report.isStopped; ++i) {
        OssSnBakePointNode *node = sorted.at(i);
        // Asked only now: what was baked before it may have changed what feeds it.
        QStringList OssBakeReport::*list = choice.listFor(node);
        OssResult baked;
        if (list == &OssBakeReport::baked && !choice.again && node->arePixelsUpToDate())
            BakePointBake::fillGeoChannel(node);
        else if (list == &OssBakeReport::baked)
            baked = bakeOne(node, progress.forPart(i, node->name()));
        const auto isLeft = [&](const OssSnBakePointNode *one) {
            return choice.listFor(one) == &OssBakeReport::baked;
        };
        report.isStopped = baked.isCancelled()
                           || (progress.isStopped()
                               && std::any_of(sorted.cbegin() + i + 1, sorted.cend(), isLeft));
        if (baked)
            (report.*list).append(node->name());
        else if (!baked.isCancelled())
            report.failures.append(baked.error());
    }
    if (!report.failures.isEmpty())
        return OssResult::failure(report.failures.join(QLatin1Char('\n')));
    return report.isStopped ? OssResult::cancelled(tr("The bake was stopped")) : OssResult();
}

} // namespace

OssResult OssShaderNetworkUtils::bakeBakePoints(const QList<OssSnBakePointNode *> &nodes,
                                                bool updateOutOfDate, bool bakeEmpty,
                                                OssBakeReport *report)
{
    return bakeChosen(nodes, {updateOutOfDate, bakeEmpty, false}, report);
}

OssResult OssShaderNetworkUtils::bakeAgain(const QList<OssSnBakePointNode *> &nodes,
                                           OssBakeReport *report)
{
    return bakeChosen(nodes, {true, true, true}, report);
}
