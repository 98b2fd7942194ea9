// What changes from UDIM patch to patch: values, colours, places, and which input shows.

#include "OssEvaluation/Kernels/Chance.h"
#include "OssEvaluation/Kernels/Families.h"
#include "OssEvaluation/Kernels/Logic/Pick.h"
#include "OssEvaluation/Kernels/PointKernel.h"
#include "OssEvaluation/Kernels/Scratch.h"
#include "OssEvaluation/Values/OssEvPatch.h"
#include "OssEvaluation/Values/OssEvTileGrid.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Operation = std::shared_ptr<const OssEvOperation>;

using OssEvPick::Most;

/// Another for each `use`.
double chance(int patch, int seed, std::uint32_t use)
{
    return OssEvChance(std::uint32_t(patch), std::uint32_t(seed), use);
}

/// Patches and what is said of them: "1001-1004, 1011" or, with a number for each, "1001-1004:2, 1011:3".
class PatchList
{
public:
    static OssEvResult read(std::string_view text, bool hasNumbers, PatchList *list)
    {
        list->m_ranges.clear();
        while (!text.empty()) {
            const std::size_t end = text.find(',');
            std::string_view item = text.substr(0, end);
            text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
            if (item.find_first_not_of(" \t\r\n") == std::string_view::npos)
                continue;
            Range range;
            const std::string shown(item);
            bool isGood = takeNumber(&item, &range.first);
            range.last = range.first;
            if (isGood && takeSign(&item, '-'))
                isGood = takeNumber(&item, &range.last);
            if (isGood && hasNumbers)
                isGood = takeSign(&item, ':') && takeNumber(&item, &range.number);
            if (!isGood || item.find_first_not_of(" \t\r\n") != std::string_view::npos
                || !OssEvPatch::isValid(range.first) || !OssEvPatch::isValid(range.last)
                || (hasNumbers && (range.number < 1 || range.number > Most)))
                return OssEvResult::failure("\"" + shown + "\" names no patches"
                                            + (hasNumbers ? " with an input, as 1001-1004:2" : ""));
            list->m_ranges.push_back(range);
        }
        return {};
    }

    /// 0 where nothing is said; the first that says something counts.
    int numberOf(int patch) const
    {
        for (const Range &range : m_ranges) {
            if (patch >= range.first && patch <= range.last)
                return range.number;
        }
        return 0;
    }

private:
    struct Range
    {
        int first = 0;
        int last = 0;
        int number = 1;
    };

    static void skip(std::string_view *text)
    {
        text->remove_prefix(std::min(text->find_first_not_of(" \t\r\n"), text->size()));
    }

    static bool takeSign(std::string_view *text, char sign)
    {
        skip(text);
        if (text->empty() || text->front() != sign)
            return false;
        text->remove_prefix(1);
        return true;
    }

    static bool takeNumber(std::string_view *text, int *number)
    {
        skip(text);
        const auto read = std::from_chars(text->data(), text->data() + text->size(), *number);
        text->remove_prefix(std::size_t(read.ptr - text->data()));
        return read.ec == std::errc();
    }

    std::vector<Range> m_ranges;
};

struct VariationValues
{
    enum Output { Varied, Random, Color, Offset };

    int output = Varied;
    std::array<float, 4> plain{}; ///< of outputs that do not look at the input
    /// Rows of three, by which colours are multiplied.
    std::array<float, 9> matrix{};
};

/// Turned about the gray axis by an angle, stretched away from it, and made brighter.
std::array<float, 9> variation(double turn, double saturation, double value)
{
    const double c = std::cos(turn);
    const double s = std::sin(turn) / std::sqrt(3.0);
    std::array<float, 9> matrix{};
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t column = 0; column < 3; ++column) {
            const bool isSame = row == column;
            const bool isNext = column == (row + 2) % 3;
            const double turned = (1.0 - c) / 3.0 + (isSame ? c : isNext ? s : -s);
            const double gray = 1.0 / 3.0;
            matrix[3 * row + column] = float(value * (gray + (turned - gray) * saturation));
        }
    }
    return matrix;
}

