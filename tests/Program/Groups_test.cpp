#include "Ossa/Palettes/NodeTypesPanel.h"
#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"
#include "OssModel/Evaluation/OssDependencyMarks.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/View/OssNgView.h"
#include "Program/StartedProgram.h"

#include <QDir>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// Two blurs in a row, and a group beside them.
class Groups : public StartedProgram
{
protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        m_first = add("Filter/Blur", "First");
        m_second = add("Filter/Blur", "Second");
        wire(m_first, m_second);
        m_group = add("Misc/Group", "Around");
        select({});
        begin();
    }

    /// What comes from now on is looked at.
    void begin()
    {
        history()->clear();
        m_before = project()->stateHash();
    }

    void expectUnchanged(const char *why) const
    {
        EXPECT_EQ(project()->stateHash(), m_before) << why;
        EXPECT_EQ(history()->count(), 0) << why;
    }

    int nodeCount() const { return m_network->nodes().size(); }

    OssSnBaseNode *m_first = nullptr;
    OssSnBaseNode *m_second = nullptr;
    OssSnBaseNode *m_group = nullptr;
    QByteArray m_before;
};

TEST_F(Groups, groupingSelectsTheGroupAndUngroupingWhatWasInIt)
{
    select({m_first, m_second});
    begin();
    trigger("Group Selected Nodes");
    const QList<OssSnBaseNode *> made = m_network->selectedNodes();
    ASSERT_EQ(made.size(), 1);
    EXPECT_NE(qobject_cast<OssSnGroupNode *>(made.first()), nullptr);
    trigger("Ungroup");
    EXPECT_EQ(m_network->selectedNodes().size(), 2);
    EXPECT_EQ(m_network->node(text("Second"))->inputNode(text("Input")),
              m_network->node(text("First")));
    ASSERT_EQ(history()->count(), 2);
    EXPECT_EQ(history()->undoText(), text("Ungroup"));
    history()->undo();
    history()->undo();
    EXPECT_EQ(project()->stateHash(), m_before);
}

TEST_F(Groups, aBackdropIsGroupedWithWhatLiesOnIt)
{
    OssSnBaseNode *area = add("Misc/Backdrop", "Area");
    OssSnBaseNode *inner = add("Misc/Backdrop", "Inner");
    inner->setContainer(area);
    m_first->setContainer(inner);
    select({area});
    begin();
    trigger("Group Selected Nodes");
    const auto *made = qobject_cast<OssSnGroupNode *>(m_network->selectedNodes().value(0));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(m_first->network(), made->groupNetwork());
    EXPECT_EQ(inner->network(), made->groupNetwork());
    EXPECT_EQ(m_first->container(), inner);
    EXPECT_EQ(m_second->network(), m_network) << "lies elsewhere";
    history()->undo();
    EXPECT_EQ(project()->stateHash(), m_before);
}

TEST_F(Groups, whatStandsBetweenIsTakenInOrNothingIsGrouped)
{
    OssSnBaseNode *third = add("Filter/Blur", "Third");
    wire(m_second, third);
    begin();
    QString question;
    const auto groupAndAnswer = [&](QMessageBox::StandardButton button) {
        select({m_first, third});
        OssApplication::setPopupsAllowed(true);
        answerWith(button, &question);
        trigger("Group Selected Nodes");
        OssApplication::setPopupsAllowed(false);
    };
    groupAndAnswer(QMessageBox::Cancel);
    EXPECT_TRUE(question.contains(text("\"Second\""))) << qPrintable(question);
    expectUnchanged("cancelled");

    groupAndAnswer(QMessageBox::Yes);
    const auto *made = qobject_cast<OssSnGroupNode *>(m_network->selectedNodes().value(0));
    ASSERT_NE(made, nullptr);
    const auto nodes = made->groupNetwork()->nodes();
    EXPECT_TRUE(nodes.contains(m_first) && nodes.contains(m_second) && nodes.contains(third));
    history()->undo();
    EXPECT_EQ(project()->stateHash(), m_before);
}

TEST_F(Groups, withNothingToGroupOrToTakeApartNothingHappens)
{
    const std::pair<const char *, QList<OssSnBaseNode *>> cases[] = {
        {"Group Selected Nodes", {}},
        {"Ungroup", {}},
        {"Ungroup", {m_first}},
        {"Add Group Input", {}},
        {"Add Group Output", {m_first}},
        {"Export as Custom Procedural", {}},
        {"Export Material to Archive", {}},
        {"Export Material to Archive", {m_group}},
        {"Export as Gizmo", {m_first}},
    };
    for (const auto &[command, selected] : cases) {
        const bool exports = text(command).startsWith(text("Export"));
        const ExpectedLog told("Select the ",
                               exports ? ExpectedLog::Needed : ExpectedLog::Possible);
        select(selected);
        begin();
        trigger(command);
        expectUnchanged(command);
        EXPECT_EQ(m_network->selectedNodes(), selected) << command;
    }
}

