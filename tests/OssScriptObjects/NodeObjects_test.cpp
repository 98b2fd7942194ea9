#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "OssScriptObjects/OssaGeoEntity.h"
#include "OssScriptObjects/OssaImageSet.h"
#include "OssScriptObjects/OssaProject.h"
#include "OssScriptObjects/OssaUndo.h"
#include "ScriptFixture.h"
#include "support/OssaFiles.h"

#include <QFile>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <limits>

namespace {

/// A blur and a group.
class NodeObjects : public ScriptFixture
{
protected:
    using Nodes = QList<Ossa::Node *>;

    void SetUp() override
    {
        ScriptFixture::SetUp();
        m_blur = m_graph->createNode(text("Filter/Blur"), text("Soft"));
        m_group = m_graph->createNode(text("Misc/Group"), text("Group"));
        ASSERT_TRUE(m_blur && m_group);
    }

    Ossa::Node *m_blur = nullptr;
    Ossa::Node *m_group = nullptr;
};

const QString Radius = text("Radius");

} // namespace

TEST_F(NodeObjects, groupsGetPortsAndKnobsAndNothingElseDoes)
{
    EXPECT_NE(m_group->createInput(text("In"), text("Color")), nullptr);
    EXPECT_NE(m_group->createOutput(text("Out"), text("scalar")), nullptr);
    EXPECT_TRUE(m_group->inputs().contains(text("In")));
    EXPECT_TRUE(m_group->outputs().contains(text("Out")));
    Ossa::Node *inner = m_group->inside()->createNode(text("Filter/Blur"), {});
    const QString knob = m_group->createKnob(inner, Radius);
    EXPECT_TRUE(m_group->attributes().contains(knob));
    EXPECT_FALSE(scripts()->hasError());
    const ExpectedLog expected("is no attribute of a node inside group");
    expectRefused({
        {[&] { m_group->createInput(text("X"), text("sound")); }, Type::NotAllowed, "of kind"},
        {[&] { m_group->createOutput(text("X"), text("sound")); }, Type::NotAllowed, "of kind"},
        {[&] { m_blur->createInput(text("X"), text("color")); }, Type::NotAllowed, "input"},
        {[&] { m_blur->createOutput(text("X"), text("color")); }, Type::NotAllowed, "output"},
        {[&] { m_group->createKnob(nullptr, Radius); }, Type::WrongType, "None is no node"},
        {[&] { m_group->createKnob(inner, text("No")); }, Type::UnknownName, "no attribute"},
        {[&] { m_group->createKnob(m_blur, Radius); }, Type::NotAllowed, "become a knob"},
        {[&] { m_blur->createKnob(inner, Radius); }, Type::NotAllowed, "become a knob"},
    });
}

TEST_F(NodeObjects, attributesTakeWhatAPanelWouldTake)
{
    const auto info = [this](const char *what) {
        return m_blur->attributeInfo(Radius).value(text(what));
    };
    EXPECT_FALSE(info("choices").isValid());
    EXPECT_TRUE(info("isDefault").toBool());
    const double most = info("maximum").toDouble();
    const double least = info("minimum").toDouble();
    ASSERT_LT(least, most);
    const auto set = [&](double value) {
        return [=] {
            m_blur->setAttribute(Radius, value);
        };
    };
    const double none = std::numeric_limits<double>::quiet_NaN();
    expectRefused({
        {set(most + 1), Type::OutOfRange, "out of the range"},
        {set(least - 1), Type::OutOfRange, "out of the range"},
        {set(none), Type::OutOfRange, "out of the range"},
        {[&] { m_blur->setAttribute(text("No"), 1); }, Type::UnknownName, "no attribute"},
        {[&] { m_blur->resetAttribute(text("No")); }, Type::UnknownName, "no attribute"},
        {[&] { m_blur->attributeInfo(text("No")); }, Type::UnknownName, "no attribute"},
        {[&] { m_blur->position(); }, Type::ObjectUnavailable, "shown in no node graph"},
        {[&] { m_blur->setPosition(QPointF()); }, Type::ObjectUnavailable, "in no node graph"},
        {[&] { m_blur->setSize(QSizeF()); }, Type::ObjectUnavailable, "in no node graph"},
    });
    m_blur->setAttribute(Radius, most);
    EXPECT_EQ(m_blur->attribute(Radius).toDouble(), most);
    EXPECT_FALSE(info("isDefault").toBool());
    m_blur->resetAttribute(Radius);
    EXPECT_TRUE(info("isDefault").toBool());
    m_blur->setLocked(true);
    EXPECT_TRUE(m_blur->isLocked());
    expectRefused({{set(most), Type::NotAllowed, "are locked"},
                   {[&] { m_blur->resetAttribute(Radius); }, Type::NotAllowed, "are locked"}});
    m_blur->setLocked(false);
    const Ossa::Node *merge = m_graph->createNode(text("Layer/Merge"), {});
    EXPECT_TRUE(merge->attributeInfo(text("BlendMode")).contains(text("choices")));
}

