#include "OssRender/Light/OssRdEnvironment.h"

#include <glm/gtc/constants.hpp>
#include <OpenImageIO/imageio.h>
#include <tbb/parallel_for.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

namespace {

constexpr int OwnWidth = 1024;
constexpr int MostFileWidth = 65536;
constexpr int StripHeight = 16; ///< rows of a file that are read at once

/// How far a value is between two others, with soft ends.
float between(float low, float high, float value)
{
    const float t = std::clamp((value - low) / (high - low), 0.0F, 1.0F);
    return t * t * (3.0F - 2.0F * t);
}

/// A rectangle of light, seen from the origin: a centre, the way up in it, and half its sizes as
/// tangents of angles.
struct Panel
{
    glm::vec3 centre;
    glm::vec2 half;
    glm::vec3 color;
    float softness;

    glm::vec3 light(const glm::vec3 &d) const
    {
        const glm::vec3 z = glm::normalize(centre);
        const float ahead = glm::dot(d, z);
        if (ahead <= 0.0F)
            return glm::vec3(0.0F);
        const glm::vec3 up = std::abs(z.y) > 0.99F ? glm::vec3(0, 0, 1) : glm::vec3(0, 1, 0);
        const glm::vec3 x = glm::normalize(glm::cross(up, z));
        const glm::vec3 y = glm::cross(z, x);
        const glm::vec2 at(std::abs(glm::dot(d, x) / ahead), std::abs(glm::dot(d, y) / ahead));
        return color * (1.0F - between(half.x - softness, half.x + softness, at.x))
               * (1.0F - between(half.y - softness, half.y + softness, at.y));
    }
};

/// Three large soft lights in a dark room with a grey floor.
glm::vec3 studio(const glm::vec3 &d)
{
    static const Panel panels[] = {
        {{-1.0F, 0.9F, 0.9F}, {0.55F, 0.7F}, {7.0F, 6.8F, 6.5F}, 0.05F},
        {{1.3F, 0.35F, 0.2F}, {0.22F, 0.9F}, {4.2F, 4.6F, 5.4F}, 0.04F},
        {{0.1F, 1.0F, -0.6F}, {0.9F, 0.25F}, {5.5F, 5.5F, 5.5F}, 0.06F},
    };
    glm::vec3 light = glm::mix(glm::vec3(0.10F), glm::vec3(0.26F), between(-0.2F, 0.9F, d.y));
    light = glm::mix(glm::vec3(0.17F, 0.165F, 0.16F), light, between(-0.12F, 0.03F, d.y));
    for (const Panel &panel : panels)
        light += panel.light(d);
    return light;
}

/// A sky without a sun, three times as bright above as at the horizon.
glm::vec3 overcast(const glm::vec3 &d)
{
    const float height = std::max(d.y, 0.0F);
    const glm::vec3 sky = glm::vec3(0.92F, 0.97F, 1.05F) * (1.0F + 2.0F * height) / 2.3F;
    const glm::vec3 ground = glm::vec3(0.20F, 0.19F, 0.17F);
    return glm::mix(ground, sky, between(-0.04F, 0.04F, d.y));
}

/// A low sun through haze.
glm::vec3 sunset(const glm::vec3 &d)
{
    static const glm::vec3 sun = glm::normalize(glm::vec3(0.75F, 0.17F, -0.65F));
    const float toSun = std::max(glm::dot(d, sun), 0.0F);
    const float height = std::max(d.y, 0.0F);
    glm::vec3 sky = glm::mix(glm::vec3(1.15F, 0.62F, 0.36F), glm::vec3(0.22F, 0.33F, 0.62F),
                             between(0.0F, 0.55F, height));
    sky += glm::vec3(2.0F, 0.9F, 0.35F) * std::pow(toSun, 8.0F);
    sky += glm::vec3(260.0F, 165.0F, 85.0F) * between(0.9945F, 0.9975F, toSun);
    const glm::vec3 ground = glm::vec3(0.14F, 0.11F, 0.09F) * (1.0F + 1.5F * toSun);
    return glm::mix(ground, sky, between(-0.02F, 0.02F, d.y));
}

/// A room with warm walls, a wooden floor and windows at one side.
glm::vec3 interior(const glm::vec3 &d)
{
    const glm::vec3 room(3.0F, 1.6F, 4.0F);
    const glm::vec3 reach = room / glm::max(glm::abs(d), glm::vec3(1e-5F));
    const float way = std::min({reach.x, reach.y, reach.z});
    const glm::vec3 at = d * way;
    if (way == reach.y)
        return d.y > 0.0F ? glm::vec3(0.55F, 0.52F, 0.47F) : glm::vec3(0.22F, 0.13F, 0.07F);
    const float fade = 0.6F + 0.4F * (at.y + room.y) / (2.0F * room.y);
    const glm::vec3 wall = glm::vec3(0.42F, 0.37F, 0.30F) * fade;
    if (way != reach.x || d.x > 0.0F)
        return wall;
    // Three windows with a sky outside.
    const float pane = std::abs(std::fmod(at.z + room.z, room.z * 2.0F / 3.0F) - room.z / 3.0F);
    const float open = (1.0F - between(0.85F, 0.92F, pane))
                       * (1.0F - between(0.95F, 1.02F, std::abs(at.y - 0.25F)));
    return glm::mix(wall, glm::vec3(9.0F, 10.5F, 13.0F), open);
}

struct Own
{
    const char *name;
    glm::vec3 (*light)(const glm::vec3 &direction);
};

constexpr Own Owns[] = {
    {"Studio", studio}, {"Overcast", overcast}, {"Sunset", sunset}, {"Interior", interior}};

const Own &find(const std::string &name)
{
    const auto *const found = std::find_if(std::begin(Owns), std::end(Owns),
                                           [&name](const Own &one) { return name == one.name; });
    return found == std::end(Owns) ? Owns[0] : *found;
}

/// Over the sphere and the three primaries.
float meanOf(const OssRdPicture &picture)
{
    double sum = 0.0;
    double weights = 0.0;
    for (int y = 0; y < picture.height; ++y) {
        const double weight = std::sin(glm::pi<double>() * (y + 0.5) / picture.height);
        for (int x = 0; x < picture.width; ++x) {
            const glm::vec3 &texel = picture.at(x, y);
            sum += weight * double(texel.r + texel.g + texel.b) / 3.0;
        }
        weights += weight * picture.width;
    }
    return float(sum / weights);
}

bool isWhole(const OssRdPicture &picture)
{
    return std::all_of(picture.texels.cbegin(), picture.texels.cend(), [](const glm::vec3 &texel) {
        return std::isfinite(texel.x) && std::isfinite(texel.y) && std::isfinite(texel.z);
    });
}

/// Rows of a file from `first` on, counted from its top.
bool readRows(OIIO::ImageInput *file, int first, int end, std::vector<glm::vec3> *rows)
{
    const OIIO::ImageSpec &spec = file->spec();
    rows->resize(std::size_t(end - first) * std::size_t(spec.width));
    if (spec.tile_width == 0)
        return file->read_scanlines(0, 0, spec.y + first, spec.y + end, spec.z, 0, 3,
                                    OIIO::TypeDesc::FLOAT, rows->data());
    return file->read_tiles(0, 0, spec.x, spec.x + spec.width, spec.y + first, spec.y + end, spec.z,
                            spec.z + 1, 0, 3, OIIO::TypeDesc::FLOAT, rows->data());
}

/// Some rows at a time, for they may be many: each texel is the mean of those of the file in its place.
bool readReduced(OIIO::ImageInput *file, OssRdPicture *picture)
{
    const OIIO::ImageSpec &spec = file->spec();
    const int strip = spec.tile_width > 0 ? spec.tile_height : StripHeight;
    std::vector<float> counts(picture->texels.size());
    std::vector<glm::vec3> rows;
    for (int first = 0; first < spec.height; first += strip) {
        const int end = std::min(first + strip, spec.height);
        if (!readRows(file, first, end, &rows))
            return false;
        for (std::size_t i = 0; i < rows.size(); ++i) {
            const int y = first + int(i / std::size_t(spec.width));
            const int x = int(i % std::size_t(spec.width));
            const auto at = std::size_t(std::int64_t(y) * picture->height / spec.height)
                                * std::size_t(picture->width)
                            + std::size_t(std::int64_t(x) * picture->width / spec.width);
            picture->texels[at] += rows[i];
            counts[at] += 1.0F;
        }
    }
    for (std::size_t i = 0; i < counts.size(); ++i)
        picture->texels[i] /= counts[i];
    return true;
}

} // namespace

