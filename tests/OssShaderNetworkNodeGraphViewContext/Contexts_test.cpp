#include "GraphFixture.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssSnGroupNodeGraphViewContext.h"

#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

class ContextTest : public GraphFixture
{
protected:
    /// Saves the project, changes what stands in the file, and opens it.
    void reopenWith(const QVector<QPair<QByteArray, QByteArray>> &changes)
    {
        const QTemporaryDir folder;
        const QString path = folder.filePath(QStringLiteral("P.ossa"));
        OssProjectManager *projects = OssProjectManager::instance();
        ASSERT_TRUE(projects->saveProjectAs(path));
        QFile file(path + QStringLiteral("/project.xml"));
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        QByteArray text = file.readAll();
        for (const auto &[saved, changed] : changes) {
            ASSERT_TRUE(text.contains(saved)) << saved.constData();
            text.replace(saved, changed);
        }
        file.resize(0);
        file.write(text);
        file.close();
        ASSERT_TRUE(projects->openProject(path));
        m_project = projects->currentProject();
        m_network = m_project->shadingGroups().first()->network();
    }
};

TEST_F(ContextTest, itemsFollowEveryEditAndItsUndo)
{
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0}, "Base");
    OssSnBaseNode *merge = addAt("Layer/Merge", {300, 0});
    wire(color, merge, "Base");
    wire(color, merge, "Over");
    expectWhole();
    color->setName(QStringLiteral("Paint"));
    EXPECT_EQ(itemOf(color)->text(), QStringLiteral("Paint"));
    merge->toggleDisable();
    EXPECT_TRUE(itemOf(merge)->hasMark(OssNgNode::Disabled));
    EXPECT_FALSE(itemOf(merge)->input(QStringLiteral("Base"))->hasMark(OssNgEdge::Bypassed));
    EXPECT_TRUE(itemOf(merge)->input(QStringLiteral("Over"))->hasMark(OssNgEdge::Bypassed));
    color->setCacheActive(CacheActive);
    EXPECT_TRUE(itemOf(color)->hasMark(OssNgNode::Cached));
    m_network->removeNodes({color});
    expectWhole();
    OssUndoManager *undo = OssUndoManager::instance();
    while (undo->canUndo()) {
        undo->undo();
        expectWhole();
    }
    while (undo->canRedo()) {
        undo->redo();
        expectWhole();
    }
}

TEST_F(ContextTest, portsFollowTheGroup)
{
    auto *group = qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {0, 0}));
    group->createInput(QStringLiteral("A"), OssSnDataKind::Color);
    group->createInput(QStringLiteral("B"), OssSnDataKind::Scalar);
    group->createOutput(QStringLiteral("Out"), OssSnDataKind::Material);
    OssSnBaseNode *source = addAt("Procedural/Color", {-300, 0});
    wire(source, group, "B");
    expectWhole();
    group->renameInput(QStringLiteral("B"), QStringLiteral("Wet"));
    expectWhole();
    group->reorderInputs({QStringLiteral("Wet"), QStringLiteral("A")});
    expectWhole();
    group->renameOutputPoint(QStringLiteral("Out"), QStringLiteral("Result"));
    group->removeInput(QStringLiteral("A"));
    expectWhole();
    OssUndoManager *undo = OssUndoManager::instance();
    while (undo->canUndo()) {
        undo->undo();
        expectWhole();
    }
}

TEST_F(ContextTest, aWireDrawnByHandConnectsInTheNetwork)
{
    const ExpectedLog expected("the connection would close a loop");
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0}, "A");
    OssSnBaseNode *b = addAt("Filter/Blur", {300, 0}, "B");
    Q_EMIT itemOf(b)->inputSourceChanged(itemOf(a), QStringLiteral("Input"),
                                         QStringLiteral("Output"));
    EXPECT_EQ(b->inputNode(QStringLiteral("Input")), a);
    // A refused one leaves both sides as they were.
    Q_EMIT itemOf(a)->inputSourceChanged(itemOf(b), QStringLiteral("Input"),
                                         QStringLiteral("Output"));
    EXPECT_EQ(a->inputNode(QStringLiteral("Input")), nullptr);
    expectWhole();
    contextOf(b)->connectInputFromGui(a, QStringLiteral("Input"), {});
    EXPECT_TRUE(logHas(QStringLiteral("output point name cannot be empty : B")));
    contextOf(b)->connectInputFromGui(a, {}, QStringLiteral("Output"));
    EXPECT_TRUE(logHas(QStringLiteral("input name cannot be empty : A")));
    Q_EMIT itemOf(b)->inputSourceChanged(nullptr, QStringLiteral("Input"), {});
    EXPECT_EQ(b->inputNode(QStringLiteral("Input")), nullptr);
}