TEST_F(NodeObjects, wiresAreDrawnTakenAwayAndRefused)
{
    Ossa::Node *source = m_graph->createNode(text("Filter/Blur"), text("Source"));
    const QString input = m_blur->inputs().first();
    m_blur->connectInput(input, source, {});
    EXPECT_EQ(m_blur->inputNode(input), source);
    EXPECT_EQ(m_blur->upstreamNodes(), Nodes{source});
    EXPECT_EQ(source->downstreamNodes(), Nodes{m_blur});
    Ossa::Node *removed = m_graph->createNode(text("Filter/Blur"), {});
    removed->remove();
    auto *inside = m_group->inside();
    expectRefused({
        {[&] { m_blur->connectInput(input, removed, {}); }, Type::InternalObjectGone, "removed"},
        {[&] { m_blur->connectInput(input, source, text("No")); }, Type::NotAllowed, ""},
        {[&] { m_graph->connect(source, nullptr, {}, {}); }, Type::WrongType, "None is no node"},
        {[&] { inside->connect(source, m_blur, {}, {}); }, Type::NotAllowed, "not in this graph"},
        {[&] { m_graph->connect(m_blur, m_group, {}, {}); }, Type::NotAllowed, "no free input"},
        {[&] { m_graph->view(m_graph->viewer(), 1); }, Type::NotAllowed, ""},
    });
    m_blur->connectInput(input, nullptr, {});
    EXPECT_EQ(m_blur->inputNode(input), nullptr);
    m_graph->connect(source, m_blur, {}, {});
    EXPECT_EQ(m_blur->upstreamNodes(), Nodes{source});
}

TEST_F(NodeObjects, areMadeGroupedAndExchangedAsText)
{
    m_network->node(text("Soft"))->setErrorText(text("no picture"));
    EXPECT_EQ(m_blur->error(), text("no picture"));
    EXPECT_EQ(m_graph->nodesOfType(text("Filter/Blur")), Nodes{m_blur});
    EXPECT_EQ(m_graph->node(text("No")), nullptr);
    const QString xml = file("nodes.xml");
    auto *inside = m_group->inside();
    Ossa::NodeGraph *graph = m_graph;
    expectRefused({
        {[=] { graph->group({}, {}); }, Type::NotAllowed, "nothing to group"},
        {[=] { inside->group({m_blur}, {}); }, Type::NotAllowed, "not in this graph"},
        {[=] { inside->toText({m_blur}); }, Type::NotAllowed, "not in this graph"},
        {[=] { inside->remove({m_blur}); }, Type::NotAllowed, "not in this graph"},
        {[=] { inside->extract({m_blur}); }, Type::NotAllowed, "not in this graph"},
        {[=] { inside->duplicate({m_blur}); }, Type::NotAllowed, "not in this graph"},
        {[=] { inside->select({m_blur}); }, Type::NotAllowed, "not in this graph"},
        {[=] { inside->exportNodes({m_blur}, xml); }, Type::NotAllowed, "not in this graph"},
        {[=] { m_blur->upgrade(), m_blur->bakeImageSet(); }, Type::NotSupported, "no bake point"},
    });
    EXPECT_FALSE(QFile::exists(xml));
    m_graph->exportNodes({m_blur, m_blur}, xml);
    EXPECT_EQ(m_graph->importNodes(xml).size(), 1);
    EXPECT_EQ(m_graph->fromText(m_graph->toText({m_blur, m_group})).size(), 2);
    EXPECT_TRUE(m_graph->duplicate({}).isEmpty());
    EXPECT_EQ(m_graph->duplicate({m_blur}).size(), 1);
    Ossa::Node *made = m_graph->group({m_blur}, text("Both"));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->name(), text("Both"));
    EXPECT_EQ(m_blur->graph(), made->inside());
    EXPECT_EQ(m_graph->ungroup(made), Nodes{m_blur});
    m_graph->viewer()->remove();
    EXPECT_EQ(m_graph->viewer(), nullptr);
}

