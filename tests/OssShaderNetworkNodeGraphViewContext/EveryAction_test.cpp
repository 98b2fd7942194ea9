#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "PluginUnderTest.h"

#include <array>
#include <deque>

namespace {

/// What is selected when an action is triggered.
enum Situation { Nothing, One, Many, Protected, Viewer };

constexpr std::array<const char *, 5> SituationNames{"nothing", "one node", "many nodes",
                                                     "a protected node", "the viewer"};

/// One action in all situations: the title of its undo step, null where it leaves none, and lines:
/// where it has to write them; elsewhere it may.
struct Row
{
    const char *action;
    std::array<const char *, 5> titles{};
    std::vector<std::pair<Situation, const char *>> lines = {};
    /// It changes how nodes are shown, which is saved but not undone.
    bool showsOtherwise = false;
};

constexpr std::array<const char *, 5> always(const char *title)
{
    return {title, title, title, title, title};
}

constexpr std::array<const char *, 5> ofMany(const char *title)
{
    return {nullptr, nullptr, title, nullptr, nullptr};
}

/// The protected node has no wire.
constexpr std::array<const char *, 5> ofWired(const char *title)
{
    return {nullptr, title, title, nullptr, title};
}

/// Color and Scalar over each other, blurred, levelled, shown; beside them a protected node.
class EveryActionTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(pluginUnderTest());
        GraphFixture::SetUp();
        OssApplication::setPopupsAllowed(false);
        OssSnBaseNode *color = addAt("Procedural/Color", {0, 0});
        OssSnBaseNode *scalar = addAt("Procedural/Scalar", {0, 200});
        OssSnBaseNode *merge = addAt("Layer/Merge", {300, 0});
        m_blur = addAt("Filter/Blur", {600, 0});
        OssSnBaseNode *levels = addAt("Adjust/Levels", {900, 0});
        wire(color, merge, "Base");
        wire(scalar, merge, "Over");
        wire(merge, m_blur);
        wire(m_blur, levels);
        m_protected = addAt("_System/Graph Layer Input", {0, 400}, "Layers");
        m_viewer = m_network->viewerNode();
        contextOf(m_viewer)->setNodePosition({1300, 400});
        wire(levels, m_viewer, "1");
        m_many = {merge, m_blur, levels};
        OssShaderNetworkIO::copyNodesToClipboard({m_blur}, {});
    }

    void select(Situation situation)
    {
        const QList<OssSnBaseNode *> chosen = situation == One         ? QList{m_blur}
                                              : situation == Many      ? m_many
                                              : situation == Protected ? QList{m_protected}
                                              : situation == Viewer    ? QList{m_viewer}
                                                                       : QList<OssSnBaseNode *>();
        GraphFixture::select(chosen);
    }

    static void trigger(const char *name)
    {
        QAction *action = graphAction(name);
        ASSERT_NE(action, nullptr);
        action->trigger();
    }

    void check(const Row &row, Situation situation)
    {
        SCOPED_TRACE(std::string(row.action) + " with " + SituationNames.at(situation));
        select(situation);
        begin();
        OssDebugLog::instance()->clear();
        const QByteArray before = m_project->stateHash();
        std::deque<ExpectedLog> expected;
        for (const auto &[where, line] : row.lines)
            expected.emplace_back(line, ExpectedLog::Possible);
        trigger(row.action);
        const char *title = row.titles.at(situation);
        if (!title)
            m_network->setViewerNodeCurrentEdge(1, true); // by itself saved, but not undone
        EXPECT_EQ(undoCount(), title ? 1 : 0) << qPrintable(undoText());
        EXPECT_EQ(undoText().toStdString(), title ? title : "");
        for (const auto &[where, line] : row.lines) {
            EXPECT_TRUE(where != situation || logHas(text(line))) << line;
        }
        expectWhole();
        if (row.showsOtherwise)
            return;
        EXPECT_EQ(m_project->stateHash() != before, title != nullptr);
        expectUndoIsExact(before);
        undo();
    }

    OssSnBaseNode *m_blur = nullptr;
    OssSnBaseNode *m_protected = nullptr;
    OssSnBaseNode *m_viewer = nullptr;
    QList<OssSnBaseNode *> m_many;
};

