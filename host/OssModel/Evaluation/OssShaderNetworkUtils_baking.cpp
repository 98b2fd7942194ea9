#include "OssModel/Graph/OssShaderNetworkUtils.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/OssBakeProgress.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Images/OssFileWatch.h"
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

/// The bake point's images; makes them where there are none.
OssImageSet *imagesFor(OssSnBakePointNode *node)
{
    OssShadingContext *shading = node->network()->shadingContext();
    if (!node->imageSet() && shading) {
        auto *set = new OssImageSet(shading->freeImageSetName(node->name()));
        shading->addImageSet(set); // takes it
        node->setImageSet(set, true);
    }
    return node->imageSet();
}

/// The patches that the node's settings leave, of those that the object has.
QList<int> patchesOf(const OssSnBakePointNode *node, const OssGeoEntity *entity)
{
    QList<int> patches = OssEvaluationService::instance()->patches(entity);
    if (!node->limitBake())
        return patches;
    const QList<int> wanted = OssPatchList::fromText(node->limitBakeRange());
    patches.erase(std::remove_if(patches.begin(), patches.end(),
                                 [&](int patch) { return !wanted.contains(patch); }),
                  patches.end());
    return patches;
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

OssResult bakeOne(OssSnBakePointNode *node, const std::function<bool(int, int)> &onProgress)
{
    const QString input = node->preferredInputName();
    OssImageSet *set = node->network() ? imagesFor(node) : nullptr;
    OssSnBaseNode *source = node->inputNode(input);
    if (!set || !source)
        return OssResult::failure(tr("%1: nothing is connected").arg(node->name()));
    OssEvaluationService::BakeJob job;
    job.node = source;
    job.outputPoint = node->inputOutputPoint(input);
    job.entity = node->network()->geoEntity();
    job.patches = patchesOf(node, job.entity);
    job.resolution = set->resolution();
    job.onProgress = onProgress;
    const QString key = OssSnResultKey::of(source, job.outputPoint);
    const OssResult baked = OssEvaluationService::instance()->bakeInto(set, job);
    if (!baked)
        return OssResult::failure(node->name() + QStringLiteral(": ") + baked.error());
    node->setBakedKey(key);
    OssGeoImageSet *channel = node->syncGeoChannel() && job.entity
                                  ? node->network()->geoEntity()->geoImageSet(
                                      node->geoChannelName())
                                  : nullptr;
    if (channel)
        channel->setImageSet(set);
    return {};
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

OssResult bakeWanted(const QList<OssSnBakePointNode *> &nodes,
                     const std::function<bool(const OssSnBakePointNode *)> &isWanted)
{
    const OssUndoManager::AutoMacro macro(tr("Bake"));
    const QList<OssSnBakePointNode *> sorted = sourcesFirst(nodes);
    OssBakeProgress progress(tr("Baking"), sorted.size());
    knowFiles(sorted, progress);
    for (int i = 0; i < sorted.size(); ++i) {
        OssSnBakePointNode *node = sorted.at(i);
        // Asked only now: what was baked before it may have changed what feeds it.
        if (!isWanted(node) || !isBakedForItsObject(node))
            continue;
        const OssResult baked = bakeOne(node, progress.forPart(i, node->name()));
        if (progress.isStopped())
            return {};
        if (!baked)
            return baked;
    }
    return {};
}

} // namespace

OssResult OssShaderNetworkUtils::bakeBakePoints(const QList<OssSnBakePointNode *> &nodes,
                                                bool updateOutOfDate, bool bakeEmpty)
{
    return bakeWanted(nodes, [=](const OssSnBakePointNode *node) {
        return node->hasBakedResult() ? updateOutOfDate && !node->isBakedResultUpToDate()
                                      : bakeEmpty;
    });
}

OssResult OssShaderNetworkUtils::bakeAgain(const QList<OssSnBakePointNode *> &nodes)
{
    return bakeWanted(nodes, [](const OssSnBakePointNode *) { return true; });
}
