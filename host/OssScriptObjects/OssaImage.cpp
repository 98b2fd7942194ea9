#include "OssScriptObjects/OssaImage.h"

#include "OssModel/Images/OssImage.h"

namespace Ossa {

Image::Image(QObject *image)
{
    initAs<OssImage>(image);
}

Image::~Image() = default;

QString Image::name() const
{
    const auto *own = wrapped<OssImage>();
    return own ? own->name() : QString();
}

QString Image::path() const
{
    const auto *own = wrapped<OssImage>();
    return own ? own->path() : QString();
}

QString Image::category() const
{
    const auto *own = wrapped<OssImage>();
    return own ? own->category() : QString();
}

QList<int> Image::patches() const
{
    const auto *own = wrapped<OssImage>();
    return own ? own->patches() : QList<int>();
}

} // namespace Ossa