const char *const ToViewer = "Connect node 'Blur' to Viewer";
const char *const LayersToViewer = "Connect node 'Layers' to Viewer";
const std::array<const char *, 5> Connects{nullptr, ToViewer, nullptr, LayersToViewer, nullptr};
const char *const NoBakePoints = "[ !! ] No Bake Point nodes are selected";
const char *const IsProtected = "[ -- ] Node 'Layers' cannot be removed by the user, it's a "
                                "protected graph layer node";

// clang-format off
const Row Rows[] = {
    {"Connect Selected Node to Viewer", Connects},
    {"Connect Selected Node to Viewer2", Connects},
    {"Connect Selected Node to Viewer3", Connects},
    {"Connect Selected Node to Viewer4", Connects},
    {"Connect Selected Node to Viewer5", Connects},
    {"Connect Selected Node to Viewer6", Connects},
    {"Connect Selected Node to Viewer7", Connects},
    {"Connect Selected Node to Viewer8", Connects},
    {"Connect Selected Node to Viewer9", Connects},
    {"Connect Selected Node to Viewer0", {}, {{One, "Input 0 is reserved."}}},
    {"Move Viewer to Cursor", {}, {}, true},
    {"Delete", {nullptr, "Remove Selected Nodes", "Remove Selected Nodes", nullptr, "Remove Selected Nodes"},
     {{Protected, IsProtected}}},
    {"Extract", {nullptr, "Extract Nodes", "Extract Nodes", nullptr, "Extract Nodes"}},
    {"Remove All Nodes", always("Remove All Nodes"), {{Nothing, "Node '/Layers' is protected and stays"}}},
    {"Frame Nodes"},
    {"Focus Selection"},
    {"Disable", {nullptr, "Disable Blur", "Toggle Selected Nodes", "Disable Layers", nullptr}},
    {"Bypass", {nullptr, "Bypass Blur", "Bypass", "Bypass Layers", nullptr}},
    {"Quick Create"},
    {"Duplicate", {nullptr, "Duplicate Nodes", "Duplicate Nodes", "Duplicate Nodes", nullptr}},
    {"Select All"},
    {"Cut", {nullptr, "Cut Nodes", "Cut Nodes", nullptr, nullptr}, {{Protected, IsProtected}}},
    {"Copy"},
    {"Paste", always("Paste Nodes")},
    {"Search Node", {}, {{Nothing, "[ !! ] Found "}}},
    {"Create Paint Node", always("Add Paint Node")},
    {"Bake to Paint Node", {nullptr, "Bake to Paintable", nullptr, nullptr, nullptr},
     {{Nothing, "Only one node must be selected for baking to a paintable node"},
      {Many, "Only one node must be selected for baking to a paintable node"},
      {Protected, "Nothing is connected"},
      {Viewer, "\"/Viewer\": it computes no pixels"}}},
    {"Export to Geo-Channel", {},
     {{Nothing, "Only one node must be selected for exporting to a geo-channel."},
      {One, "[ !! ] Unable to request geo-channel from user"},
      {Many, "Only one node must be selected for exporting to a geo-channel."}}},
    {"Info Viewer", {}, {{Nothing, "Node Info: "}}},
    {"Swap Inputs", {nullptr, "Swap Inputs", nullptr, nullptr, "Swap Inputs"},
     {{Nothing, "Only one node must be selected for swapping inputs."},
      {Many, "More than one node selected for swap inputs."},
      {Protected, "The selected node has fewer than two inputs to swap."}}},
    {"Rename Node", {}, {{Many, "Only one node must be selected for renaming"}}},
    {"Import Nodes"},
    {"Export Nodes"},
    {"Import Material"},
    {"Import Custom Procedural"},
    {"Toggle Port List", {}, {}, true},
    {"Cycle Port List Mode", {}, {}, true},
    {"Smart Bake And Update", {}, {{Nothing, "[ !! ] No Bake Point nodes found"}}},
    {"Bake Selected", {}, {{Nothing, NoBakePoints}, {Many, NoBakePoints}}},
    {"Update Selected", {}, {{Nothing, NoBakePoints}, {Viewer, NoBakePoints}}},
    {"Update Upstream", {}, {{Nothing, "[ !! ] No nodes are selected"}, {One, "[ !! ] No upstream Bake Point nodes found"}}},
    {"Update Downstream", {}, {{Nothing, "[ !! ] No nodes are selected"}, {One, "[ !! ] No downstream Bake Point nodes found"}}},
    {"Manage User Knobs"},
    {"Expose Node Properties"},
    {"Open Group Node Subgraph"},
    {"Open Groups Behind"},
    {"Pick Up Edge Under Mouse"},
    {"Select All Upstream"},
    {"Select All Downstream"},
    {"Select Stream Upstream"},
    {"Select Stream Downstream"},
    {"Select Previous Upstream"},
    {"Select Next Downstream"},
    {"Add Select Previous Upstream"},
    {"Add Select Next Downstream"},
    {"Select Next Sibling"},
    {"Select Previous Sibling"},
    {"Add Select Next Sibling"},
    {"Add Select Previous Sibling"},
    {"Select Between"},
    {"Select Backdrop Contents"},
    {"Zoom In"},
    {"Zoom Out"},
    {"Pan Left"},
    {"Pan Right"},
    {"Pan Up"},
    {"Pan Down"},
    {"Open Node Properties"},
    {"Toggle Snap to Grid"},
    {"Toggle Edge Sever Mode"},
    {"Nudge Left", {nullptr, "Nudge nodes", "Nudge nodes", "Nudge nodes", "Nudge nodes"}},
    {"Nudge Left Finely", {nullptr, "Nudge nodes", "Nudge nodes", "Nudge nodes", "Nudge nodes"}},
    {"Nudge Right", {nullptr, "Nudge nodes", "Nudge nodes", "Nudge nodes", "Nudge nodes"}},
    {"Nudge Right Finely", {nullptr, "Nudge nodes", "Nudge nodes", "Nudge nodes", "Nudge nodes"}},
    {"Nudge Up", {nullptr, "Nudge nodes", "Nudge nodes", "Nudge nodes", "Nudge nodes"}},
    {"Nudge Up Finely", {nullptr, "Nudge nodes", "Nudge nodes", "Nudge nodes", "Nudge nodes"}},
    {"Nudge Down", {nullptr, "Nudge nodes", "Nudge nodes", "Nudge nodes", "Nudge nodes"}},
    {"Nudge Down Finely", {nullptr, "Nudge nodes", "Nudge nodes", "Nudge nodes", "Nudge nodes"}},
    {"Bake Again", {}, {{Nothing, NoBakePoints}, {Many, NoBakePoints}}},
    {"Arrange", {"Arrange", nullptr, "Arrange", nullptr, nullptr}},
    {"Arrange with Dots", {"Arrange with Dots", nullptr, "Arrange with Dots", nullptr, nullptr}},
    {"Straighten Chain", ofMany("Straighten Chain")},
    {"Tidy Overlaps", {}},
    {"Align Left", ofMany("Align Left")},
    {"Align Center", ofMany("Align Center")},
    {"Align Right", ofMany("Align Right")},
    {"Align Top"}, // they are
    {"Align Middle", ofMany("Align Middle")},
    {"Align Bottom", ofMany("Align Bottom")},
    {"Distribute Horizontally"}, // they are
    {"Distribute Vertically", ofMany("Distribute Vertically")},
    {"Place Underneath", ofWired("Place Underneath")},
    {"Place Next to", ofWired("Place Next to")},
    {"Place on Top", ofWired("Place on Top")},
    {"Place Below", ofWired("Place Below")},
    {"Place Far Below", ofWired("Place Far Below")},
    {"Place Left Below", ofWired("Place Left Below")},
    {"Place Left", ofWired("Place Left")},
    {"Place in the Middle", ofWired("Place in the Middle")},
    {"Place Right", ofWired("Place Right")},
    {"Place Far Right", ofWired("Place Far Right")},
    {"Place Right at Own Height", ofWired("Place Right at Own Height")},
    {"Place Right Above", ofWired("Place Right Above")},
    {"Place Above in Stream", ofWired("Place Above in Stream")},
    {"Place at Free Spot", {nullptr, "Place at Free Spot", "Place at Free Spot", "Place at Free Spot", "Place at Free Spot"}},
    {"Tidy Backdrops"},
    {"Bring to Front"},
    {"Send to Back"},
};

