#include "OssModel/Images/OssDisplayColor.h"

#include "OssModel/Images/OssColorManagement.h"

#include <algorithm>
#include <array>

namespace {

using Texel = std::array<float, 4>;

Texel texelOf(const OssColor &color)
{
    return {float(color.red()), float(color.green()), float(color.blue()), float(color.alpha())};
}

/// For a configuration that has no space for what is picked.
OssEvColorSpaces::Pointer builtIn()
{
    return OssEvColorSpaces::builtIn();
}

} // namespace

QColor OssDisplayColor::ofLinear(const OssColor &color)
{
    Texel shown = texelOf(color);
    if (!OssColorManagement::spaces()->toPickedFromWorking(shown.data(), 1)) {
        shown = texelOf(color);
        (void)builtIn()->toPickedFromWorking(shown.data(), 1);
    }
    for (float &channel : shown)
        channel = std::clamp(channel, 0.0F, 1.0F);
    return QColor::fromRgbF(double(shown[0]), double(shown[1]), double(shown[2]), color.alpha());
}

OssColor OssDisplayColor::toLinear(const QColor &shown)
{
    const Texel picked{float(shown.redF()), float(shown.greenF()), float(shown.blueF()), 1.0F};
    Texel texel = picked;
    if (!OssColorManagement::spaces()->toWorkingFromPicked(texel.data(), 1)) {
        texel = picked;
        (void)builtIn()->toWorkingFromPicked(texel.data(), 1);
    }
    return {double(texel[0]), double(texel[1]), double(texel[2]), shown.alphaF()};
}
