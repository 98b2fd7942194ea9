#pragma once

#include "OssEvaluation/Graph/OssEvOperation.h"
#include "OssEvaluation/Kernels/Scratch.h"
#include "OssEvaluation/Values/OssEvTileGrid.h"

#include <vector>

/// A place that a filter looks at, in texels from the one that it is at.
struct OssEvOffset
{
    int x = 0;
    int y = 0;
    float weight = 1.0F;
};

/// The places that a filter looks at: all there are in a small window, and in a large one a bounded
/// number of them, in a picture that was halved until they are neighbours.
struct OssEvWindow
{
    std::vector<OssEvOffset> offsets;
    int radius = 0; ///< of the farthest offset
    int reduction = 0;

    /// A disc of a radius in texels, of at most so many places: a spiral of H. Vogel where it has more
    /// texels. The first one is the middle. Weights are 1.
    static OssEvWindow disc(double radius, int most);

    /// Places on a line of `length` texels, or on an ellipse when `width` is not 0, about the middle;
    /// weights fall off as a Gaussian's, or not at all. They sum up to 1.
    static OssEvWindow stripe(double length, double width, double angle, bool gaussian);
};

/// What a window operation works on: planes with the window's radius around a block.
struct OssEvWindowField
{
    const OssEvBlock &block;
    const OssEvWindow &window;
    /// The block itself, a plane for each channel.
    std::vector<OssEvPlane> here;
    /// With the surrounding, of the picture that the window looks at.
    std::vector<OssEvPlane> around;
    /// 1 where a face is; null where all is covered or there is no mesh.
    const OssEvPlane *cover = nullptr;
};

/// Area operations over a window. Texels that no face covers count as the one in the middle.
class OssEvWindowOperation : public OssEvAreaOperation
{
public:
    OssEvRegion needed(std::size_t tap, const OssEvRegion &block) const override;
    void run(const OssEvBlock &block) const override;

protected:
    explicit OssEvWindowOperation(OssEvWindow window);

    const OssEvWindow &window() const { return m_window; }

    virtual void filter(const OssEvWindowField &field) const = 0;

private:
    OssEvWindow m_window;
};

/// The surrounding of a block, of a grid that was halved so many times, at the size of the block's
/// texels: evenly between texel centres.
void OssEvEnlarge(const OssEvTileGrid &grid, int channel, const OssEvRegion &region, int reduction,
                  const OssEvPlane &to);

/// The same from a plane; its first texel is the one at (`x`, `y`) of the reduced picture.
void OssEvEnlarge(const OssEvPlane &from, int x, int y, const OssEvRegion &region, int reduction,
                  const OssEvPlane &to);

/// What of a reduced picture lies under a region, with room for what is between texel centres.
OssEvRegion OssEvUnder(const OssEvRegion &region, int reduction);
