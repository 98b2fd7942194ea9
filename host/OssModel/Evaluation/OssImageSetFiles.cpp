#include "OssModel/Evaluation/OssImageSetFiles.h"

#include "OssCore/Values/OssColor.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"

#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>

namespace {

/// Starts the name of a set. Lines follow, one for each patch: number, blank, path.
const std::string SetMark = "image set\n";
/// The line that says that the pixels are no colours.
const char *const DataMark = "data";
/// Starts the line that tells the colour of patches without a file.
const char *const FillMark = "fill ";

} // namespace

QString OssImageSetFiles::nameOf(const OssSnBaseNode *node)
{
    const OssImageSet *set = OssShaderNetworkUtils::imageSetOf(node);
    if (!set || set->pixels().isEmpty())
        return {};
    const auto *bakePoint = qobject_cast<const OssSnBakePointNode *>(node);
    const bool isLimited = bakePoint && bakePoint->limitBake();
    const QList<int> limit = isLimited ? OssPatchList::fromText(bakePoint->limitBakeRange())
                                       : QList<int>();
    const QString folder = OssPixelStore::projectFolder();
    QString name = QString::fromStdString(SetMark);
    const QMap<int, QString> pixels = set->pixels();
    for (auto at = pixels.cbegin(); at != pixels.cend(); ++at) {
        const QString path = OssPixelStore::find(at.value(), folder);
        if (!path.isEmpty() && (!isLimited || limit.contains(at.key())))
            name += QStringLiteral("%1 %2\n").arg(at.key()).arg(path);
    }
    if (set->isScalar())
        name += QString::fromLatin1(DataMark) + QLatin1Char('\n');
    const OssColor fill = isLimited ? bakePoint->limitBakeBackground() : set->fillColor();
    if (fill.alpha() > 0.0)
        name += QString::fromLatin1(FillMark) + fill.toString() + QLatin1Char('\n');
    return name;
}

std::string OssImageSetFiles::fillOf(const Image &image)
{
    const std::size_t begin = image.name.rfind(std::string("\n") + FillMark);
    if (image.name.compare(0, SetMark.size(), SetMark) != 0 || begin == std::string::npos)
        return {};
    const std::size_t value = begin + 1 + std::strlen(FillMark);
    return image.name.substr(value, image.name.find('\n', value) - value);
}

bool OssImageSetFiles::toFile(const Image &image, Image *file, Identity *identity)
{
    *file = image;
    *identity = Identity::Content;
    if (image.name.compare(0, SetMark.size(), SetMark) != 0)
        return true;
    *identity = Identity::Looks;
    if (image.name.find(std::string("\n") + DataMark + '\n') != std::string::npos)
        file->colorSpace = ColorSpace::Data;
    for (std::size_t begin = SetMark.size(); begin < image.name.size();) {
        const std::size_t end = std::min(image.name.find('\n', begin), image.name.size());
        const std::string line = image.name.substr(begin, end - begin);
        const std::size_t blank = line.find(' ');
        if (blank != std::string::npos && std::atoi(line.c_str()) == image.patch) {
            file->name = line.substr(blank + 1);
            return true;
        }
        begin = end + 1;
    }
    return false;
}

OssEvResult OssImageSetFiles::describe(const Image &image, OssEvImageInfo *info)
{
    Image file;
    Identity identity = Identity::Content;
    if (toFile(image, &file, &identity))
        return describeFile(file, identity, info);
    *info = {};
    const std::string fill = fillOf(image);
    if (!fill.empty()) {
        info->width = 1;
        info->height = 1;
        OssEvKeyBuilder key;
        info->content = key.add(std::string_view(fill)).key();
    }
    return {};
}

OssEvResult OssImageSetFiles::read(const Image &image, int reduction, int tileRow,
                                   const OssEvCancel &cancel, const Deliver &deliver)
{
    Image file;
    Identity identity = Identity::Content;
    if (toFile(image, &file, &identity))
        return readFile(file, identity, reduction, tileRow, cancel, deliver);
    const std::string fill = fillOf(image);
    if (!fill.empty()) {
        const OssColor color = OssColor::fromString(QString::fromStdString(fill));
        const auto alpha = float(color.alpha());
        deliver(0, 0,
                std::make_shared<OssEvTile>(
                    4, OssEvTile::Format::Half,
                    std::array<float, 4>{float(color.red()) * alpha, float(color.green()) * alpha,
                                         float(color.blue()) * alpha, alpha}));
    }
    return {};
}
