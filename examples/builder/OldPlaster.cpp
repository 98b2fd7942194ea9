#include "builder/Examples.h"
#include "builder/GraphWriter.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssProject.h"

namespace {

QString key(const char *text)
{
    return QString::fromLatin1(text);
}

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

} // namespace

void writeOldPlaster(OssProject *project)
{
    GraphWriter w(project->shadingGroups().first()->network());
    constexpr qreal Column = 240.0;
    const auto at = [](qreal column, qreal y) {
        return QPointF(column * Column, y);
    };
    w.addNote(key("Saved with older node types.\nUpgrade All Node Info compares them with "
                  "what is installed."),
              at(0, -160));
    OssSnBaseNode *position = w.add(key("Geometry/Position"), key("Position"), at(0, 220));
    OssSnBaseNode *lumps = w.addOf(OldNoise, key("Lumps"), at(1, 200));
    OssSnBaseNode *plaster = w.add(key("Procedural/Color"), key("Plaster"), at(2, 0));
    OssSnBaseNode *dirt = w.add(key("Procedural/Color"), key("Dirt"), at(2, 110));
    OssSnBaseNode *soften = w.addOf(OldBlur, key("Soften"), at(2, 220));
    OssSnBaseNode *levels = w.addOf(NewLevels, key("Dirt Levels"), at(3, 220));
    OssSnBaseNode *merge = w.addOf(OldMerge, key("Dirt over Plaster"), at(4, 40));
    OssSnBaseNode *gamma = w.addOf(OldGamma, key("Shop Gamma"), at(5, 40));
    OssSnBaseNode *surface = w.add(key("Shaders/Standard Surface"), key("Plaster Wall"), at(6, 40));
    w.wire(position, lumps, key("Coordinates"));
    w.wire(lumps, soften, key("Input"));
    w.wire(soften, levels, key("Input"));
    w.wire(plaster, merge, key("Base"));
    w.wire(dirt, merge, key("Over"));
    w.wire(levels, merge, key("Mask"));
    w.wire(merge, gamma, key("Input"));
    w.wire(gamma, surface, key("Base Color"));
    w.wire(levels, surface, key("Roughness"));
    w.set(plaster, key("Color"), key("0.62,0.58,0.5,1"));
    w.set(dirt, key("Color"), key("0.16,0.13,0.09,1"));
    w.set(lumps, key("Contrast"), 1.6);
    w.set(lumps, key("Kind"), key("Turbulence"));
    w.set(merge, key("BlendMode"), key("Multiply"));
    w.set(merge, key("Opacity"), 0.8);
    w.set(levels, key("InLow"), 0.3);
    // Somebody gave this one an input of its own.
    OssSnBaseNode::InputPort own;
    own.name = key("Strength");
    own.kind = OssSnDataKind::Scalar;
    gamma->addInput(own);

    OssSnBaseNode *viewer = w.network()->viewerNode();
    GraphWriter::place(viewer, at(7.2, 40));
    w.wire(surface, viewer, key("1"));

    OssSnGroupNode *group = w.network()->groupNodes({lumps, soften, levels});
    group->setName(key("Dirt Mask"));
    const QString size = group->createKnob(lumps, key("Frequency"));
    group->renameKnobName(size, group->userAttribute(size).prettyName(), key("Size of Spots"));
    group->createKnob(soften, key("Radius"));
    group->createKnob(levels, key("InLow"));
}
