#include "Ossa/Surfaces/Surroundings.h"

#include "OssRender/Light/OssRdEnvironment.h"

#include <algorithm>
#include <mutex>
#include <vector>

namespace {

/// What is written down is linear light of BT.709.
OssEvResult toWorking(const OssEvColorSpaces &colors, OssRdPicture *picture)
{
    if (colors.isWorking(OssEvColorSpaces::Light))
        return {};
    std::vector<glm::vec4> row(std::size_t(picture->width));
    OssEvResult result;
    for (int y = 0; y < picture->height && result; ++y) {
        for (int x = 0; x < picture->width; ++x)
            row[std::size_t(x)] = glm::vec4(picture->at(x, y), 1.0F);
        result = colors.toWorking(OssEvColorSpaces::Light, &row.front().x, row.size());
        for (int x = 0; x < picture->width; ++x)
            picture->at(x, y) = glm::max(glm::vec3(row[std::size_t(x)]), glm::vec3(0.0F));
    }
    return result;
}

/// Those of our own that were made lately: the Viewer and thumbnails have the same.
class Kept
{
public:
    bool find(const std::string &name, const OssEvColorSpaces &colors, Surroundings *surroundings)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        for (const One &one : m_all) {
            if (one.name != name || !(one.colors == colors.key()))
                continue;
            *surroundings = one.made;
            return true;
        }
        return false;
    }

    void add(const std::string &name, const OssEvColorSpaces &colors, const Surroundings &made)
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        if (m_all.size() >= OssRdEnvironment::names().size())
            m_all.erase(m_all.begin());
        m_all.push_back({name, colors.key(), made});
    }

private:
    struct One
    {
        std::string name;
        OssEvKey colors;
        Surroundings made;
    };

    std::mutex m_mutex;
    std::vector<One> m_all;
};

Kept &kept()
{
    static Kept all;
    return all;
}

} // namespace

OssResult Surroundings::make(const QString &nameOrFile, const OssEvColorSpaces &colors,
                             Surroundings *surroundings)
{
    const std::vector<std::string> &names = OssRdEnvironment::names();
    const std::string wanted = nameOrFile.toStdString();
    OssRdPicture picture;
    OssEvResult read;
    const bool isOwn = wanted.empty() || std::count(names.cbegin(), names.cend(), wanted) > 0;
    if (isOwn && kept().find(wanted, colors, surroundings))
        return {};
    if (isOwn)
        picture = OssRdEnvironment::make(wanted);
    else
        read = OssRdEnvironment::read(wanted, &picture);
    if (read)
        read = toWorking(colors, &picture);
    if (!read)
        return OssResult::failure(QString::fromStdString(read.error()));
    surroundings->probe = std::make_shared<const OssRdLightProbe>(OssRdLightProbe::of(picture));
    surroundings->picture = std::make_shared<const OssRdPicture>(std::move(picture));
    if (isOwn)
        kept().add(wanted, colors, *surroundings);
    return {};
}
