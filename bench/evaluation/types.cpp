#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssEvaluation/Graph/OssEvKernelLibrary.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "WavePicture.h"

#include <algorithm>
#include <cstdio>
#include <string>

// Nanoseconds of processor time that a texel costs, of every kernel that the library has, at its defaults
// on a patch of 1024 x 1024 texels without a mesh: ossa_bench_types [PART OF A NAME]. What a kernel reads
// is a picture in memory. The best of three, in the order of the names. Of those that look at the surface a
// second figure is what they cost on one, of 256 x 256 texels, making its map included.

namespace {

constexpr int Edge = 1024;

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
    const auto picture = std::make_shared<WavePicture>(Edge);
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
