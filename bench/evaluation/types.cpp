#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssEvaluation/Graph/OssEvKernelLibrary.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <string>
#include <vector>

// Nanoseconds of processor time that a texel costs, of every kernel that the library has, at its defaults
// on a patch of 1024 x 1024 texels without a mesh: ossa_bench_types [PART OF A NAME]. What a kernel reads
// is a picture in memory. The best of three, in the order of the names. Of those that look at the surface a
// second figure is what they cost on one, of 256 x 256 texels, making its map included.

namespace {

constexpr int Edge = 1024;
constexpr int Tiles = Edge / OssEvTile::Size;

double processSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

/// One picture of smooth shapes, with alpha, whatever its name.
class Picture : public OssEvImageProvider
{
public:
    Picture()
    {
        for (int tile = 0; tile < Tiles * Tiles; ++tile) {
            auto made = std::make_shared<OssEvTile>(4, OssEvTile::Format::Float);
            for (int k = 0; k < 4; ++k) {
                for (int i = 0; i < OssEvTile::Texels; ++i) {
                    const double x = tile % Tiles * OssEvTile::Size + i % OssEvTile::Size;
                    const double y = tile / Tiles * OssEvTile::Size + i / OssEvTile::Size;
                    const double wave = std::sin(0.03 * x + k) * std::cos(0.021 * y - k);
                    made->floatPlane(k)[i] = float(0.5 + 0.45 * wave);
                }
            }
            m_tiles.push_back(made);
        }
    }

    OssEvResult describe(const Image &image, OssEvImageInfo *info) override
    {
        info->width = Edge;
        info->height = Edge;
        info->channels = 4;
        info->content = OssEvKeyBuilder().add(image.name).key();
        return {};
    }

    OssEvResult read(const Image & /*image*/, int /*reduction*/, int tileRow,
                     const OssEvCancel & /*cancel*/, const Deliver &deliver) override
    {
        for (int x = 0; x < Tiles; ++x)
            deliver(x, tileRow, m_tiles[std::size_t(tileRow * Tiles + x)]);
        return {};
    }

private:
    std::vector<OssEvTilePointer> m_tiles;
};

/// The kernel with the picture at its first input and at those it cannot do without.
std::shared_ptr<const OssEvGraph> graphOf(const OssEvKernel &kernel)
{
    OssEvGraphBuilder builder;
    const int node = builder.addNode("Node", kernel.name, {});
    const bool generates = std::none_of(kernel.inputs.begin(), kernel.inputs.end(),
                                        [](const auto &input) { return input.required; });
    const int picture = builder.addNode("Picture", "image", {{"File", std::string("picture")}});
    for (std::size_t i = 0; i < kernel.inputs.size() && !generates; ++i) {
        if (i == 0 || kernel.inputs[i].required)
            builder.connect(picture, "", node, kernel.inputs[i].name);
    }
    return builder.finish();
}

double nanoseconds(const OssEvKernel &kernel, const std::shared_ptr<const OssEvMesh> &mesh,
                   int edge, std::string *error)
{
    const auto picture = std::make_shared<Picture>();
    OssEvEngine engine;
    double best = 1e9;
    for (int round = 0; round < 3; ++round) {
        engine.cache().clear();
        OssEvRequest request;
        request.target.graph = graphOf(kernel);
        request.target.node = request.target.graph->find("Node");
        request.target.width = edge;
        request.target.height = edge;
        request.target.mesh = mesh;
        request.target.images = picture;
        request.order = OssEvRequest::Order::Rows;
        request.onFinished = [error](const OssEvOutcome &outcome) {
            *error = outcome.error;
        };
        const double start = processSeconds();
        engine.wait(engine.start(std::move(request)));
        best = std::min(best, processSeconds() - start);
    }
    return best * 1e9 / (double(edge) * edge);
}

} // namespace

int main(int argc, char **argv)
{
    const std::string part = argc > 1 ? argv[1] : "";
    for (const OssEvKernel &kernel : OssEvKernelLibrary::kernels()) {
        if (kernel.name.find(part) == std::string::npos)
            continue;
        std::string error;
        const double cost = nanoseconds(kernel, nullptr, Edge, &error);
        if (!error.empty()) {
            std::printf("%-24s %s\n", kernel.name.c_str(), error.c_str());
            continue;
        }
        std::printf("%-24s %8.1f ns", kernel.name.c_str(), cost);
        if (kernel.usesSurface) {
            constexpr int OnMesh = 256;
            const auto ball = OssEvShapes::shaderBall();
            std::printf(" %10.1f ns on a mesh", nanoseconds(kernel, ball, OnMesh, &error));
        }
        std::printf("\n");
        std::fflush(stdout);
    }
    return 0;
}