TEST_F(NodeObjects, aBakeGivesTheFilesItWroteAndSaysWhatItCouldNot)
{
    OssSnBaseNode *node = add("Procedural/Color");
    Ossa::Node *color = script(node);
    EXPECT_EQ(color->bake(file("one.png"), 4, {1001}), QStringList{file("one.png")});
    EXPECT_EQ(QImage(file("one.png")).size(), QSize(4, 4));
    const QStringList two{file("two.1001.png"), file("two.1002.png")};
    EXPECT_EQ(color->bake(file("two.<UDIM>.png"), 4, {1001, 1002}), two);
    for (const QString &path : two)
        EXPECT_TRUE(QFile::exists(path)) << qPrintable(path);
    EXPECT_EQ(color->bake(file("object.png"), 1, {}).size(), 1) << "the patches of the object";
    const ExpectedLog possible("", ExpectedLog::Possible);
    const QList<int> both{1001, 1002};
    writeFile(file("plain"));
    expectRefused({
        {[&] { color->bake(file("no.png"), 0, {}); }, Type::OutOfRange, "1 to 32768"},
        {[&] { color->bake(file("no.png"), 32769, {}); }, Type::OutOfRange, "1 to 32768"},
        {[&] { color->bake(file("no.png"), 16, both); }, Type::NotAllowed, "<UDIM>"},
        {[&] { color->bake(file("plain/no.png"), 4, {}); }, Type::FileNotAccessible, "plain"},
    });
    EXPECT_FALSE(QFile::exists(file("no.png")));

    auto *bakePoint = qobject_cast<OssSnBakePointNode *>(
        m_network->createPaintableNode({}, text("Misc/Bake Point")));
    bakePoint->imageSet()->setResolution(8);
    script(bakePoint)->bakeImageSet();
    expectReported(Type::ObjectUnavailable, "nothing is connected");
    ASSERT_TRUE(wire(node, bakePoint));
    bakePoint->setAttribute(text("filterCollection"), true);
    bakePoint->setAttribute(text("filterCollectionText"), text("Elsewhere"));
    script(bakePoint)->bakeImageSet();
    expectReported(Type::NotAllowed, "names other objects");
    bakePoint->setAttribute(text("filterCollection"), false);
    {
        auto *status = OssStatusManager::instance();
        const QObject listener;
        QObject::connect(status, &OssStatusManager::partChanged, &listener,
                         [status] { status->cancel(); });
        script(bakePoint)->bakeImageSet();
        expectReported(Type::Cancelled, "stopped");
        EXPECT_TRUE(color->bake(file("stopped.<UDIM>.png"), 512, {1001, 1002}).isEmpty());
        expectReported(Type::Cancelled, "stopped");
        EXPECT_FALSE(QFile::exists(file("stopped.1001.png")));
    }
    script(bakePoint)->bakeImageSet();
    EXPECT_TRUE(bakePoint->hasBakedResult());
    auto *object = OssScriptObject<Ossa::GeoEntity>(m_network->geoEntity());
    const Ossa::ImageSet *images = object->imageSet(bakePoint->imageSet()->name());
    ASSERT_NE(images, nullptr);
    EXPECT_EQ(images->patches(), QList<int>{1001});
    EXPECT_EQ(object->imageSets().size(), 1);
}

