#include "Ossa/Dialogs/PublishDialog.h"
#include "Ossa/Scripting/ScriptEcho.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssNodeTypeWatch.h"
#include "OssModel/Types/OssSnDataKind.h"
#include "Program/StartedProgram.h"
#include "support/PassTime.h"

#include <QFile>
#include <QTest>

namespace {

/// What commands of the graph are echoed as.
class EchoedCommands : public StartedProgram
{
protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        m_first = add("Filter/Blur", "First");
        m_second = add("Filter/Blur", "Second");
        select({});
        history()->clear();
        QObject::connect(&m_echo, &ScriptEcho::line, &m_echo,
                         [this](const QString &line) { m_lines.append(line); });
        m_echo.setEnabled(true);
    }

    /// The lines of what was done since the last call.
    std::string told()
    {
        QTest::qWait(5);
        const std::string lines = m_lines.join(QLatin1Char('\n')).toStdString();
        m_lines.clear();
        return lines;
    }

    OssSnBaseNode *m_first = nullptr;
    OssSnBaseNode *m_second = nullptr;
    ScriptEcho m_echo;
    QStringList m_lines;
};

TEST_F(EchoedCommands, groupsAreMadeAndTakenApartWithoutTheWindow)
{
    const std::string first = R"(ossa.graph().node("First"))";
    const std::string second = R"(ossa.graph().node("Second"))";
    select({m_first});
    EXPECT_EQ(told(), "") << "selecting changes no document";
    trigger("Group Selected Nodes");
    EXPECT_EQ(told(), "ossa.graph().group([" + first + "])");
    OssSnBaseNode *group = m_network->selectedNodes().value(0);
    select({m_second});
    told();
    trigger("Group Selected Nodes");
    EXPECT_EQ(told(), "ossa.graph().group([" + second + "])");
    OssSnBaseNode *other = m_network->selectedNodes().value(0);
    ASSERT_TRUE(group && other && group != other);
    select({group, other});
    told();
    const auto apart = [](const OssSnBaseNode *node) {
        return "ossa.graph().ungroup(ossa.graph().node(\"" + node->name().toStdString() + "\"))";
    };
    const std::string names[] = {apart(group), apart(other)};
    trigger("Ungroup");
    EXPECT_EQ(told(), names[0] + "\n" + names[1]);
}

TEST_F(EchoedCommands, nodesAreArrangedInOneLineThatDoesTheSame)
{
    OssSnBaseNode *backdrop = add("Misc/Backdrop", "Area");
    backdrop->viewContext()->setNodePosition({1000, 1000});
    m_first->viewContext()->setNodePosition({1100, 1090});
    m_first->setContainer(backdrop);
    select({backdrop});
    told();
    trigger("Tidy Backdrops");
    EXPECT_EQ(told(), R"(ossa.graph().arrange([ossa.graph().node("Area")], "tidy backdrops"))");
    m_first->viewContext()->setNodePosition({300, 200});
    m_second->viewContext()->setNodePosition({400, 420});
    select({m_first, m_second});
    told();
    trigger("Align Left");
    EXPECT_EQ(told(), "ossa.graph().arrange([ossa.graph().node(\"First\"), "
                      "ossa.graph().node(\"Second\")], \"align left\")");
}

TEST_F(EchoedCommands, whatHasNoLineOfItsOwnIsTheCommandOnTheSameSelection)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Around"));
    EXPECT_NE(told().find("createNode(\"Misc/Group\", \"Around\""), std::string::npos)
        << "with nothing inside it is as good as others";
    group->groupNetwork()->createNode(text("Filter/Blur"))->setSelected(true); // elsewhere
    for (const bool echoesSelecting : {true, false}) {
        select({});
        m_echo.setEnabled(echoesSelecting);
        select({group});
        told();
        m_echo.setEnabled(true);
        trigger("Add Group Input");
        EXPECT_EQ(told(), "ossa.graph().select([ossa.graph().node(\"Around\")])\n"
                          "ossa.trigger(\"/Ossa/NodeGraph/Add Group Input\")")
            << "also what was selected before the echo began";
    }
}

TEST_F(EchoedCommands, publishingIsOneLineThoughTheTypeTellsItsValuesAnew)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group", "Around"));
    OssSnBaseNode *inner = group->groupNetwork()->createNode(text("Filter/Blur"));
    wire(inner, group->createOutput(text("Result"), OssSnDataKind::Color));
    group->createKnob(inner, text("Radius"));
    told();
    EXPECT_TRUE(OssNodeTypeWatch::instance()->publish(group, {text("Mine"), text("Soft"), {}}));
    EXPECT_EQ(told(), R"(ossa.graph().node("Around").publish("Mine", "Soft", ""))");
    history()->undo();
    EXPECT_EQ(told(), "ossa.undo().undo()");
    EXPECT_TRUE(OssNodeTypeWatch::instance()->publish(
        group, {text("Mine"), text("Soft"), {}, {text("worn"), text("dull")}}));
    EXPECT_EQ(told(),
              R"(ossa.graph().node("Around").publish("Mine", "Soft", "", ["worn", "dull"]))");
    const PublishDialog again(group);
    EXPECT_EQ(again.form().aliases, (QStringList{text("worn"), text("dull")}))
        << "which a new version keeps";
    QFile::remove(OssNodeTypeWatch::filePath(text("Mine/Soft")));
    OssNodeTypeWatch::instance()->start();
}

