#include "support/ExampleGraph.h"

#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgDotNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "OssNodeGraph/Items/OssNgUINode.h"

#include <QMetaEnum>
#include <QPainter>

#include <cmath>

namespace {

QStringList list(std::initializer_list<const char *> names)
{
    QStringList result;
    for (const char *name : names)
        result.append(QString::fromLatin1(name));
    return result;
}

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

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

QHash<QString, int> kinds(std::initializer_list<std::pair<const char *, OssNgPortKind>> entries)
{
    QHash<QString, int> result;
    for (const auto &entry : entries)
        result.insert(QString::fromLatin1(entry.first), int(entry.second));
    return result;
}

} // namespace

GraphScene::GraphScene() = default;

GraphScene::~GraphScene()
{
    OssNgSceneIndex::releaseItems(this);
}

void GraphScene::adopt(OssNgNode *node)
{
    addItem(node);
    QObject::connect(node, &OssNgNode::inputSourceChanged, node,
                     [node](OssNgNode *source, const QString &input, const QString &output) {
                         if (source)
                             node->attachInput(input, source, output);
                         else
                             node->detachInput(input);
                     });
}

OssNgExtendedNode *GraphScene::add(const QString &title, const QPointF &position,
                                   const QString &category, const QStringList &inputs,
                                   const QStringList &outputs)
{
    auto *node = add<OssNgExtendedNode>(title, position);
    node->setCategory(category);
    node->addInputPorts(inputs);
    node->addOutputPorts(outputs);
    return node;
}

void GraphScene::connectNodes(OssNgNode *source, const QString &output, OssNgNode *destination,
                              const QString &input)
{
    destination->attachInput(input, source, output);
}

void buildBrickWall(GraphScene *scene)
{
    using Kind = OssNgPortKind;
    const QString out = text("Output");
    const auto add = [&](const char *title, qreal x, qreal y, const char *category,
                         std::initializer_list<const char *> inputs) {
        // Positions are those of the bodies.
        return scene->add(text(title), {x - 6.0, y - 6.0}, text(category), list(inputs), {out});
    };
    auto *brick = add("Brick", 84, 410, "Procedural", {"Size", "Mortar"});
    brick->setPortKinds(kinds({{"Size", Kind::Scalar}, {"Mortar", Kind::Scalar}}), {});
    auto *noise = add("Fractal Noise", 84, 540, "Procedural", {"Frequency"});
    noise->setPortKinds(kinds({{"Frequency", Kind::Scalar}}), kinds({{"Output", Kind::Vector}}));
    auto *warp = add("Warp", 262, 452, "Filter", {"Input", "Vector"});
    warp->setPortKinds(kinds({{"Vector", Kind::Vector}}), {});
    warp->setThumbnail(bricks());
    auto *tiled = add("Tiled", 84, 200, "Procedural", {"TileImage"});
    auto *levels = add("Levels", 262, 214, "Filter", {"Input"});
    levels->setDisabled(true);
    auto *merge = add("Merge", 596, 286, "Layer", {"Base", "Over", "Mask"});
    merge->setPortKinds(kinds({{"Mask", Kind::Scalar}}), {});
    auto *blur = add("Blur", 440, 430, "Filter", {"Input"});
    blur->setPortKinds({}, kinds({{"Output", Kind::Scalar}}));
    blur->setStale(true);
    auto *roughness = add("Roughness", 596, 560, "Math", {"Base"});
    roughness->setPortKinds(kinds({{"Base", Kind::Scalar}}), kinds({{"Output", Kind::Scalar}}));
    auto *mortar = add("Mortar", 596, 140, "Group", {"Height", "Depth"});
    mortar->setPortKinds(kinds({{"Height", Kind::Scalar}, {"Depth", Kind::Scalar}}),
                         kinds({{"Output", Kind::Vector}}));
    mortar->setShapeType(4);
    mortar->updateShape();
    auto *weathered = add("Weathered Brick", 772, 330, "Material",
                          {"Base Color", "Roughness", "Normal", "Displace"});
    weathered->setPortKinds(
        kinds({{"Roughness", Kind::Scalar}, {"Normal", Kind::Vector}, {"Displace", Kind::Scalar}}),
        kinds({{"Output", Kind::Material}}));
    weathered->setShapeType(3);
    weathered->updateShape();
    auto *bake = add("Bake Point", 932, 210, "Bake", {"Input"});
    bake->setPortKinds(kinds({{"Input", Kind::Material}}), {});
    bake->setBaked(true);
    auto *viewer = scene->add(text("Viewer"), {926, 464}, text("Viewer"),
                              list({"0", "1", "2", "3"}), {});
    viewer->setPortKinds(kinds({{"0", Kind::Material}, {"1", Kind::Material}}), {});
    viewer->setInputPortText(text("0"), text("0:Current Material"));
    viewer->setVirtualInput(text("2"), true);
    auto *cellular = add("Cellular", 262, 700, "Procedural", {"Scale"});
    cellular->setPortKinds(kinds({{"Scale", Kind::Scalar}}), kinds({{"Output", Kind::Scalar}}));
    cellular->setErrorText(text("Cannot read scratches.1003.exr: the image is truncated"));
    auto *broadcast = scene->add(text("Broadcast (height)"), {78, 784}, text("TeleportBroadcast"),
                                 list({"Input"}), {});
    broadcast->setPortKinds(kinds({{"Input", Kind::Scalar}}), {});
    broadcast->setIconVisible(broadcast->addIcon(text("BroadcastNodeSignal")), true);

    auto *backdrop = scene->add<OssNgBackdropNode>(QString(), {60, 360});
    backdrop->setTitleText(text("Brick pattern"));
    backdrop->setRect({0, 0, 372, 306});
    auto *note = scene->add<OssNgUINode>(QString(), {730, 634});
    note->setLabel(text("Mortar comes from the group; keep the warp below 0.2 or the grout "
                        "breaks up."));

    const auto wire = [&](OssNgNode *from, OssNgNode *to, const char *input) {
        scene->connectNodes(from, out, to, text(input));
    };
    wire(brick, warp, "Input");
    wire(noise, warp, "Vector");
    wire(tiled, levels, "Input");
    wire(levels, merge, "Base");
    wire(warp, merge, "Over");
    wire(blur, merge, "Mask");
    wire(warp, blur, "Input");
    wire(cellular, roughness, "Base");
    wire(merge, weathered, "Base Color");
    wire(roughness, weathered, "Roughness");
    wire(mortar, weathered, "Normal");
    wire(weathered, bake, "Input");
    wire(weathered, viewer, "1");
    wire(merge, viewer, "2");
    weathered->input(text("Base Color"))->switchToDotableMode(true);
    merge->input(text("Over"))->setActivated(true);
    warp->setSelected(true);
}

