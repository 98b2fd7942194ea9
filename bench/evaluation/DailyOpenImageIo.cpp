#include "DailyWork.h"

#include <OpenImageIO/imagebuf.h>
#include <OpenImageIO/imagebufalgo.h>

using namespace DailyWork;

namespace {

namespace Algo = OIIO::ImageBufAlgo;
using Buffer = OIIO::ImageBuf;

Buffer waves(int channels)
{
    Buffer made(OIIO::ImageSpec(Edge, Edge, channels, OIIO::TypeFloat));
    for (Buffer::Iterator<float> at(made); !at.done(); ++at) {
        for (int k = 0; k < channels; ++k)
            at[k] = WavePicture::valueAt(at.x(), at.y(), k);
    }
    return made;
}

/// Where each texel comes from, as shares of the picture.
Buffer movedBy(const Buffer &waves)
{
    Buffer places(OIIO::ImageSpec(Edge, Edge, 2, OIIO::TypeFloat));
    Buffer::ConstIterator<float> from(waves);
    for (Buffer::Iterator<float> at(places); !at.done(); ++at, ++from) {
        at[0] = float((at.x() + 0.5) / Edge + WarpAmount * (from[0] - 0.5));
        at[1] = float((at.y() + 0.5) / Edge + WarpAmount * (from[1] - 0.5));
    }
    return places;
}

} // namespace

Figures DailyWork::ofOpenImageIo()
{
    const Buffer picture = waves(4);
    const Buffer places = movedBy(picture);
    const OIIO::ROI all = picture.roi();
    Buffer to(picture.spec());
    const auto around = [](double deviation) {
        return float(6.0 * deviation + 1.0);
    };
    const Buffer gauss = Algo::make_kernel("gaussian", around(BlurDeviation),
                                           around(BlurDeviation));
    const auto wide = [](int radius) {
        return 2 * radius + 1;
    };
    return {{"blur", best([&] { Algo::convolve(to, picture, gauss, true, all, 1); })},
            {"merge", best([&] { Algo::over(to, picture, picture, all, 1); })},
            {"levels", best([&] {
                 Algo::contrast_remap(to, picture, 0.1F, 0.9F, 0.0F, 1.0F, 1.0F, 0.5F, all, 1);
             })},
            {"transform", best([&] {
                 Algo::rotate(to, picture, float(Degrees * M_PI / 180.0), "triangle", 2.0F, false,
                              all, 1);
             })},
            {"warp", best([&] {
                 Algo::st_warp(to, picture, places, "triangle", 2.0F, 0, 1, false, false, all, 1);
             })},
            {"sharpen", best([&] {
                 Algo::unsharp_mask(to, picture, "gaussian", around(SharpenDeviation), 0.5F, 0.0F,
                                    all, 1);
             })},
            {"growBright",
             best([&] { Algo::dilate(to, picture, wide(GrowRadius), wide(GrowRadius), all, 1); })},
            {"median", best([&] {
                 Algo::median_filter(to, picture, wide(MedianRadius), wide(MedianRadius), all, 1);
             })}};
}
