#include "OssEvaluation/Files/OssEvBake.h"

#include "OssEvaluation/Files/Padding.h"

#include <chrono>
#include <condition_variable>
#include <deque>
#include <mutex>

namespace {

constexpr int Size = OssEvTile::Size;
// Rows of tiles computed at once: the height of the blocks that filters work on.
constexpr int BandTiles = 2;
// Bands in work beside the one that is written.
constexpr std::size_t BandsAhead = 2;

/// Some rows of tiles on their way.
struct Band
{
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<OssEvTilePointer> tiles;
    OssEvOutcome outcome;
    bool finished = false;
    OssEvEngine::Id id = 0;
    int rows = 0;
};

/// Bands in order, each requested before the ones above it are written.
class Bands
{
public:
    Bands(OssEvEngine *engine, OssEvTarget target, const OssEvFrame &frame, int priority)
        : m_engine(engine)
        , m_target(std::move(target))
        , m_frame(frame)
        , m_priority(priority)
    {
    }

    Bands(const Bands &) = delete;
    Bands &operator=(const Bands &) = delete;

    ~Bands()
    {
        for (const auto &band : m_bands)
            m_engine->cancel(band->id);
        for (const auto &band : m_bands)
            m_engine->wait(band->id);
    }

    /// Null when there is none left.
    std::shared_ptr<Band> next()
    {
        while (m_bands.size() <= BandsAhead && m_nextRow < OssEvTilesAcross(m_frame.height))
            request();
        if (m_bands.empty())
            return nullptr;
        return m_bands.front();
    }

    void drop() { m_bands.pop_front(); }

private:
    void request()
    {
        auto band = std::make_shared<Band>();
        const int across = OssEvTilesAcross(m_frame.width);
        band->rows = std::min(BandTiles, OssEvTilesAcross(m_frame.height) - m_nextRow);
        band->tiles.resize(std::size_t(across) * std::size_t(band->rows));
        OssEvRequest request;
        request.target = m_target;
        request.order = OssEvRequest::Order::Rows;
        request.priority = m_priority;
        const int first = m_nextRow;
        request.region = {0, first * Size, m_frame.width, band->rows * Size};
        request.onTile = [band, across, first](const OssEvArrival &arrival) {
            const std::lock_guard<std::mutex> lock(band->mutex);
            band->tiles[std::size_t(arrival.y - first) * std::size_t(across)
                        + std::size_t(arrival.x)] = arrival.tile;
        };
        request.onFinished = [band](const OssEvOutcome &outcome) {
            const std::lock_guard<std::mutex> lock(band->mutex);
            band->outcome = outcome;
            band->finished = true;
            band->changed.notify_all();
        };
        m_nextRow += band->rows;
        band->id = m_engine->start(std::move(request));
        m_bands.push_back(std::move(band));
    }

