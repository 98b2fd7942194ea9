#include "OssModel/Graph/OssSnBaseNode.h"

#include "OssModel/Evaluation/OssBakeProgress.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssImageSet.h"

#include <algorithm>

namespace {

constexpr int UsualResolution = 2048;

} // namespace

OssResult OssSnBaseNode::bake(OssImageSet *set, const QString &outputPoint) const
{
    if (!set || !network())
        return OssResult::failure(tr("%1: there are no images to bake into").arg(name()));
    OssEvaluationService *service = OssEvaluationService::instance();
    OssBakeProgress progress(tr("Baking %1").arg(name()), 1);
    OssEvaluationService::BakeJob job;
    job.node = this;
    job.outputPoint = outputPoint;
    job.entity = network()->geoEntity();
    job.patches = service->patches(job.entity);
    job.resolution = set->resolution();
    // Paint and geo-channels have 8 bits where nobody chose, and nobody could: nothing is lost to that.
    job.keepsDepth = set->depth() != OssChannel::UnsignedByte;
    job.onProgress = progress.forPart(0, name());
    return service->bakeInto(set, job);
}

OssResult OssSnBaseNode::exportToGeoChannel(OssGeoImageSet *channel, const QString &outputPoint,
                                            OssImageSet *set) const
{
    OssImageSet *images = set || !channel ? set : channel->imageSet();
    if (!channel || !images)
        return OssResult::failure(tr("%1: there is no geo-channel to export into").arg(name()));
    const OssResult baked = bake(images, outputPoint);
    if (baked)
        channel->setImageSet(images);
    return baked;
}

int OssSnBaseNode::queryMaximumRequiredTextureResolutions() const
{
    int largest = 0;
    auto *self = const_cast<OssSnBaseNode *>(this);
    const QList<OssSnBaseNode *> nodes = OssShaderNetworkUtils::getUpstreamNodes(self, true, true,
                                                                                 true);
    for (const OssSnBaseNode *node : nodes) {
        const OssImageSet *set = OssShaderNetworkUtils::imageSetOf(node);
        if (set)
            largest = std::max(largest, set->resolution());
    }
    return largest > 0 ? largest : UsualResolution;
}
