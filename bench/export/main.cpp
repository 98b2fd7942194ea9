#include "OssCore/Program/OssResourceInfo.h"
#include "OssEvaluation/Files/OssEvImageWriter.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssEvaluation/Values/OssEvHalf.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Export/OssExportManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/OssModelServices.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QCoreApplication>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <mutex>
#include <vector>

// Four EXR files of a material at 4096 x 4096 texels, exported, beside evaluating the same channels and
// encoding them: processor time of all threads, the best of a few runs each.

namespace {

constexpr int Edge = 4096;
constexpr int Tiles = Edge / OssEvTile::Size;
constexpr int Rounds = 5;

/// A channel of the shader, what feeds it, and how many numbers it has.
struct Channel
{
    const char *name;
    const char *source;
    int count;
    bool takesHeight;
};

constexpr Channel Channels[] = {{"Base Color", "Procedural/Pattern/Brick", 3, false},
                                {"Roughness", "Procedural/Noise/Fractal Noise", 1, false},
                                {"Metallic", "Procedural/Noise/Cellular", 1, false},
                                {"Normal", "Math/Height to Normal", 3, true}};

using Pixels = std::vector<OssEvTilePointer>;

double processSeconds()
{
    timespec time = {};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return double(time.tv_sec) + double(time.tv_nsec) / 1e9;
}

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

/// A shader on a sphere, with what feeds its channels; null when nodes are not what they were.
OssSnBaseNode *build(OssProject *project)
{
    OssShaderNetwork *network = project->shadingGroups().first()->network();
    network->geoEntity()->setGeometry(text("sphere"));
    OssSnBaseNode *shader = network->createNode(text("Shaders/Standard Surface"));
    OssSnBaseNode *height = network->createNode(text("Procedural/Noise/Fractal Noise"));
    const auto wire = [](OssSnBaseNode *from, OssSnBaseNode *to, const QString &input) {
        return from && to && to->setInputNode(input, from, from->prefferedOutputPoint());
    };
    for (const Channel &channel : Channels) {
        OssSnBaseNode *node = network->createNode(text(channel.source));
        if (!wire(node, shader, text(channel.name)))
            return nullptr;
        if (channel.takesHeight && !wire(height, node, node->inputPorts().first().name))
            return nullptr;
    }
    return shader;
}

/// The shader's channel, as an export takes it, but without padding.
double evaluate(const OssSnBaseNode *shader, const OssGeoEntity *entity, const char *channel,
                Pixels *pixels)
{
    OssEvaluationService *service = OssEvaluationService::instance();
    QVector<OssSnEvaluationGraph::Link> links;
    OssSnEvaluationGraph graph = OssSnEvaluationGraph::ofAll(shader, {text(channel)}, &links);
    graph.node = links.first().node;
    graph.output = links.first().output;
    OssEvRequest request;
    request.target = service->target(graph, entity, 1001, Edge);
    request.order = OssEvRequest::Order::Rows;
    std::mutex mutex;
    pixels->assign(std::size_t(Tiles) * Tiles, nullptr);
    request.onTile = [&](const OssEvArrival &arrival) {
        const std::lock_guard<std::mutex> lock(mutex);
        (*pixels)[std::size_t(arrival.y) * Tiles + std::size_t(arrival.x)] = arrival.tile;
    };
    const double start = processSeconds();
    service->engine()->wait(service->engine()->start(std::move(request)));
    return processSeconds() - start;
}

/// As many planes as the file has, in halves.
Pixels planesOf(const Pixels &pixels, int count)
{
    Pixels cut;
    for (const OssEvTilePointer &from : pixels) {
        if (from->isConstant()) {
            cut.push_back(
                std::make_shared<OssEvTile>(count, OssEvTile::Format::Half, from->value()));
            continue;
        }
        auto tile = std::make_shared<OssEvTile>(count, OssEvTile::Format::Half);
        for (int k = 0; k < count; ++k) {
            const int plane = std::min(k, from->channels() - 1);
            if (from->format() == OssEvTile::Format::Half) {
                std::memcpy(tile->halfPlane(k), from->halfPlane(plane),
                            sizeof(std::uint16_t) * OssEvTile::Texels);
                continue;
            }
            for (int i = 0; i < OssEvTile::Texels; ++i)
                tile->halfPlane(k)[i] = OssEvHalf::fromFloat(from->floatPlane(plane)[i]);
        }
        cut.push_back(tile);
    }
    return cut;
}

double encode(const Pixels &pixels, int channels, const QString &path)
{
    OssEvImageWriter::Description description;
    description.width = Edge;
    description.height = Edge;
    description.channels = channels;
    const double start = processSeconds();
    std::unique_ptr<OssEvImageWriter> writer;
    OssEvResult result = OssEvImageWriter::open(path.toStdString(), description, &writer);
    for (int row = 0; result && row < Tiles; ++row) {
        const auto first = pixels.begin() + std::ptrdiff_t(row) * Tiles;
        result = writer->writeTiles({first, first + Tiles});
    }
    if (result)
        result = writer->finish();
    if (!result)
        std::fprintf(stderr, "%s\n", result.error().c_str());
    return processSeconds() - start;
}

OssExportPreset preset()
{
    OssExportPreset preset;
    preset.name = text("Bench");
    for (const Channel &channel : Channels) {
        OssExportPreset::File file;
        file.name = text(channel.name);
        file.format = text("exr");
        for (int k = 0; k < channel.count; ++k) {
            file.channels[std::size_t(k)].from = text(channel.name);
            file.channels[std::size_t(k)].isUsed = true;
        }
        preset.files.append(file);
    }
    return preset;
}

int fail(const QString &reason)
{
    std::fprintf(stderr, "%s\n", qPrintable(reason));
    return 1;
}

int run()
{
    OssShaderNetworkManager::instance()->loadNodeTypes(OssResourceInfo::instance()->nodeTypePath());
    OssProject *project = OssProjectManager::instance()->newProject(text("Bench"));
    const OssSnBaseNode *shader = build(project);
    if (!shader)
        return fail(text("The nodes are not what they were"));
    const OssGeoEntity *entity = project->shadingGroups().first()->network()->geoEntity();
    const QTemporaryDir folder;
    OssExportOptions options;
    options.folder = folder.path();
    options.resolution = Edge;
    OssEvTileCache &cache = OssEvaluationService::instance()->engine()->cache();
    double evaluated = 1e9;
    double encoded = 1e9;
    double exported[2] = {1e9, 1e9}; // without padding, and with it
    for (int round = 0; round < Rounds; ++round) {
        double computing = 0.0;
        double writing = 0.0;
        for (const Channel &channel : Channels) {
            Pixels pixels;
            cache.clear();
            computing += evaluate(shader, entity, channel.name, &pixels);
            pixels = planesOf(pixels, channel.count);
            writing += encode(pixels, channel.count, folder.filePath(text("alone.exr")));
        }
        evaluated = std::min(evaluated, computing);
        encoded = std::min(encoded, writing);
        for (int padded = 0; padded < 2; ++padded) {
            options.padding = padded * OssExportOptions::UsualPadding;
            OssExportPlan plan;
            OssResult result = OssExportPlan::make(project, preset(), options, &plan);
            cache.clear();
            const double start = processSeconds();
            if (result)
                result = OssExportManager::instance()->run(plan, {});
            exported[padded] = std::min(exported[padded], processSeconds() - start);
            if (!result)
                return fail(result.error());
        }
    }
    const double parts = evaluated + encoded;
    std::printf("four EXR files at %d: evaluated %.3f s, encoded %.3f s; exported %.3f s = x %.2f, "
                "with padding %.3f s = x %.2f\n",
                Edge, evaluated, encoded, exported[0], exported[0] / parts, exported[1],
                exported[1] / parts);
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    const OssModelServices services;
    return run();
}
