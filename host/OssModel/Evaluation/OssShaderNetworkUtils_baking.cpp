#include "OssModel/Graph/OssShaderNetworkUtils.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/OssBakeProgress.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "OssModel/Graph/OssBakeReport.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Nodes/OssProblems.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssShadingContext.h"

#include <QCoreApplication>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssShaderNetworkUtils", text);
}

/// What another takes from comes before it: it has fewer nodes upstream.
QList<OssSnBakePointNode *> sourcesFirst(const QList<OssSnBakePointNode *> &nodes)
{
    QVector<QPair<int, OssSnBakePointNode *>> order;
    for (OssSnBakePointNode *node : nodes)
        order.append(
            {OssShaderNetworkUtils::getUpstreamNodes(node, true, true, false).size(), node});
    std::stable_sort(order.begin(), order.end(),
                     [](const auto &a, const auto &b) { return a.first < b.first; });
    QList<OssSnBakePointNode *> sorted;
    for (const auto &entry : qAsConst(order))
        sorted.append(entry.second);
    return sorted;
}

bool isBakedForItsObject(const OssSnBakePointNode *node)
{
    const OssGeoEntity *object = node->network() ? node->network()->geoEntity() : nullptr;
    if (!object || node->isBakedFor(object))
        return true;
    OssDebug("OssShaderNetworkUtils", __LINE__, "[ -- ] %s is not baked for %s",
             qPrintable(node->name()), qPrintable(object->name()));
    return false;
}

void fillGeoChannel(const OssSnBakePointNode *node)
{
    if (OssGeoImageSet *channel = node->syncedGeoChannel())
        channel->setImageSet(node->imageSet());
}

/// Channels that are no longer kept in step with the bake point keep the images that they have.
void leaveGeoChannels(const OssSnBakePointNode *node)
{
    const OssGeoEntity *entity = node->network()->geoEntity();
    OssShadingContext *shading = node->network()->shadingContext();
    const QList<OssGeoImageSet *> channels = entity ? entity->geoImageSets()
                                                    : QList<OssGeoImageSet *>();
    for (OssGeoImageSet *channel : channels) {
        OssImageSet *shared = channel->imageSet();
        if (!shared || shared != node->imageSet() || channel == node->syncedGeoChannel())
            continue;
        OssImageSet *copy = shared->duplicate(
            shading->freeImageSetName(QStringLiteral("Node_To_GeoChannel_") + channel->name()));
        shading->addImageSet(copy); // takes it
        channel->setImageSet(copy);
    }
}

/// Leaves nothing behind when it fails.
OssResult bakeSource(OssSnBakePointNode *node, const std::function<bool(int, int)> &onProgress)
{
    const QString input = node->preferredInputName();
    OssSnBaseNode *source = node->inputNode(input);
    if (!source)
        return OssResult::failure(tr("nothing is connected"));
    if (node->limitBake() && OssPatchList::fromText(node->limitBakeRange()).isEmpty())
        return OssResult::failure(
            tr("\"%1\" names no patches; they are written like 1001-1004,1011")
                .arg(node->limitBakeRange()));
    OssUndoManager::AutoMacro macro(tr("Bake %1").arg(node->name()));
    OssImageSet *set = node->needImageSet();
    if (!set)
        return OssResult::failure(tr("there is no shading to keep images"));
    leaveGeoChannels(node);
    OssEvaluationService::BakeJob job;
    job.node = source;
    job.outputPoint = node->inputOutputPoint(input);
    job.entity = node->network()->geoEntity();
    job.patches = node->patchesToBake();
    job.resolution = set->resolution();
    job.keepsDepth = node->choosesDepth();
    job.onProgress = onProgress;
    const QString key = OssSnResultKey::of(source, job.outputPoint);
    const OssResult baked = OssEvaluationService::instance()->bakeInto(set, job);
    if (!baked) {
        macro.cancel();
        return baked;
    }
    node->setBakedKey(key, job.patches, job.resolution, set->form());
    fillGeoChannel(node);
    return {};
}

OssResult bakeOne(OssSnBakePointNode *node, const std::function<bool(int, int)> &onProgress)
{
    const OssResult baked = bakeSource(node, onProgress);
    if (baked)
        OssProblems::instance()->report(node, OssProblems::Bake, {});
    else if (!baked.isCancelled())
        OssProblems::instance()->report(node, OssProblems::Bake,
                                        tr("It was not baked. %1").arg(baked.error()));
    return baked.ok() || baked.isCancelled()
               ? baked
               : OssResult::failure(node->name() + QStringLiteral(": ") + baked.error());
}

/// Has the files that feed the bake points looked at, so that their state is known.
void knowFiles(const QList<OssSnBakePointNode *> &nodes, const OssBakeProgress &progress)
{
    for (const OssSnBakePointNode *node : nodes) {
        if (const OssSnBaseNode *source = node->inputNode(node->preferredInputName()))
            OssSnResultKey::of(source, node->inputOutputPoint(node->preferredInputName()));
    }
    OssFileWatch::instance()->settle([&progress] { return !progress.isStopped(); });
}

/// What is to be done with a bake point, as the list of the report that it then comes into.
using Choice = std::function<QStringList OssBakeReport::*(const OssSnBakePointNode *node)>;

/// Pixels that are up to date are computed again only for who wants them `again`.
OssResult bakeChosen(const QList<OssSnBakePointNode *> &nodes, bool again, const Choice &choice,
                     OssBakeReport *wanted)
{
    const OssUndoManager::AutoMacro macro(tr("Bake"));
    const QList<OssSnBakePointNode *> sorted = sourcesFirst(nodes);
    OssBakeProgress progress(tr("Baking"), sorted.size());
    OssBakeReport own;
    OssBakeReport &report = wanted ? *wanted : own;
    knowFiles(sorted, progress);
    report.isStopped = progress.isStopped();
    for (int i = 0; i < sorted.size() && !report.isStopped; ++i) {
        OssSnBakePointNode *node = sorted.at(i);
        // Asked only now: what was baked before it may have changed what feeds it.
        QStringList OssBakeReport::*list = choice(node);
        if (list == &OssBakeReport::baked && !isBakedForItsObject(node))
            list = &OssBakeReport::filtered;
        OssResult baked;
        if (list == &OssBakeReport::baked && !again && node->arePixelsUpToDate())
            fillGeoChannel(node);
        else if (list == &OssBakeReport::baked)
            baked = bakeOne(node, progress.forPart(i, node->name()));
        const auto isLeft = [&](const OssSnBakePointNode *one) {
            return choice(one) == &OssBakeReport::baked;
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
    const Choice choice = [=](const OssSnBakePointNode *node) {
        if (!node->hasBakedResult())
            return bakeEmpty ? &OssBakeReport::baked : &OssBakeReport::neverBaked;
        // It has its pixels, and nothing that would give others.
        if (!node->inputNode(node->preferredInputName()))
            return &OssBakeReport::upToDate;
        return updateOutOfDate && !node->isBakedResultUpToDate() ? &OssBakeReport::baked
                                                                 : &OssBakeReport::upToDate;
    };
    return bakeChosen(nodes, false, choice, report);
}

OssResult OssShaderNetworkUtils::bakeAgain(const QList<OssSnBakePointNode *> &nodes,
                                           OssBakeReport *report)
{
    return bakeChosen(
        nodes, true, [](const OssSnBakePointNode *) { return &OssBakeReport::baked; }, report);
}