TEST_F(NodeObjects, graphsAreShownAndLaidOutAsAskedFor)
{
    auto *group = qobject_cast<OssSnGroupNode *>(m_network->node(text("Group")));
    Ossa::NodeGraph *inside = m_group->inside();
    EXPECT_TRUE(m_graph->isRoot());
    EXPECT_FALSE(inside->isRoot());
    EXPECT_EQ(inside->parentNode(), m_group);
    EXPECT_EQ(OssScriptObject<Ossa::NodeGraph>(group->groupNetwork()), inside);

    const QSignalSpy opened(group, &OssSnGroupNode::openNodeGraph);
    m_group->showInside();
    EXPECT_EQ(opened.count(), 1);
    m_blur->showInside();
    expectReported(Type::NotSupported, "is no group");
    inside->show();
    EXPECT_EQ(opened.count(), 2);
    m_api->createObject(text("Second"), text("plane"));
    Ossa::NodeGraph *other = m_api->graphs().last();
    other->show();
    EXPECT_EQ(m_application->graph(), other);
    EXPECT_EQ(opened.count(), 2);

    auto *networks = OssShaderNetworkManager::instance();
    using Some = void (OssShaderNetworkManager::*)(OssShaderNetwork *, QList<OssSnBaseNode *>);
    const QSignalSpy all(networks, &OssShaderNetworkManager::wholeLayoutRequested);
    const QSignalSpy some(networks, Some(&OssShaderNetworkManager::beautifyNodesLayout));
    m_graph->layout(Nodes());
    m_graph->layout(Nodes{m_blur, m_group});
    EXPECT_EQ(all.count(), 0) << "no nodes are not all nodes";
    m_graph->layout();
    EXPECT_EQ(all.count(), 1);
    other->layout(Nodes{m_blur});
    expectReported(Type::NotAllowed, "is not in this graph");
    EXPECT_EQ(some.count(), 1);
}

TEST_F(NodeObjects, aScriptIsOneStepAroundItsOwnMacros)
{
    OssUndoManager::instance()->clear();
    auto *undo = m_application->undo();
    const auto make = [this] {
        m_graph->createNode(text("Misc/Dot"), {});
    };
    scripts()->beginScript(text("Mine"));
    make();
    make();
    undo->begin(text("Inner"));
    make();
    undo->begin(text("Innermost"));
    make();
    undo->end();
    make();
    undo->end();
    make();
    make();
    scripts()->endScript();
    EXPECT_EQ(undo->texts(), texts({"Mine", "Inner", "Mine"}));
    make();
    make();
    EXPECT_EQ(undo->count(), 5) << "no script runs";
    scripts()->beginScript(text("Back"));
    undo->undo();
    make();
    make();
    scripts()->endScript();
    EXPECT_EQ(undo->count(), 5);
    EXPECT_EQ(undo->texts().last(), text("Back"));
}

