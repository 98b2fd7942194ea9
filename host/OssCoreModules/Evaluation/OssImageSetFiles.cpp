#include "OssCoreModules/Evaluation/OssImageSetFiles.h"

#include "OssCoreModules/Images/OssImageSet.h"
#include "OssCoreModules/Images/OssPixelStore.h"
#include "OssCoreModules/Project/OssProject.h"
#include "OssCoreModules/Project/OssProjectManager.h"

#include <cstdlib>

namespace {

/// Starts the name of a set. Lines follow, one for each patch: number, blank, path.
const std::string SetMark = "image set\n";

} // namespace

QString OssImageSetFiles::nameOf(const OssImageSet *set)
{
    if (!set || set->pixels().isEmpty())
        return {};
    const OssProject *project = OssProjectManager::instance()->currentProject();
    const QString folder = project ? project->path() : QString();
    QString name = QString::fromStdString(SetMark);
    const QMap<int, QString> pixels = set->pixels();
    for (auto at = pixels.cbegin(); at != pixels.cend(); ++at) {
        const QString path = OssPixelStore::find(at.value(), folder);
        if (!path.isEmpty())
            name += QStringLiteral("%1 %2\n").arg(at.key()).arg(path);
    }
    return name;
}

bool OssImageSetFiles::toFile(const Image &image, Image *file)
{
    *file = image;
    if (image.name.compare(0, SetMark.size(), SetMark) != 0)
        return true;
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
    if (toFile(image, &file))
        return OssEvImageFiles::describe(file, info);
    *info = {};
    return {};
}

OssEvResult OssImageSetFiles::read(const Image &image, int reduction, int tileRow,
                                   const OssEvCancel &cancel, const Deliver &deliver)
{
    Image file;
    return toFile(image, &file) ? OssEvImageFiles::read(file, reduction, tileRow, cancel, deliver)
                                : OssEvResult();
}
