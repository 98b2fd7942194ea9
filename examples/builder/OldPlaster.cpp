#include "builder/Examples.h"
#include "builder/GraphWriter.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssProject.h"

namespace {

// The node types as they were when this project was last saved.

const char *const OldNoise = R"(
<NodeType PathKey="Procedural/Noise/Fractal Noise" Kernel="fractalNoise" Date="2025-02-10">
    <Description>Noise of several octaves.</Description>
    <Inputs>
        <Input Name="Frequency" Kind="Scalar" Preferred="true"/>
        <Input Name="Coordinates" Kind="Vector"/>
    </Inputs>
    <Outputs><Output Name="Output" Kind="Scalar"/></Outputs>
    <Attributes>
        <Attribute Name="Frequency" Type="real" Default="2" Minimum="0.01" Maximum="500"/>
        <Attribute Name="Octaves" Type="integer" Default="4" Minimum="1" Maximum="12"/>
        <Attribute Name="Contrast" Type="real" Default="1" Minimum="0" Maximum="4"/>
        <Attribute Name="Kind" Type="choice" Choices="Turbulence,Fractal" Default="Fractal"/>
        <Attribute Name="Seed" Type="integer" Default="1" Minimum="0" Maximum="9999"/>
    </Attributes>
</NodeType>)";

const char *const OldBlur = R"(
<NodeType PathKey="Filter/Blur" Kernel="blur" Date="2025-02-10">
    <Description>Softens its input.</Description>
    <Inputs><Input Name="Input" Kind="Color" Preferred="true"/></Inputs>
    <Outputs><Output Name="Output" Kind="Color"/></Outputs>
    <Attributes><Attribute Name="Radius" Type="real" Default="4" Minimum="0"/></Attributes>
</NodeType>)";

const char *const OldMerge = R"(
<NodeType PathKey="Layer/Merge" Kernel="merge" Date="2024-09-30">
    <Description>Puts one stream over another.</Description>
    <Tags><Tag>_blend</Tag></Tags>
    <Inputs>
        <Input Name="Base" Kind="Color" Preferred="true"/>
        <Input Name="Over" Kind="Color"/>
        <Input Name="Mask" Kind="Scalar"/>
    </Inputs>
    <Outputs><Output Name="Output" Kind="Color"/></Outputs>
    <Attributes>
        <Attribute Name="BlendMode" Type="choice" Choices="Normal,Multiply,Screen,Add"/>
        <Attribute Name="Opacity" Type="real" Default="1" Minimum="0" Maximum="1"/>
    </Attributes>
</NodeType>)";

const char *const OldGamma = R"(
<NodeType PathKey="Adjust/Gamma" Kernel="gamma" Date="2025-02-10">
    <Inputs><Input Name="Input" Kind="Color" Preferred="true"/></Inputs>
    <Outputs><Output Name="Output" Kind="Color"/></Outputs>
    <Attributes><Attribute Name="Gamma" Type="real" Default="2.2"/></Attributes>
</NodeType>)";

/// From a colleague whose program is ahead.
const char *const NewLevels = R"(
<NodeType PathKey="Adjust/Levels" Kernel="levels" Date="2027-05-01">
    <Inputs>
        <Input Name="Input" Kind="Color" Preferred="true"/>
        <Input Name="Mask" Kind="Scalar"/>
    </Inputs>
    <Outputs><Output Name="Output" Kind="Color"/></Outputs>
    <Attributes>
        <Attribute Name="InLow" Type="real" Default="0" Minimum="0" Maximum="1"/>
        <Attribute Name="InHigh" Type="real" Default="1" Minimum="0" Maximum="1"/>
        <Attribute Name="Smooth" Type="real" Default="0.1" Minimum="0" Maximum="1"/>
    </Attributes>
</NodeType>)";