TEST_F(ContextTest, selectionIsOneOnBothSides)
{
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *b = addAt("Filter/Blur", {300, 0});
    const int steps = undoCount();
    a->setSelected(true);
    itemOf(b)->setSelected(true);
    EXPECT_TRUE(itemOf(a)->isSelected());
    EXPECT_TRUE(b->selected());
    m_view->scene()->clearSelection();
    EXPECT_TRUE(m_network->selectedNodes().isEmpty());
    EXPECT_EQ(undoCount(), steps);
}

TEST_F(ContextTest, categoryComesFromThePathKey)
{
    EXPECT_EQ(itemOf(add("Channel Input/Paint"))->category(), QStringLiteral("Paint"));
    EXPECT_EQ(itemOf(add("Layer/Merge"))->category(), QStringLiteral("Layer"));
    EXPECT_EQ(itemOf(add("Misc/Channel Input"))->category(), QStringLiteral("Misc"));
    EXPECT_EQ(itemOf(add("Teleport Broadcast/Broadcast"))->category(),
              QStringLiteral("TeleportBroadcast"));
    EXPECT_EQ(itemOf(add("Teleport Receiver/Receiver"))->category(),
              QStringLiteral("TeleportReceiver"));
}

TEST_F(ContextTest, portListModeIsStoredAndAnnouncedOnce)
{
    OssSnBaseNode *node = addAt("Layer/Merge", {0, 0});
    OssSnNodeGraphViewContext *context = contextOf(node);
    auto *item = qobject_cast<OssNgExtendedNode *>(itemOf(node));
    QSignalSpy changed(context, &OssSnNodeGraphViewContext::portListModeChanged);
    using State = OssSnNodeGraphViewContextManager::DefaultMCMCollapsedState;
    const QMap<int, int> modes{{0, 0}, {1, 2}, {2, 3}, {3, 4}, {7, 2}};
    for (auto mode = modes.cbegin(); mode != modes.cend(); ++mode) {
        context->setPortListMode(State(mode.key()));
        EXPECT_EQ(context->portListModeAsInt(), mode.value());
        EXPECT_EQ(int(item->portListMode()), mode.value());
    }
    EXPECT_EQ(changed.count(), 4); // it was expanded before
    context->setPortListMode(int(item->portListMode()));
    EXPECT_EQ(changed.count(), 4);
    item->togglePortVisibility(); // as a click on the item does
    EXPECT_EQ(changed.count(), 5);
    EXPECT_EQ(context->property("portListMode").toInt(), int(item->portListMode()));
}

TEST_F(ContextTest, viewerNamesItsFirstInputAndMarksTheCurrentWire)
{
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0}, "Red");
    OssSnBaseNode *viewer = m_network->viewerNode();
    wire(color, viewer, "0");
    wire(color, viewer, "2");
    const OssNgNode *item = itemOf(viewer);
    EXPECT_EQ(item->inputPortText(QStringLiteral("0")), QStringLiteral("0:Red"));
    m_network->setViewerNodeCurrentEdge(2, true);
    EXPECT_TRUE(item->input(QStringLiteral("2"))->hasMark(OssNgEdge::Activated));
    EXPECT_FALSE(item->input(QStringLiteral("0"))->hasMark(OssNgEdge::Activated));
    color->addTag(QStringLiteral("_currentMaterialProxy"));
    viewer->setInputNode(QStringLiteral("0"), nullptr, {});
    EXPECT_EQ(item->inputPortText(QStringLiteral("0")), QStringLiteral("0"));
    wire(color, viewer, "0");
    EXPECT_EQ(item->inputPortText(QStringLiteral("0")), QStringLiteral("0:Current Material"));
}