TEST_F(NodeObjects, askForWhatShowsThemAndRefuseWhatCannotBe)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    QSignalSpy focus(networks, &OssShaderNetworkManager::focusOnNodeRequest);
    QSignalSpy panel(networks, &OssShaderNetworkManager::showNodePropertiesRequest);
    QSignalSpy below(networks, &OssShaderNetworkManager::showNodePropertiesAtPositionEndRequest);
    QSignalSpy above(networks, &OssShaderNetworkManager::showNodePropertiesAtPositionBeginRequest);
    QSignalSpy match(networks, &OssShaderNetworkManager::matchNodePositionRequest);
    QSignalSpy looks(m_blur->node(), &OssSnBaseNode::attachViewerToNode);
    m_blur->goTo();
    EXPECT_EQ(focus.count(), 1);
    m_blur->showProperties();
    m_blur->showProperties(m_group);
    m_blur->showProperties(nullptr, m_group);
    EXPECT_EQ(panel.count(), 1);
    EXPECT_EQ(below.count(), 1);
    EXPECT_EQ(above.count(), 1);
    m_blur->matchPosition(m_group);
    EXPECT_EQ(match.count(), 1);
    m_blur->lookAt(2);
    m_blur->lookAt();
    EXPECT_EQ(looks.value(0).value(0).toInt(), 2);
    EXPECT_EQ(looks.value(1).value(0).toInt(), 1);
    EXPECT_FALSE(scripts()->hasError());
    Ossa::Node *inner = m_group->inside()->createNode(text("Filter/Blur"), text("Inner"));
    expectRefused({
        {[&] { m_blur->showProperties(m_group, m_group); }, Type::NotAllowed, "not both"},
        {[&] { m_blur->matchPosition(nullptr); }, Type::WrongType, "None is no node"},
        {[&] { m_blur->matchPosition(inner); }, Type::NotAllowed, "different networks"},
        {[&] { m_blur->lookAt(70); }, Type::OutOfRange, "no input 70"},
        {[&] { m_graph->viewer()->lookAt(); }, Type::NotAllowed, "nothing to look at"},
    });
}

TEST_F(NodeObjects, describeKnobsAndLinkThemToMoreNodes)
{
    Ossa::Node *inner = m_group->inside()->createNode(text("Filter/Blur"), {});
    m_group->renameKnob(m_group->createKnob(inner, Radius), text("Softness"));
    m_group->setAttribute(text("Softness"), 5.0);
    Ossa::Node *second = m_group->inside()->createNode(text("Filter/Blur"), {});
    m_group->linkKnob(text("Softness"), second, Radius);
    m_group->setKnobInfo(text("Softness"), {{text("toolTip"), text("How soft")},
                                            {text("section"), QString()},
                                            {text("default"), 5},
                                            {text("maximum"), 40.0}});
    EXPECT_EQ(second->attribute(Radius).toDouble(), 5.0);
    const QVariantMap info = m_group->attributeInfo(text("Softness"));
    EXPECT_EQ(info.value(text("toolTip")).toString(), text("How soft"));
    EXPECT_EQ(info.value(text("section")).toString(), QString());
    EXPECT_EQ(info.value(text("maximum")).toDouble(), 40.0);
    EXPECT_TRUE(info.value(text("isDefault")).toBool());
    OssUndoManager::instance()->undo();
    EXPECT_NE(m_group->attributeInfo(text("Softness")).value(text("toolTip")), text("How soft"));
    OssUndoManager::instance()->redo();
    EXPECT_EQ(m_group->attributeInfo(text("Softness")), info);
    EXPECT_FALSE(scripts()->hasError());
    expectRefused({
        {[&] { m_group->linkKnob(text("Softness"), m_blur, Radius); }, Type::NotAllowed,
         "cannot stand"},
        {[&] { m_group->linkKnob(text("Softness"), nullptr, Radius); }, Type::WrongType,
         "None is no node"},
        {[&] { m_group->setKnobInfo(text("X"), {}); }, Type::UnknownName, "no knob"},
        {[&] {
             m_group->setKnobInfo(text("Softness"), {{text("size"), 1}});
         },
         Type::UnknownName, "no \"size\""},
        {[&] { m_blur->setKnobInfo(Radius, {}); }, Type::NotSupported, "no group"},
    });
}

