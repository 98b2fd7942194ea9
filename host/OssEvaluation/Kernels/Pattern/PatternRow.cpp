#include "OssEvaluation/Kernels/Pattern/PatternRow.h"

namespace OssEvPattern {

Tiles Tiles::of(const OssEvKernelSetup &setup)
{
    Tiles tiles;
    tiles.output = setup.output();
    tiles.columns = float(setup.integer("Columns"));
    tiles.gap = float(setup.real("Gap"));
    tiles.bevel = float(setup.real("Bevel"));
    tiles.variation = float(setup.real("Variation"));
    tiles.heightVariation = float(setup.real("HeightVariation"));
    tiles.seed = std::uint32_t(setup.integer("Seed")) * 2654435769U;
    return tiles;
}

Figure Figure::of(const OssEvKernelSetup &setup)
{
    Figure figure;
    figure.output = setup.output();
    figure.softness = float(setup.real("Softness"));
    return figure;
}

void add(std::vector<OssEvKernel> *kernels, const TilesRow &row, Make make)
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = row.name;
    kernel.inputs = {{"Color", 4}, {"Gap Color", 4}, {"UV", 3}};
    kernel.outputs = {
        {"Output", 4}, {"Mask", 1}, {"Height", 1, true}, {"Random", 1}, {"Tile UV", 3, true}};
    kernel.parameters = {integer("Columns", row.columns, 1, 500)};
    if (row.rows > 0)
        kernel.parameters.push_back(integer("Rows", row.rows, 1, 500));
    kernel.parameters.insert(kernel.parameters.end(), row.own.begin(), row.own.end());
    const Parameters shared{real("Gap", row.gap, 0, 0.9),       real("Bevel", row.bevel, 0, 1),
                            real("HeightVariation", 0.2, 0, 1), color("Color", row.color),
                            color("GapColor", row.gapColor),    real("Variation", 0.3, 0, 1),
                            integer("Seed", 1, 0, 9999)};
    kernel.parameters.insert(kernel.parameters.end(), shared.begin(), shared.end());
    kernel.make = make;
    kernels->push_back(kernel);
}

void add(std::vector<OssEvKernel> *kernels, const std::string &name, const Parameters &own,
         Make make)
{
    using namespace OssEvDescribe;
    OssEvKernel kernel;
    kernel.name = name;
    kernel.inputs = {{"Color", 4}, {"Background", 4}, {"UV", 3}};
    kernel.outputs = {{"Output", 4}, {"Mask", 1}, {"Distance", 1, true}};
    kernel.parameters = own;
    const Parameters shared{real("Softness", 0, 0, 1), color("Color", {1, 1, 1, 1}),
                            color("Background", {0, 0, 0, 1})};
    kernel.parameters.insert(kernel.parameters.end(), shared.begin(), shared.end());
    kernel.make = make;
    kernels->push_back(kernel);
}

} // namespace OssEvPattern
