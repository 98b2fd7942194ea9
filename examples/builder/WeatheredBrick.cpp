#include "builder/Examples.h"
#include "builder/GraphWriter.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Project/OssProject.h"

namespace {

/// What is laid over what lies beneath, and where.
struct Layer
{
    OssSnBaseNode *color;
    OssSnBaseNode *mask;
};

/// What the material is made of.
struct Surface
{
    OssSnBaseNode *color;
    OssSnBaseNode *roughness;
    OssSnBaseNode *normal;
    OssSnBaseNode *height;
};

Layer addBricks(GraphWriter *w)
{
    OssSnBaseNode *brick = w->add(key("Procedural/Pattern/Brick"), key("Brick"), at(0, 20));
    OssSnBaseNode *noise = w->add(key("Procedural/Noise/Fractal Noise"), key("Warp Noise"),
                                  at(0, 200));
    OssSnBaseNode *warp = w->add(key("Filter/Warp"), key("Warp"), at(1, 40));
    OssSnBaseNode *mask = w->add(key("Filter/Warp"), key("Warp Mask"), at(1, 160));
    OssSnBaseNode *tint = w->add(key("Adjust/Hue Shift"), key("Brick Tint"), at(2, 40));
    w->wire(brick, warp, key("Input"));
    w->wire(noise, warp, key("Vector"), key("Vector"));
    w->wire(brick, mask, key("Input"), key("Mask"));
    w->wire(noise, mask, key("Vector"), key("Vector"));
    w->wire(warp, tint, key("Input"));
    w->set(noise, key("Frequency"), 12.0);
    w->set(warp, key("Amount"), 0.02);
    w->set(mask, key("Amount"), 0.02);
    return {tint, mask};
}

Layer addMoss(GraphWriter *w)
{
    OssSnBaseNode *position = w->add(key("Geometry/Position"), key("Position"), at(0, 480));
    OssSnBaseNode *noise = w->add(key("Procedural/Noise/Fractal Noise"), key("Moss Noise"),
                                  at(1, 460));
    OssSnBaseNode *occlusion = w->add(key("Geometry/Ambient Occlusion"), key("Ambient Occlusion"),
                                      at(1, 600));
    OssSnBaseNode *levels = w->add(key("Adjust/Levels"), key("Moss Levels"), at(2, 460));
    OssSnBaseNode *mask = w->add(key("Math/Math"), key("Moss Mask"), at(3, 500));
    OssSnBaseNode *color = w->add(key("Procedural/Color"), key("Moss Color"), at(2, 620));
    w->wire(position, noise, key("Position"));
    w->wire(noise, levels, key("Input"));
    w->wire(levels, mask, key("A"));
    w->wire(occlusion, mask, key("B"));
    w->set(noise, key("Octaves"), 8);
    w->set(color, key("Color"), key("0.08,0.13,0.03,1"));
    w->set(levels, key("InLow"), 0.45);
    return {color, mask};
}

/// Where edges are worn off.
OssSnBaseNode *addWear(GraphWriter *w)
{
    OssSnBaseNode *curvature = w->add(key("Geometry/Curvature"), key("Curvature"), at(0, 880));
    OssSnBaseNode *cells = w->add(key("Procedural/Noise/Cellular"), key("Chips"), at(1, 970));
    OssSnBaseNode *wear = w->add(key("Math/Math"), key("Wear"), at(2, 880));
    OssSnBaseNode *levels = w->add(key("Adjust/Levels"), key("Wear Levels"), at(3, 880));
    w->wire(curvature, wear, key("A"), key("Edges"));
    w->wire(cells, wear, key("B"));
    w->wire(wear, levels, key("Input"));
    w->set(cells, key("Scale"), 40.0);
    return levels;
}

Surface addSurface(GraphWriter *w, const Layer &bricks, const Layer &moss, OssSnBaseNode *wear)
{
    OssSnBaseNode *mossMerge = w->add(key("Layer/Merge"), key("Moss over Brick"), at(4.2, 160));
    OssSnBaseNode *clay = w->add(key("Procedural/Color"), key("Raw Clay"), at(4.2, 640));
    OssSnBaseNode *clayMerge = w->add(key("Layer/Merge"), key("Clay over Moss"), at(5.3, 200));
    OssSnBaseNode *grade = w->add(key("Adjust/Brightness Contrast"), key("Grade"), at(6.2, 220));
    OssSnBaseNode *roughness = w->add(key("Adjust/Levels"), key("Roughness"), at(6.2, 400));
    OssSnBaseNode *height = w->add(key("Math/Math"), key("Height"), at(5.3, 760));
    OssSnBaseNode *soften = w->add(key("Filter/Blur"), key("Soften"), at(6.2, 760));
    OssSnBaseNode *normal = w->add(key("Math/Height to Normal"), key("Normal"), at(7.1, 620));
    w->wire(bricks.color, mossMerge, key("Base"));
    w->wire(moss.color, mossMerge, key("Over"));
    w->wire(moss.mask, mossMerge, key("Mask"));
    w->wire(mossMerge, clayMerge, key("Base"));
    w->wire(clay, clayMerge, key("Over"));
    w->wire(wear, clayMerge, key("Mask"));
    w->wire(clayMerge, grade, key("Input"));
    w->wire(moss.mask, roughness, key("Input"));
    w->wire(bricks.mask, height, key("A"));
    w->wire(wear, height, key("B"));
    w->wire(height, soften, key("Input"));
    w->wire(soften, normal, key("Height"));
    w->set(clay, key("Color"), key("0.42,0.19,0.11,1"));
    w->set(mossMerge, key("Amount"), 0.85);
    w->set(height, key("Operation"), 1);
    w->set(soften, key("Radius"), 2.5);
    return {grade, roughness, normal, soften};
}

OssSnBaseNode *addMaterial(GraphWriter *w, const Surface &surface)
{
    OssSnBaseNode *material = w->add(key("Shaders/Standard Surface"), key("Weathered Brick"),
                                     at(8.3, 320));
    w->wire(surface.color, material, key("Base Color"));
    w->wire(surface.roughness, material, key("Roughness"));
    w->wire(surface.normal, material, key("Normal"));
    w->wire(surface.height, material, key("Displacement"));
    return material;
}

} // namespace

void writeWeatheredBrick(OssProject *project)
{
    GraphWriter w(project->shadingGroups().first()->network());
    // Behind the nodes, so made first.
    w.addBackdrop(key("Brick pattern"), {-40, -60}, {720, 400}, key("0.22,0.42,0.42,1"));
    w.addBackdrop(key("Dirt and moss"), {-40, 400}, {960, 360}, key("0.27,0.42,0.24,1"));
    w.addBackdrop(key("Edge wear"), {-40, 820}, {960, 280}, key("0.48,0.33,0.2,1"));

    const Layer bricks = addBricks(&w);
    const Layer moss = addMoss(&w);
    OssSnBaseNode *wear = addWear(&w);
    const Surface surface = addSurface(&w, bricks, moss, wear);
    OssSnBaseNode *material = addMaterial(&w, surface);
    w.addNote(key("Keep the warp below 0.2 or the mortar breaks up. Moss follows the occlusion, so "
                  "bake that first at full size."),
              at(6.2, 980));

    OssSnBaseNode *viewer = w.network()->viewerNode();
    GraphWriter::place(viewer, at(9.4, 180));
    w.wire(material, viewer, key("0"));
    w.wire(surface.color, viewer, key("1"));
    w.wire(moss.mask, viewer, key("2"));
    w.wire(surface.normal, viewer, key("3"));
    w.fillBackdrops();
}