TEST_F(ContextTest, guiStateComesBackFromDisk)
{
    OssSnBaseNode *a = addAt("Filter/Blur", {12.5, -40}, "A");
    OssSnBaseNode *backdrop = addAt("Misc/Backdrop", {-100, -100}, "Area");
    contextOf(backdrop)->setNodeSize({640, 480});
    backdrop->setAttribute(QStringLiteral("TitleText"), QStringLiteral("Titel"));
    contextOf(a)->setPortListMode(3);
    contextOf(a)->setInputNodeInitialPos(QStringLiteral("Input"), {{10, -4}, {32, -4}});
    contextOf(a)->setInputNodeInitialPos(QStringLiteral("with:colon"), {{1, 2}, {3, 4}});
    auto *group = qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {300, 0}, "G"));
    OssSnBaseNode *inside = group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
    contextOf(inside)->setNodePosition({7, 8});
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("P.ossa"));
    const QByteArray hash = m_project->stateHash();
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(path));
    ASSERT_TRUE(projects->openProject(path));
    m_project = projects->currentProject();
    m_network = m_project->shadingGroups().first()->network();
    a = m_network->node(QStringLiteral("A"));
    EXPECT_EQ(itemOf(a)->pos(), QPointF(12.5, -40));
    EXPECT_EQ(contextOf(a)->portListModeAsInt(), 3);
    EXPECT_EQ(contextOf(a)->inputNodeInitialPos().size(), 1);
    EXPECT_EQ(contextOf(a)->inputNodeInitialPos().value(QStringLiteral("Input")),
              qMakePair(QPoint(10, -4), QPoint(32, -4)));
    backdrop = m_network->node(QStringLiteral("Area"));
    auto *area = qobject_cast<OssNgBackdropNode *>(itemOf(backdrop));
    ASSERT_NE(area, nullptr);
    EXPECT_EQ(area->rect().size(), QSizeF(640, 480));
    EXPECT_EQ(area->titleText(), QStringLiteral("Titel"));
    EXPECT_NE(m_project->stateHash(), hash); // the entry with a colon is lost on reading
    expectWhole();
}

TEST_F(ContextTest, itemsShowTheStateThatNodesHadOnDisk)
{
    OssSnBaseNode *off = addAt("Filter/Blur", {0, 0}, "Off");
    off->setEnabled(0);
    off->setCacheActive(CacheActive);
    off->setDescription(QStringLiteral("softens"));
    addAt("Filter/Blur", {300, 0}, "Through")->setBypassed(true);
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("P.ossa"));
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(path));
    ASSERT_TRUE(projects->openProject(path));
    m_project = projects->currentProject();
    m_network = m_project->shadingGroups().first()->network();
    const OssNgNode *item = itemOf(m_network->node(QStringLiteral("Off")));
    EXPECT_TRUE(item->hasMark(OssNgNode::Disabled));
    EXPECT_TRUE(item->hasMark(OssNgNode::Cached));
    EXPECT_EQ(item->toolTip(), QStringLiteral("softens"));
    EXPECT_TRUE(itemOf(m_network->node(QStringLiteral("Through")))->hasMark(OssNgNode::Bypassed));
}

TEST_F(ContextTest, theViewerKeepsItsWiresWhereverItGoes)
{
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0}, "Red");
    auto *group = qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {0, 200}));
    OssSnBaseNode *viewer = m_network->viewerNode();
    wire(color, viewer, "0");
    wire(color, viewer, "1");
    ASSERT_EQ(group->groupNetwork()->moveCurrentViewerNodeToNetwork(), viewer);
    expectWhole();
    ASSERT_EQ(m_network->moveCurrentViewerNodeToNetwork(), viewer);
    expectWhole();
    EXPECT_EQ(itemOf(viewer)->inputPortText(QStringLiteral("0")), QStringLiteral("0:Red"));
}

TEST_F(ContextTest, viewersThatNoStepTellsOfDoNotHarmTheHistory)
{
    OssUndoManager *undo = OssUndoManager::instance();
    auto *group = qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {0, 200}));
    OssSnBaseNode *viewer = m_network->viewerNode();
    m_network->removeNodes({viewer});
    undo->undo();
    group->groupNetwork()->moveCurrentViewerNodeToNetwork();
    undo->redo();
    EXPECT_EQ(m_network->viewerNode(), nullptr);
    expectWhole();
    undo->undo();
    EXPECT_EQ(m_network->viewerNode(), viewer);
    EXPECT_EQ(viewer->network(), m_network);
    expectWhole();

    undo->redo();
    ASSERT_NE(m_network->moveCurrentViewerNodeToNetwork(), nullptr);
    undo->undo();
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("P.ossa"));
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(path));
    EXPECT_TRUE(projects->openProject(path));
    m_project = projects->currentProject();
    m_network = m_project->shadingGroups().first()->network();
}

