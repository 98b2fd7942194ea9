#include "Graphs.h"

#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgDotNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgUINode.h"
#include "support/Text.h"

#include <QMetaEnum>
#include <QPainter>

#include <array>

namespace {

QPixmap bricks()
{
    QPixmap picture(236, 172);
    picture.fill(QColor(0x8d, 0x8a, 0x83));
    QPainter painter(&picture);
    for (int row = 0; row * 18 < 172; ++row) {
        for (int column = -1; column * 64 < 236; ++column)
            painter.fillRect(column * 64 + (row % 2) * 32 + 2, row * 18 + 2, 58, 15,
                             row % 2 ? QColor(0xa5, 0x57, 0x3f) : QColor(0x9c, 0x4f, 0x3a));
    }
    return picture;
}

using Kind = OssNgPortKind;
using Ports = std::initializer_list<std::pair<const char *, Kind>>;
constexpr Kind Color = Kind::Color;
constexpr Kind Scalar = Kind::Scalar;
constexpr Kind Vector = Kind::Vector;

QHash<QString, int> kinds(Ports ports)
{
    QHash<QString, int> result;
    for (const auto &[name, kind] : ports)
        result.insert(text(name), int(kind));
    return result;
}

QStringList names(Ports ports)
{
    QStringList result;
    for (const auto &port : ports)
        result.append(text(port.first));
    return result;
}

/// The nodes of the wall by their titles.
struct Wall
{
    GraphScene *scene;
    QHash<QString, OssNgExtendedNode *> nodes{};

    /// `place` is that of the node's body.
    OssNgExtendedNode *add(const char *title, const QPointF &place, const char *category,
                           Ports inputs, Ports outputs = {{"Output", Color}})
    {
        auto *node = scene->add(text(title), place - QPointF(6, 6), text(category), names(inputs),
                                names(outputs));
        node->setPortKinds(kinds(inputs), kinds(outputs));
        nodes.insert(text(title), node);
        return node;
    }
};

void addNodes(Wall *wall)
{
    wall->add("Brick", {84, 410}, "Procedural", {{"Size", Scalar}, {"Mortar", Scalar}});
    wall->add("Fractal Noise", {84, 540}, "Procedural", {{"Frequency", Scalar}},
              {{"Output", Vector}});
    wall->add("Warp", {262, 452}, "Filter", {{"Input", Color}, {"Vector", Vector}})
        ->setThumbnail(bricks());
    wall->add("Tiled", {84, 200}, "Procedural", {{"TileImage", Color}});
    wall->add("Levels", {262, 214}, "Filter", {{"Input", Color}})->setDisabled(true);
    wall->add("Merge", {596, 286}, "Layer", {{"Base", Color}, {"Over", Color}, {"Mask", Scalar}});
    wall->add("Blur", {440, 430}, "Filter", {{"Input", Color}}, {{"Output", Scalar}})
        ->setStale(true);
    wall->add("Roughness", {596, 560}, "Math", {{"Base", Scalar}}, {{"Output", Scalar}});
    wall->add("Mortar", {596, 140}, "Group", {{"Height", Scalar}, {"Depth", Scalar}},
              {{"Output", Vector}})
        ->setShapeType(4);
    wall->add("Weathered Brick", {772, 330}, "Material",
              {{"Base Color", Color},
               {"Roughness", Scalar},
               {"Normal", Vector},
               {"Displace", Scalar}},
              {{"Output", Kind::Material}})
        ->setShapeType(3);
    for (const char *shaped : {"Mortar", "Weathered Brick"})
        wall->nodes[text(shaped)]->updateShape();
    wall->add("Bake Point", {932, 210}, "Bake", {{"Input", Kind::Material}})->setBaked(true);
    auto *viewer = wall->add(
        "Viewer", {932, 470}, "Viewer",
        {{"0", Kind::Material}, {"1", Kind::Material}, {"2", Color}, {"3", Color}}, {});
    viewer->setInputPortText(text("0"), text("0:Current Material"));
    viewer->setVirtualInput(text("2"), true);
    wall->add("Cellular", {262, 700}, "Procedural", {{"Scale", Scalar}}, {{"Output", Scalar}})
        ->setErrorText(text("Cannot read scratches.1003.exr: the image is truncated"));
    auto *broadcast = wall->add("Broadcast (height)", {84, 790}, "TeleportBroadcast",
                                {{"Input", Scalar}}, {});
    broadcast->setIconVisible(broadcast->addIcon(text("BroadcastNodeSignal")), true);
}

void addWires(Wall *wall)
{
    const std::array<const char *, 3> wires[] = {{"Brick", "Warp", "Input"},
                                                 {"Fractal Noise", "Warp", "Vector"},
                                                 {"Tiled", "Levels", "Input"},
                                                 {"Levels", "Merge", "Base"},
                                                 {"Warp", "Merge", "Over"},
                                                 {"Blur", "Merge", "Mask"},
                                                 {"Warp", "Blur", "Input"},
                                                 {"Cellular", "Roughness", "Base"},
                                                 {"Merge", "Weathered Brick", "Base Color"},
                                                 {"Roughness", "Weathered Brick", "Roughness"},
                                                 {"Mortar", "Weathered Brick", "Normal"},
                                                 {"Weathered Brick", "Bake Point", "Input"},
                                                 {"Weathered Brick", "Viewer", "1"},
                                                 {"Merge", "Viewer", "2"}};
    for (const auto &[source, destination, input] : wires)
        wall->scene->connectNodes(wall->nodes.value(text(source)), text("Output"),
                                  wall->nodes.value(text(destination)), text(input));
    wall->nodes[text("Weathered Brick")]->input(text("Base Color"))->switchToDotableMode(true);
    wall->nodes[text("Merge")]->input(text("Over"))->setActivated(true);
}

/// The next of the nodes that show marks, five side by side; counts them.
OssNgExtendedNode *addMarked(GraphScene *scene, int *count, const QString &title)
{
    const auto kind = kinds(
        {{"Mask", Scalar}, {"Over", Kind::Data}, {"Height", Scalar}, {"Normal map", Vector}});
    auto *node = scene->add(title, {210.0 * (*count % 5), 140.0 * (*count / 5)}, text("Filter"),
                            texts({"Base", "Over", "Mask"}), texts({"Output"}));
    node->setPortKinds(kind, kind);
    ++*count;
    return node;
}

void addPortListModes(GraphScene *scene, int *count)
{
    const QMetaEnum modes = QMetaEnum::fromType<OssNgExtendedNode::PortListMode>();
    OssNgExtendedNode *last = nullptr;
    for (int i = 0; i < modes.keyCount(); ++i) {
        auto *node = addMarked(scene, count, text(modes.key(i)));
        node->setPortCluster(text("Stream"), texts({"Base", "Over"}));
        node->setPortListMode(OssNgExtendedNode::PortListMode(modes.value(i)));
        if (last)
            scene->connectNodes(last, text("Output"), node, text("Mask"));
        last = node;
    }
}

void addMarks(GraphScene *scene, int *count)
{
    const std::pair<const char *, OssNgNode::Mark> marks[] = {
        {"System shader", OssNgNode::SystemShader},
        {"Bypassed", OssNgNode::Bypassed},
        {"Cached", OssNgNode::Cached},
        {"Disabled", OssNgNode::Disabled},
        {"GUI active", OssNgNode::GuiActive},
        {"Highlighted", OssNgNode::Highlighted},
        {"Debug", OssNgNode::Debug},
        {"Baked", OssNgNode::Baked},
        {"Stale", OssNgNode::Stale},
        {"Placeholder", OssNgNode::Placeholder},
    };
    const OssNgEdge::Mark wires[] = {OssNgEdge::Bypassed, OssNgEdge::Shared,  OssNgEdge::Activated,
                                     OssNgEdge::Debug,    OssNgEdge::Virtual, OssNgEdge::Doomed,
                                     OssNgEdge::Inviting, OssNgEdge::Dotable};
    const QColor debugColor(0xc0, 0x60, 0xff);
    OssNgNode *last = nullptr;
    int wire = 0;
    for (const auto &[title, mark] : marks) {
        auto *node = addMarked(scene, count, text(title));
        node->setDebugColor(debugColor);
        node->setMark(mark, true);
        if (last && *count % 5 != 1 && wire < 8) {
            OssNgEdge *edge = node->attachInput(text("Base"), last, text("Output"));
            edge->setDebugColor(debugColor);
            edge->setMark(wires[wire++], true);
        }
        last = node;
    }
}

} // namespace

