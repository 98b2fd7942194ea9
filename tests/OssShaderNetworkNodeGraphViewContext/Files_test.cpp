#include "GraphFixture.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "support/DialogAnswers.h"

#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>

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
        OssUndoManager::instance()->clear();
    }

    QString file(const char *name) const { return m_folder.filePath(QString::fromLatin1(name)); }

    void write(const char *name, const char *text) const
    {
        QFile file(this->file(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(text);
    }

    /// Types into the search dialog and takes the first result.
    static void typeInDialog(const char *text)
    {
        QTimer::singleShot(0, [text] {
            QWidget *dialog = QApplication::activeModalWidget();
            ASSERT_NE(dialog, nullptr);
            auto *field = dialog->findChild<QLineEdit *>();
            QTest::keyClicks(field, QString::fromLatin1(text));
            QTest::keyClick(field, Qt::Key_Return);
            dialog->close();
        });
    }

    QTemporaryDir m_folder;
    OssSnBaseNode *m_blur = nullptr;
    OssSnBaseNode *m_area = nullptr;
};

} // namespace

TEST_F(FilesTest, selectedNodesGoToAFileAndComeBackInOneStep)
{
    {
        const DialogAnswers answers(file("nodes.ong"));
        m_view->exportNodes(); // nothing is selected but
        select({m_network->viewerNode()});
        m_view->exportNodes(); // the viewer, which stays
        EXPECT_EQ(answers.questions, 0);
    }
    select({m_blur, m_area, m_network->viewerNode()});
    {
        const DialogAnswers cancelled;
        m_view->exportNodes();
        EXPECT_EQ(cancelled.questions, 1);
        EXPECT_EQ(cancelled.boxes, QStringList());
    }
    {
        const DialogAnswers answers(file("nodes.ong"));
        m_view->exportNodes();
        EXPECT_EQ(answers.boxes, QStringList());
        EXPECT_TRUE(QFile::exists(file("nodes.ong")));
    }
    const QByteArray before = m_project->stateHash();
    {
        const DialogAnswers cancelled;
        m_view->importNodes();
        EXPECT_EQ(cancelled.questions, 1);
        EXPECT_EQ(cancelled.boxes, QStringList());
        EXPECT_EQ(undoCount(), 0);
    }
    const DialogAnswers answers(file("nodes.ong"));
    const QPointF place = m_view->mapToScene(m_view->creationPoint());
    m_view->importNodes();
    EXPECT_EQ(answers.boxes, QStringList());
    ASSERT_EQ(m_network->selectedNodes().size(), 2);
    const OssSnBaseNode *blur = m_network->node(QStringLiteral("Soft 2"));
    const OssSnBaseNode *area = m_network->node(QStringLiteral("Area 2"));
    ASSERT_TRUE(blur && area);
    EXPECT_EQ(itemOf(area)->pos(), place);
    EXPECT_EQ(itemOf(blur)->pos(), place + QPointF(2000, 2000)) << "as they stood to each other";
    EXPECT_EQ(undoCount(), 1);
    expectUndoIsExact(before);
}

TEST_F(FilesTest, whatCannotBeWrittenOrReadIsSaidWithItsReason)
{
    const ExpectedLog possible("", ExpectedLog::Possible);
    write("plain.ong", "no nodes");
    const QByteArray before = m_project->stateHash();

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
        EXPECT_TRUE(answers.boxes.first().contains(QString::fromLatin1(c.said)));
        EXPECT_EQ(m_project->stateHash(), before);
        EXPECT_EQ(undoCount(), 0);
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
    const ExpectedLog found("Found 3 nodes in the network");
    OssApplication::setPopupsAllowed(true);
    select({m_network->viewerNode()});
    for (OssSnBaseNode *wanted : {m_area, m_blur}) {
        typeInDialog(wanted == m_area ? "area" : "soft");
        m_view->searchNodesAction();
        EXPECT_EQ(m_network->selectedNodes(), QList<OssSnBaseNode *>{wanted});
        EXPECT_TRUE(itemOf(wanted)->isSelected());
        EXPECT_TRUE(
            m_view->viewportInSceneCoords().intersects(itemOf(wanted)->sceneBoundingRect()));
    }
    select({m_area});
    typeInDialog("no such node");
    m_view->searchNodesAction();
    EXPECT_EQ(m_network->selectedNodes(), QList<OssSnBaseNode *>{m_area});
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(FilesTest, nothingIsMadeWhereNothingWasChosen)
{
    OssApplication::setPopupsAllowed(true);
    const QByteArray before = m_project->stateHash();
    typeInDialog("no such type");
    m_view->quickCreate();
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(undoCount(), 0);
}
