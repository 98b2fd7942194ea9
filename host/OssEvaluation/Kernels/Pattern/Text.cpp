#include "OssEvaluation/Kernels/Pattern/Text.h"

#include "OssEvaluation/Graph/OssEvOperation.h"

#include <fontconfig/fontconfig.h>

#include <ft2build.h>
#include FT_FREETYPE_H
#include FT_OUTLINE_H

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <utility>

namespace {

/// More is no lettering.
constexpr std::size_t LongestText = 4096;

/// One library for each thread: it keeps memory for drawing, and may not be used by two at once.
FT_Library library()
{
    struct Owner
    {
        FT_Library own = nullptr;

        Owner()
        {
            if (FT_Init_FreeType(&own) != 0)
                own = nullptr;
        }

        Owner(const Owner &) = delete;
        Owner &operator=(const Owner &) = delete;

        ~Owner()
        {
            if (own != nullptr)
                FT_Done_FreeType(own);
        }
    };

    thread_local const Owner owner;
    return owner.own;
}

/// The file of a font that is meant by a family such as "Serif:bold", or a file's own name.
std::string fontFile(const std::string &font)
{
    if (font.find('/') != std::string::npos)
        return font;
    std::string file;
    const std::string family = font.empty() ? "Sans:bold" : font;
    FcPattern *wanted = FcNameParse(reinterpret_cast<const FcChar8 *>(family.c_str()));
    if (wanted == nullptr)
        return file;
    FcConfigSubstitute(nullptr, wanted, FcMatchPattern);
    FcDefaultSubstitute(wanted);
    FcResult result = FcResultNoMatch;
    FcPattern *found = FcFontMatch(nullptr, wanted, &result);
    FcChar8 *name = nullptr;
    if (found != nullptr && FcPatternGetString(found, FC_FILE, 0, &name) == FcResultMatch)
        file = reinterpret_cast<const char *>(name);
    if (found != nullptr)
        FcPatternDestroy(found);
    FcPatternDestroy(wanted);
    return file;
}

/// How many bytes follow one that begins a character of UTF-8; -1 where none may begin.
int followersOf(unsigned char first)
{
    if (first < 0x80)
        return 0;
    if (first < 0xC0)
        return -1;
    return first < 0xE0 ? 1 : first < 0xF0 ? 2 : 3;
}

/// The characters of UTF-8; what is none of it is left out.
std::vector<char32_t> charactersOf(const std::string &text)
{
    std::vector<char32_t> characters;
    for (std::size_t i = 0; i < text.size() && characters.size() < LongestText;) {
        const auto first = static_cast<unsigned char>(text[i++]);
        int more = followersOf(first);
        if (more < 0)
            continue;
        char32_t character = more == 0 ? first : first & (0x3FU >> unsigned(more));
        for (; more > 0 && i < text.size(); --more, ++i) {
            const auto next = static_cast<unsigned char>(text[i]);
            if ((next & 0xC0U) != 0x80U)
                break;
            character = character << 6U | (next & 0x3FU);
        }
        if (more == 0)
            characters.push_back(character);
    }
    return characters;
}

/// The outline of a letter, in texture coordinates.
struct Letter
{
    std::vector<std::array<double, 2>> points;
    std::vector<char> tags;
    std::vector<short> contours;
};

struct Line
{
    std::vector<Letter> letters; ///< from the line's start on, in widths of an em
    double width = 0.0;
};

Letter letterOf(const FT_Outline &outline, double at, double unit)
{
    Letter letter;
    for (int i = 0; i < outline.n_points; ++i)
        letter.points.push_back(
            {at + double(outline.points[i].x) * unit, double(outline.points[i].y) * unit});
    letter.tags.assign(outline.tags, outline.tags + outline.n_points);
    letter.contours.assign(outline.contours, outline.contours + outline.n_contours);
    return letter;
}

std::vector<Line> linesOf(const std::string &text, const std::string &font, double spacing)
{
    std::vector<Line> lines(1);
    FT_Face face = nullptr;
    if (library() == nullptr || FT_New_Face(library(), fontFile(font).c_str(), 0, &face) != 0)
        return lines;
    const double unit = face->units_per_EM > 0 ? 1.0 / face->units_per_EM : 0.0;
    FT_UInt before = 0;
    for (const char32_t character : charactersOf(text)) {
        if (character == U'\n') {
            lines.emplace_back();
            before = 0;
            continue;
        }
        Line &line = lines.back();
        const FT_UInt index = FT_Get_Char_Index(face, character);
        FT_Vector kerning{0, 0};
        if (before != 0 && FT_Get_Kerning(face, before, index, FT_KERNING_UNSCALED, &kerning) == 0)
            line.width += double(kerning.x) * unit;
        before = index;
        if (FT_Load_Glyph(face, index, FT_LOAD_NO_SCALE) != 0)
            continue;
        if (face->glyph->format == FT_GLYPH_FORMAT_OUTLINE && face->glyph->outline.n_points > 0)
            line.letters.push_back(letterOf(face->glyph->outline, line.width, unit));
        line.width += double(face->glyph->metrics.horiAdvance) * unit + spacing;
    }
    FT_Done_Face(face);
    return lines;
}

/// Where a strip's texels get what a letter covers of them.
struct Cover
{
    float *plane;
    int width;
    int rows;
};

void addSpans(int y, int count, const FT_Span *spans, void *user)
{
    const Cover &cover = *static_cast<const Cover *>(user);
    const int row = cover.rows - 1 - y;
    if (row < 0 || row >= cover.rows)
        return;
    float *to = cover.plane + std::ptrdiff_t(row) * cover.width;
    for (int i = 0; i < count; ++i) {
        const int from = std::max(0, int(spans[i].x));
        const int end = std::min(cover.width, int(spans[i].x) + int(spans[i].len));
        for (int x = from; x < end; ++x)
            to[x] = std::min(1.0F, to[x] + float(spans[i].coverage) / 255.0F);
    }
}

class Lettering : public OssEvPointOperation
{
public:
    Lettering(std::vector<Letter> letters, bool masked)
        : m_letters(std::move(letters))
        , m_masked(masked)
    {
    }

