#include "Ossa/ViewerPixels.h"

#include "OssEvaluation/Files/OssEvColorSpaces.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr int Size = OssEvTile::Size;

/// What the pictures are made for: the first display of the colour configuration and its view.
struct Screen
{
    std::shared_ptr<const OssEvColorSpaces> spaces = OssEvColorSpaces::builtIn();
    std::string display;
    std::string view;

    Screen()
    {
        const std::vector<std::string> displays = spaces->displays();
        display = displays.empty() ? std::string() : displays.front();
        const std::vector<std::string> views = spaces->views(display);
        view = views.empty() ? std::string() : views.front();
    }

    OssEvResult show(const ViewerLook &look, float *row) const
    {
        return spaces->toDisplay(display, view, look.exposure, look.gamma, row, Size);
    }
};

int byteOf(float value)
{
    return int(std::lround(std::clamp(value, 0.0F, 1.0F) * 255.0F));
}

/// One row as RGBA, not premultiplied, with the channel that is wanted in all three colours.
void readRow(const OssEvTile &tile, int y, const ViewerLook &look, float *rgba)
{
    const int channels = tile.channels();
    for (int x = 0; x < Size; ++x, rgba += 4) {
        float texel[4] = {0.0F, 0.0F, 0.0F, 1.0F};
        for (int c = 0; c < channels; ++c)
            texel[c] = tile.texel(c, x, y);
        if (channels == 1)
            texel[1] = texel[2] = texel[0];
        if (channels == 4 && look.channels != ViewerLook::Alpha && texel[3] > 0.0F) {
            for (int c = 0; c < 3; ++c)
                texel[c] /= texel[3];
        }
        if (look.channels != ViewerLook::Color) {
            const float one = texel[look.channels - ViewerLook::Red];
            texel[0] = texel[1] = texel[2] = one;
            texel[3] = 1.0F;
        }
        std::copy(texel, texel + 4, rgba);
    }
}

} // namespace

QImage ViewerPixels::picture(const OssEvTile &tile, const ViewerLook &look)
{
    static const Screen screen;
    QImage image(Size, Size, QImage::Format_ARGB32);
    std::vector<float> row(Size * 4);
    // Masks and single channels are numbers, not light.
    const bool transform = !look.raw && tile.channels() > 1 && look.channels != ViewerLook::Alpha;
    for (int y = 0; y < Size; ++y) {
        readRow(tile, y, look, row.data());
        const OssEvResult shown = transform ? screen.show(look, row.data()) : OssEvResult();
        auto *line = reinterpret_cast<QRgb *>(image.scanLine(y));
        const float gain = transform ? 1.0F : float(std::exp2(look.exposure));
        for (int x = 0; x < Size; ++x) {
            const float *texel = row.data() + 4 * x;
            line[x] = shown ? qRgba(byteOf(texel[0] * gain), byteOf(texel[1] * gain),
                                    byteOf(texel[2] * gain), byteOf(texel[3]))
                            : qRgba(255, 0, 255, 255);
        }
    }
    return image;
}