const std::vector<std::string> &OssRdEnvironment::names()
{
    static const std::vector<std::string> all = [] {
        std::vector<std::string> list;
        for (const Own &one : Owns)
            list.emplace_back(one.name);
        return list;
    }();
    return all;
}

OssRdPicture OssRdEnvironment::make(const std::string &name)
{
    const Own &made = find(name);
    OssRdPicture picture(OwnWidth, OwnWidth / 2);
    tbb::parallel_for(0, picture.height, [&](int y) {
        for (int x = 0; x < picture.width; ++x) {
            const glm::vec2 at((float(x) + 0.5F) / float(picture.width),
                               (float(y) + 0.5F) / float(picture.height));
            picture.at(x, y) = made.light(direction(at));
        }
    });
    const float scale = Brightness / meanOf(picture);
    for (glm::vec3 &texel : picture.texels)
        texel *= scale;
    return picture;
}

OssEvResult OssRdEnvironment::read(const std::string &path, OssRdPicture *picture)
{
    const auto refuse = [&path](const std::string &reason) {
        return OssEvResult::failure("Cannot read \"" + path + "\": " + reason);
    };
    const std::unique_ptr<OIIO::ImageInput> file = OIIO::ImageInput::open(path);
    if (!file)
        return refuse(OIIO::has_error() ? OIIO::geterror() : "it is no picture");
    const OIIO::ImageSpec &spec = file->spec();
    if (spec.nchannels < 3)
        return refuse("it has no colours");
    const std::string size = std::to_string(spec.width) + " x " + std::to_string(spec.height);
    if (spec.width != 2 * spec.height)
        return refuse("a surrounding is twice as wide as it is high, and this is " + size);
    if (spec.width > MostFileWidth)
        return refuse("it is too large: " + size);
    OssRdPicture made(std::min(spec.width, MostWidth), std::min(spec.width, MostWidth) / 2);
    if (!readReduced(file.get(), &made)) {
        const std::string reason = file->geterror();
        return refuse(reason.empty() ? "it is damaged" : reason);
    }
    if (!isWhole(made))
        return refuse("it holds what is no number");
    for (glm::vec3 &texel : made.texels)
        texel = glm::max(texel, glm::vec3(0.0F));
    *picture = std::move(made);
    return {};
}

