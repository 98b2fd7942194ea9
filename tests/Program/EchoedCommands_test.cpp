#include "Ossa/Scripting/ScriptEcho.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Project/OssProject.h"
#include "Program/StartedProgram.h"

#include <QAction>
#include <QTest>

namespace {

/// What commands of the graph are echoed as.
class EchoedCommands : public StartedProgram
{
protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        m_first = m_network->createNode(QStringLiteral("Filter/Blur"), QStringLiteral("First"));
        m_second = m_network->createNode(QStringLiteral("Filter/Blur"), QStringLiteral("Second"));
        select({});
        OssUndoManager::instance()->clear();
        QObject::connect(&m_echo, &ScriptEcho::line, &m_echo,
                         [this](const QString &line) { m_lines.append(line); });
        m_echo.setEnabled(true);
    }

    /// The lines of what was done since the last call.
    std::string told()
    {
        QTest::qWait(5);
        const std::string text = m_lines.join(QLatin1Char('\n')).toStdString();
        m_lines.clear();
        return text;
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

TEST_F(EchoedCommands, whatHasNoLineOfItsOwnIsTheCommandOnTheSameSelection)
{
    OssSnBaseNode *group = m_network->createNode(QStringLiteral("Misc/Group"),
                                                 QStringLiteral("Around"));
    select({group});
    told();
    trigger("Add Group Input");
    EXPECT_EQ(told(), "ossa.graph().select([ossa.graph().node(\"Around\")])\n"
                      "ossa.trigger(\"/Ossa/NodeGraph/Add Group Input\")");
}

TEST_F(EchoedCommands, movesAndNewNodesTellTheirPlaces)
{
    const auto move = [](OssSnBaseNode *node, const QPointF &to) {
        node->viewContext()->setNodePosition(to);
        OssUndoManager::instance()->record(
            QStringLiteral("Move"), [] {}, [] {});
    };
    move(m_first, {10, 20});
    EXPECT_EQ(told(), "ossa.graph().node(\"First\").position = (10, 20)");
    move(m_second, {30, 40});
    EXPECT_EQ(told(), "ossa.graph().node(\"Second\").position = (30, 40)") << "the other stays";
    OssSnBaseNode *added = m_network->createNode(QStringLiteral("Filter/Blur"),
                                                 QStringLiteral("Added"));
    move(added, {50, 60});
    added->setInputNode(QStringLiteral("Input"), m_first, m_first->prefferedOutputPoint());
    const std::string lines = told();
    EXPECT_NE(lines.find("createNode(\"Filter/Blur\", \"Added\", (50, 60))"), std::string::npos)
        << lines;
    EXPECT_EQ(lines.find("position"), std::string::npos) << lines;
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
    OssUndoManager::instance()->undo();
    EXPECT_EQ(told(), "ossa.undo().undo()");
    {
        const OssUndoManager::AutoMacro gesture(QStringLiteral("Both"));
        m_first->setBypassed(false);
        EXPECT_EQ(told(), "") << "it is not over";
        m_second->setBypassed(true);
    }
    QTest::qWait(120);
    EXPECT_NE(told().find("node(\"Second\").bypassed = True"), std::string::npos);
}

TEST_F(EchoedCommands, whatWasSelectedBeforeTheEchoBeganCounts)
{
    OssSnBaseNode *group = m_network->createNode(QStringLiteral("Misc/Group"),
                                                 QStringLiteral("Around"));
    m_echo.setEnabled(false);
    select({group});
    told();
    m_echo.setEnabled(true);
    trigger("Add Group Input");
    EXPECT_EQ(told(), "ossa.graph().select([ossa.graph().node(\"Around\")])\n"
                      "ossa.trigger(\"/Ossa/NodeGraph/Add Group Input\")");
}

TEST_F(EchoedCommands, graphsOfOtherObjectsAreNotToldAsTheCurrentOne)
{
    OssProject *project = OssProjectManager::instance()->currentProject();
    OssGeoEntity *other = project->addEntity(QStringLiteral("Other"));
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

    const struct
    {
        std::function<void()> edit;
        std::string line;
    } cases[] = {
        {[&] { m_first->setAttribute(QStringLiteral("Radius"), 2.5); },
         first + R"(.setAttribute("Radius", 2.5))"},
        {[&] { m_first->setEnabled(0); }, first + ".enabled = False"},
        {[&] { m_first->setEnabled(1); }, first + ".enabled = True"},
        {[&] { m_first->setDescription(QStringLiteral("a \"b\"\n\tc")); },
         first + R"(.description = "a \"b\"\n\x09c")"},
        {[&] {
             m_second->setInputNode(QStringLiteral("Input"), m_first,
                                    m_first->prefferedOutputPoint());
         },
         R"(ossa.graph().node("Second").connectInput("Input", )" + first + ", \""
             + m_first->prefferedOutputPoint().toStdString() + "\")"},
        {[&] { m_second->setInputNode(QStringLiteral("Input"), nullptr, QString()); },
         R"(ossa.graph().node("Second").disconnectInput("Input"))"},
        {[&] { m_first->setName(QStringLiteral("Moss")); }, first + R"(.name = "Moss")"},
        {[&] { m_network->removeNodes({m_first}); }, R"(ossa.graph().node("Moss").remove())"},
        {[&] { OssUndoManager::instance()->undo(); }, "ossa.undo().undo()"},
        {[&] { OssUndoManager::instance()->redo(); }, "ossa.undo().redo()"},
        {[&] { m_network->removeNodes({m_network->createNode(QStringLiteral("Misc/Dot"), {})}); },
         "# Create Node : Dot, Remove Nodes"},
    };

    for (const auto &c : cases) {
        c.edit();
        EXPECT_EQ(told(), c.line);
    }
}

} // namespace