void buildMarks(GraphScene *scene)
{
    const QStringList inputs = list({"Base", "Over", "Mask"});
    const QStringList outputs = list({"Colour", "Height", "Normal map"});
    const auto kind = kinds({{"Mask", OssNgPortKind::Scalar},
                             {"Over", OssNgPortKind::Data},
                             {"Height", OssNgPortKind::Scalar},
                             {"Normal map", OssNgPortKind::Vector}});
    int count = 0;
    const auto add = [&](const QString &title) {
        auto *node = scene->add(title, {210.0 * (count % 5), 140.0 * (count / 5)}, text("Filter"),
                                inputs, list({"Output"}));
        node->setPortKinds(kind, kind);
        ++count;
        return node;
    };
    const QMetaEnum modes = QMetaEnum::fromType<OssNgExtendedNode::PortListMode>();
    OssNgExtendedNode *first = nullptr;
    for (int i = 0; i < modes.keyCount(); ++i) {
        auto *node = add(QString::fromLatin1(modes.key(i)));
        node->setPortCluster(text("Stream"), {inputs[0], inputs[1]});
        node->setPortListMode(OssNgExtendedNode::PortListMode(modes.value(i)));
        if (first)
            scene->connectNodes(first, text("Output"), node, inputs[2]);
        first = node;
    }
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
    OssNgNode *last = nullptr;
    int wire = 0;
    for (const auto &entry : marks) {
        auto *node = add(text(entry.first));
        node->setDebugColor(QColor(0xc0, 0x60, 0xff));
        node->setMark(entry.second, true);
        if (last && count % 5 != 1 && wire < 8) {
            OssNgEdge *edge = node->attachInput(inputs[0], last, text("Output"));
            edge->setDebugColor(QColor(0xc0, 0x60, 0xff));
            edge->setMark(wires[wire++], true);
        }
        last = node;
    }
    for (const int shape : {0, 3, 4, 7}) {
        auto *node = add(QStringLiteral("Shape %1").arg(shape));
        node->addOutputPorts(outputs);
        node->setShapeType(shape);
        node->updateShape();
    }
    auto *lengthy = add(text("A node whose name is far longer than any node should ever be wide"));
    for (const char *icon : {"GeoChannel", "ActivePatchRange", "BakePointFiltered",
                             "BroadcastNodeSilent", "ReceiverNodeSignal"})
        lengthy->setIconVisible(lengthy->addIcon(text(icon)), true);
    lengthy->setHovered(true);
    auto *dot = scene->add<OssNgDotNode>(QString(), {-80, 60});
    dot->addInputPort(text("Input"));
    dot->addOutputPort(text("Output"));
    auto *chosen = scene->add<OssNgDotNode>(QString(), {-80, 160});
    chosen->setSelected(true);
}

void buildGrid(GraphScene *scene, int count)
{
    static const char *const categories[] = {"Procedural", "Filter", "Layer", "Math", "Material"};
    const QStringList inputs = list({"Base", "Over", "Mask", "Amount"});
    const QStringList outputs = list({"Output"});
    const auto kind = kinds({{"Mask", OssNgPortKind::Scalar}, {"Amount", OssNgPortKind::Vector}});
    const int columns = std::max(1, int(std::sqrt(double(count))));
    std::vector<OssNgExtendedNode *> nodes;
    nodes.reserve(std::size_t(count));
    for (int i = 0; i < count; ++i) {
        auto *node = scene->add(QStringLiteral("Node %1").arg(i),
                                {250.0 * (i % columns), 160.0 * (i / columns)},
                                text(categories[i % 5]), inputs, outputs);
        node->setPortKinds(kind, {});
        if (i >= columns)
            node->attachInput(inputs[i % 2], nodes[std::size_t(i - columns)], outputs[0]);
        else if (i > 0)
            node->attachInput(inputs[0], nodes[std::size_t(i - 1)], outputs[0]);
        nodes.push_back(node);
    }
}
