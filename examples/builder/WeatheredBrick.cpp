#include "builder/Examples.h"
#include "builder/GraphWriter.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Project/OssProject.h"

namespace {

QString key(const char *text)
{
    return QString::fromLatin1(text);
}

constexpr qreal Column = 240.0;

} // namespace

void writeWeatheredBrick(OssProject *project)
{
    OssShaderNetwork *network = project->shadingGroups().first()->network();
    GraphWriter w(network);
    const auto at = [](qreal column, qreal y) {
        return QPointF(column * Column, y);
    };

    // Behind the nodes, so made first.
    w.addBackdrop(key("Brick pattern"), {-40, -60}, {720, 400}, key("0.22,0.42,0.42,1"));
    w.addBackdrop(key("Dirt and moss"), {-40, 400}, {960, 360}, key("0.27,0.42,0.24,1"));
    w.addBackdrop(key("Edge wear"), {-40, 820}, {960, 280}, key("0.48,0.33,0.2,1"));

    OssSnBaseNode *brick = w.add(key("Procedural/Pattern/Brick"), key("Brick"), at(0, 20));
    OssSnBaseNode *warpNoise = w.add(key("Procedural/Noise/Fractal Noise"), key("Warp Noise"),
                                     at(0, 200));
    OssSnBaseNode *warp = w.add(key("Filter/Warp"), key("Warp"), at(1, 40));
    OssSnBaseNode *warpMask = w.add(key("Filter/Warp"), key("Warp Mask"), at(1, 160));
    OssSnBaseNode *tint = w.add(key("Adjust/Hue Shift"), key("Brick Tint"), at(2, 40));
    w.wire(brick, warp, key("Input"));
    w.wire(warpNoise, warp, key("Vector"), key("Vector"));
    w.wire(brick, warpMask, key("Input"), key("Mask"));
    w.wire(warpNoise, warpMask, key("Vector"), key("Vector"));
    w.wire(warp, tint, key("Input"));
    w.set(warpNoise, key("Frequency"), 12.0);
    w.set(warp, key("Amount"), 0.02);
    w.set(warpMask, key("Amount"), 0.02);

    OssSnBaseNode *position = w.add(key("Geometry/Position"), key("Position"), at(0, 480));
    OssSnBaseNode *mossNoise = w.add(key("Procedural/Noise/Fractal Noise"), key("Moss Noise"),
                                     at(1, 460));
    OssSnBaseNode *occlusion = w.add(key("Geometry/Ambient Occlusion"), key("Ambient Occlusion"),
                                     at(1, 600));
    OssSnBaseNode *mossLevels = w.add(key("Adjust/Levels"), key("Moss Levels"), at(2, 460));
    OssSnBaseNode *mossMask = w.add(key("Math/Math"), key("Moss Mask"), at(3, 500));
    OssSnBaseNode *mossColor = w.add(key("Procedural/Color"), key("Moss Color"), at(2, 620));
    w.wire(position, mossNoise, key("Position"));
    w.wire(mossNoise, mossLevels, key("Input"));
    w.wire(mossLevels, mossMask, key("A"));
    w.wire(occlusion, mossMask, key("B"));
    w.set(mossNoise, key("Octaves"), 8);
    w.set(mossColor, key("Color"), key("0.08,0.13,0.03,1"));
    w.set(mossLevels, key("InLow"), 0.45);

    OssSnBaseNode *curvature = w.add(key("Geometry/Curvature"), key("Curvature"), at(0, 880));
    OssSnBaseNode *cells = w.add(key("Procedural/Noise/Cellular"), key("Chips"), at(1, 970));
    OssSnBaseNode *wear = w.add(key("Math/Math"), key("Wear"), at(2, 880));
    OssSnBaseNode *wearLevels = w.add(key("Adjust/Levels"), key("Wear Levels"), at(3, 880));
    w.wire(curvature, wear, key("A"), key("Edges"));
    w.wire(cells, wear, key("B"));
    w.wire(wear, wearLevels, key("Input"));
    w.set(cells, key("Scale"), 40.0);

    OssSnBaseNode *mossMerge = w.add(key("Layer/Merge"), key("Moss over Brick"), at(4.2, 160));
    OssSnBaseNode *wearColor = w.add(key("Procedural/Color"), key("Raw Clay"), at(4.2, 640));
    OssSnBaseNode *wearMerge = w.add(key("Layer/Merge"), key("Clay over Moss"), at(5.3, 200));
    OssSnBaseNode *grade = w.add(key("Adjust/Brightness Contrast"), key("Grade"), at(6.2, 220));
    OssSnBaseNode *roughness = w.add(key("Adjust/Levels"), key("Roughness"), at(6.2, 400));
    OssSnBaseNode *height = w.add(key("Math/Math"), key("Height"), at(5.3, 760));
    OssSnBaseNode *soften = w.add(key("Filter/Blur"), key("Soften"), at(6.2, 760));
    OssSnBaseNode *normal = w.add(key("Math/Height to Normal"), key("Normal"), at(7.1, 620));
    w.wire(tint, mossMerge, key("Base"));
    w.wire(mossColor, mossMerge, key("Over"));
    w.wire(mossMask, mossMerge, key("Mask"));
    w.wire(mossMerge, wearMerge, key("Base"));
    w.wire(wearColor, wearMerge, key("Over"));
    w.wire(wearLevels, wearMerge, key("Mask"));
    w.wire(wearMerge, grade, key("Input"));
    w.wire(mossMask, roughness, key("Input"));
    w.wire(warpMask, height, key("A"));
    w.wire(wearLevels, height, key("B"));
    w.wire(height, soften, key("Input"));
    w.wire(soften, normal, key("Height"));
    w.set(wearColor, key("Color"), key("0.42,0.19,0.11,1"));
    w.set(mossMerge, key("Amount"), 0.85);
    w.set(height, key("Operation"), 1);
    w.set(soften, key("Radius"), 2.5);

    OssSnBaseNode *material = w.add(key("Shaders/Standard Surface"), key("Weathered Brick"),
                                    at(8.3, 320));
    w.wire(grade, material, key("Base Color"));
    w.wire(roughness, material, key("Roughness"));
    w.wire(normal, material, key("Normal"));
    w.wire(soften, material, key("Displacement"));
    w.addNote(key("Keep the warp below 0.2 or the mortar breaks up. Moss follows the occlusion, so "
                  "bake that first at full size."),
              at(6.2, 980));

    OssSnBaseNode *viewer = network->viewerNode();
    GraphWriter::place(viewer, at(9.4, 180));
    w.wire(material, viewer, key("0"));
    w.wire(grade, viewer, key("1"));
    w.wire(mossMask, viewer, key("2"));
    w.wire(normal, viewer, key("3"));
}