void patchVariation(const OssEvStrip &strip, const VariationValues &values)
{
    if (values.output != VariationValues::Varied) {
        for (std::size_t k = 0; k < std::size_t(strip.outputChannels); ++k)
            std::fill_n(strip.output[k], strip.texels(), values.plain[k]);
        return;
    }
    const auto &from = strip.inputs[0].plane;
    const std::array<float, 9> &m = values.matrix;
    for (std::size_t i = 0; i < strip.texels(); ++i) {
        const float r = from[0][i];
        const float g = from[1][i];
        const float b = from[2][i];
        for (std::size_t k = 0; k < 3; ++k) {
            strip.output[k][i] = std::max(m[3 * k] * r + m[3 * k + 1] * g + m[3 * k + 2] * b, 0.0F);
        }
    }
    std::copy_n(from[3], strip.texels(), strip.output[3]);
}

Operation makeVariation(const OssEvKernelSetup &setup)
{
    const int patch = setup.frame().patch;
    const int seed = setup.integer("Seed");
    const auto between = [&](const char *name, std::uint32_t use) {
        return (2.0 * chance(patch, seed, use) - 1.0) * setup.real(name);
    };
    VariationValues values;
    values.output = setup.output();
    values.matrix = variation(6.283185307179586 * between("Hue", 0), 1.0 + between("Saturation", 1),
                              std::exp2(between("Brightness", 2)));
    values.plain = {float(chance(patch, seed, 3)), 0.0F, 0.0F, 1.0F};
    for (std::uint32_t k = 0; k < 3 && values.output != VariationValues::Random; ++k)
        values.plain[k] = float(chance(patch, seed, 4 + k));
    if (values.output == VariationValues::Offset)
        values.plain = {float(between("Offset", 7)), float(between("Offset", 8)), 0.0F, 0.0F};
    auto operation = std::make_shared<OssEvPointKernel<VariationValues>>(patchVariation, values);
    operation->defaults = {setup.premultiplied("Color")};
    operation->ignored = values.output == VariationValues::Varied ? 0U : 1U;
    return operation;
}

/// Each patch shows the input from another place, turned and mirrored, texel by texel: nothing is softened.
class PatchOffset : public OssEvAreaOperation
{
public:
    explicit PatchOffset(const OssEvKernelSetup &setup)
        : OssEvAreaOperation({{0, 0}})
        , m_frame(setup.frame())
    {
        const int patch = m_frame.patch;
        const int seed = setup.integer("Seed");
        const double amount = setup.real("Amount");
        m_x = int(std::lround(chance(patch, seed, 0) * amount * m_frame.width));
        m_y = int(std::lround(chance(patch, seed, 1) * amount * m_frame.height));
        m_turns = setup.flag("Turn") && m_frame.width == m_frame.height
                      ? int(chance(patch, seed, 2) * 4.0)
                      : 0;
        m_mirrors = setup.flag("Mirror") && chance(patch, seed, 3) < 0.5;
    }

    OssEvRegion needed(std::size_t /*tap*/, const OssEvRegion &block) const override
    {
        return m_x == 0 && m_y == 0 && m_turns == 0 && !m_mirrors ? block : m_frame.region();
    }

    void run(const OssEvBlock &block) const override
    {
        OssEvScratch scratch;
        const OssEvRegion all = m_frame.region();
        const OssEvRegion from = needed(0, block.region);
        const OssEvPlane plane(&scratch, from.width, from.height);
        for (int k = 0; k < block.outputChannels; ++k) {
            if (block.cancel != nullptr && block.cancel->isCancelled())
                return;
            block.inputs[0].assemble(k, from, OssEvTileGrid::Border::Clamp, plane.data,
                                     plane.stride);
            for (int y = 0; y < block.region.height; ++y) {
                float *to = block.output[std::size_t(k)] + std::ptrdiff_t(y) * block.stride;
                for (int x = 0; x < block.region.width; ++x) {
                    if (from.width != all.width || from.height != all.height) {
                        to[x] = plane.row(y)[x];
                        continue;
                    }
                    const auto [column, line] = placeOf(block.region.x + x, block.region.y + y);
                    to[x] = plane.row(line)[column];
                }
            }
        }
    }

private:
    std::pair<int, int> placeOf(int x, int y) const
    {
        const auto within = [](int value, int size) {
            const int rest = value % size;
            return rest < 0 ? rest + size : rest;
        };
        int column = within(x, m_frame.width);
        int line = within(y, m_frame.height);
        for (int turn = 0; turn < m_turns; ++turn) {
            std::swap(column, line);
            line = m_frame.height - 1 - line;
        }
        if (m_mirrors)
            column = m_frame.width - 1 - column;
        return {within(column + m_x, m_frame.width), within(line + m_y, m_frame.height)};
    }

