#pragma once

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Kernels/Sampler.h"

#include <memory>
#include <vector>

/// Texture coordinates within the patch: from the lower left corner, both from 0 to 1.
struct OssEvPlace
{
    double u = 0.0;
    double v = 0.0;
};

/// Reads one, or several, other places of its input for each texel. Where it makes the picture smaller
/// it takes the mean of the texels that fall into one, up to a limit: the sixteenth part of the size.
class OssEvRemapping : public OssEvAreaOperation
{
public:
    /// What is found beyond the patch's edges.
    enum class Edge { Repeat, Clamp, Empty, AcrossSeams };

    /// What several looks make together. Over: those of higher order lie on the others.
    enum class Combine { Average, Lightest, Darkest, Over };

    struct Source
    {
        OssEvPlace place;
        double weight = 1.0; ///< in the average; how far it covers what lies below
        double gain = 1.0;   ///< what colours are multiplied by
        double order = 0.0;
        /// Places with different ones have nothing to do with each other.
        int piece = 0;
    };

    /// The other inputs, at any place.
    class Maps
    {
    public:
        Maps(const OssEvBlock &block, std::size_t first, std::size_t count, OssEvScratch *scratch);

        OssEvSampler::Texel at(std::size_t map, const OssEvPlace &place);

    private:
        std::vector<OssEvSampler> m_samplers;
        OssEvFrame m_frame;
    };

    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override;
    void run(const OssEvBlock &block) const override;

    void setEdge(Edge edge) { m_edge = edge; }

protected:
    /// `maps` counts inputs. `reach` is how far away places may lie, in patches; negative: anywhere.
    OssEvRemapping(const OssEvFrame &frame, int looks, const std::vector<std::size_t> &maps = {},
                   double reach = -1.0);

    void setCombine(Combine combine) { m_combine = combine; }

    /// Where a look goes for what stands at a place; false: to nothing, which is transparent.
    virtual bool find(int look, const OssEvPlace &place, Maps *maps, Source *source) const = 0;

private:
    struct Found;
    class Rows;
    class Reader;

    bool wants(int look, const OssEvPlace &place, Maps *maps, Source *source) const;

    OssEvFrame m_frame;
    int m_looks;
    double m_reach;
    Edge m_edge = Edge::Repeat;
    Combine m_combine = Combine::Average;
};

/// The choice "Border" of these kernels, and what it says.
OssEvParameterDescription OssEvDescribeEdge(
    OssEvRemapping::Edge fallback = OssEvRemapping::Edge::Repeat);
OssEvRemapping::Edge OssEvEdgeOf(const OssEvKernelSetup &setup);

/// A kernel that moves what comes in as "Input"; `maps` are its other inputs.
OssEvKernel OssEvSpaceKernel(
    const char *name, std::vector<OssEvParameterDescription> parameters,
    std::shared_ptr<const OssEvOperation> (*make)(const OssEvKernelSetup &),
    const std::vector<OssEvKernelInput> &maps = {});