    OssEvEngine *m_engine;
    OssEvTarget m_target;
    OssEvFrame m_frame;
    int m_priority;
    std::deque<std::shared_ptr<Band>> m_bands;
    int m_nextRow = 0;
};

bool isCancelled(const OssEvBake::Job &job)
{
    return job.cancel != nullptr && job.cancel->isCancelled();
}

OssEvResult cannotWrite(const OssEvBake::Job &job, const std::string &reason,
                        const std::string &node = {})
{
    return OssEvResult::failure("Cannot write \"" + job.path + "\": " + reason, node);
}

OssEvResult cancelled(const OssEvBake::Job &job)
{
    return cannotWrite(job, "it was cancelled");
}

OssEvResult waitFor(const OssEvBake::Job &job, Band *band)
{
    constexpr std::chrono::milliseconds Patience(5);
    std::unique_lock<std::mutex> lock(band->mutex);
    while (!band->finished) {
        if (isCancelled(job))
            return cancelled(job);
        band->changed.wait_for(lock, Patience);
    }
    if (band->outcome.ok())
        return {};
    return band->outcome.cancelled ? cancelled(job)
                                   : cannotWrite(job, band->outcome.error, band->outcome.node);
}

/// What a half cannot hold.
bool needsFloats(const OssEvBake::Job &job)
{
    return job.depth ? *job.depth == OssEvDepth::Short || *job.depth == OssEvDepth::Float
                     : job.isPrecise;
}

/// Puts a node behind the target.
void append(OssEvTarget *target, const char *kernel, const OssEvParameters &parameters, int output)
{
    if (target->graph == nullptr || target->node < 0
        || target->node >= int(target->graph->nodes().size()))
        return;
    const OssEvGraph::Node &node = target->graph->nodes()[std::size_t(target->node)];
    if (node.kernel == nullptr || target->output < 0
        || target->output >= int(node.kernel->outputs.size()))
        return;
    const std::string from = node.kernel->outputs[std::size_t(target->output)].name;
    OssEvGraphBuilder builder(*target->graph);
    const int added = builder.addNode(node.name, kernel, parameters);
    builder.connect(target->node, from, added, "Input");
    target->graph = builder.finish();
    target->node = added;
    target->output = output;
}

OssEvTarget targetOf(const OssEvBake::Job &job)
{
    OssEvTarget target = job.target;
    if (job.dilate && target.mesh != nullptr)
        append(&target, "dilate", {{"Bleed", std::int64_t(target.bleed)}}, 0);
    const OssEvDepth depth = job.depth.value_or(job.isPrecise ? OssEvDepth::Float
                                                              : OssEvDepth::Half);
    // Files of halves make halves of all that comes.
    if (job.isScalar || (job.depth && depth != OssEvDepth::Half)) {
        append(&target, job.isScalar ? "storeScalar" : "store",
               {{"Depth", std::string(OssEvDepthNames[std::size_t(depth)])},
                {"ColorSpace", std::string(job.isData || job.isScalar ? "Scalar" : "Color")},
                {"FileSpace", job.fileSpace}},
               needsFloats(job) ? 1 : 0);
    }
    return target;
}

/// Bands one after the other; `take` gets each row of their tiles.
template <class Take>
OssEvResult forEachRow(const OssEvBake::Job &job, const OssEvFrame &frame, Bands *bands,
                       const Take &take)
{
    const int total = OssEvTilesAcross(frame.height);
    const auto across = std::ptrdiff_t(OssEvTilesAcross(frame.width));
    int done = 0;
    while (const std::shared_ptr<Band> band = bands->next()) {
        OssEvResult result = waitFor(job, band.get());
        for (int row = 0; result && row < band->rows; ++row) {
            const auto first = band->tiles.begin() + row * across;
            result = take(std::vector<OssEvTilePointer>(first, first + across));
            if (result && isCancelled(job))
                result = cancelled(job);
            ++done;
        }
        if (!result)
            return result;
        if (job.onProgress)
            job.onProgress(done, total);
        bands->drop();
    }
    return {};
}

OssEvResult writeBands(const OssEvBake::Job &job, const OssEvFrame &frame, Bands *bands,
                       OssEvImageWriter *writer)
{
    return forEachRow(job, frame, bands, [writer](const std::vector<OssEvTilePointer> &tiles) {
        return writer->writeTiles(tiles);
    });
}

OssEvResult writeFilled(const OssEvBake::Job &job, const OssEvTarget &target,
                        const OssEvFrame &frame, Bands *bands, OssEvImageWriter *writer)
{
    Padding::Rows rows;
    OssEvResult result = forEachRow(job, frame, bands,
                                    [&rows](std::vector<OssEvTilePointer> tiles) {
                                        rows.push_back(std::move(tiles));
                                        return OssEvResult();
                                    });
    Padding padding;
    if (result && !padding.find(target.mesh, frame, job.cancel))
        result = cancelled(job);
    for (int row = 0; result && row < int(rows.size()); ++row) {
        result = writer->writeTiles(padding.filled(rows, row));
        if (result && isCancelled(job))
            result = cancelled(job);
    }
    return result;
}

} // namespace

OssEvResult OssEvBake::run(OssEvEngine *engine, const Job &job)
{
    const OssEvTarget target = targetOf(job);
    std::shared_ptr<const OssEvPlan> plan;
    OssEvResult result = OssEvPlan::make(target, &plan);
    if (!result)
        return cannotWrite(job, result.error(), result.node());
    const OssEvFrame frame = plan->frame();
    OssEvImageWriter::Description description;
    description.width = frame.width;
    description.height = frame.height;
    description.channels = plan->stages().back().channels;
    description.isData = job.isData;
    description.form = job.form;
    if (needsFloats(job))
        description.form.depth = OssEvDepth::Float;
    std::unique_ptr<OssEvImageWriter> writer;
    result = OssEvImageWriter::open(job.path, description, &writer);
    if (!result)
        return result;

    Bands bands(engine, target, frame, job.priority);
    result = job.fillsAll && target.mesh != nullptr
                 ? writeFilled(job, target, frame, &bands, writer.get())
                 : writeBands(job, frame, &bands, writer.get());
    if (!result)
        return result;
    return writer->finish();
}

OssEvResult OssEvBake::key(const Job &job, OssEvKey *key)
{
    std::shared_ptr<const OssEvPlan> plan;
    OssEvResult result = OssEvPlan::make(targetOf(job), &plan);
    if (!result)
        return result;
    OssEvKeyBuilder builder;
    builder.add(plan->stages().back().key);
    if (!job.isData && !job.isScalar)
        builder.add(job.form.spaces().key()).add(job.form.space);
    *key = builder.key();
    return {};
}
