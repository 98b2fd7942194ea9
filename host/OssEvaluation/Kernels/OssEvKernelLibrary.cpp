#include "OssEvaluation/Graph/OssEvKernelLibrary.h"

#include "OssEvaluation/Kernels/Families.h"

#include <algorithm>

namespace {

std::vector<OssEvKernel> makeKernels()
{
    std::vector<OssEvKernel> kernels;
#define OSS_EV_ADD(name) OssEvFamilies::name(&kernels);
    OSS_EV_FAMILIES(OSS_EV_ADD)
#undef OSS_EV_ADD
    std::sort(kernels.begin(), kernels.end(),
              [](const OssEvKernel &a, const OssEvKernel &b) { return a.name < b.name; });
    return kernels;
}

} // namespace

const OssEvKernel *OssEvKernelLibrary::find(std::string_view name)
{
    const std::vector<OssEvKernel> &all = kernels();
    const auto found = std::lower_bound(
        all.begin(), all.end(), name,
        [](const OssEvKernel &kernel, std::string_view wanted) { return kernel.name < wanted; });
    return found != all.end() && found->name == name ? &*found : nullptr;
}

const std::vector<OssEvKernel> &OssEvKernelLibrary::kernels()
{
    static const std::vector<OssEvKernel> all = makeKernels();
    return all;
}