// clang-format on

/// What the status bar shows while it lives.
struct Listener
{
    QObject ears;
    mutable QStringList lines;

    Listener()
    {
        QObject::connect(OssStatusManager::instance(), &OssStatusManager::messageShown, &ears,
                         [this](const QString &line) { lines.append(line); });
    }
};

/// What acts on selected nodes says so where there are none, one way or another.
TEST_F(EveryActionTest, whatFindsNothingToActOnSaysSo)
{
    const Listener said;
    const ExpectedLog possible[] = {ExpectedLog("Only one node", ExpectedLog::Possible),
                                    ExpectedLog("fallback onto current", ExpectedLog::Possible),
                                    ExpectedLog("No Bake Point nodes", ExpectedLog::Possible),
                                    ExpectedLog("No nodes are selected", ExpectedLog::Possible),
                                    ExpectedLog("Node Info", ExpectedLog::Possible)};
    for (const char *name : {"Delete",
                             "Extract",
                             "Disable",
                             "Bypass",
                             "Duplicate",
                             "Cut",
                             "Copy",
                             "Info Viewer",
                             "Rename Node",
                             "Export Nodes",
                             "Toggle Port List",
                             "Cycle Port List Mode",
                             "Open Group Node Subgraph",
                             "Open Groups Behind",
                             "Open Node Properties",
                             "Select All Upstream",
                             "Select Stream Downstream",
                             "Select Previous Upstream",
                             "Add Select Next Sibling",
                             "Select Between",
                             "Bake Selected",
                             "Update Downstream"}) {
        GraphFixture::select({});
        begin();
        said.lines.clear();
        trigger(name);
        EXPECT_FALSE(said.lines.isEmpty()) << name;
        EXPECT_EQ(undoCount(), 0) << name;
    }
}

