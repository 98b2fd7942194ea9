#include "OssModel/Project/OssProjectFile.h"
#include "support/ModelFixture.h"

#include <sys/resource.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

#include <csignal>

namespace {

class ProjectTest : public ModelFixture
{
protected:
    QString projectPath(const char *name = "P") const
    {
        return m_folder.filePath(QString::fromLatin1(name) + QStringLiteral(".ossa"));
    }

    QString documentPath() const { return projectPath() + QStringLiteral("/project.xml"); }

    QByteArray document() const
    {
        QFile file(documentPath());
        file.open(QIODevice::ReadOnly);
        return file.readAll();
    }

    void overwrite(const QByteArray &content) const
    {
        QFile file(documentPath());
        file.open(QIODevice::WriteOnly);
        file.write(content);
    }

    /// A small graph with a group, saved.
    void saveGraph()
    {
        OssSnBaseNode *color = add("Procedural/Color", "Färbung <1>");
        auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
        OssSnBaseNode *in = group->createInput(QStringLiteral("In"), OssSnDataKind::Color);
        OssSnBaseNode *out = group->createOutput(QStringLiteral("Out"), OssSnDataKind::Color);
        OssSnBaseNode *blur = group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
        wire(in, blur);
        wire(blur, out);
        OssSnBaseNode *merge = add("Layer/Merge");
        wire(color, group, "In");
        wire(group, merge, "Base");
        wire(color, merge, "Over");
        merge->setAttribute(QStringLiteral("Amount"), 0.1 + 0.2);
        ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(projectPath()));
    }

    /// What cannot be opened leaves the open project as it was, and says file and reason.
    void expectRefused(const char *reason)
    {
        OssProjectManager *projects = OssProjectManager::instance();
        OssProject *open = projects->currentProject();
        const QByteArray hash = open->stateHash();
        const OssResult result = projects->openProject(projectPath());
        ASSERT_FALSE(result) << reason;
        EXPECT_TRUE(result.error().contains(QStringLiteral("project.xml")));
        EXPECT_TRUE(result.error().contains(QLatin1String(reason))) << qPrintable(result.error());
        EXPECT_EQ(projects->currentProject(), open);
        EXPECT_EQ(open->stateHash(), hash);
    }

    QTemporaryDir m_folder;
};

TEST_F(ProjectTest, whatIsSavedOpensAsTheSameDocument)
{
    saveGraph();
    const QByteArray hash = m_project->stateHash();
    const QByteArray text = document();
    ASSERT_TRUE(OssProjectManager::instance()->openProject(projectPath()));
    OssProject *opened = OssProjectManager::instance()->currentProject();
    EXPECT_EQ(opened->stateHash(), hash);
    EXPECT_FALSE(OssProjectManager::instance()->isModified());
    EXPECT_EQ(undoCount(), 0);
    // Saving again writes the same bytes.
    ASSERT_TRUE(OssProjectManager::instance()->saveProject());
    EXPECT_EQ(document(), text);
}

TEST_F(ProjectTest, modifiedFollowsUndo)
{
    saveGraph();
    OssProjectManager *projects = OssProjectManager::instance();
    EXPECT_FALSE(projects->isModified());
    add("Filter/Blur");
    EXPECT_TRUE(projects->isModified());
    OssUndoManager::instance()->undo();
    EXPECT_FALSE(projects->isModified());
}

TEST_F(ProjectTest, damagedProjectsAreRefusedWithTheReason)
{
    const ExpectedLog expected("description of 'Misc/Group' cannot be used");
    saveGraph();
    const QByteArray good = document();
    overwrite(good.left(good.indexOf("PathKey=\"Misc/Group\"") + 40));
    expectRefused("line");
    overwrite("");
    expectRefused("Cannot read");
    overwrite("<?xml version=\"1.0\"?><html/>");
    expectRefused("not an ossaProject document");
    overwrite("<ossaProject major=\"1\"/>");
    expectRefused("no project in it");
    overwrite("<ossaProject><object name=\"a\"/></ossaProject>");
    expectRefused("which version");
    overwrite("<!DOCTYPE ossaProject [<!ENTITY x \"y\">]>" + good.mid(good.indexOf("<ossa")));
    expectRefused("DOCTYPE");
    QByteArray deep = "<ossaProject major=\"1\">";
    for (int i = 0; i < 100000; ++i)
        deep += "<object name=\"n\" type=\"OssProject\">";
    overwrite(deep);
    expectRefused("nested deeper");
    QByteArray twice = good;
    twice.replace("name=\"Merge\" type", "name=\"Group\" type");
    overwrite(twice);
    expectRefused("there twice");
    QFile::remove(documentPath());
    expectRefused("no such file");
}