TEST_F(Groups, portsGoToTheSelectedGroupOrToTheOneThatIsShown)
{
    select({m_group, m_first});
    trigger("Add Group Input");
    trigger("Add Group Input");
    trigger("Add Group Output");
    EXPECT_EQ(m_group->inputNames(), texts({"Input", "Input 2"}));
    EXPECT_EQ(m_group->outputPointNames(), texts({"Output"}));
    EXPECT_EQ(history()->count(), 3);
    OssSnBaseNode *other = add("Misc/Group");
    select({m_group, other});
    trigger("Add Group Input");
    EXPECT_EQ(m_group->inputNames().size(), 2) << "two groups: which?";
    EXPECT_TRUE(other->inputNames().isEmpty());

    OssShaderNetwork *inside = qobject_cast<OssSnGroupNode *>(other)->groupNetwork();
    OssShaderNetworkManager::instance()->setCurrentViewNetwork(inside);
    const QList<OssSnBaseNode *> nodes = inside->getAllNodes();
    for (OssSnBaseNode *node : nodes)
        node->setSelected(false);
    trigger("Add Group Input");
    EXPECT_EQ(other->inputNames().size(), 1) << "of the group around";
    OssShaderNetworkManager::instance()->setCurrentViewNetwork(m_network);
    select({});
    trigger("Add Group Input");
    EXPECT_EQ(other->inputNames().size(), 1) << "none is selected, and none is around";
}

TEST_F(Groups, portsThatAreMadeInTheGroupThatIsShownComeInSight)
{
    auto *group = qobject_cast<OssSnGroupNode *>(m_group);
    OssSnBaseNode *inner = group->groupNetwork()->createNode(text("Filter/Blur"));
    OssShaderNetworkManager::instance()->goToNode(inner);
    const auto views = s_window->findChildren<OssNgView *>();
    const auto shown = std::find_if(views.cbegin(), views.cend(),
                                    [](const OssNgView *one) { return one->isVisible(); });
    ASSERT_NE(shown, views.cend());
    OssNgView *view = *shown;
    select({});
    for (const char *command : {"Add Group Input", "Add Group Output"}) {
        view->centerViewOn({9000, 9000}, false);
        trigger(command);
        const QList<OssSnBaseNode *> made = group->groupNetwork()->selectedNodes();
        ASSERT_EQ(made.size(), 1);
        const auto items = view->scene()->items();
        const auto item = std::find_if(items.cbegin(), items.cend(), [&](QGraphicsItem *one) {
            const auto *node = dynamic_cast<OssNgNode *>(one);
            return node && node->businessNode() == made.first();
        });
        ASSERT_NE(item, items.cend());
        EXPECT_TRUE(QTest::qWaitFor([&] {
            return view->viewportInSceneCoords().contains((*item)->sceneBoundingRect());
        })) << command;
        made.first()->setSelected(false);
    }
}

TEST_F(Groups, newPaintStandsLeftOfWhatItFeeds)
{
    OssSnBaseNode *viewer = m_network->viewerNode();
    const auto left = [](const OssSnBaseNode *node) {
        return node->viewContext()->nodePosition().x();
    };
    for (OssSnBaseNode *shown : {static_cast<OssSnBaseNode *>(nullptr), m_second}) {
        const QString input = QString::number(m_network->viewerNodeCurrentEdge());
        viewer->setInputNode(input, shown, shown ? shown->prefferedOutputPoint() : QString());
        const int before = nodeCount();
        triggerCommand("Viewer/New Paint");
        EXPECT_EQ(nodeCount(), before + (shown ? 2 : 1));
        const OssSnBaseNode *fed = viewer->inputNode(input);
        ASSERT_NE(fed, nullptr);
        EXPECT_LT(left(fed), left(viewer));
        if (shown)
            EXPECT_LT(left(fed->inputNode(text("Over"))), left(fed));
    }
    triggerCommand("Viewer/Toggle Painting");
}

TEST_F(Groups, exportsToTheFileThatIsChosenAndSaysWhatCannotBeWritten)
{
    OssSnBaseNode *material = add("_System/Material", "Rust");
    const std::tuple<OssSnBaseNode *, const char *, const char *, bool> cases[] = {
        {m_group, "Export as Custom Procedural", "a.opc", true},
        {material, "Export Material to Archive", "b.oma", true},
        {m_group, "Export as Gizmo", "c.ogz", true},
        {m_group, "Export as Custom Procedural", "nowhere/a.opc", false},
        {m_group, "Export as Gizmo", "nowhere/c.ong", false},
    };
    for (const auto &[node, command, name, fits] : cases) {
        const ExpectedLog told("nowhere", ExpectedLog::Possible);
        const QTemporaryDir folder;
        select({node});
        const DialogAnswers answers(folder.filePath(text(name)), QMessageBox::Ok);
        trigger(command);
        EXPECT_EQ(answers.questions, 1) << command;
        EXPECT_EQ(answers.boxes.isEmpty(), fits) << command;
        EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), fits ? 1 : 0) << command;
    }
}

