#include "OssModel/Evaluation/OssNodeBake.h"

#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/OssBakeProgress.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssImageSet.h"

OssResult OssNodeBake::run() const
{
    OssEvaluationService::PixelBakes pixels;
    OssResult baked;
    {
        OssBakeProgress progress(tr("Baking %1").arg(node ? node->name() : QString()), 1);
        baked = prepare(&pixels);
        if (baked)
            baked = OssEvaluationService::instance()->run(pixels,
                                                          progress.forPart(0, node->name()));
    }
    if (!baked) {
        OssEvaluationService::discard(pixels);
        return baked;
    }
    baked = take(pixels);
    if (baked)
        OssStatusManager::instance()->showMessage(message);
    return baked;
}

OssResult OssNodeBake::prepare(OssEvaluationService::PixelBakes *pixels) const
{
    if (!node || !node->network() || !like)
        return OssResult::failure(tr("There is nothing to bake"));
    OssEvaluationService *service = OssEvaluationService::instance();
    OssEvaluationService::BakeJob job;
    job.node = node;
    job.outputPoint = outputPoint;
    job.entity = node->network()->geoEntity();
    job.patches = service->patches(job.entity);
    job.resolution = like->resolution();
    // Paint and geo-channels have 8 bits where nobody chose, and nobody could: nothing is lost to that.
    job.keepsDepth = like->depth() != OssChannel::UnsignedByte;
    return service->prepareInto(*like, job, pixels);
}

OssResult OssNodeBake::take(const OssEvaluationService::PixelBakes &pixels) const
{
    OssUndoManager::AutoMacro macro(title);
    OssImageSet *set = makeImages();
    QMap<int, QString> files = set ? set->pixels() : QMap<int, QString>();
    OssResult taken = OssResult::failure(tr("The images are gone that were to have the pixels"));
    if (set)
        taken = OssEvaluationService::adopt(pixels, &files);
    else
        OssEvaluationService::discard(pixels);
    if (!taken) {
        macro.cancel();
        return taken;
    }
    set->setPixels(files);
    return {};
}