TEST_F(ContextTest, backdropsFromBeforeTheyHadATypeAreReadAsBackdrops)
{
    const ExpectedLog unknown("has the unknown type ''");
    OssSnBaseNode *area = addAt("Misc/Backdrop", {10, 20}, "Area");
    area->setAttribute(QStringLiteral("TitleText"), QStringLiteral("Walls"));
    contextOf(area)->setNodeSize({640, 480});
    reopenWith({{"name=\"Area\" type=\"OssSnBaseNode\" key=\"Misc/Backdrop\"",
                 "name=\"Area\" type=\"OssSnBaseNode\""}});
    area = m_network->node(QStringLiteral("Area"));
    ASSERT_NE(area, nullptr);
    EXPECT_EQ(area->pathKey(), QStringLiteral("Misc/Backdrop"));
    EXPECT_FALSE(area->isPlaceholder());
    EXPECT_TRUE(area->errorText().isEmpty());
    const auto *item = qobject_cast<OssNgBackdropNode *>(itemOf(area));
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->titleText(), QStringLiteral("Walls"));
    EXPECT_EQ(item->rect().size(), QSizeF(640, 480));
    EXPECT_EQ(item->pos(), QPointF(10, 20));
}

TEST_F(ContextTest, badValuesInAFileAreMendedAndTold)
{
    addAt("Filter/Blur", {111, 222}, "Far");
    OssSnBaseNode *look = addAt("Filter/Blur", {333, 444}, "Look");
    contextOf(look)->setPortListMode(OssNgExtendedNode::Collapsed);
    OssSnBaseNode *area = addAt("Misc/Backdrop", {555, 666}, "Area");
    contextOf(area)->setNodeSize({640, 480});
    const QColor usual = itemOf(look)->mainColor();
    const ExpectedLog expected[] = {
        ExpectedLog("of 'Far' is out of reach"), ExpectedLog("of 'Area' is too large"),
        ExpectedLog("17 is no way to list ports"), ExpectedLog("'rubbish' is no color"),
        ExpectedLog("of 'Area' is out of reach")};
    reopenWith({{"position=\"111,222\"", "position=\"1e308,-1e308\""},
                {"position=\"333,444\"", "position=\"nan,inf\""},
                {"rect=\"0,0,640,480\"", "rect=\"0,0,3e12,480\""},
                {"portListMode=\"4\"", "portListMode=\"17\""},
                {"nodeColorTop=\"\"", "nodeColorTop=\"rubbish\""}});
    const auto node = [this](const char *name) {
        return m_network->node(QLatin1String(name));
    };
    EXPECT_EQ(itemOf(node("Far"))->pos(), QPointF(1e6, -1e6));
    EXPECT_EQ(itemOf(node("Look"))->pos(), QPointF()) << "no number at all";
    EXPECT_EQ(contextOf(node("Look"))->portListModeAsInt(), 0);
    EXPECT_EQ(itemOf(node("Look"))->mainColor(), usual);
    EXPECT_EQ(itemOf(node("Area"))->boundingRect().size(), QSizeF(2e6, 480));
    contextOf(node("Area"))->setNodePosition({qQNaN(), 5.0});
    EXPECT_EQ(itemOf(node("Area"))->pos(), QPointF(555, 5));
}

TEST_F(ContextTest, portsAlongTheEdgesKeepTheirPlaceWhenRenamed)
{
    auto *group = qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {0, 0}));
    group->createInput(QStringLiteral("A"), OssSnDataKind::Color);
    group->createInput(QStringLiteral("B"), OssSnDataKind::Color);
    group->createOutput(QStringLiteral("Out"), OssSnDataKind::Color);
    group->createOutput(QStringLiteral("Also"), OssSnDataKind::Color);
    contextOf(group)->setPortListMode(OssNgExtendedNode::NoPortList);
    const OssNgNode *item = itemOf(group);
    const QPointF input = item->inputPortScenePos(QStringLiteral("B"));
    const QPointF inputStub = item->inputPortDirection(QStringLiteral("B"));
    const QPointF output = item->outputPortScenePos(QStringLiteral("Out"));
    group->renameInput(QStringLiteral("B"), QStringLiteral("Wet"));
    group->renameOutputPoint(QStringLiteral("Out"), QStringLiteral("Result"));
    EXPECT_EQ(item->inputPortScenePos(QStringLiteral("Wet")), input);
    EXPECT_EQ(item->inputPortDirection(QStringLiteral("Wet")), inputStub);
    EXPECT_EQ(item->outputPortScenePos(QStringLiteral("Result")), output);
}

