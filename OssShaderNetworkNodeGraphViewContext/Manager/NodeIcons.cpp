#include "Manager/NodeIcons.h"

#include <algorithm>
#include <iterator>

namespace {

struct Row
{
    const char *pathKey;
    const char *file;
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
};

} // namespace

QString NodeIcons::fileOf(const QString &pathKey)
{
    const auto *row = std::find_if(std::begin(Rows), std::end(Rows), [&pathKey](const Row &one) {
        return pathKey == QLatin1String(one.pathKey);
    });
    return row == std::end(Rows) ? QString() : QString::fromLatin1(row->file);
}
