#include "OssModel/Evaluation/BakePointBake.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "OssModel/Evaluation/OssProblems.h"
#include "OssModel/Graph/OssBakeReport.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
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

bool isBakedForItsObject(const OssSnBakePointNode *node)
{
    const OssGeoEntity *object = node->network() ? node->network()->geoEntity() : nullptr;
    if (!object || node->isBakedFor(object))
        return true;
    OssDebug("OssShaderNetworkUtils", __LINE__, "[ -- ] %s is not baked for %s",
             qPrintable(node->name()), qPrintable(object->name()));
    return false;
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

} // namespace

QStringList OssBakeReport::*BakeChoice::listFor(const OssSnBakePointNode *node) const
{
    const auto chosen = [this, node] {
        if (again)
            return &OssBakeReport::baked;
        if (!node->hasBakedResult())
            return fillsEmpty ? &OssBakeReport::baked : &OssBakeReport::neverBaked;
        // It has its pixels, and nothing that would give others.
        if (!node->inputNode(node->preferredInputName()))
            return &OssBakeReport::upToDate;
        return updates && !node->isBakedResultUpToDate() ? &OssBakeReport::baked
                                                         : &OssBakeReport::upToDate;
    };
    QStringList OssBakeReport::*list = chosen();
    return list == &OssBakeReport::baked && !isBakedForItsObject(node) ? &OssBakeReport::filtered
                                                                       : list;
}

OssResult BakePointBake::prepare(OssSnBakePointNode *node, BakePointBake *made)
{
    const QString input = node->preferredInputName();
    const OssSnBaseNode *source = node->inputNode(input);
    if (!source)
        return OssResult::failure(tr("nothing is connected"));
    if (node->limitBake() && OssPatchList::fromText(node->limitBakeRange()).isEmpty())
        return OssResult::failure(
            tr("\"%1\" names no patches; they are written like 1001-1004,1011")
                .arg(node->limitBakeRange()));
    if (!node->network()->shadingContext())
        return OssResult::failure(tr("there is no shading to keep images"));
    const std::unique_ptr<const OssImageSet> images = node->imagesToBake();
    OssEvaluationService::BakeJob job;
    job.node = source;
    job.outputPoint = node->inputOutputPoint(input);
    job.entity = node->network()->geoEntity();
    job.patches = node->patchesToBake();
    job.resolution = images->resolution();
    job.keepsDepth = node->choosesDepth();
    made->node = node;
    made->key = OssSnResultKey::of(source, job.outputPoint);
    made->patches = job.patches;
    made->resolution = job.resolution;
    made->form = images->form();
    return OssEvaluationService::instance()->prepareInto(*images, job, &made->pixels);
}

bool BakePointBake::isCurrent() const
{
    const OssSnBaseNode *source = node && node->network()
                                      ? node->inputNode(node->preferredInputName())
                                      : nullptr;
    if (!source || node->patchesToBake() != patches)
        return false;
    const std::unique_ptr<const OssImageSet> images = node->imagesToBake();
    return images->resolution() == resolution && images->form() == form
           && OssSnResultKey::of(source, node->inputOutputPoint(node->preferredInputName())) == key;
}

OssResult BakePointBake::take() const
{
    OssImageSet *set = nullptr;
    OssUndoManager::AutoMacro macro(tr("Bake %1").arg(node ? node->name() : QString()));
    if (node && node->network())
        set = node->needImageSet();
    if (!set) {
        discard();
        return OssResult::failure(tr("The images are gone that were to have the pixels"));
    }
    leaveGeoChannels(node);
    QMap<int, QString> all = set->pixels();
    const OssResult adopted = OssEvaluationService::adopt(pixels, &all);
    if (!adopted) {
        macro.cancel();
        return adopted;
    }
    set->setPixels(all);
    node->setBakedKey(key, patches, resolution, form);
    fillGeoChannel(node);
    return {};
}

void BakePointBake::discard() const
{
    OssEvaluationService::discard(pixels);
}

OssResult BakePointBake::tell(OssSnBakePointNode *node, const OssResult &baked)
{
    if (baked)
        OssProblems::instance()->report(node, OssProblems::Bake, {});
    else if (!baked.isCancelled())
        OssProblems::instance()->report(node, OssProblems::Bake,
                                        tr("It was not baked. %1").arg(baked.error()));
    return baked.ok() || baked.isCancelled()
               ? baked
               : OssResult::failure(node->name() + QStringLiteral(": ") + baked.error());
}

void BakePointBake::fillGeoChannel(const OssSnBakePointNode *node)
{
    if (OssGeoImageSet *channel = node->syncedGeoChannel())
        channel->setImageSet(node->imageSet());
}

QList<OssSnBakePointNode *> BakePointBake::sourcesFirst(const QList<OssSnBakePointNode *> &nodes)
{
    // It has fewer nodes upstream.
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

void BakePointBake::knowFiles(const QList<OssSnBakePointNode *> &nodes,
                              const std::function<bool()> &goesOn)
{
    for (const OssSnBakePointNode *node : nodes) {
        if (const OssSnBaseNode *source = node->inputNode(node->preferredInputName()))
            OssSnResultKey::of(source, node->inputOutputPoint(node->preferredInputName()));
    }
    OssFileWatch::instance()->settle(goesOn);
}
