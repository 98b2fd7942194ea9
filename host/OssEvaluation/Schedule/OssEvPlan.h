#pragma once

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvSurfaceMap.h"
#include "OssEvaluation/Graph/OssEvGraph.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Schedule/OssEvImageProvider.h"
#include "OssEvaluation/Values/OssEvKey.h"
#include "OssEvaluation/Values/OssEvRegion.h"
#include "OssEvaluation/Values/OssEvResult.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <array>
#include <memory>
#include <vector>

/// What pixels are wanted, without saying which of them.
struct OssEvTarget
{
    std::shared_ptr<const OssEvGraph> graph;
    int node = -1;
    int output = 0;
    int patch = 1001;
    /// Size of the full patch in texels.
    int width = 1024;
    int height = 1024;
    /// The patch is computed at its size halved so many times; lengths in texels shrink with it.
    int level = 0;
    /// The result is halved so many times: the levels of a mip-map. Unlike `level`, which computes
    /// a smaller patch, this filters the full one.
    int mip = 0;
    /// Null computes in the plane of the patches.
    std::shared_ptr<const OssEvMesh> mesh;
    /// By how many texels the surface goes on beyond the mesh's charts, in a patch of 4096.
    int bleed = OssEvSurfaceMap::MarginAt4k;
    /// Null where the graph reads no image.
    std::shared_ptr<OssEvImageProvider> images;
    /// Keeps results of filters and costly nodes even where nothing else needs them, so that the
    /// next edit finds them, or the next channel. A bake of one node, which comes by once, does without.
    bool keepIntermediates = true;
};

/// Where a value in a stage comes from.
struct OssEvPlanSource
{
    enum class Kind {
        Constant,
        /// Result of an earlier step of the stage; `index` counts steps.
        Step,
        /// Tiles of another stage; `index` counts the stage's inputs.
        Input,
        /// Result of the stage's area operation.
        Head
    };

    Kind kind = Kind::Constant;
    int index = 0;
    std::array<float, 4> constant{};
    /// Channels that come, and that are asked for.
    int channels = 1;
    int wanted = 1;
    bool connected = false;
};

/// A node of a run.
struct OssEvPlanStep
{
    std::shared_ptr<const OssEvPointOperation> operation;
    std::vector<OssEvPlanSource> inputs;
    int channels = 1;
    bool usesSurface = false;
    /// Buffer of the run that the result goes to. Buffers are used again when they are done with.
    int buffer = 0;
    const char *kernel = "";
    /// Of the graph.
    int node = -1;
};

/// What is computed in one go from tiles of other stages, and kept as tiles: an image that is read,
/// or a run of nodes that may begin with an area operation.
struct OssEvPlanStage
{
    OssEvKey key;
    OssEvFrame frame;
    int channels = 1;
    OssEvTile::Format format = OssEvTile::Format::Half;
    /// Node of the graph that the result belongs to, for messages.
    int node = -1;

    /// Stages whose tiles are read, each once.
    std::vector<int> inputs;

    std::shared_ptr<const OssEvAreaOperation> head;
    /// One for each tap of the head.
    std::vector<OssEvPlanSource> headInputs;
    int headChannels = 1;
    bool headUsesSurface = false;
    const char *headKernel = "";
    int headNode = -1;

    std::vector<OssEvPlanStep> steps;
    int buffers = 0;
    OssEvPlanSource result;

    bool isImage = false;
    OssEvImageProvider::Image image;
    int imageReduction = 0;
    bool isSequential = false;

    bool usesSurface = false;

    /// Tiles along an edge of what is computed at once.
    int unitTiles() const { return head != nullptr ? 2 : 1; }
};

/// Stages that lead to a target, each before those that read it; the last one is the target.
class OSSEVALUATION_EXPORT OssEvPlan
{
public:
    /// Larger patches are refused.
    static constexpr int MaximumSize = 32768;

    /// On any thread, with no lock held: asks the image provider, which may look at files. What is
    /// made is immutable and may be read from several threads. Throws nothing; too little memory is
    /// a failure.
    static OssEvResult make(const OssEvTarget &target, std::shared_ptr<const OssEvPlan> *plan);

    const OssEvTarget &target() const { return m_target; }

    const std::vector<OssEvPlanStage> &stages() const { return m_stages; }

    const OssEvFrame &frame() const { return m_stages.back().frame; }

    /// Size at which the surface of the mesh is needed.
    const OssEvFrame &surfaceFrame() const { return m_surfaceFrame; }

    OssEvKey surfaceKey() const { return m_surfaceKey; }

    /// As the graph has it; empty for -1.
    const std::string &nodeName(int node) const;

private:
    friend class OssEvPlanner;
    OssEvTarget m_target;
    std::vector<OssEvPlanStage> m_stages;
    OssEvFrame m_surfaceFrame;
    OssEvKey m_surfaceKey;
};
