#include "DailyWork.h"
#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

// Nanoseconds of processor time that a texel costs in what is used every day, here and in the same operation of
// OpenImageIO and, where its headers are there, OpenCV: four channels of floats, 2048 x 2048 texels, from memory to
// memory, the best of three. Peers write to pictures that they have already; ours makes its tiles.

using namespace DailyWork;

namespace {

struct Row
{
    const char *name;
    std::string kernel;
    OssEvParameters parameters;
    std::vector<std::string> inputs;
};

double costOf(const Row &row)
{
    static const auto picture = std::make_shared<WavePicture>(Edge);
    OssEvEngine engine;
    OssEvGraphBuilder builder;
    const int node = builder.addNode("Node", row.kernel, row.parameters);
    for (const std::string &input : row.inputs) {
        const int image = builder.addNode("Picture " + input, "image", {{"File", input}});
        builder.connect(image, "", node, input);
    }
    const auto graph = builder.finish();
    return best([&] {
        engine.cache().clear();
        OssEvRequest request;
        request.target.graph = graph;
        request.target.node = graph->find("Node");
        request.target.width = Edge;
        request.target.height = Edge;
        request.target.images = picture;
        request.order = OssEvRequest::Order::Rows;
        request.onFinished = [&row](const OssEvOutcome &outcome) {
            if (!outcome.error.empty())
                std::printf("%s: %s\n", row.name, outcome.error.c_str());
        };
        engine.wait(engine.start(std::move(request)));
    });
}

std::vector<Row> rows()
{
    constexpr double Reference = 1024.0; // what lengths in texels are counted in
    const auto texels = [](double length) {
        return length * Reference / Edge;
    };
    const auto widths = [](double length) {
        return length / Edge;
    };
    return {{"Blur", "blur", {{"Radius", texels(BlurDeviation)}}, {"Input"}},
            {"Merge", "merge", {}, {"Base", "Over"}},
            {"Levels", "levels", {{"InLow", 0.1}, {"InHigh", 0.9}}, {"Input"}},
            {"Transform", "transform", {{"Rotate", Degrees}}, {"Input"}},
            {"Warp", "warp", {{"Amount", WarpAmount}}, {"Input", "Vector"}},
            {"Sharpen", "sharpen", {{"Radius", texels(SharpenDeviation)}}, {"Input"}},
            {"Dilate", "growBright", {{"Radius", widths(GrowRadius)}}, {"Input"}},
            {"Median", "median", {{"Radius", widths(MedianRadius)}}, {"Input"}}};
}

void show(const Figures &figures, const std::string &kernel)
{
    const auto found = figures.find(kernel);
    if (found == figures.end())
        std::printf(" %12s", "-");
    else
        std::printf(" %12.1f", found->second);
}

} // namespace

int main()
{
    const Figures imageIo = ofOpenImageIo();
    const Figures openCv = ofOpenCv();
    std::printf("%-12s %12s %12s %12s\n", "ns a texel", "Ossa", "OpenImageIO", "OpenCV");
    for (const Row &row : rows()) {
        std::printf("%-12s %12.1f", row.name, costOf(row));
        show(imageIo, row.kernel);
        show(openCv, row.kernel);
        std::printf("\n");
        std::fflush(stdout);
    }
    return 0;
}