TEST_F(EveryActionTest, whatFindsNothingToDoWithTheSelectionSaysWhy)
{
    const Listener said;
    const ExpectedLog possible("fallback onto current", ExpectedLog::Possible);

    const struct
    {
        const char *name;
        Situation situation;
        const char *line;
    } cases[] = {
        {"Connect Selected Node to Viewer", Many, "one node at a time"},
        {"Disable", Viewer, "never disabled"},
        {"Cut", Viewer, "never copied"},
        {"Open Group Node Subgraph", One, "No group"},
        {"Open Groups Behind", One, "No group"},
        {"Select Next Downstream", Viewer, "Nothing follows"},
        {"Select Between", One, "two nodes"},
        {"Select Backdrop Contents", One, "a backdrop"},
    };

    for (const auto &c : cases) {
        select(c.situation);
        said.lines.clear();
        trigger(c.name);
        EXPECT_TRUE(said.lines.join(QLatin1Char('\n')).contains(text(c.line))) << c.name;
    }
}

TEST_F(EveryActionTest, theKeyOfADisabledCommandSaysWhatIsMissing)
{
    const Listener said;
    QAction *knobs = graphAction("Manage User Knobs");
    knobs->setShortcut(QKeySequence(text("F7")));
    GraphFixture::select({});
    OssActionTreeManager::instance()->settleStates();
    ASSERT_FALSE(knobs->isEnabled());
    QTest::keyClick(m_view, Qt::Key_F7);
    EXPECT_EQ(said.lines.value(0), text("Manage User Knobs: select a group first"));
    knobs->setShortcut({});
}