    void run(const OssEvStrip &strip) const override
    {
        // The last plane is the mask until it gets its own values.
        float *mask = strip.output[std::size_t(strip.outputChannels) - 1];
        std::fill_n(mask, strip.texels(), 0.0F);
        Cover cover{mask, strip.width, strip.rows};
        for (const Letter &letter : m_letters)
            draw(letter, strip, &cover);
        if (m_masked)
            return;
        for (std::size_t i = 0; i < strip.texels(); ++i) {
            const float t = mask[i];
            for (std::size_t k = 0; k < 4; ++k) {
                const float around = strip.inputs[1].plane[k][i];
                strip.output[k][i] = around + (strip.inputs[0].plane[k][i] - around) * t;
            }
        }
    }

private:
    static void draw(const Letter &letter, const OssEvStrip &strip, Cover *cover)
    {
        // From the strip's lower left corner on, in parts of a texel.
        const double left = strip.x;
        const double bottom = double(strip.frame.height) - strip.y - strip.rows;
        std::vector<FT_Vector> points;
        points.reserve(letter.points.size());
        double low = 1e9;
        double high = -1e9;
        for (const std::array<double, 2> &point : letter.points) {
            const double x = point[0] * strip.frame.width - left;
            const double y = point[1] * strip.frame.height - bottom;
            low = std::min(low, y);
            high = std::max(high, y);
            if (std::abs(x) > 1e5 || std::abs(y) > 1e5)
                return;
            points.push_back({FT_Pos(std::lround(x * 64.0)), FT_Pos(std::lround(y * 64.0))});
        }
        if (high < 0.0 || low > strip.rows || library() == nullptr)
            return;
        std::vector<char> tags = letter.tags;
        std::vector<short> contours = letter.contours;
        FT_Outline outline{};
        outline.n_contours = short(contours.size());
        outline.n_points = short(points.size());
        outline.points = points.data();
        outline.tags = tags.data();
        outline.contours = contours.data();
        FT_Raster_Params parameters{};
        parameters.flags = FT_RASTER_FLAG_AA | FT_RASTER_FLAG_DIRECT | FT_RASTER_FLAG_CLIP;
        parameters.gray_spans = addSpans;
        parameters.user = cover;
        parameters.clip_box = {0, 0, strip.width, strip.rows};
        FT_Outline_Render(library(), &outline, &parameters);
    }

    std::vector<Letter> m_letters;
    bool m_masked;
};

/// The letters of all lines where they come to stand.
std::vector<Letter> placed(const OssEvKernelSetup &setup)
{
    std::vector<Line> lines = linesOf(setup.text("Text"), setup.text("Font"),
                                      setup.real("Spacing"));
    const double size = setup.real("Size");
    const double step = setup.real("LineHeight");
    const double angle = setup.real("Rotation") * 0.017453292519943295;
    const OssEvVector2 middle = setup.vector("Center");
    // Capitals are about so high.
    double y = (double(lines.size()) - 1.0) * step / 2.0 - 0.36;
    std::vector<Letter> letters;
    for (Line &line : lines) {
        const double start = -line.width * 0.5 * setup.integer("Alignment");
        for (Letter &letter : line.letters) {
            for (std::array<double, 2> &point : letter.points) {
                const double px = (point[0] + start) * size;
                const double py = (point[1] + y) * size;
                point = {middle[0] + px * std::cos(angle) - py * std::sin(angle),
                         middle[1] + px * std::sin(angle) + py * std::cos(angle)};
            }
            letters.push_back(std::move(letter));
        }
        y -= step;
    }
    return letters;
}

} // namespace

void OssEvAddText(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = "text";
    kernel.inputs = {{"Color", 4}, {"Background", 4}};
    kernel.outputs = {{"Output", 4}, {"Mask", 1}};
    kernel.parameters = {text("Text"),
                         text("Font"),
                         real("Size", 0.25, 0.001, 4),
                         choice("Alignment", {"Left", "Center", "Right"}, 1),
                         real("Spacing", 0, -1, 4),
                         real("LineHeight", 1.2, 0.1, 10),
                         real("Rotation", 0, -360, 360),
                         vector("Center", {0.5, 0.5}),
                         color("Color", {1, 1, 1, 1}),
                         color("Background", {0, 0, 0, 1})};
    kernel.make = [](const OssEvKernelSetup &setup) {
        auto operation = std::make_shared<Lettering>(placed(setup), setup.output() == 1);
        operation->defaults = {setup.premultiplied("Color"), setup.premultiplied("Background")};
        return operation;
    };
    kernels->push_back(kernel);
}
