#include "OssEvaluation/Files/OssEvFileContents.h"

#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <map>
#include <mutex>
#include <vector>

#include <fcntl.h>
#include <unistd.h>
#include <xxhash.h>

namespace {

constexpr std::size_t BlockSize = std::size_t(1) << 20;
// Times of files go in steps: what was written this shortly ago may be written again and look the
// same.
constexpr std::chrono::milliseconds TimeStep(50);

using HashState = std::unique_ptr<XXH3_state_t, decltype(&XXH3_freeState)>;

std::string looksOf(const std::string &path, const struct stat &status)
{
    const auto text = [](const struct timespec &time) {
        return std::to_string(time.tv_sec) + '.' + std::to_string(time.tv_nsec);
    };
    return path + '\n' + text(status.st_mtim) + '\n' + text(status.st_ctim) + '\n'
           + std::to_string(status.st_size) + '\n' + std::to_string(status.st_ino);
}

bool isFresh(const struct stat &status)
{
    using namespace std::chrono;
    const auto changed = seconds(status.st_ctim.tv_sec) + nanoseconds(status.st_ctim.tv_nsec);
    const auto age = system_clock::now().time_since_epoch() - changed;
    // Times that have yet to come are another machine's.
    return age >= nanoseconds(0) && age < TimeStep;
}

OssEvKey hashOf(const std::string &path, const std::atomic<bool> &isGivenUp)
{
    const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0)
        return {};
    const HashState state(XXH3_createState(), XXH3_freeState);
    XXH3_128bits_reset(state.get());
    std::vector<char> block(BlockSize);
    ssize_t count = 0;
    while (!isGivenUp && (count = ::read(file, block.data(), block.size())) > 0)
        XXH3_128bits_update(state.get(), block.data(), std::size_t(count));
    ::close(file);
    if (count != 0 || isGivenUp)
        return {};
    const XXH128_hash_t hash = XXH3_128bits_digest(state.get());
    return {hash.high64, hash.low64};
}

} // namespace

struct OssEvFileContents::Private
{
    struct Known
    {
        std::string looks;
        OssEvKey key;
    };

    std::atomic<bool> isGivenUp{false};
    std::mutex mutex;
    std::map<std::string, Known> known; ///< by path
};

OssEvFileContents::OssEvFileContents()
    : d(std::make_unique<Private>())
{
}

OssEvFileContents::~OssEvFileContents() = default;

void OssEvFileContents::giveUp()
{
    d->isGivenUp = true;
}

std::string OssEvFileContents::quickLook(const std::string &path)
{
    struct stat status = {};
    return ::stat(path.c_str(), &status) == 0 ? looksOf(path, status) : std::string();
}

OssEvKey OssEvFileContents::of(const std::string &path)
{
    struct stat status = {};
    if (::stat(path.c_str(), &status) != 0 || !S_ISREG(status.st_mode))
        return {};
    const std::string looks = looksOf(path, status);
    {
        const std::lock_guard<std::mutex> lock(d->mutex);
        const auto found = d->known.find(path);
        if (found != d->known.end() && found->second.looks == looks)
            return found->second.key;
    }
    const bool fresh = isFresh(status);
    const OssEvKey key = hashOf(path, d->isGivenUp);
    const std::lock_guard<std::mutex> lock(d->mutex);
    if (fresh || key.isNull() || quickLook(path) != looks)
        d->known.erase(path); // it may not be what it looks like for long
    else
        d->known[path] = {looks, key};
    return key;
}
