#include "OssEvaluation/Files/OssEvBake.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssEvaluation/Values/OssEvHalf.h"

#include <hwy/targets.h>
#include <sys/resource.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

// The chain "image A x noise -> levels -> blur of sigma 8 -> over B by a mask" on a patch of 4096 x
// 4096 texels: in memory, and from files to a file. Processor time of all threads, in seconds and
// in copies of one half RGBA image of that size in the same process, so that machines compare.
// "--avx2" hides wider instructions from the kernels.

namespace {

constexpr int Edge = 4096;
constexpr int Tiles = Edge / OssEvTile::Size;

double processSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

double wallSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_MONOTONIC, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

/// The best of a few copies of a half image, memory already touched.
double copySeconds()
{
    const std::size_t bytes = std::size_t(Edge) * Edge * 4 * 2;
    std::vector<char> from(bytes, 1);
    std::vector<char> to(bytes, 2);
    double best = 1e9;
    for (int i = 0; i < 7; ++i) {
        const double start = processSeconds();
        std::memcpy(to.data(), from.data(), bytes);
        best = std::min(best, processSeconds() - start);
        from[std::size_t(i)] = to[bytes / 2];
    }
    return best;
}

/// Three images in memory that a painter might have made: smooth shapes with fine grain.
class MemoryImages : public OssEvImageProvider
{
public:
    MemoryImages()
    {
        for (int image = 0; image < 3; ++image) {
            for (int y = 0; y < Tiles; ++y) {
                for (int x = 0; x < Tiles; ++x)
                    m_tiles[image].push_back(makeTile(image, x, y));
            }
        }
    }

    OssEvResult describe(const Image &image, OssEvImageInfo *info) override
    {
        info->width = Edge;
        info->height = Edge;
        info->channels = indexOf(image) == 2 ? 1 : 4;
        info->content = OssEvKeyBuilder().add(image.name).key();
        return {};
    }

    OssEvResult read(const Image &image, int /*reduction*/, int tileRow,
                     const OssEvCancel & /*cancel*/, const Deliver &deliver) override
    {
        for (int x = 0; x < Tiles; ++x)
            deliver(x, tileRow, m_tiles[indexOf(image)][std::size_t(tileRow * Tiles + x)]);
        return {};
    }

    OssEvTilePointer tile(int image, int x, int y) const
    {
        return m_tiles[image][std::size_t(y * Tiles + x)];
    }

private:
    static int indexOf(const Image &image)
    {
        return image.name == "A" ? 0 : image.name == "B" ? 1 : 2;
    }

    static OssEvTilePointer makeTile(int image, int tileX, int tileY)
    {
        const int channels = image == 2 ? 1 : 4;
        auto tile = std::make_shared<OssEvTile>(channels, OssEvTile::Format::Half);
        std::uint32_t grain = std::uint32_t(tileY * Tiles + tileX) * 2654435761U + 1U;
        for (int y = 0; y < OssEvTile::Size; ++y) {
            for (int x = 0; x < OssEvTile::Size; ++x) {
                const double u = double(tileX * OssEvTile::Size + x) / Edge;
                const double v = double(tileY * OssEvTile::Size + y) / Edge;
                grain = grain * 1664525U + 1013904223U;
                const double noise = double(grain >> 24) / 255.0 * 0.1;
                const double wave = 0.5 + 0.4 * std::sin(31.0 * u + image) * std::cos(23.0 * v);
                const double alpha = channels == 4 ? 0.75 + 0.25 * std::sin(9.0 * u * v) : 1.0;
                for (int k = 0; k < channels; ++k) {
                    const double value = k == 3 ? alpha : (wave * (0.6 + 0.2 * k) + noise) * alpha;
                    tile->halfPlane(k)[y * OssEvTile::Size + x] = OssEvHalf::fromFloat(
                        float(value));
                }
            }
        }
        return tile;
    }

