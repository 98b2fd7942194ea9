#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssScriptObjects/OssaActions.h"
#include "OssScriptObjects/OssaApplication.h"
#include "OssScriptObjects/OssaGeoEntity.h"
#include "OssScriptObjects/OssaNode.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssaProgress.h"
#include "OssScriptObjects/OssaProject.h"
#include "OssScriptObjects/OssaUndo.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptObjects.h"
#include "support/ModelFixture.h"

#include <QAction>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

OssScriptManager *scripts()
{
    return OssScriptManager::instance();
}

class ProjectObjects : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_api = m_application->project();
        ASSERT_NE(m_api, nullptr);
        m_graph = OssScriptObject<Ossa::NodeGraph>(m_network);
        scripts()->clearError();
    }

    void TearDown() override
    {
        EXPECT_FALSE(scripts()->hasError()) << qPrintable(scripts()->lastError().message);
        ModelFixture::TearDown();
    }

    static void expectReported(OssScriptException::Type type, const char *message)
    {
        ExpectedLog::takePast(QString::fromUtf8(message));
        EXPECT_TRUE(scripts()->hasError()) << message;
        EXPECT_EQ(scripts()->lastError().type, type);
        EXPECT_TRUE(scripts()->lastError().message.contains(QString::fromUtf8(message)))
            << qPrintable(scripts()->lastError().message);
        scripts()->clearError();
    }

    Ossa::Node *script(OssSnBaseNode *node) const { return OssScriptObject<Ossa::Node>(node); }

    Ossa::Application *const m_application = OssScriptObject<Ossa::Application>(qApp);
    Ossa::Project *m_api = nullptr;
    Ossa::NodeGraph *m_graph = nullptr;
};

} // namespace

TEST_F(ProjectObjects, objectsAreMadeUnderNamesOfTheirOwnAndFoundByThem)
{
    EXPECT_FALSE(m_api->isReadOnly());
    const QString first = m_api->objects().first()->name();
    Ossa::GeoEntity *second = m_api->createObject(QStringLiteral("Second"), QStringLiteral("cube"));
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->geometry(), QStringLiteral("cube"));
    EXPECT_EQ(m_api->object(QStringLiteral("Second")), second);
    EXPECT_EQ(m_api->object(first), m_api->objects().first());
    EXPECT_EQ(m_api->object(QStringLiteral("Third")), nullptr);
    EXPECT_EQ(m_api->graphs().size(), 2);
    EXPECT_TRUE(m_api->graphs().contains(m_graph));
    EXPECT_EQ(second->graphs(), QList<Ossa::NodeGraph *>{m_api->graphs().last()});
    EXPECT_TRUE(second->geoChannels().isEmpty());

    for (const char *name : {"Second", " ", ""}) {
        EXPECT_EQ(m_api->createObject(QString::fromUtf8(name), QStringLiteral("cube")), nullptr);
        expectReported(OssScriptException::NotAllowed, "An object cannot be named");
    }
    EXPECT_EQ(m_api->objects().size(), 2);
}