TEST_F(EchoedCommands, movesAndNewNodesTellTheirPlaces)
{
    const auto move = [](OssSnBaseNode *node, const QPointF &to) {
        node->viewContext()->setNodePosition(to);
        history()->record(
            text("Move"), [] {}, [] {});
    };
    move(m_first, {10, 20});
    EXPECT_EQ(told(), "ossa.graph().node(\"First\").position = (10, 20)");
    move(m_second, {30, 40});
    EXPECT_EQ(told(), "ossa.graph().node(\"Second\").position = (30, 40)") << "the other stays";
    OssSnBaseNode *added = add("Filter/Blur", "Added");
    move(added, {50, 60});
    wire(m_first, added);
    const std::string lines = told();
    EXPECT_NE(lines.find("createNode(\"Filter/Blur\", \"Added\", (50, 60))"), std::string::npos)
        << lines;
    EXPECT_EQ(lines.find("position"), std::string::npos) << lines;
    EXPECT_EQ(lines.find("size"), std::string::npos) << "it has none of its own: " << lines;
    OssSnBaseNode *area = add("Misc/Backdrop", "Area");
    area->viewContext()->setNodeSizeUndo({640, 360});
    EXPECT_NE(told().find("node(\"Area\").size = (640, 360)"), std::string::npos);
    area->viewContext()->setNodeSizeUndo({700, 360});
    EXPECT_EQ(told(), "ossa.graph().node(\"Area\").size = (700, 360)");
    EXPECT_NE(lines.find("node(\"Added\").connectInput(\"Input\", ossa.graph().node(\"First\")"),
              std::string::npos)
        << lines;
}

TEST_F(EchoedCommands, eachIsToldOnceAndOnlyWhileTheUserWantsIt)
{
    m_echo.setEnabled(true);
    m_first->setBypassed(true);
    EXPECT_EQ(told(), "ossa.graph().node(\"First\").bypassed = True");
    m_echo.setEnabled(false);
    m_first->setBypassed(false);
    EXPECT_EQ(told(), "");
    m_echo.setEnabled(true);
    EXPECT_EQ(told(), "") << "what was done meanwhile";
    m_echo.setScriptRunning(true);
    add("Filter/Blur", "By Script");
    m_echo.setScriptRunning(false);
    EXPECT_EQ(told(), "") << "the script's own lines tell it";
    history()->undo();
    told();
    history()->undo();
    EXPECT_EQ(told(), "ossa.undo().undo()");
    {
        const OssUndoManager::AutoMacro gesture(text("Both"));
        m_first->setBypassed(false);
        EXPECT_EQ(told(), "") << "it is not over";
        m_second->setBypassed(true);
    }
    passTime(120);
    EXPECT_NE(told().find("node(\"Second\").bypassed = True"), std::string::npos);
}

TEST_F(EchoedCommands, graphsOfOtherObjectsAreNotToldAsTheCurrentOne)
{
    OssGeoEntity *other = project()->addEntity(text("Other"));
    OssShaderNetworkManager::instance()->setCurrentShaderNetwork(
        other->shadingGroups().first()->network());
    told();
    m_first->setBypassed(true);
    EXPECT_EQ(told().find("ossa."), std::string::npos) << "there is no such node here";
    OssShaderNetworkManager::instance()->setCurrentShaderNetwork(m_network);
    told();
    m_first->setBypassed(false);
    EXPECT_EQ(told(), "ossa.graph().node(\"First\").bypassed = False");
}

TEST_F(EchoedCommands, everyKindOfEditHasItsLine)
{
    const std::string first = R"(ossa.graph().node("First"))";
    const std::pair<std::function<void()>, std::string> cases[] = {
        {[&] { m_first->setAttribute(text("Radius"), 2.5); },
         first + R"(.setAttribute("Radius", 2.5))"},
        {[&] { m_first->setEnabled(0); }, first + ".enabled = False"},
        {[&] { m_first->setEnabled(1); }, first + ".enabled = True"},
        {[&] { m_first->setDescription(text("a \"b\"\n\tc")); },
         first + R"(.description = "a \"b\"\n\x09c")"},
        {[&] { wire(m_first, m_second); },
         R"(ossa.graph().node("Second").connectInput("Input", )" + first + ", \""
             + m_first->prefferedOutputPoint().toStdString() + "\")"},
        {[&] { m_second->setInputNode(text("Input"), nullptr, QString()); },
         R"(ossa.graph().node("Second").disconnectInput("Input"))"},
        {[&] { m_first->setName(text("Moss")); }, first + R"(.name = "Moss")"},
        {[&] { m_network->removeNodes({m_first}); }, R"(ossa.graph().node("Moss").remove())"},
        {[&] { history()->undo(); }, "ossa.undo().undo()"},
        {[&] { history()->redo(); }, "ossa.undo().redo()"},
        {[&] { m_network->removeNodes({add("Misc/Dot")}); }, "# Create Node : Dot, Remove Nodes"},
    };
    for (const auto &[edit, line] : cases) {
        edit();
        EXPECT_EQ(told(), line);
    }
}

} // namespace
