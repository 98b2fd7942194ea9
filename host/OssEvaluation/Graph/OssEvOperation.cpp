#include "OssEvaluation/Graph/OssEvOperation.h"

#include <utility>

OssEvOperation::~OssEvOperation() = default;

OssEvAreaOperation::OssEvAreaOperation(std::vector<OssEvTap> taps)
    : m_taps(std::move(taps))
{
}

bool OssEvAreaOperation::leavesAsItIs(const OssEvRegion & /*region*/,
                                      const OssEvSurfaceMap * /*surface*/) const
{
    return false;
}