TEST_F(Groups, whatIsLeftHalfwayOrHasNoProjectDoesNothing)
{
    select({m_group});
    for (const char *command : {"Export as Custom Procedural", "Export as Gizmo"}) {
        const DialogAnswers nowhere;
        trigger(command);
        EXPECT_EQ(nowhere.questions, 1);
        EXPECT_TRUE(nowhere.boxes.isEmpty());
    }
    OssProjectManager::instance()->closeProject();
    const ExpectedLog told("Select the ", ExpectedLog::Possible);
    for (const char *command : {"Group Selected Nodes", "Ungroup", "Add Group Input",
                                "Add Group Output", "Export as Custom Procedural"})
        trigger(command);
    EXPECT_EQ(history()->count(), 0);
}

TEST_F(Groups, nodeTypesThatAreFoundAndThereAreMade)
{
    const ExpectedLog unfocused("current active widget", ExpectedLog::Possible);
    const int count = nodeCount();
    EXPECT_FALSE(OssDragAndDropManager::createNode(text("No/Such")));
    EXPECT_EQ(nodeCount(), count);
    EXPECT_TRUE(OssDragAndDropManager::createNode(text("Filter/Blur")));
    EXPECT_EQ(nodeCount(), count + 1);

    NodeTypesPanel panel;
    auto *search = panel.findChild<QLineEdit *>();
    QTest::keyClicks(search, text("no such type"));
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_EQ(nodeCount(), count + 1);
    search->clear();
    QTest::keyClicks(search, text("Sharpen"));
    QTest::keyClick(search, Qt::Key_Down);
    QTest::keyClick(search, Qt::Key_Return);
    ASSERT_EQ(nodeCount(), count + 2);
    EXPECT_EQ(m_network->nodes().last()->pathKey(), text("Filter/Sharpen"));
}

TEST_F(Groups, portsAreOrderedByPlaceAndPlacesByPortFromTheMenuAndByScript)
{
    auto *group = static_cast<OssSnGroupNode *>(m_group);
    const auto place = [](OssSnBaseNode *node, qreal y) {
        node->viewContext()->setNodePosition({0, y});
        return node;
    };
    OssSnBaseNode *low = place(group->createInput(text("Low"), OssSnDataKind::Color), 900);
    OssSnBaseNode *high = place(group->createInput(text("High"), OssSnDataKind::Color), 100);
    select({m_group});
    begin();
    trigger("Order Ports by Position");
    EXPECT_EQ(m_group->inputNames(), QStringList({text("High"), text("Low")}));
    EXPECT_EQ(history()->count(), 1);
    trigger("Order Ports by Position");
    EXPECT_EQ(history()->count(), 1) << "they are in order";
    history()->undo();
    EXPECT_EQ(project()->stateHash(), m_before);
    trigger("Arrange Inputs by Order");
    EXPECT_LT(low->viewContext()->nodePosition().y(), high->viewContext()->nodePosition().y());
    history()->undo();
    EXPECT_EQ(project()->stateHash(), m_before);
    select({m_first});
    begin();
    trigger("Order Ports by Position");
    expectUnchanged("no group");
}

TEST_F(Groups, dependenciesAreMarkedAndUnmarkedFromTheMenu)
{
    select({m_second});
    begin();
    trigger("Mark Dependencies");
    EXPECT_FALSE(OssDependencyMarks::instance()->isEmpty());
    EXPECT_FALSE(OssDependencyMarks::instance()->inWords().isEmpty());
    trigger("Clear Marks");
    EXPECT_TRUE(OssDependencyMarks::instance()->isEmpty());
    select({});
    trigger("Mark Dependencies");
    EXPECT_TRUE(OssDependencyMarks::instance()->isEmpty());
    expectUnchanged("marks are no part of the document");
}

TEST_F(Groups, theLastChangeIsFoundFromTheMenu)
{
    m_first->setAttribute(text("Radius"), 3.0);
    QSignalSpy goes(m_first, &OssSnBaseNode::gotoNode);
    triggerCommand("Edit/Go to Last Change");
    EXPECT_EQ(goes.count(), 1);
    EXPECT_EQ(m_network->selectedNodes(), QList<OssSnBaseNode *>{m_first});
}

TEST_F(Groups, theBoxAboutTheProgramNamesThePlugInWithItsMakersAndNotice)
{
    const QString about = s_window->aboutText();
    for (const char *part : {"Node Graph View Context", "version 1",
                             "Node Graph View of the Shader Network", "developers", "BSD-3-Clause"})
        EXPECT_TRUE(about.contains(text(part))) << part;
}

} // namespace