TEST_F(ContextTest, groupsOpenInATabOfTheirOwnAndCloseWithTheNode)
{
    OssSnNodeGraphWidget *widget = m_manager->nodeGraphWidget();
    auto *group = qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {0, 0}, "G"));
    EXPECT_EQ(widget->count(), 1);
    group->requestOpen();
    ASSERT_EQ(widget->count(), 2);
    EXPECT_EQ(widget->tabText(1), QStringLiteral("G"));
    EXPECT_EQ(widget->currentView()->network(), group->groupNetwork());
    EXPECT_EQ(OssShaderNetworkManager::instance()->currentViewNetwork(), group->groupNetwork());
    group->setName(QStringLiteral("H"));
    EXPECT_EQ(widget->tabText(1), QStringLiteral("H"));
    widget->hideTab(1);
    EXPECT_EQ(OssShaderNetworkManager::instance()->currentViewNetwork(), m_network);
    widget->showGroupNodeSubgraph(group);
    ASSERT_EQ(widget->count(), 2);
    m_network->removeNodes({group});
    EXPECT_EQ(widget->count(), 1);
    OssUndoManager::instance()->undo();
    widget->showGroupNodeSubgraph(group);
    EXPECT_EQ(widget->count(), 2);
    widget->hideTab(1);
    widget->showGroupNodeSubgraph(nullptr);
    EXPECT_TRUE(logHas(QStringLiteral("GroupNode is NULL")));
}

TEST_F(ContextTest, tabsOfGroupsInsideCloseWithTheOuterGroup)
{
    OssSnNodeGraphWidget *widget = m_manager->nodeGraphWidget();
    auto *outer = qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {0, 0}, "Outer"));
    auto *middle = qobject_cast<OssSnGroupNode *>(
        outer->groupNetwork()->createNode(QStringLiteral("Misc/Group")));
    auto *inner = qobject_cast<OssSnGroupNode *>(
        middle->groupNetwork()->createNode(QStringLiteral("Misc/Group")));
    auto *other = qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {300, 0}, "Other"));
    widget->showGroupNodeSubgraph(other);
    widget->showGroupNodeSubgraph(inner);
    ASSERT_EQ(widget->count(), 3);
    m_network->removeNodes({outer});
    ASSERT_EQ(widget->count(), 2);
    EXPECT_EQ(widget->currentView()->network(), m_network);
    OssUndoManager *undo = OssUndoManager::instance();
    undo->undo();
    widget->showGroupNodeSubgraph(inner);
    undo->redo();
    EXPECT_EQ(widget->count(), 2);
    undo->undo();
    // Open tabs go with the project, and no view of a group stays behind.
    widget->showGroupNodeSubgraph(outer);
    widget->showGroupNodeSubgraph(inner);
    const QPointer<OssShaderNetworkView> view = widget->currentView();
    OssProjectManager::instance()->closeProject();
    EXPECT_EQ(widget->count(), 1);
    EXPECT_TRUE(view.isNull());
    EXPECT_EQ(widget->currentView(), m_view);
    EXPECT_EQ(OssShaderNetworkManager::instance()->currentViewNetwork(), nullptr);
    m_project = OssProjectManager::instance()->newProject(QStringLiteral("Next"));
}

TEST_F(ContextTest, edgeMultipliersAreSymmetrical)
{
    class Probe : public OssSnNodeGraphViewContext
    {
    public:
        using OssSnNodeGraphViewContext::calculateEdgeMultipliers;
        using OssSnNodeGraphViewContext::OssSnNodeGraphViewContext;
    } probe(nullptr, false);

    const QMap<int, QVector<int>> expected{
        {0, {}}, {1, {0}}, {2, {-1, 1}}, {3, {-1, 0, 1}}, {4, {-2, -1, 1, 2}}};
    for (auto row = expected.cbegin(); row != expected.cend(); ++row) {
        QVector<int> list;
        int smallest = 9;
        probe.calculateEdgeMultipliers(list, smallest, row.key());
        EXPECT_EQ(list, *row);
        EXPECT_EQ(smallest, row.key() == 0 ? 9 : row.key() % 2 ? 0 : 1);
    }
}

