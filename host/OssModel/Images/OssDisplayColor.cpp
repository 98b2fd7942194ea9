#include "OssModel/Images/OssDisplayColor.h"

#include "OssEvaluation/Files/OssEvColorSpaces.h"

#include <algorithm>
#include <array>

namespace {

using Texel = std::array<float, 4>;
using Conversion = OssEvResult (OssEvColorSpaces::*)(const std::string &, float *,
                                                     std::size_t) const;

Texel converted(Texel texel, Conversion conversion)
{
    const OssEvResult result = (OssEvColorSpaces::builtIn().get()->*conversion)(
        OssEvColorSpaces::Screen, texel.data(), 1);
    Q_ASSERT(result);
    Q_UNUSED(result)
    for (float &channel : texel)
        channel = std::clamp(channel, 0.0F, 1.0F);
    return texel;
}

} // namespace

QColor OssDisplayColor::ofLinear(const OssColor &color)
{
    const Texel shown = converted(
        {float(color.red()), float(color.green()), float(color.blue()), float(color.alpha())},
        &OssEvColorSpaces::fromScene);
    return QColor::fromRgbF(double(shown[0]), double(shown[1]), double(shown[2]), color.alpha());
}

OssColor OssDisplayColor::toLinear(const QColor &shown)
{
    const Texel linear = converted(
        {float(shown.redF()), float(shown.greenF()), float(shown.blueF()), 1.0F},
        &OssEvColorSpaces::toScene);
    return {double(linear[0]), double(linear[1]), double(linear[2]), shown.alphaF()};
}
