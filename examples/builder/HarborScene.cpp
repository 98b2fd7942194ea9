#include "builder/Examples.h"
#include "builder/GraphWriter.h"
#include "OssCoreModules/Network/OssShaderNetwork.h"
#include "OssCoreModules/Network/OssSnBaseNode.h"
#include "OssCoreModules/Network/OssSnGroupNode.h"
#include "OssCoreModules/Project/OssProject.h"
#include "OssCoreModules/Project/OssShadingGroup.h"

#include <QRandomGenerator>

#include <algorithm>

namespace {

QString key(const char *text)
{
    return QString::fromLatin1(text);
}

/// What each material of the harbour is made of: its base, and what lies on it.
struct Material
{
    const char *name;
    const char *base;
    const char *layers[5];
    const char *color; // of the backdrop
};

const Material materials[] = {
    {"Quay Stone",
     "Procedural/Pattern/Brick",
     {"Algae", "Salt", "Oil", "Cracks", "Rain Streaks"},
     "0.34,0.37,0.42,1"},
    {"Ship Hull",
     "Procedural/Pattern/Grid",
     {"Rust", "Antifouling", "Barnacles", "Scratches", "Salt"},
     "0.45,0.3,0.24,1"},
    {"Deck Planks",
     "Procedural/Pattern/Gradient",
     {"Grain", "Tar", "Boot Wear", "Rain Streaks", "Dirt"},
     "0.44,0.37,0.24,1"},
    {"Crane Steel",
     "Procedural/Color",
     {"Paint", "Rust", "Grease", "Scratches", "Dirt"},
     "0.44,0.41,0.2,1"},
    {"Container",
     "Procedural/Pattern/Grid",
     {"Paint", "Logo", "Dents", "Rust", "Rain Streaks"},
     "0.22,0.4,0.47,1"},
    {"Rope",
     "Procedural/Pattern/Checker",
     {"Fibers", "Tar", "Salt", "Dirt", "Fraying"},
     "0.4,0.36,0.3,1"},
    {"Bollard",
     "Procedural/Color",
     {"Paint", "Rust", "Rope Wear", "Salt", "Algae"},
     "0.42,0.24,0.28,1"},
    {"Warehouse Brick",
     "Procedural/Pattern/Brick",
     {"Mortar", "Soot", "Moss", "Chips", "Posters"},
     "0.46,0.28,0.22,1"},
};

constexpr qreal Column = 240.0;

/// A layer: a mask of noise and occlusion, a color, and the merge that puts it over the rest.
OssSnBaseNode *writeLayer(GraphWriter &w, const QString &name, OssSnBaseNode *below,
                          OssSnBaseNode *occlusion, int index, QRandomGenerator &random)
{
    const qreal x = Column * (1.2 + index * 2.4);
    OssSnBaseNode *noise = w.add(index % 2 ? key("Procedural/Noise/Cellular")
                                           : key("Procedural/Noise/Fractal Noise"),
                                 name + key(" Noise"), {x, 240});
    OssSnBaseNode *levels = w.add(key("Adjust/Levels"), name + key(" Levels"), {x, 370});
    OssSnBaseNode *mask = w.add(key("Math/Math"), name + key(" Mask"), {x + Column, 330});
    OssSnBaseNode *color = w.add(key("Procedural/Color"), name + key(" Color"), {x + Column, 210});
    OssSnBaseNode *merge = w.add(key("Layer/Merge"), name, {x + Column * 1.7, 40});
    w.wire(noise, levels, key("Input"));
    w.wire(levels, mask, key("A"));
    w.wire(occlusion, mask, key("B"));
    w.wire(below, merge, key("Base"));
    w.wire(color, merge, key("Over"));
    w.wire(mask, merge, key("Mask"));
    w.set(noise, key("Seed"), random.bounded(1000));
    w.set(levels, key("InLow"), random.bounded(40) / 100.0);
    w.set(color, key("Color"),
          QStringLiteral("%1,%2,%3,1")
              .arg(random.bounded(90) / 100.0)
              .arg(random.bounded(70) / 100.0)
              .arg(random.bounded(60) / 100.0));
    return merge;
}

/// The inside of a material's group: base, five layers, and what the shader takes from them.
void writeInside(const Material &material, OssSnGroupNode *group, QRandomGenerator &random)
{
    GraphWriter w(group->groupNetwork());
    OssSnBaseNode *seed = group->createInput(key("Wetness"), OssSnDataKind::Scalar);
    OssSnBaseNode *color = group->createOutput(key("Color"), OssSnDataKind::Color);
    OssSnBaseNode *rough = group->createOutput(key("Roughness"), OssSnDataKind::Scalar);
    OssSnBaseNode *height = group->createOutput(key("Height"), OssSnDataKind::Scalar);
    GraphWriter::place(seed, {-Column, 560});

    w.addBackdrop(QString::fromLatin1(material.name) + key(" layers"), {Column - 30, -50},
                  {Column * 12.4, 560}, QString::fromLatin1(material.color));
    OssSnBaseNode *base = w.add(QString::fromLatin1(material.base), key("Base"), {0, 40});
    OssSnBaseNode *occlusion = w.add(key("Geometry/Ambient Occlusion"), key("Occlusion"), {0, 420});
    OssSnBaseNode *last = base;
    OssSnBaseNode *firstMask = nullptr;
    for (int i = 0; i < 5; ++i) {
        last = writeLayer(w, QString::fromLatin1(material.layers[i]), last, occlusion, i, random);
        if (!firstMask)
            firstMask = last->inputNode(key("Mask"));
    }
    const qreal right = Column * 13.6;
    OssSnBaseNode *grade = w.add(key("Adjust/Brightness Contrast"), key("Grade"), {right, 40});
    OssSnBaseNode *wet = w.add(key("Math/Math"), key("Wet"), {right, 380});
    OssSnBaseNode *blur = w.add(key("Filter/Blur"), key("Soften"), {right, 560});
    w.wire(last, grade, key("Input"));
    w.wire(firstMask, wet, key("A"));
    w.wire(seed, wet, key("B"));
    w.wire(wet, blur, key("Input"));
    w.wire(grade, color, key("Input"));
    w.wire(wet, rough, key("Input"));
    w.wire(blur, height, key("Input"));
    GraphWriter::place(color, {right + Column, 60});
    GraphWriter::place(rough, {right + Column, 390});
    GraphWriter::place(height, {right + Column, 570});
}

/// A material in the root network: weather in front of its group, grading behind it.
void writeMaterial(GraphWriter &w, const Material &material, const QPointF &corner,
                   OssSnBaseNode *rain, QRandomGenerator &random)
{
    const QString name = QString::fromLatin1(material.name);
    const auto at = [&corner](qreal column, qreal y) {
        return corner + QPointF(column * Column, y);
    };
    w.addBackdrop(name, corner - QPointF(40, 60), {Column * 9.6, 640},
                  QString::fromLatin1(material.color));
    OssSnBaseNode *paint = w.add(key("Misc/Image"), name + key(" Reference"), at(0, 20));
    OssSnBaseNode *place = w.add(key("Filter/Transform"), name + key(" Placement"), at(0.9, 20));
    OssSnBaseNode *noise = w.add(key("Procedural/Noise/Fractal Noise"), name + key(" Breakup"),
                                 at(0, 200));
    OssSnBaseNode *remap = w.add(key("Adjust/Remap Ramp"), name + key(" Ramp"), at(0.9, 200));
    OssSnBaseNode *wetness = w.add(key("Math/Math"), name + key(" Wetness"), at(1.8, 330));
    OssSnGroupNode *group = w.addGroup(name + key(" Layers"), at(2.8, 200));
    writeInside(material, group, random);
    w.wire(paint, place, key("Input"));
    w.wire(noise, remap, key("Input"));
    w.wire(remap, wetness, key("A"));
    w.wire(rain, wetness, key("B"));
    w.wire(wetness, group, key("Wetness"));
    w.set(noise, key("Seed"), random.bounded(1000));

    OssSnBaseNode *merge = w.add(key("Layer/Merge"), name + key(" Reference Mix"), at(3.9, 20));
    OssSnBaseNode *hue = w.add(key("Adjust/Hue Shift"), name + key(" Hue"), at(4.9, 20));
    OssSnBaseNode *sharpen = w.add(key("Filter/Sharpen"), name + key(" Sharpen"), at(5.8, 20));
    OssSnBaseNode *rough = w.add(key("Adjust/Levels"), name + key(" Roughness"), at(4.9, 200));
    OssSnBaseNode *clamp = w.add(key("Adjust/Clamp"), name + key(" Roughness Clamp"), at(5.8, 200));
    OssSnBaseNode *soft = w.add(key("Filter/Blur"), name + key(" Height Blur"), at(4.9, 380));
    OssSnBaseNode *normal = w.add(key("Math/Height to Normal"), name + key(" Normal"),
                                  at(5.8, 380));
    OssSnBaseNode *shader = w.add(key("Shaders/Standard Surface"), name, at(7.2, 120));
    w.wire(group, merge, key("Base"), key("Color"));
    w.wire(place, merge, key("Over"));
    w.wire(remap, merge, key("Mask"));
    w.wire(merge, hue, key("Input"));
    w.wire(hue, sharpen, key("Input"));
    w.wire(group, rough, key("Input"), key("Roughness"));
    w.wire(rough, clamp, key("Input"));
    w.wire(group, soft, key("Input"), key("Height"));
    w.wire(soft, normal, key("Height"));
    w.wire(sharpen, shader, key("Base Color"));
    w.wire(clamp, shader, key("Roughness"));
    w.wire(normal, shader, key("Normal"));
    w.wire(soft, shader, key("Displacement"));
}

} // namespace