/// The nodes, from left to right.
struct Plaster
{
    explicit Plaster(GraphWriter *w)
        : position(w->add(key("Geometry/Position"), key("Position"), at(0, 220)))
        , lumps(w->addOf(OldNoise, key("Lumps"), at(1, 200)))
        , plaster(w->add(key("Procedural/Color"), key("Plaster"), at(2, 0)))
        , dirt(w->add(key("Procedural/Color"), key("Dirt"), at(2, 110)))
        , soften(w->addOf(OldBlur, key("Soften"), at(2, 220)))
        , levels(w->addOf(NewLevels, key("Dirt Levels"), at(3, 220)))
        , merge(w->addOf(OldMerge, key("Dirt over Plaster"), at(4, 40)))
        , gamma(w->addOf(OldGamma, key("Shop Gamma"), at(5, 40)))
        , surface(w->add(key("Shaders/Standard Surface"), key("Plaster Wall"), at(6, 40)))
    {
    }

    OssSnBaseNode *position;
    OssSnBaseNode *lumps;
    OssSnBaseNode *plaster;
    OssSnBaseNode *dirt;
    OssSnBaseNode *soften;
    OssSnBaseNode *levels;
    OssSnBaseNode *merge;
    OssSnBaseNode *gamma;
    OssSnBaseNode *surface;
};

void wire(const Plaster &nodes, GraphWriter *w)
{
    w->wire(nodes.position, nodes.lumps, key("Coordinates"));
    w->wire(nodes.lumps, nodes.soften, key("Input"));
    w->wire(nodes.soften, nodes.levels, key("Input"));
    w->wire(nodes.plaster, nodes.merge, key("Base"));
    w->wire(nodes.dirt, nodes.merge, key("Over"));
    w->wire(nodes.levels, nodes.merge, key("Mask"));
    w->wire(nodes.merge, nodes.gamma, key("Input"));
    w->wire(nodes.gamma, nodes.surface, key("Base Color"));
    w->wire(nodes.levels, nodes.surface, key("Roughness"));
}

void customize(const Plaster &nodes, GraphWriter *w)
{
    w->set(nodes.plaster, key("Color"), key("0.62,0.58,0.5,1"));
    w->set(nodes.dirt, key("Color"), key("0.16,0.13,0.09,1"));
    w->set(nodes.lumps, key("Contrast"), 1.6);
    w->set(nodes.lumps, key("Kind"), key("Turbulence"));
    w->set(nodes.merge, key("BlendMode"), key("Multiply"));
    w->set(nodes.merge, key("Opacity"), 0.8);
    w->set(nodes.levels, key("InLow"), 0.3);
    // Somebody gave this one an input of its own.
    OssSnBaseNode::InputPort own;
    own.name = key("Strength");
    own.kind = OssSnDataKind::Scalar;
    nodes.gamma->addInput(own);
}

void groupDirt(const Plaster &nodes, GraphWriter *w)
{
    OssSnGroupNode *group = w->network()->groupNodes({nodes.lumps, nodes.soften, nodes.levels});
    group->setName(key("Dirt Mask"));
    const QString size = group->createKnob(nodes.lumps, key("Frequency"));
    group->renameKnobName(size, group->userAttribute(size).prettyName(), key("Size of Spots"));
    group->createKnob(nodes.soften, key("Radius"));
    group->createKnob(nodes.levels, key("InLow"));
}

} // namespace

void writeOldPlaster(OssProject *project)
{
    GraphWriter w(project->shadingGroups().first()->network());
    w.addNote(key("Saved with older node types.\nUpgrade All Node Info compares them with "
                  "what is installed."),
              at(0, -160));
    const Plaster nodes(&w);
    wire(nodes, &w);
    customize(nodes, &w);
    OssSnBaseNode *viewer = w.network()->viewerNode();
    GraphWriter::place(viewer, at(7.2, 40));
    w.wire(nodes.surface, viewer, key("1"));
    groupDirt(nodes, &w);
    w.addBackdrop(key("Colors"), at(2, 0) + QPointF(-30, -60), {200, 240}, key("0.42,0.36,0.22,1"));
    w.fillBackdrops();
}
