#include "Ossa/Surfaces/LitPicture.h"

#include <glm/gtc/type_ptr.hpp>

#include <algorithm>
#include <cmath>
#include <future>
#include <thread>
#include <vector>

namespace {

int byteOf(float value)
{
    return int(std::lround(std::clamp(value, 0.0F, 1.0F) * 255.0F));
}

void showRow(const glm::vec4 *row, int width, const LitPicture::Screen &screen,
             std::vector<glm::vec4> *work, QRgb *line)
{
    for (int x = 0; x < width; ++x) {
        const float alpha = row[x].a;
        const glm::vec3 color = alpha > 0.0F ? glm::vec3(row[x]) / alpha : glm::vec3(0.0F);
        (*work)[std::size_t(x)] = glm::vec4(color, alpha);
    }
    const OssEvResult shown = screen.isData
                                  ? OssEvResult()
                                  : screen.colors->toDisplay(screen.display, screen.view,
                                                             screen.exposure, screen.gamma,
                                                             &work->front().x, std::size_t(width));
    for (int x = 0; x < width; ++x) {
        const glm::vec4 &texel = (*work)[std::size_t(x)];
        line[x] = shown ? qPremultiply(
                      qRgba(byteOf(texel.r), byteOf(texel.g), byteOf(texel.b), byteOf(row[x].a)))
                        : qRgba(255, 0, 255, 255);
    }
}

/// With the first display and view where none is named.
LitPicture::Screen completed(LitPicture::Screen screen)
{
    if (screen.display.empty()) {
        const std::vector<std::string> displays = screen.colors->displays();
        screen.display = displays.empty() ? std::string() : displays.front();
    }
    if (screen.view.empty()) {
        const std::vector<std::string> views = screen.colors->views(screen.display);
        screen.view = views.empty() ? std::string() : views.front();
    }
    return screen;
}

} // namespace

QImage LitPicture::shown(const OssRdImage &picture, const Screen &screen)
{
    if (picture.isEmpty())
        return {};
    QImage image(picture.width, picture.height, QImage::Format_ARGB32_Premultiplied);
    uchar *pixels = image.bits();
    const auto step = std::size_t(image.bytesPerLine());
    const Screen whole = completed(screen);
    const int bands = std::clamp(int(std::thread::hardware_concurrency()), 1, picture.height);
    std::vector<std::future<void>> work;
    work.reserve(std::size_t(bands));
    for (int band = 0; band < bands; ++band) {
        work.push_back(std::async(std::launch::async, [&, band] {
            std::vector<glm::vec4> row(std::size_t(picture.width));
            for (int y = band; y < picture.height; y += bands)
                showRow(&picture.at(0, y), picture.width, whole, &row,
                        reinterpret_cast<QRgb *>(pixels + std::size_t(y) * step));
        }));
    }
    for (std::future<void> &one : work)
        one.get();
    return image;
}

glm::mat4 LitPicture::toMatrix(const QMatrix4x4 &matrix)
{
    return glm::make_mat4(matrix.constData());
}