glm::vec2 OssRdEnvironment::place(const glm::vec3 &direction)
{
    const float length = std::max(glm::length(direction), 1e-20F);
    return {std::atan2(direction.x, -direction.z) / glm::two_pi<float>() + 0.5F,
            std::acos(std::clamp(direction.y / length, -1.0F, 1.0F)) / glm::pi<float>()};
}

glm::vec3 OssRdEnvironment::direction(const glm::vec2 &place)
{
    const float around = (place.x - 0.5F) * glm::two_pi<float>();
    const float down = place.y * glm::pi<float>();
    return {std::sin(down) * std::sin(around), std::cos(down), -std::sin(down) * std::cos(around)};
}

glm::vec3 OssRdEnvironment::radiance(const OssRdPicture &picture, const glm::vec3 &direction)
{
    const glm::vec2 at = place(direction);
    const float x = at.x * float(picture.width) - 0.5F;
    const float y = std::clamp(at.y * float(picture.height) - 0.5F, 0.0F,
                               float(picture.height - 1));
    const auto column = int(std::floor(x));
    const auto row = int(y);
    const float dx = x - float(column);
    const float dy = y - float(row);
    const auto texel = [&](int i, int j) {
        return picture.at((i + picture.width) % picture.width, std::min(j, picture.height - 1));
    };
    return glm::mix(glm::mix(texel(column, row), texel(column + 1, row), dx),
                    glm::mix(texel(column, row + 1), texel(column + 1, row + 1), dx), dy);
}
