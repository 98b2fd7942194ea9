#include "Ossa/Palettes/NodeTypesPanel.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssProject.h"
#include "Program/StartedProgram.h"
#include "support/DialogAnswers.h"
#include "support/ExpectedLog.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace {

/// Two blurs in a row, and a group beside them.
class Groups : public StartedProgram
{
protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        m_project = OssProjectManager::instance()->currentProject();
        m_first = m_network->createNode(QStringLiteral("Filter/Blur"), QStringLiteral("First"));
        m_second = m_network->createNode(QStringLiteral("Filter/Blur"), QStringLiteral("Second"));
        m_second->setInputNode(QStringLiteral("Input"), m_first, m_first->prefferedOutputPoint());
        m_group = m_network->createNode(QStringLiteral("Misc/Group"), QStringLiteral("Around"));
        select({});
        OssUndoManager::instance()->clear();
    }

    OssSnGroupNode *group() const { return qobject_cast<OssSnGroupNode *>(m_group); }

    OssProject *m_project = nullptr;
    OssSnBaseNode *m_first = nullptr;
    OssSnBaseNode *m_second = nullptr;
    OssSnBaseNode *m_group = nullptr;
};

TEST_F(Groups, groupingSelectsTheGroupAndUngroupingWhatWasInIt)
{
    OssUndoManager *history = OssUndoManager::instance();
    select({m_first, m_second});
    const QByteArray before = m_project->stateHash();
    trigger("Group Selected Nodes");
    const QList<OssSnBaseNode *> made = m_network->selectedNodes();
    ASSERT_EQ(made.size(), 1);
    EXPECT_NE(qobject_cast<OssSnGroupNode *>(made.first()), nullptr);
    trigger("Ungroup");
    EXPECT_EQ(m_network->selectedNodes().size(), 2);
    EXPECT_EQ(m_network->node(QStringLiteral("Second"))->inputNode(QStringLiteral("Input")),
              m_network->node(QStringLiteral("First")));
    ASSERT_EQ(history->count(), 2);
    EXPECT_EQ(history->undoText(), QStringLiteral("Ungroup"));
    history->undo();
    history->undo();
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(Groups, whatStandsBetweenIsTakenInOrNothingIsGrouped)
{
    OssSnBaseNode *third = m_network->createNode(QStringLiteral("Filter/Blur"),
                                                 QStringLiteral("Third"));
    third->setInputNode(QStringLiteral("Input"), m_second, m_second->prefferedOutputPoint());
    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    QString question;
    const auto answer = [&](QMessageBox::StandardButton button) {
        select({m_first, third});
        OssApplication::setPopupsAllowed(true);
        QTimer::singleShot(0, [&question, button] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            question = box->text();
            box->button(button)->click();
        });
        trigger("Group Selected Nodes");
        OssApplication::setPopupsAllowed(false);
    };
    answer(QMessageBox::Cancel);
    EXPECT_TRUE(question.contains(QStringLiteral("\"Second\""))) << qPrintable(question);
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(OssUndoManager::instance()->count(), 0);

    answer(QMessageBox::Yes);
    const auto *made = qobject_cast<OssSnGroupNode *>(m_network->selectedNodes().value(0));
    ASSERT_NE(made, nullptr);
    const auto nodes = made->groupNetwork()->nodes();
    EXPECT_TRUE(nodes.contains(m_first) && nodes.contains(m_second) && nodes.contains(third));
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(Groups, withNothingToGroupOrToTakeApartNothingHappens)
{
    const struct
    {
        const char *command;
        QList<OssSnBaseNode *> selected;
    } cases[] = {
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

    for (const auto &c : cases) {
        const bool exports = QLatin1String(c.command).startsWith(QLatin1String("Export"));
        const ExpectedLog told("Select the ",
                               exports ? ExpectedLog::Needed : ExpectedLog::Possible);
        select(c.selected);
        const QByteArray before = m_project->stateHash();
        trigger(c.command);
        EXPECT_EQ(m_project->stateHash(), before) << c.command;
        EXPECT_EQ(m_network->selectedNodes(), c.selected) << c.command;
        EXPECT_EQ(OssUndoManager::instance()->count(), 0) << c.command;
    }
}

TEST_F(Groups, nodeTypesThatAreGoneAreNotMade)
{
    const ExpectedLog unfocused("current active widget", ExpectedLog::Possible);
    const int count = m_network->nodes().size();
    EXPECT_FALSE(OssDragAndDropManager::createNode(QStringLiteral("No/Such")));
    EXPECT_EQ(m_network->nodes().size(), count);
    EXPECT_TRUE(OssDragAndDropManager::createNode(QStringLiteral("Filter/Blur")));
    EXPECT_EQ(m_network->nodes().size(), count + 1);
}

TEST_F(Groups, enterInTheListOfNodeTypesMakesTheOneThatIsFound)
{
    const ExpectedLog unfocused("current active widget", ExpectedLog::Possible);
    NodeTypesPanel panel;
    auto *search = panel.findChild<QLineEdit *>();
    const int count = m_network->nodes().size();
    QTest::keyClicks(search, QStringLiteral("no such type"));
    QTest::keyClick(search, Qt::Key_Return);
    EXPECT_EQ(m_network->nodes().size(), count);
    search->clear();
    QTest::keyClicks(search, QStringLiteral("Sharpen"));
    QTest::keyClick(search, Qt::Key_Down);
    QTest::keyClick(search, Qt::Key_Return);
    ASSERT_EQ(m_network->nodes().size(), count + 1);
    EXPECT_EQ(m_network->nodes().last()->pathKey(), QStringLiteral("Filter/Sharpen"));
}

TEST_F(Groups, portsGoToTheSelectedGroupOrToTheOneThatIsShown)
{
    select({m_group, m_first});
    trigger("Add Group Input");
    trigger("Add Group Input");
    trigger("Add Group Output");
    EXPECT_EQ(m_group->inputNames(),
              (QStringList{QStringLiteral("Input"), QStringLiteral("Input 2")}));
    EXPECT_EQ(m_group->outputPointNames(), QStringList{QStringLiteral("Output")});
    EXPECT_EQ(OssUndoManager::instance()->count(), 3);
    OssSnBaseNode *other = m_network->createNode(QStringLiteral("Misc/Group"), QString());
    select({m_group, other});
    trigger("Add Group Input");
    EXPECT_EQ(m_group->inputNames().size(), 2) << "two groups: which?";
    EXPECT_TRUE(other->inputNames().isEmpty());
}

TEST_F(Groups, exportsToTheFileThatIsChosenAndSaysWhatCannotBeWritten)
{
    const QTemporaryDir folder;
    OssSnBaseNode *material = m_network->createNode(QStringLiteral("_System/Material"),
                                                    QStringLiteral("Rust"));

    const struct
    {
        OssSnBaseNode *node;
        const char *command;
        const char *file;
        bool fits;
    } cases[] = {
        {m_group, "Export as Custom Procedural", "a.opc", true},
        {material, "Export Material to Archive", "b.oma", true},
        {m_group, "Export as Custom Procedural", "nowhere/a.opc", false},
    };

    for (const auto &c : cases) {
        const ExpectedLog told("nowhere", ExpectedLog::Possible);
        select({c.node});
        OssApplication::setPopupsAllowed(true);
        const QString path = folder.filePath(QString::fromLatin1(c.file));
        bool warned = false;
        std::function<void()> answer = [&] {
            QWidget *modal = QApplication::activeModalWidget();
            auto *dialog = qobject_cast<QFileDialog *>(modal);
            if (!dialog) {
                warned = modal != nullptr;
                if (modal)
                    modal->close();
                return;
            }
            dialog->selectFile(path);
            QTimer::singleShot(0, answer);
            static_cast<QDialog *>(dialog)->accept();
        };
        QTimer::singleShot(0, answer);
        trigger(c.command);
        QCoreApplication::processEvents();
        OssApplication::setPopupsAllowed(false);
        EXPECT_EQ(QFile::exists(path), c.fits) << c.file;
        EXPECT_EQ(warned, !c.fits) << c.file;
    }
}

TEST_F(Groups, insideAGroupItsOwnPortsAreMeant)
{
    OssShaderNetworkManager::instance()->setCurrentViewNetwork(group()->groupNetwork());
    const QList<OssSnBaseNode *> inside = group()->groupNetwork()->getAllNodes();
    for (OssSnBaseNode *node : inside)
        node->setSelected(false);
    trigger("Add Group Input");
    EXPECT_EQ(m_group->inputNames().size(), 1);
    OssShaderNetworkManager::instance()->setCurrentViewNetwork(m_network);
    trigger("Add Group Input");
    EXPECT_EQ(m_group->inputNames().size(), 1) << "none is selected, and none is around";
}

TEST_F(Groups, aGizmoIsTheSelectedGroup)
{
    const QTemporaryDir folder;
    select({m_group});
    {
        const DialogAnswers answers(folder.filePath(QStringLiteral("around")));
        trigger("Export as Gizmo");
        EXPECT_EQ(answers.questions, 1);
    }
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
}

TEST_F(Groups, whatIsLeftHalfwayOrHasNoProjectDoesNothing)
{
    select({m_group});
    {
        const DialogAnswers nowhere;
        trigger("Export as Custom Procedural");
        EXPECT_EQ(nowhere.questions, 1);
        EXPECT_TRUE(nowhere.boxes.isEmpty());
    }
    OssProjectManager::instance()->closeProject();
    const ExpectedLog told("Select the ", ExpectedLog::Possible);
    for (const char *command : {"Group Selected Nodes", "Ungroup", "Add Group Input",
                                "Add Group Output", "Export as Custom Procedural"})
        trigger(command);
    EXPECT_EQ(OssUndoManager::instance()->count(), 0);
}

} // namespace