TEST_F(ProjectObjects, anObjectIsRenamedInOneStepAndNeverToNothing)
{
    Ossa::GeoEntity *object = m_api->objects().first();
    const QString old = object->name();
    const int steps = undoCount();
    object->setName(old);
    EXPECT_EQ(undoCount(), steps) << "what has not changed is no step";
    object->setName(QStringLiteral("  "));
    expectReported(OssScriptException::NotAllowed, "must have a name");
    EXPECT_EQ(object->name(), old);
    object->setName(QStringLiteral("Other"));
    EXPECT_EQ(undoCount(), steps + 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(object->name(), old);
    OssUndoManager::instance()->redo();
    EXPECT_EQ(object->name(), QStringLiteral("Other"));
}

TEST_F(ProjectObjects, projectsAreSavedOpenedAndClosedOutsideMacrosOnly)
{
    const QTemporaryDir folder;
    m_api->save();
    expectReported(OssScriptException::FileNotAccessible, "");
    QFile file(folder.filePath(QStringLiteral("file")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    m_api->saveAs(folder.filePath(QStringLiteral("file/Kept.ossa")));
    expectReported(OssScriptException::FileNotAccessible, "Kept.ossa");
    const QString path = folder.filePath(QStringLiteral("Kept.ossa"));
    m_api->saveAs(path);
    EXPECT_TRUE(QFileInfo::exists(path + QStringLiteral("/project.xml")));
    EXPECT_FALSE(m_api->isModified());
    add("Misc/Dot");
    EXPECT_TRUE(m_api->isModified());
    m_api->save();
    EXPECT_FALSE(m_api->isModified());

    EXPECT_EQ(m_application->openProject(folder.filePath(QStringLiteral("None.ossa"))), nullptr);
    expectReported(OssScriptException::FileInvalid, "None.ossa");
    EXPECT_EQ(m_application->project(), m_api) << "the open one stays";

    m_application->undo()->begin(QStringLiteral("Mine"));
    m_api->close();
    expectReported(OssScriptException::WrongState, "closed inside an undo macro");
    EXPECT_EQ(m_application->newProject(QStringLiteral("N"), QStringLiteral("plane")), nullptr);
    expectReported(OssScriptException::WrongState, "started inside an undo macro");
    EXPECT_EQ(m_application->openProject(path), nullptr);
    expectReported(OssScriptException::WrongState, "opened inside an undo macro");
    EXPECT_EQ(m_application->project(), m_api);
    m_application->undo()->end();
    m_application->undo()->end();
    expectReported(OssScriptException::WrongState, "No undo macro is open");

    m_api->close();
    EXPECT_EQ(OssProjectManager::instance()->currentProject(), nullptr);
    EXPECT_EQ(m_application->openProject(path)->objects().size(), 1);
    const Ossa::Project *fresh = m_application->newProject(QStringLiteral("N"),
                                                           QStringLiteral("sphere"));
    ASSERT_NE(fresh, nullptr);
    EXPECT_EQ(fresh->objects().first()->geometry(), QStringLiteral("sphere"));
}

TEST_F(ProjectObjects, undoingSaysWhenItCannot)
{
    Ossa::Undo *undo = m_application->undo();
    OssUndoManager::instance()->clear();
    undo->undo();
    expectReported(OssScriptException::WrongState, "nothing to undo");
    add("Misc/Dot", "Here");
    EXPECT_EQ(undo->texts().size(), undo->count());
    undo->redo();
    expectReported(OssScriptException::WrongState, "nothing to redo");
    undo->begin(QStringLiteral("Mine"));
    undo->undo();
    expectReported(OssScriptException::WrongState, "inside an undo macro");
    EXPECT_NE(m_graph->node(QStringLiteral("Here")), nullptr);
    undo->end();
    undo->undo();
    EXPECT_EQ(m_graph->node(QStringLiteral("Here")), nullptr);
    undo->begin(QStringLiteral("Mine"));
    undo->redo();
    expectReported(OssScriptException::WrongState, "inside an undo macro");
    undo->end();
    undo->redo();
    EXPECT_NE(m_graph->node(QStringLiteral("Here")), nullptr);
}

TEST_F(ProjectObjects, graphsAreShownAndLaidOutAsAskedFor)
{
    auto *group = qobject_cast<OssSnGroupNode *>(add("Misc/Group"));
    auto *inside = OssScriptObject<Ossa::NodeGraph>(group->groupNetwork());
    EXPECT_TRUE(m_graph->isRoot());
    EXPECT_FALSE(inside->isRoot());
    EXPECT_EQ(inside->parentNode(), script(group));
    EXPECT_EQ(script(group)->inside(), inside);

    const QSignalSpy opened(group, &OssSnGroupNode::openNodeGraph);
    script(group)->showInside();
    EXPECT_EQ(opened.count(), 1);
    OssSnBaseNode *dot = add("Misc/Dot");
    script(dot)->showInside();
    expectReported(OssScriptException::NotSupported, "is no group");
    inside->show();
    EXPECT_EQ(opened.count(), 2);
    m_api->createObject(QStringLiteral("Second"), QStringLiteral("plane"));
    Ossa::NodeGraph *other = m_api->graphs().last();
    other->show();
    EXPECT_EQ(m_application->graph(), other);
    EXPECT_EQ(opened.count(), 2);

    auto *networks = OssShaderNetworkManager::instance();
    using Nodes = QList<OssSnBaseNode *>;
    const QSignalSpy whole(
        networks, QOverload<OssShaderNetwork *>::of(&OssShaderNetworkManager::beautifyNodesLayout));
    const QSignalSpy some(networks, QOverload<OssShaderNetwork *, Nodes>::of(
                                        &OssShaderNetworkManager::beautifyNodesLayout));
    m_graph->layout(QList<Ossa::Node *>());
    EXPECT_EQ(whole.count(), 0) << "no nodes are not all nodes";
    m_graph->layout(QList<Ossa::Node *>{script(dot), script(group)});
    EXPECT_EQ(whole.count(), 0);
    m_graph->layout();
    EXPECT_EQ(whole.count(), 1);
    other->layout(QList<Ossa::Node *>{script(dot)});
    expectReported(OssScriptException::NotAllowed, "is not in this graph");
    EXPECT_EQ(some.count(), 1);
}

TEST_F(ProjectObjects, nodesAreRefusedWhatTheyCannotDo)
{
    Ossa::Node *dot = script(add("Misc/Dot"));
    EXPECT_TRUE(dot->upgrade().isEmpty());
    dot->bakeImageSet();
    expectReported(OssScriptException::NotSupported, "is no bake point");
    m_graph->viewer()->remove();
    EXPECT_FALSE(scripts()->hasError());
    EXPECT_EQ(m_graph->viewer(), nullptr);
}

TEST_F(ProjectObjects, commandsAreFoundAndSayHowTheyAre)
{
    Ossa::Actions *actions = m_application->actions();
    QAction command(QStringLiteral("Switch"));
    command.setCheckable(true);
    OssActionTreeManager::instance()->registerAction(QStringLiteral("/Tests/How"), &command);
    const QString path = QStringLiteral("/Tests/How/Switch");
    EXPECT_TRUE(actions->exists(path));
    EXPECT_FALSE(actions->exists(QStringLiteral("/Tests/How/None")));
    EXPECT_TRUE(actions->isEnabled(path));
    EXPECT_FALSE(actions->isChecked(path));
    actions->trigger(path);
    EXPECT_TRUE(actions->isChecked(path));
    command.setEnabled(false);
    EXPECT_FALSE(actions->isEnabled(path));
    for (const bool asked : {actions->isEnabled(QStringLiteral("/Tests/How/None")),
                             actions->isChecked(QStringLiteral("/Tests/How/None"))})
        EXPECT_FALSE(asked);
    expectReported(OssScriptException::UnknownName, "There is no command");
    actions->trigger(QStringLiteral("/Tests/How/None"));
    expectReported(OssScriptException::UnknownName, "There is no command");
}

TEST_F(ProjectObjects, workIsShownUntilItEndsOrTheScriptDoes)
{
    Ossa::Progress *status = m_application->status();
    const QSignalSpy messages(OssStatusManager::instance(), &OssStatusManager::messageShown);
    status->message(QStringLiteral("Half done"));
    ASSERT_EQ(messages.count(), 1);
    EXPECT_EQ(messages.first().first().toString(), QStringLiteral("Half done"));
    EXPECT_FALSE(status->isCancelled()) << "without work";
    status->set(1, 2);
    expectReported(OssScriptException::WrongState, "No work has begun");
    status->begin(QStringLiteral("Working"));
    EXPECT_FALSE(status->isCancelled()) << "nobody has asked for it";
    status->set(1, 2);
    scripts()->endScript();
    status->end();
    expectReported(OssScriptException::WrongState, "No work has begun");
}
