#include "OssEvaluation/Kernels/Logic/Pick.h"

#include "OssEvaluation/Kernels/PointKernel.h"

#include <algorithm>
#include <cstddef>

namespace {

struct Picked
{
    std::size_t input;
};

void pick(const OssEvStrip &strip, const Picked &picked)
{
    for (std::size_t k = 0; k < std::size_t(strip.outputChannels); ++k)
        std::copy_n(strip.inputs[picked.input].plane[k], strip.texels(), strip.output[k]);
}

} // namespace

std::shared_ptr<const OssEvOperation> OssEvPick::make(int number)
{
    const int input = std::clamp(number, 1, Most) - 1;
    return OssEvMakePoint(pick, Picked{std::size_t(input)}, {}, input);
}