    OssEvFrame m_frame;
    int m_x = 0;
    int m_y = 0;
    int m_turns = 0;
    bool m_mirrors = false;
};

enum Order { InTurn, ByChance, List };

Operation makeForEach(const OssEvKernelSetup &setup)
{
    std::vector<int> connected;
    for (int i = 0; i < Most; ++i) {
        if (setup.isConnected(std::size_t(i)))
            connected.push_back(i);
    }
    const int patch = setup.frame().patch;
    int input = 0;
    const int order = setup.integer("Order");
    if (order == List) {
        PatchList list;
        const bool isGood = bool(PatchList::read(setup.text("List"), true, &list));
        input = std::max(isGood ? list.numberOf(patch) : 0, 1) - 1;
    } else if (!connected.empty()) {
        const auto count = connected.size();
        const auto place = order == InTurn ? std::size_t(patch - OssEvPatch::First) % count
                                           : std::size_t(chance(patch, setup.integer("Seed"), 0)
                                                         * double(count));
        input = connected[std::min(place, count - 1)];
    }
    return OssEvPick::make(input + 1);
}

OssEvResult checkList(const OssEvParameters &parameters, const char *name, bool hasNumbers)
{
    PatchList list;
    return PatchList::read(std::get<std::string>(parameters.at(name)), hasNumbers, &list);
}

struct MaskValues
{
    float value;
};

void fill(const OssEvStrip &strip, const MaskValues &values)
{
    std::fill_n(strip.output[0], strip.texels(), values.value);
}

void addChosen(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    OssEvKernel each;
    each.name = "forEachPatch";
    for (int i = 1; i <= Most; ++i)
        each.inputs.push_back({"Input " + std::to_string(i), 0});
    each.outputs = {{"Output", 0}};
    each.parameters = {choice("Order", {"In Turn", "By Chance", "List"}), text("List"),
                       integer("Seed", 1, 0, 9999)};
    each.uniform = true;
    each.keepsPrecision = true;
    each.check = [](const OssEvParameters &parameters) {
        return checkList(parameters, "List", true);
    };
    each.make = makeForEach;
    kernels->push_back(each);

    OssEvKernel mask;
    mask.name = "patchMask";
    mask.outputs = {{"Output", 1}};
    mask.parameters = {text("Patches"), flag("Invert", false)};
    mask.parameters[0].fallback = std::string("1001");
    mask.uniform = true;
    mask.check = [](const OssEvParameters &parameters) {
        return checkList(parameters, "Patches", false);
    };
    mask.make = [](const OssEvKernelSetup &setup) {
        PatchList list;
        const bool isGood = bool(PatchList::read(setup.text("Patches"), false, &list));
        const bool isMeant = isGood && list.numberOf(setup.frame().patch) > 0;
        return OssEvMakePoint(fill, MaskValues{isMeant != setup.flag("Invert") ? 1.0F : 0.0F});
    };
    kernels->push_back(mask);
}

} // namespace

void OssEvFamilies::addPatches(std::vector<OssEvKernel> *kernels)
{
    using namespace OssEvDescribe;
    addChosen(kernels);

    OssEvKernel varies;
    varies.name = "patchVariation";
    varies.inputs = {{"Input", 4}};
    varies.outputs = {{"Output", 4}, {"Random", 1, true}, {"Color", 4}, {"Offset", 3, true}};
    varies.parameters = {color("Color", {0.5F, 0.35F, 0.25F, 1.0F}),
                         real("Hue", 0.05, 0, 0.5),
                         real("Saturation", 0.2, 0, 1),
                         real("Brightness", 0.4, 0, 4),
                         real("Offset", 0.5, 0, 10),
                         integer("Seed", 1, 0, 9999)};
    varies.uniform = true;
    varies.make = makeVariation;
    kernels->push_back(varies);

    OssEvKernel offset;
    offset.name = "patchOffset";
    offset.inputs = {{"Input", 0, true}};
    offset.outputs = {{"Output", 0}};
    offset.parameters = {real("Amount", 1, 0, 1), flag("Turn", true), flag("Mirror", false),
                         integer("Seed", 1, 0, 9999)};
    offset.keepsPrecision = true;
    offset.make = [](const OssEvKernelSetup &setup) {
        return std::make_shared<PatchOffset>(setup);
    };
    kernels->push_back(offset);
}
