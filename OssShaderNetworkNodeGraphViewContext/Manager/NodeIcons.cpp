#include "Manager/NodeIcons.h"

#include <algorithm>
#include <iterator>

namespace {

/// A path key that ends with a slash stands for all types below it that have no row of their own.
struct Row
{
    const char *pathKey;
    const char *file;

    bool isOf(const QString &key) const
    {
        const QLatin1String own(pathKey);
        return own.endsWith(QLatin1Char('/')) ? key.startsWith(own) : key == own;
    }
};

constexpr Row Rows[] = {
    {"Misc/Channel Input", "NodePaint.png"},
    {"Channel Input/Paint", "NodePaint.png"},
    {"Misc/Bake Point", "NodeBake.png"},
    {"_System/MultiChannelBakePoint", "NodeBake.png"},
    {"Misc/Image", "NodeImage.png"},
    {"Procedural/Pattern/Tiled", "NodeImage.png"},
    {"Environment/Tri Planar Projection", "NodeImage.png"},
    {"Shaders/Standard Surface", "NodeMaterial.png"},
    {"_System/Material", "NodeMaterial.png"},
    {"Procedural/Noise/", "NodeNoise.png"},
    {"Procedural/Pattern/", "NodePattern.png"},
    {"Geometry/Decal", "NodeImage.png"},
    {"Geometry/", "NodeMesh.png"},
    {"Logic/", "NodeLogic.png"},
};

} // namespace

QString NodeIcons::fileOf(const QString &pathKey)
{
    const auto *row = std::find_if(std::begin(Rows), std::end(Rows),
                                   [&pathKey](const Row &one) { return one.isOf(pathKey); });
    return row == std::end(Rows) ? QString() : QString::fromLatin1(row->file);
}