TEST_F(ContextTest, stubsSpreadAboutTheMiddleUnlessTheirPlaceIsGiven)
{
    class Probe : public OssSnNodeGraphViewContext
    {
    public:
        using OssSnNodeGraphViewContext::calculateEdgesUI;
        using OssSnNodeGraphViewContext::OssSnNodeGraphViewContext;
    } probe(nullptr, false);

    const QString a = QStringLiteral("A");
    const QString b = QStringLiteral("B");
    const QString c = QStringLiteral("C");
    const OssSnNodeGraphViewContext::Stub given{{7, 0}, {9, -5}};
    for (const bool output : {false, true}) {
        OssSnNodeGraphViewContext::StubMap stubs{{QStringLiteral("Old"), given}};
        probe.calculateEdgesUI({a, b, c}, output, {{b, given}}, {{c, 90.0F}}, stubs, 2);
        ASSERT_EQ(stubs.size(), 3);
        EXPECT_EQ(stubs.value(b), given);
        EXPECT_EQ(stubs.value(a).first, QPoint(-44, 0));
        EXPECT_EQ(stubs.value(c).first, QPoint(44, 0));
        EXPECT_EQ(stubs.value(a).second, QPoint(-44, output ? 24 : -24));
        EXPECT_EQ(stubs.value(c).second, QPoint(44, output ? 90 : -90)) << "past its text";
    }
}

TEST_F(ContextTest, portsThatAreMadeAnewTakeTheirStubsWithThemOnlyWhenAsked)
{
    OssSnBaseNode *node = addAt("Filter/Blur", {0, 0});
    OssSnNodeGraphViewContext *context = contextOf(node);
    context->setPortListMode(int(OssNgExtendedNode::NoPortList));
    const OssNgNode *item = itemOf(node);
    const auto places = [item] {
        return qMakePair(item->inputPortScenePos(QStringLiteral("Input")),
                         item->outputPortScenePos(QStringLiteral("Output")));
    };
    const auto before = places();
    context->setInputNodeInitialPos(QStringLiteral("Input"), {{-40, 0}, {-40, -30}});
    context->setOutputNodeInitialPos(QStringLiteral("Output"), {{40, 0}, {40, 30}});
    for (const char *slot : {"onParentNodeInputsRefreshed", "onParentNodeOutputsRefreshed"}) {
        ASSERT_TRUE(QMetaObject::invokeMethod(context, slot, Q_ARG(bool, false)));
        EXPECT_EQ(places(), before) << slot;
    }
    for (const char *slot : {"onParentNodeInputsRefreshed", "onParentNodeOutputsRefreshed"}) {
        ASSERT_TRUE(QMetaObject::invokeMethod(context, slot, Q_ARG(bool, true)));
        EXPECT_NE(places(), before) << slot;
    }
}

TEST_F(ContextTest, placesOfPortsThatCannotBeReadAreLeftOut)
{
    OssSnNodeGraphViewContext *context = contextOf(add("Filter/Blur"));
    const OssSerializableObject::Attributes attributes{
        {QStringLiteral("map0"), QStringLiteral("Good:1,2,3,4")},
        {QStringLiteral("map1"), QStringLiteral("Short:1,2,3")},
        {QStringLiteral("map2"), QStringLiteral("Long:1,2,3,4,5")},
        {QStringLiteral("map3"), QStringLiteral("A:B:1,2,3,4")},
        {QStringLiteral("map4"), QStringLiteral("None")}};
    const auto read = [&](const char *name) {
        context->onLoadCollection(QString::fromLatin1(name), QStringLiteral("QHash"),
                                  QStringLiteral("QString"), 5, attributes);
    };
    read("other");
    EXPECT_TRUE(context->inputNodeInitialPos().isEmpty());
    EXPECT_TRUE(context->outputNodeInitialPos().isEmpty());
    read("m_outputNodeInitialPos");
    EXPECT_TRUE(context->inputNodeInitialPos().isEmpty());
    read("m_inputNodeInitialPos");
    for (const auto &stubs : {context->inputNodeInitialPos(), context->outputNodeInitialPos()}) {
        ASSERT_EQ(stubs.size(), 1);
        EXPECT_EQ(stubs.value(QStringLiteral("Good")), qMakePair(QPoint(1, 2), QPoint(3, 4)));
    }
}

} // namespace