TEST_F(EveryActionTest, deleteTakesSelectedWiresAway)
{
    const ExpectedLog possible("fallback onto current", ExpectedLog::Possible);
    const QByteArray before = m_project->stateHash();
    OssUndoManager::instance()->clear();
    GraphFixture::select({});
    itemOf(m_blur)->input(text("Input"))->setSelected(true);
    trigger("Delete");
    EXPECT_EQ(m_blur->inputNode(text("Input")), nullptr);
    expectStep("Cut connections");
    expectUndoIsExact(before);
    undo();
    {
        // In the place of the step that was undone, so that there are as many as before.
        const Listener said;
        itemOf(m_blur)->input(text("Input"))->setSelected(true);
        trigger("Delete");
        EXPECT_EQ(m_blur->inputNode(text("Input")), nullptr);
        EXPECT_EQ(said.lines.join(QLatin1Char(' ')).indexOf(text("select a node")), -1);
        undo();
    }
    GraphFixture::select({m_many.first()}); // with a wire of its own and another
    itemOf(m_blur)->input(text("Input"))->setSelected(true);
    itemOf(m_viewer)->input(text("1"))->setSelected(true);
    trigger("Delete");
    EXPECT_EQ(m_viewer->inputNode(text("1")), nullptr);
    expectStep("Remove Selected Nodes");
    expectUndoIsExact(before);
}

TEST_F(EveryActionTest, aChoiceOfStreamsThatIsCancelledLeavesTheViewerWhereItWas)
{
    OssApplication::setPopupsAllowed(true);
    OssSnGroupNode *group = addGroup();
    OssSnBaseNode *noise = addInside(group, "Procedural/Noise/Fractal Noise");
    ASSERT_GT(noise->outputPointCount(), 1);
    OssShaderNetworkView inside(nullptr);
    inside.setScene(itemOf(noise)->scene());
    inside.setNetwork(group->groupNetwork());
    inside.init();
    noise->setSelected(true);
    begin();
    whenMenuOpens([](QMenu *menu) { menu->close(); });
    inside.connectSelectedNodeToViewer();
    EXPECT_EQ(m_viewer->network(), m_network);
    EXPECT_TRUE(itemOf(noise)->isSelected());
    expectNothingDone();
    QStringList offered;
    chooseInMenu(0, &offered);
    inside.connectSelectedNodeToViewer();
    EXPECT_EQ(m_viewer->network(), group->groupNetwork());
    EXPECT_EQ(m_viewer->inputNode(text("1")), noise);
}

} // namespace

TEST_F(EveryActionTest, isOneStepWithItsTitleOrAnEffectlessRefusal)
{
    const ExpectedLog expected("fallback onto current nodegraph view 0x");
    for (const Row &row : Rows) {
        for (const Situation situation : {Nothing, One, Many, Protected, Viewer}) {
            check(row, situation);
            if (HasFatalFailure())
                return;
        }
    }
}

TEST_F(EveryActionTest, doesNothingButSaySoWithoutAView)
{
    const ExpectedLog expected("fallback onto current nodegraph view (nil)");
    const OtherPage other;
    begin();
    select(Many);
    for (const Row &row : Rows) {
        SCOPED_TRACE(row.action);
        OssDebugLog::instance()->clear();
        trigger(row.action);
        expectLogged("ShaderNetworkView is NULL");
    }
    expectNothingDone();
}

TEST_F(EveryActionTest, standsInTheTableOfTheTests)
{
    QSet<QString> tested;
    for (const Row &row : Rows)
        tested.insert(text(row.action));
#define OSS_LISTED(text, slot, call) EXPECT_TRUE(tested.contains(QStringLiteral(text))) << (text);
    OSS_NODE_GRAPH_ACTIONS(OSS_LISTED, OSS_LISTED, OSS_LISTED)
#undef OSS_LISTED
}