    std::vector<OssEvTilePointer> m_tiles[3];
};

/// A x noise -> levels -> blur -> over B by a mask.
std::shared_ptr<const OssEvGraph> chain(int octaves, const std::string &a, const std::string &b,
                                        const std::string &mask)
{
    OssEvGraphBuilder builder;
    const int imageA = builder.addNode("A", "image", {{"File", a}});
    const int imageB = builder.addNode("B", "image", {{"File", b}});
    const int imageMask = builder.addNode("Mask", "image", {{"File", mask}});
    const int noise = builder.addNode("Noise", "fractalNoise",
                                      {{"Frequency", 40.0}, {"Octaves", std::int64_t(octaves)}});
    const int times = builder.addNode("Times", "merge", {{"BlendMode", std::string("Multiply")}});
    const int levels = builder.addNode("Levels", "levels", {{"InLow", 0.05}, {"InHigh", 0.9}});
    const int blur = builder.addNode("Blur", "blur", {{"Radius", 8.0}});
    const int over = builder.addNode("Over", "merge");
    builder.connect(imageA, "", times, "Base");
    builder.connect(noise, "", times, "Over");
    builder.connect(times, "", levels, "Input");
    builder.connect(levels, "", blur, "Input");
    builder.connect(imageB, "", over, "Base");
    builder.connect(blur, "", over, "Over");
    builder.connect(imageMask, "", over, "Mask");
    return builder.finish();
}

double peakMegabytes()
{
    std::ifstream status("/proc/self/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.rfind("VmHWM:", 0) == 0)
            return std::atof(line.c_str() + 6) / 1024.0;
    }
    return 0.0;
}

void report(const char *what, double seconds, double wall, double copy)
{
    std::printf("%-46s %7.3f s of processor, %6.3f s, %7.1f copies\n", what, seconds, wall,
                seconds / copy);
}

void runInMemory(const char *what, int octaves, const std::shared_ptr<MemoryImages> &images,
                 double copy, bool keep)
{
    double best = 1e9;
    double bestWall = 1e9;
    OssEvEngine::Options options;
    options.cacheBytes = std::size_t(3) << 30;
    OssEvEngine engine(options);
    for (int round = 0; round < 3; ++round) {
        engine.cache().clear();
        OssEvRequest request;
        request.target.graph = chain(octaves, "A", "B", "Mask");
        request.target.node = request.target.graph->find("Over");
        request.target.width = Edge;
        request.target.height = Edge;
        request.target.images = images;
        request.target.keepIntermediates = keep;
        request.order = OssEvRequest::Order::Rows;
        std::string error;
        request.onFinished = [&error](const OssEvOutcome &outcome) {
            error = outcome.error;
        };
        const double start = processSeconds();
        const double wall = wallSeconds();
        engine.wait(engine.start(std::move(request)));
        best = std::min(best, processSeconds() - start);
        bestWall = std::min(bestWall, wallSeconds() - wall);
        if (!error.empty()) {
            std::fprintf(stderr, "%s\n", error.c_str());
            std::exit(1);
        }
    }
    report(what, best, bestWall, copy);
}

OssEvResult writeImage(const std::string &path, const MemoryImages &images, int image)
{
    OssEvImageWriter::Description description;
    description.width = Edge;
    description.height = Edge;
    description.channels = image == 2 ? 1 : 4;
    std::unique_ptr<OssEvImageWriter> writer;
    OssEvResult result = OssEvImageWriter::open(path, description, &writer);
    for (int y = 0; result && y < Tiles; ++y) {
        std::vector<OssEvTilePointer> row;
        for (int x = 0; x < Tiles; ++x)
            row.push_back(images.tile(image, x, y));
        result = writer->writeTiles(row);
    }
    return result ? writer->finish() : result;
}

int fail(const OssEvResult &result)
{
    std::fprintf(stderr, "%s\n", result.error().c_str());
    return 1;
}

// From files to a file, in a process that has done nothing else: its memory is what a bake needs.
int bakeFiles(const std::string &folder, double copy)
{
    OssEvEngine::Options options;
    options.cacheBytes = std::size_t(192) << 20;
    OssEvEngine engine(options);
    OssEvBake::Job job;
    job.target.graph = chain(1, folder + "/a.exr", folder + "/b.exr", folder + "/mask.exr");
    job.target.node = job.target.graph->find("Over");
    job.target.width = Edge;
    job.target.height = Edge;
    job.target.images = std::make_shared<OssEvImageFiles>();
    job.path = folder + "/out.exr";
    const double start = processSeconds();
    const double wall = wallSeconds();
    const OssEvResult result = OssEvBake::run(&engine, job);
    if (!result)
        return fail(result);
    report("EXR to EXR (PIZ), 1 octave", processSeconds() - start, wallSeconds() - wall, copy);
    std::printf("%-46s %7.0f MB\n", "peak memory of that bake", peakMegabytes());
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc == 4 && std::string(argv[1]) == "--bake")
        return bakeFiles(argv[2], std::atof(argv[3]));

    if (argc == 2 && std::string(argv[1]) == "--avx2")
        hwy::DisableTargets(HWY_AVX3 | HWY_AVX3_DL);
    const double copy = copySeconds();
    std::printf("%-46s %7.4f s\n", "copy of one half image (4096 x 4096 RGBA)", copy);
    const auto images = std::make_shared<MemoryImages>();
    runInMemory("chain in memory, 1 octave", 1, images, copy, false);
    runInMemory("the same, intermediates kept", 1, images, copy, true);
    runInMemory("chain in memory, 6 octaves", 6, images, copy, false);

    std::string folder = (std::filesystem::temp_directory_path() / "ossa-bench-XXXXXX").string();
    if (::mkdtemp(folder.data()) == nullptr) {
        std::perror("mkdtemp");
        return 1;
    }
    const char *names[3] = {"/a.exr", "/b.exr", "/mask.exr"};
    for (int i = 0; i < 3; ++i) {
        const OssEvResult result = writeImage(folder + names[i], *images, i);
        if (!result)
            return fail(result);
    }
    std::fflush(stdout);
    const std::string command = "\"" + std::string(argv[0]) + "\" --bake \"" + folder + "\" "
                                + std::to_string(copy);
    const int status = std::system(command.c_str());
    std::filesystem::remove_all(folder);
    return status == 0 ? 0 : 1;
}