void writeHarborScene(OssProject *project)
{
    OssShaderNetwork *network = project->shadingGroups().first()->network();
    GraphWriter w(network);
    QRandomGenerator random(20261121); // the same harbour every time
    w.addBackdrop(key("Weather"), {-1240, 620}, {1000, 460}, key("0.22,0.34,0.5,1"));
    OssSnBaseNode *position = w.add(key("Geometry/Position"), key("World Position"), {-1200, 700});
    OssSnBaseNode *clouds = w.add(key("Procedural/Noise/Fractal Noise"), key("Clouds"),
                                  {-960, 690});
    OssSnBaseNode *normal = w.add(key("Geometry/Normal"), key("World Normal"), {-1200, 860});
    OssSnBaseNode *up = w.add(key("Channel/Split"), key("Facing Up"), {-960, 850});
    OssSnBaseNode *rain = w.add(key("Math/Math"), key("Rain"), {-700, 780});
    OssSnBaseNode *dot = w.add(key("Misc/Dot"), key("Rain Dot"), {-430, 830});
    w.wire(position, clouds, key("Position"));
    w.wire(normal, up, key("Input"));
    w.wire(clouds, rain, key("A"));
    w.wire(up, rain, key("B"), key("Green"));
    w.wire(rain, dot, key("Input"));

    int index = 0;
    OssSnBaseNode *viewer = network->viewerNode();
    for (const Material &material : materials) {
        const QPointF corner((index % 2) * Column * 11.0, (index / 2) * 760.0);
        writeMaterial(w, material, corner, dot, random);
        OssSnBaseNode *shader = network->node(QString::fromLatin1(material.name));
        w.wire(shader ? shader : rain, viewer, QString::number(index + 1));
        ++index;
    }
    GraphWriter::place(viewer, {Column * 22.0, 780});
    w.addNote(key("Wetness drives every material. Change Rain, not the groups."), {-1200, 1140});
}
