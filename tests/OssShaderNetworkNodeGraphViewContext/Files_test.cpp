#include "GraphFixture.h"
#include "GraphUser.h"
#include "support/OssaFiles.h"

namespace {

/// Files that the user names in dialogs: nodes and archives, and nodes that are looked for.
class FilesTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        m_view->window()->show();
        m_blur = addAt("Filter/Blur", {0, 0}, "Soft");
        m_area = addAt("Misc/Backdrop", {-2000, -2000}, "Area");
        contextOf(m_network->viewerNode())->setNodePosition({3000, 3000});
        select({});
        begin();
        OssApplication::setPopupsAllowed(true);
    }

    OssSnBaseNode *m_blur = nullptr;
    OssSnBaseNode *m_area = nullptr;
};

} // namespace

TEST_F(FilesTest, selectedNodesGoToAFileAndComeBackInOneStep)
{
    using View = OssShaderNetworkView;
    const auto cancel = [this](void (View::*command)()) {
        const DialogAnswers cancelled;
        (m_view->*command)();
        EXPECT_EQ(cancelled.questions, 1);
        EXPECT_EQ(cancelled.boxes, QStringList());
    };
    {
        const DialogAnswers answers(file("nodes.ong"));
        m_view->exportNodes(); // nothing is selected but
        select({m_network->viewerNode()});
        m_view->exportNodes(); // the viewer, which stays
        EXPECT_EQ(answers.questions, 0);
    }
    select({m_blur, m_area, m_network->viewerNode()});
    cancel(&View::exportNodes);
    {
        const DialogAnswers answers(file("nodes.ong"));
        m_view->exportNodes();
        EXPECT_EQ(answers.boxes, QStringList());
        EXPECT_TRUE(QFile::exists(file("nodes.ong")));
    }
    const QByteArray before = m_project->stateHash();
    cancel(&View::importNodes);
    EXPECT_EQ(undoCount(), 0);
    const DialogAnswers answers(file("nodes.ong"));
    const QPointF place = m_view->mapToScene(m_view->creationPoint());
    m_view->importNodes();
    EXPECT_EQ(answers.boxes, QStringList());
    ASSERT_EQ(m_network->selectedNodes().size(), 2);
    const OssSnBaseNode *blur = m_network->node(text("Soft 2"));
    const OssSnBaseNode *area = m_network->node(text("Area 2"));
    ASSERT_TRUE(blur && area);
    EXPECT_EQ(itemOf(area)->pos(), place);
    EXPECT_EQ(itemOf(blur)->pos(), place + QPointF(2000, 2000)) << "as they stood to each other";
    EXPECT_EQ(undoCount(), 1);
    expectUndoIsExact(before);
}

TEST_F(FilesTest, whatCannotBeWrittenOrReadIsSaidWithItsReason)
{
    const ExpectedLog possible("", ExpectedLog::Possible);
    ASSERT_NO_FATAL_FAILURE(writeFile(file("plain.ong"), "no nodes"));
    begin();

    const struct
    {
        const char *name;
        void (OssShaderNetworkView::*command)();
        const char *said;
    } cases[] = {
        {"plain.ong/x.ong", &OssShaderNetworkView::exportNodes, "plain.ong"},
        {"plain.ong", &OssShaderNetworkView::importNodes, "plain.ong"},
    };

    for (const auto &c : cases) {
        select({m_blur});
        const DialogAnswers answers(file(c.name), QMessageBox::Ok);
        (m_view->*c.command)();
        ASSERT_EQ(answers.boxes.size(), 1) << c.said;
        EXPECT_TRUE(answers.boxes.first().contains(text(c.said)));
        expectNothingDone(c.said);
    }
}

TEST_F(FilesTest, archivesAreAskedForAndNothingHappensWithoutOne)
{
    for (const auto command : {qOverload<>(&OssShaderNetworkView::importMaterial),
                               qOverload<>(&OssShaderNetworkView::importCustomProcedural)}) {
        const DialogAnswers cancelled;
        (m_view->*command)();
        EXPECT_EQ(cancelled.questions, 1);
        EXPECT_EQ(undoCount(), 0);
        EXPECT_EQ(m_network->nodes().size(), 3);
    }
}

// --- looking for nodes

TEST_F(FilesTest, aFoundNodeIsSelectedAloneAndShown)
{
    const ExpectedLog found(" nodes in the network");
    select({m_network->viewerNode()});
    for (OssSnBaseNode *wanted : {m_area, m_blur}) {
        typeInDialog(wanted == m_area ? "area" : "soft");
        m_view->searchNodesAction();
        EXPECT_EQ(m_network->selectedNodes(), QList<OssSnBaseNode *>{wanted});
        EXPECT_TRUE(itemOf(wanted)->isSelected());
        EXPECT_TRUE(m_view->viewportInSceneCoords().intersects(rectOf(wanted)));
    }
    select({m_area});
    typeInDialog("no such node");
    m_view->searchNodesAction();
    EXPECT_EQ(m_network->selectedNodes(), QList<OssSnBaseNode *>{m_area});
    EXPECT_EQ(undoCount(), 0);

    // Inside a group, too.
    ASSERT_NE(m_network->groupNodes({m_blur}), nullptr);
    typeInDialog("soft");
    m_view->searchNodesAction();
    EXPECT_EQ(m_manager->currentView()->network(), m_blur->network());
    EXPECT_TRUE(m_blur->selected());
}

TEST_F(FilesTest, nothingIsMadeWhereNothingWasChosen)
{
    typeInDialog("no such type");
    m_view->quickCreate();
    expectNothingDone();
}