void buildBrickWall(GraphScene *scene)
{
    Wall wall{scene};
    addNodes(&wall);
    auto *backdrop = scene->add<OssNgBackdropNode>(QString(), {60, 360});
    backdrop->setTitleText(text("Brick pattern"));
    backdrop->setRect({0, 0, 372, 306});
    auto *note = scene->add<OssNgUINode>(QString(), {730, 634});
    note->setLabel(text("Mortar comes from the group; keep the warp below 0.2 or the grout "
                        "breaks up."));
    addWires(&wall);
    wall.nodes[text("Warp")]->setSelected(true);
}

void buildMarks(GraphScene *scene)
{
    int count = 0;
    addPortListModes(scene, &count);
    addMarks(scene, &count);
    for (const int shape : {0, 3, 4, 7}) {
        auto *node = addMarked(scene, &count, QStringLiteral("Shape %1").arg(shape));
        for (const char *output : {"Colour", "Height", "Normal map"})
            node->addOutputPort(text(output));
        node->setShapeType(shape);
        node->updateShape();
    }
    auto *lengthy = addMarked(
        scene, &count, text("A node whose name is far longer than any node should ever be wide"));
    for (const char *icon : {"GeoChannel", "ActivePatchRange", "BakePointFiltered",
                             "BroadcastNodeSilent", "ReceiverNodeSignal"})
        lengthy->setIconVisible(lengthy->addIcon(text(icon)), true);
    lengthy->setHovered(true);
    auto *dot = scene->add<OssNgDotNode>(QString(), {-80, 60});
    dot->addInputPort(text("Input"));
    dot->addOutputPort(text("Output"));
    scene->add<OssNgDotNode>(QString(), {-80, 160})->setSelected(true);
}
