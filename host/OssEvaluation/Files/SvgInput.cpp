#include "OssEvaluation/Files/SvgInput.h"

#include <librsvg/rsvg.h>
#include <OpenImageIO/imageio.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <mutex>
#include <new>
#include <string>

namespace {

// More is no drawing.
constexpr std::streamoff LargestFile = 64 << 20;

struct Release
{
    void operator()(RsvgHandle *handle) const { g_object_unref(handle); }

    void operator()(cairo_surface_t *surface) const { cairo_surface_destroy(surface); }

    void operator()(cairo_t *context) const { cairo_destroy(context); }
};

using Handle = std::unique_ptr<RsvgHandle, Release>;
using Surface = std::unique_ptr<cairo_surface_t, Release>;

/// The words of an error, which is freed.
std::string wordsOf(GError *fault)
{
    std::string words = fault != nullptr ? fault->message : "it is damaged";
    g_clear_error(&fault);
    return words;
}

/// Drawn when the first row is wanted; the pixels go when the last one was read.
class SvgInput final : public OIIO::ImageInput
{
public:
    const char *format_name() const override { return "svg"; }

    bool open(const std::string &name, OIIO::ImageSpec &spec) override
    {
        return open(name, spec, OIIO::ImageSpec());
    }

    bool open(const std::string &name, OIIO::ImageSpec &spec,
              const OIIO::ImageSpec &wishes) override
    {
        close();
        std::ifstream file(name, std::ios::binary | std::ios::ate);
        const std::streamoff size = file ? std::streamoff(file.tellg()) : 0;
        if (size <= 0 || size > LargestFile) {
            errorfmt("{}", size <= 0 ? "there is nothing in it" : "it is too large");
            return false;
        }
        file.seekg(0);
        const std::string data{std::istreambuf_iterator<char>(file), {}};
        GError *fault = nullptr;
        // From its data alone it finds no other files.
        m_drawing.reset(rsvg_handle_new_from_data(reinterpret_cast<const guint8 *>(data.data()),
                                                  gsize(data.size()), &fault));
        if (!m_drawing) {
            errorfmt("{}", wordsOf(fault));
            return false;
        }
        m_spec = OIIO::ImageSpec(OssEvSvgInput::Side, OssEvSvgInput::Side, 4,
                                 OIIO::TypeDesc::UINT8);
        m_spec.attribute("oiio:ColorSpace", "sRGB");
        m_isDivided = wishes.get_int_attribute("oiio:UnassociatedAlpha", 0) != 0;
        if (m_isDivided)
            m_spec.attribute("oiio:UnassociatedAlpha", 1);
        spec = m_spec;
        return true;
    }

    bool close() override
    {
        m_pixels.reset();
        m_drawing.reset();
        return true;
    }

    bool read_native_scanline(int subimage, int level, int y, int, void *data) override
    {
        if (subimage != 0 || level != 0 || y < 0 || y >= m_spec.height || !draw())
            return false;
        const unsigned char *row = cairo_image_surface_get_data(m_pixels.get())
                                   + std::ptrdiff_t(y)
                                         * cairo_image_surface_get_stride(m_pixels.get());
        const auto *from = reinterpret_cast<const std::uint32_t *>(row); // cairo aligns rows
        auto *to = static_cast<std::uint8_t *>(data);
        for (int x = 0; x < m_spec.width; ++x, to += 4)
            copy(from[x], to);
        if (y + 1 == m_spec.height)
            m_pixels.reset();
        return true;
    }

private:
    void copy(std::uint32_t pixel, std::uint8_t *to) const
    {
        const std::uint32_t alpha = pixel >> 24U;
        const auto channel = [&](unsigned shift) {
            const std::uint32_t value = pixel >> shift & 0xFFU;
            if (!m_isDivided || alpha == 0)
                return std::uint8_t(value);
            return std::uint8_t(std::min(255U, (value * 255U + alpha / 2) / alpha));
        };
        to[0] = channel(16U);
        to[1] = channel(8U);
        to[2] = channel(0U);
        to[3] = std::uint8_t(alpha);
    }

    bool draw()
    {
        if (m_pixels)
            return true;
        if (!m_drawing)
            return false;
        m_pixels.reset(
            cairo_image_surface_create(CAIRO_FORMAT_ARGB32, m_spec.width, m_spec.height));
        const std::unique_ptr<cairo_t, Release> context(cairo_create(m_pixels.get()));
        if (cairo_status(context.get()) != CAIRO_STATUS_SUCCESS)
            throw std::bad_alloc();
        const RsvgRectangle all{0.0, 0.0, double(m_spec.width), double(m_spec.height)};
        GError *fault = nullptr;
        if (rsvg_handle_render_document(m_drawing.get(), context.get(), &all, &fault) == FALSE) {
            m_pixels.reset();
            errorfmt("{}", wordsOf(fault));
            return false;
        }
        cairo_surface_flush(m_pixels.get());
        return true;
    }

    Handle m_drawing;
    Surface m_pixels;
    bool m_isDivided = false;
};

} // namespace

void OssEvSvgInput::makeKnown()
{
    static std::once_flag once;
    std::call_once(once, [] {
        static const char *suffixes[] = {"svg", nullptr};
        const auto make = []() -> OIIO::ImageInput * {
            return new SvgInput; // OpenImageIO owns it
        };
        OIIO::declare_imageio_format("svg", make, suffixes, nullptr, nullptr, nullptr);
    });
}
