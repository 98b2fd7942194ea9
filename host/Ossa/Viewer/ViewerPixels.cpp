#include "Ossa/Viewer/ViewerPixels.h"

#include "OssModel/Images/OssColorManagement.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int tileSize = OssEvTile::Size;

bool isPlain(const std::string &view)
{
    return view == OssEvColorSpaces::Data;
}

ViewerScreen firstScreen(const OssEvColorSpaces &colors)
{
    for (const std::string &display : colors.displays()) {
        const std::vector<std::string> views = colors.views(display);
        const auto found = std::find_if_not(views.begin(), views.end(), isPlain);
        if (found != views.end())
            return {display, *found};
    }
    return {};
}

OssEvResult toScreen(const ViewerLook &look, float *row, int count)
{
    const OssEvColorSpaces::Pointer colors = OssColorManagement::spaces();
    const ViewerScreen screen = look.screen.display.empty() ? firstScreen(*colors) : look.screen;
    return colors->toDisplay(screen.display, screen.view, look.exposure, look.gamma, row,
                             std::size_t(count));
}

int byteOf(float value)
{
    return int(std::lround(std::clamp(value, 0.0F, 1.0F) * 255.0F));
}

} // namespace

QVector<ViewerScreen> ViewerPixels::screens(const OssEvColorSpaces &colors)
{
    QVector<ViewerScreen> found;
    for (const std::string &display : colors.displays()) {
        for (const std::string &view : colors.views(display)) {
            if (!isPlain(view))
                found.append({display, view});
        }
    }
    return found;
}

QString ViewerPixels::titleOf(const ViewerScreen &screen, const QVector<ViewerScreen> &screens)
{
    const auto isSame = [&screen](const ViewerScreen &other) {
        return other.display == screen.display;
    };
    const QString display = QString::fromStdString(screen.display);
    return std::count_if(screens.cbegin(), screens.cend(), isSame) < 2
               ? display
               : QStringLiteral("%1: %2").arg(display, QString::fromStdString(screen.view));
}

void ViewerPixels::read(const OssEvTile &tile, int x, int y, int count, float *rgba)
{
    const int channels = tile.channels();
    for (int i = 0; i < count; ++i, rgba += 4) {
        rgba[3] = 1.0F;
        for (int c = 0; c < channels; ++c)
            rgba[c] = tile.texel(c, x + i, y);
        if (channels == 1)
            rgba[1] = rgba[2] = rgba[0];
    }
}

void ViewerPixels::show(float *rgba, int count, bool isColor, const ViewerLook &look, QRgb *line)
{
    for (int i = 0; i < count; ++i) {
        float *texel = rgba + std::ptrdiff_t(4) * i;
        if (look.channels != ViewerLook::Alpha && texel[3] > 0.0F) {
            for (int c = 0; c < 3; ++c)
                texel[c] /= texel[3];
        }
        if (look.channels != ViewerLook::Color) {
            const float one = texel[look.channels - ViewerLook::Red];
            texel[0] = texel[1] = texel[2] = one;
            texel[3] = 1.0F;
        }
    }
    // Masks and single channels are numbers, not light.
    const bool transform = !look.raw && isColor && look.channels != ViewerLook::Alpha;
    const OssEvResult shown = transform ? toScreen(look, rgba, count) : OssEvResult();
    const float gain = transform ? 1.0F : float(std::exp2(look.exposure));
    for (int i = 0; i < count; ++i) {
        const float *texel = rgba + std::ptrdiff_t(4) * i;
        line[i] = shown ? qRgba(byteOf(texel[0] * gain), byteOf(texel[1] * gain),
                                byteOf(texel[2] * gain), byteOf(texel[3]))
                        : qRgba(255, 0, 255, 255);
    }
}

QImage ViewerPixels::picture(const OssEvTile &tile, const ViewerLook &look)
{
    QImage image(tileSize, tileSize, QImage::Format_ARGB32);
    constexpr int texels = tileSize * tileSize;
    std::vector<float> rgba(std::size_t(4) * texels);
    for (int y = 0; y < tileSize; ++y)
        read(tile, 0, y, tileSize, &rgba[std::size_t(4) * tileSize * std::size_t(y)]);
    // Rows of 32 bits lie one behind the other.
    show(rgba.data(), texels, tile.channels() > 1, look, reinterpret_cast<QRgb *>(image.bits()));
    return image;
}
