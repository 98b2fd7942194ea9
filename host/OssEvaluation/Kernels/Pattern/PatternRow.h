#pragma once

#include "OssEvaluation/Graph/OssEvKernel.h"
#include "OssEvaluation/Kernels/PointKernel.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

/// What patterns in the plane of a patch have in common. There are two families: tiles, which lie beside
/// each other with gaps between them, and figures, which have an inside and an outside.
namespace OssEvPattern {

struct Tiles
{
    enum Output { Colored, Mask, Height, Random, Place };

    int output = Colored;
    float columns = 1.0F;
    float rows = 1.0F;
    float gap = 0.0F;   ///< as a part of a tile
    float bevel = 0.0F; ///< as a part of half a tile
    float variation = 0.0F;
    float heightVariation = 0.0F;
    std::uint32_t seed = 0;

    static Tiles of(const OssEvKernelSetup &setup);
};

struct Figure
{
    enum Output { Colored, Mask, Distance };

    int output = Colored;
    float softness = 0.0F; ///< in the height of a patch

    static Figure of(const OssEvKernelSetup &setup);
};

template <class Own>
struct TilesOf : Tiles
{
    Own own;
};

template <class Own>
struct FigureOf : Figure
{
    Own own;
};

using Parameters = std::vector<OssEvParameterDescription>;
using Make = std::shared_ptr<const OssEvOperation> (*)(const OssEvKernelSetup &setup);

struct TilesRow
{
    std::string name;
    int columns;
    /// 0 where there are as many as the columns make.
    int rows;
    double gap;
    double bevel;
    OssEvColor color;
    OssEvColor gapColor;
    Parameters own{};
};

void add(std::vector<OssEvKernel> *kernels, const TilesRow &row, Make make);

/// A figure; its name, and the parameters of its own.
void add(std::vector<OssEvKernel> *kernels, const std::string &name, const Parameters &own,
         Make make);

template <class Own>
std::shared_ptr<const OssEvOperation> makeTiles(void (*function)(const OssEvStrip &,
                                                                 const TilesOf<Own> &),
                                                const OssEvKernelSetup &setup, const Own &own,
                                                float rows)
{
    TilesOf<Own> values;
    static_cast<Tiles &>(values) = Tiles::of(setup);
    values.rows = rows;
    values.own = own;
    return OssEvMakePoint(function, values,
                          {setup.premultiplied("Color"), setup.premultiplied("GapColor")});
}

template <class Own>
std::shared_ptr<const OssEvOperation> makeFigure(void (*function)(const OssEvStrip &,
                                                                  const FigureOf<Own> &),
                                                 const OssEvKernelSetup &setup, const Own &own)
{
    FigureOf<Own> values;
    static_cast<Figure &>(values) = Figure::of(setup);
    values.own = own;
    return OssEvMakePoint(function, values,
                          {setup.premultiplied("Color"), setup.premultiplied("Background")});
}

} // namespace OssEvPattern