TEST_F(ProjectTest, loopsAndWiresToNowhereAreLeftOutAndTold)
{
    OssSnBaseNode *a = add("Filter/Blur", "A");
    OssSnBaseNode *b = add("Filter/Blur", "B");
    wire(a, b);
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(projectPath()));
    QByteArray text = document();
    text.replace("name=\"A\" type=\"OssSnBaseNode\" key=\"Filter/Blur\"/>",
                 "name=\"A\" type=\"OssSnBaseNode\" key=\"Filter/Blur\">"
                 "<input name=\"Input\" node=\"B\" point=\"Output\"/>"
                 "<input name=\"Radius\" node=\"Nobody\" point=\"Output\"/></object>");
    ASSERT_TRUE(text.contains("Nobody"));
    overwrite(text);
    OssDebugLog::instance()->clear();
    ASSERT_TRUE(OssProjectManager::instance()->openProject(projectPath()));
    EXPECT_TRUE(logHas(QStringLiteral("close a loop")));
    EXPECT_TRUE(logHas(QStringLiteral("Nobody")));
    m_network = OssProjectManager::instance()->currentProject()->shadingGroups().first()->network();
    int wires = 0;
    const QList<OssSnBaseNode *> nodes = m_network->nodes();
    for (const OssSnBaseNode *node : nodes)
        wires += node->outgoingConnections().size();
    EXPECT_EQ(wires, 1);
}

TEST_F(ProjectTest, unknownTypesSurviveOpeningAndSaving)
{
    const ExpectedLog expected[] = {ExpectedLog("description of 'Layer/Merge' cannot be used"),
                                    ExpectedLog("has the unknown type 'Future/Color'")};
    saveGraph();
    QByteArray text = document();
    text.replace("key=\"Procedural/Color\"", "key=\"Future/Color\"");
    text.replace("key=\"Layer/Merge\">", "key=\"Layer/Merge\"><future keep=\"me\"/>");
    overwrite(text);
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->openProject(projectPath()));
    m_network = projects->currentProject()->shadingGroups().first()->network();
    OssSnBaseNode *placeholder = m_network->node(QString::fromUtf8("Färbung <1>"));
    ASSERT_NE(placeholder, nullptr);
    EXPECT_TRUE(placeholder->isPlaceholder());
    EXPECT_FALSE(placeholder->errorText().isEmpty());
    EXPECT_EQ(placeholder->outgoingConnections().size(), 2);
    ASSERT_TRUE(projects->saveProject());
    EXPECT_TRUE(document().contains("key=\"Future/Color\""));
    EXPECT_TRUE(document().contains("<future keep=\"me\"/>"));
    const QByteArray once = document();
    ASSERT_TRUE(projects->openProject(projectPath()));
    ASSERT_TRUE(projects->saveProject());
    EXPECT_EQ(document(), once);
}

TEST_F(ProjectTest, wiresOfUnknownTypesSurviveToo)
{
    const ExpectedLog expected("has the unknown type 'Future/Merge'");
    saveGraph();
    QByteArray text = document();
    text.replace("\"Layer/Merge\"", "\"Future/Merge\"");
    overwrite(text);
    OssProjectManager *projects = OssProjectManager::instance();
    for (int round = 0; round < 2; ++round) {
        ASSERT_TRUE(projects->openProject(projectPath()));
        m_network = projects->currentProject()->shadingGroups().first()->network();
        const OssSnBaseNode *merge = m_network->node(QStringLiteral("Merge"));
        ASSERT_NE(merge, nullptr);
        ASSERT_TRUE(merge->isPlaceholder());
        for (const char *input : {"Base", "Over"})
            EXPECT_NE(merge->inputNode(QString::fromLatin1(input)), nullptr) << input << round;
        ASSERT_TRUE(projects->saveProject());
    }
}