TEST_F(NodeObjects, groupsAreWrittenAsTypesOfTheProgram)
{
    QTemporaryDir folder;
    const QString path = folder.filePath(text("soft.xml"));
    m_group->inside()->createNode(text("Filter/Blur"), {});
    EXPECT_EQ(m_group->writeType(path, text("Materials/Cloth"), text("Soft"), text("Soft cloth."),
                                 {text("wool"), text("felt")}),
              text("Materials/Cloth/Soft"));
    EXPECT_EQ(m_group->type(), text("Misc/Group")) << "it stays what it is";
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    OssResult result;
    const auto type = OssSnNodeType::read(file.readAll(), path, &result);
    ASSERT_NE(type, nullptr) << qPrintable(result.error());
    EXPECT_EQ(type->aliases, QStringList({text("wool"), text("felt")}));
    EXPECT_EQ(type->description, text("Soft cloth."));
    EXPECT_EQ(type->versionUUID, text("OSS_Materials_Cloth_Soft"));
    EXPECT_FALSE(type->content.contains(text("<nodeType"))) << "types inside are the program's";
    EXPECT_FALSE(scripts()->hasError());
    expectRefused({
        {[&] { m_group->writeType(path, {}, text("Soft"), {}); }, Type::NotAllowed, "category"},
        {[&] { m_blur->writeType(path, text("A"), text("B"), {}); }, Type::NotSupported,
         "no group"},
        {[&] {
             m_group->writeType(folder.filePath(text("no/soft.xml")), text("A"), text("B"), {});
         },
         Type::NotAllowed, "soft.xml"},
    });
}

TEST_F(NodeObjects, switchInputsAndOrderPortsAndRenameKnobs)
{
    EXPECT_TRUE(m_blur->isInputEnabled(text("Input")));
    m_blur->setInputEnabled(text("Input"), false);
    EXPECT_FALSE(m_blur->isInputEnabled(text("Input")));
    EXPECT_FALSE(m_blur->isInputShared(text("Input")));
    m_group->createInput(text("A"));
    m_group->createInput(text("B"));
    m_group->createOutput(text("C"));
    m_group->createOutput(text("D"));
    m_group->reorderInputs({text("B"), text("A")});
    m_group->reorderOutputs({text("D"), text("C")});
    EXPECT_EQ(m_group->inputs(), QStringList({text("B"), text("A")}));
    EXPECT_EQ(m_group->outputs(), QStringList({text("D"), text("C")}));
    Ossa::Node *inner = m_group->inside()->createNode(text("Filter/Blur"), {});
    const QString knob = m_group->createKnob(inner, Radius);
    EXPECT_EQ(m_group->renameKnob(knob, text("Softness")), text("Softness"));
    m_group->setAttribute(text("Softness"), 5.0);
    EXPECT_EQ(inner->attribute(Radius).toDouble(), 5.0);
    EXPECT_FALSE(scripts()->hasError());
    expectRefused({
        {[&] { m_blur->setInputEnabled(text("X"), true); }, Type::UnknownName, "no input"},
        {[&] { m_group->reorderInputs({text("B")}); }, Type::NotAllowed, "each once"},
        {[&] {
             m_group->reorderOutputs({text("X"), text("C")});
         },
         Type::NotAllowed, "each once"},
        {[&] { m_group->renameKnob(text("X"), text("Y")); }, Type::NotAllowed, "cannot be called"},
        {[&] { m_blur->renameKnob(Radius, text("Y")); }, Type::NotSupported, "no group"},
        {[&] { m_blur->orderPortsByPosition(); }, Type::NotSupported, "no group"},
        {[&] { m_blur->arrangeInputsByOrder(); }, Type::NotSupported, "no group"},
    });
}

TEST_F(NodeObjects, tellWhatComputesThemAndWhatStepsChangeThem)
{
    m_graph->connect(m_graph->createNode(text("Procedural/Color"), text("Red")), m_blur);
    EXPECT_EQ(m_blur->markDependencies().keys(), QStringList({text("/Red"), text("/Soft")}));
    m_blur->setAttribute(Radius, 3.0);
    auto *history = OssScriptObject<Ossa::Undo>(OssUndoManager::instance());
    const Nodes last = history->nodes(history->count() - 1);
    EXPECT_TRUE(last.contains(m_blur));
    expectRefused({{[&] { history->nodes(-1); }, Type::OutOfRange, "no step"}});
}
