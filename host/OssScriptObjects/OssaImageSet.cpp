#include "OssScriptObjects/OssaImageSet.h"

#include "OssModel/Objects/OssImageSet.h"

namespace Ossa {

namespace {
constexpr int ByteDepth = 5121;
} // namespace

ImageSet::ImageSet(QObject *set)
{
    initAs<OssImageSet>(set);
    if (!isNull())
        connect(static_cast<OssImageSet *>(set), &OssImageSet::pixelsChanged, this,
                &ImageSet::pixelsChanged);
}

ImageSet::~ImageSet() = default;

QString ImageSet::name() const
{
    const auto *own = wrapped<OssImageSet>();
    return own ? own->name() : QString();
}

int ImageSet::resolution() const
{
    const auto *own = wrapped<OssImageSet>();
    return own ? own->resolution() : 0;
}

int ImageSet::bits() const
{
    const auto *own = wrapped<OssImageSet>();
    if (!own)
        return 0;
    if (own->depth() == ByteDepth)
        return 8;
    return own->depth() == OssImageSet::FloatDepth ? 32 : 16;
}

bool ImageSet::isScalar() const
{
    const auto *own = wrapped<OssImageSet>();
    return own && own->isScalar();
}

OssColor ImageSet::fillColor() const
{
    const auto *own = wrapped<OssImageSet>();
    return own ? own->fillColor() : OssColor();
}

QList<int> ImageSet::patches() const
{
    const auto *own = wrapped<OssImageSet>();
    return own ? own->pixels().keys() : QList<int>();
}

} // namespace Ossa