TEST_F(ProjectTest, whatAPluginSavedSurvivesWithoutIt)
{
    const ExpectedLog expected("description of 'Layer/Merge' cannot be used");
    saveGraph();
    QByteArray text = document();
    text.replace("key=\"Layer/Merge\">",
                 "key=\"Layer/Merge\"><object name=\"NodeGraphView\" type=\"X\">"
                 "<properties shapeType=\"3\"/><object name=\"m_GuiNode\" type=\"Y\">"
                 "<properties position=\"1.5,2\"/></object></object>");
    overwrite(text);
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->openProject(projectPath()));
    ASSERT_TRUE(projects->saveProject());
    EXPECT_TRUE(document().contains("<properties shapeType=\"3\"/>"));
    EXPECT_TRUE(document().contains("<properties position=\"1.5,2\"/>"));
}

TEST_F(ProjectTest, onlyTheFirstObjectOfADocumentIsTheProject)
{
    saveGraph();
    const QByteArray hash = m_project->stateHash();
    QByteArray text = document();
    text.replace("<object name=\"P\"", "<future><object name=\"F\"/></future><object name=\"P\"");
    text.replace("</ossaProject>", "<object name=\"Q\" type=\"OssProject\"/></ossaProject>");
    overwrite(text);
    ASSERT_TRUE(OssProjectManager::instance()->openProject(projectPath()));
    EXPECT_EQ(OssProjectManager::instance()->currentProject()->stateHash(), hash);
}

TEST_F(ProjectTest, anImageWithoutAnIdIsRefused)
{
    saveGraph();
    QByteArray text = document();
    text.replace("<collection name=\"m_entities\"",
                 "<collection name=\"m_images\" type=\"QList\" elementType=\"OssImage\" "
                 "count=\"1\"><object name=\"mine\" type=\"OssImage\"/></collection>"
                 "<collection name=\"m_entities\"");
    overwrite(text);
    expectRefused("no id of an image");
}

TEST_F(ProjectTest, newerProjectsAreForLookingOnly)
{
    saveGraph();
    QByteArray text = document();
    text.replace("major=\"1\"", "major=\"9\"");
    overwrite(text);
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->openProject(projectPath()));
    EXPECT_TRUE(projects->currentProject()->isReadOnly());
    const OssResult refused = projects->saveProject();
    ASSERT_FALSE(refused);
    EXPECT_TRUE(refused.error().contains(QStringLiteral("newer version")));
    EXPECT_EQ(document(), text);
    EXPECT_TRUE(projects->saveProjectAs(projectPath("Copy")));
    EXPECT_FALSE(projects->currentProject()->isReadOnly());
}

TEST_F(ProjectTest, aFullDiskLeavesTheOldFileAndSaysSo)
{
    saveGraph();
    const QByteArray before = document();
    for (int i = 0; i < 50; ++i)
        add("Filter/Blur");
    void (*handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
    rlimit unlimited = {};
    getrlimit(RLIMIT_FSIZE, &unlimited);
    const rlimit limit{2000, unlimited.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
    const OssResult result = OssProjectManager::instance()->saveProject();
    setrlimit(RLIMIT_FSIZE, &unlimited);
    std::signal(SIGXFSZ, handler);
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().contains(QStringLiteral("project.xml")));
    EXPECT_EQ(document(), before);
    EXPECT_TRUE(OssProjectManager::instance()->isModified());
    EXPECT_TRUE(OssProjectManager::instance()->saveProject());
    EXPECT_FALSE(OssProjectManager::instance()->isModified());
}

TEST_F(ProjectTest, theLastThreeGenerationsAreKept)
{
    saveGraph();
    const QByteArray first = document();
    for (int i = 0; i < 3; ++i) {
        add("Filter/Blur");
        ASSERT_TRUE(OssProjectManager::instance()->saveProject());
    }
    QFile oldest(projectPath() + QStringLiteral("/history/project.3.xml"));
    ASSERT_TRUE(oldest.open(QIODevice::ReadOnly));
    EXPECT_EQ(oldest.readAll(), first);
    EXPECT_EQ(QDir(projectPath() + QStringLiteral("/history")).entryList(QDir::Files).size(), 3);
}

TEST_F(ProjectTest, aFolderWithoutRightsIsToldByName)
{
    const OssResult result = OssProjectManager::instance()->saveProjectAs(
        QStringLiteral("/proc/nowhere/P.ossa"));
    ASSERT_FALSE(result);
    EXPECT_TRUE(result.error().contains(QStringLiteral("/proc/nowhere/P.ossa")));
    EXPECT_TRUE(m_project->path().isEmpty());
    EXPECT_EQ(m_project->name(), QStringLiteral("Test"));
}

} // namespace
