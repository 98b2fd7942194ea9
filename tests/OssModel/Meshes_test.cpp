// Meshes of objects: read by a worker, kept in the project, missed aloud.

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProjectSnapshot.h"
#include "support/ModelFixture.h"
#include "support/Text.h"

#include <QDir>
#include <QElapsedTimer>
#include <QProcess>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

using State = OssMeshes::State;

class ObjectMeshes : public ModelFixture
{
protected:
    QString path(const char *name) const { return m_folder.filePath(QLatin1String(name)); }

    void write(const char *name, const QByteArray &content) const
    {
        QFile file(path(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }

    /// A triangle in each of the patches from 1001 on, each an object "T1", "T2".
    static QByteArray obj(int patches, double size = 0.5)
    {
        QByteArray text;
        for (int i = 0; i < patches; ++i) {
            const int first = 3 * i + 1;
            text += QStringLiteral("o T%1\nv %2 0 0\nv %3 0 0\nv %2 %4 0\nvt %5 0.1\nvt %6 0.1\n"
                                   "vt %5 0.9\nf %7/%7 %8/%8 %9/%9\n")
                        .arg(i + 1)
                        .arg(i)
                        .arg(i + size)
                        .arg(size)
                        .arg(i + 0.1)
                        .arg(i + 0.9)
                        .arg(first)
                        .arg(first + 1)
                        .arg(first + 2)
                        .toUtf8();
        }
        return text;
    }

    static OssGeometrySource sourceOf(const QString &file)
    {
        OssGeometrySource source;
        source.shape = file;
        return source;
    }

    OssGeoEntity *object() const { return m_project->entities().first(); }

    static OssMeshes::Look settled(const OssGeoEntity *object)
    {
        return OssMeshes::instance()->waitFor(object->source());
    }

    /// Has the watch see what is on disk now, and waits for what that begins.
    static OssMeshes::Look lookAgain(const OssGeoEntity *object)
    {
        OssFileWatch::instance()->settle([] { return true; });
        return settled(object);
    }

    OssProject *reopened()
    {
        OssProjectManager *projects = OssProjectManager::instance();
        const QString folder = projects->currentProject()->path();
        const OssResult opened = projects->openProject(folder);
        EXPECT_TRUE(opened) << qPrintable(opened.error());
        m_project = projects->currentProject();
        m_network = m_project->shadingGroups().first()->network();
        return m_project;
    }

    QTemporaryDir m_folder;
};

TEST_F(ObjectMeshes, areReadBesideTheWork)
{
    write("two.obj", obj(2));
    object()->setSource(sourceOf(path("two.obj")));
    QSignalSpy changed(OssMeshes::instance(), &OssMeshes::changed);
    EXPECT_EQ(OssMeshes::instance()->look(object()->source()).state, State::Reading);
    EXPECT_TRUE(OssMeshes::instance()->contentOf(object()->source()).isNull());
    const OssMeshes::Look look = settled(object());
    EXPECT_EQ(look.state, State::Ready);
    EXPECT_EQ(look.mesh->patches().size(), 2U);
    EXPECT_FALSE(changed.isEmpty());
    EXPECT_FALSE(OssMeshes::instance()->isReading());
}

TEST_F(ObjectMeshes, partsOfOneFileAreReadAtOnce)
{
    write("two.obj", obj(2));
    OssGeometrySource source = sourceOf(path("two.obj"));
    source.options.split = OssEvMeshFile::Options::Split::Objects;
    for (const char *part : {"T1", "T2"}) {
        source.part = text(part);
        m_project->createEntity(source.part, source);
    }
    const OssMeshes::Look first = settled(m_project->entity(text("T1")));
    ASSERT_EQ(first.state, State::Ready);
    EXPECT_EQ(first.mesh->patches(), (std::vector<int>{1001}));
    const OssMeshes::Look second = OssMeshes::instance()->look(
        m_project->entity(text("T2"))->source());
    ASSERT_EQ(second.state, State::Ready) << "without waiting once more";
    EXPECT_EQ(second.mesh->patches(), (std::vector<int>{1002}));
    source.part = text("T3");
    EXPECT_EQ(OssMeshes::instance()->waitFor(source).state, State::Missing);
    EXPECT_TRUE(OssMeshes::instance()->look(source).problem.contains(text("T3")));
}

TEST_F(ObjectMeshes, theProjectKeepsTheLastGoodStateAndSaysThatTheFileIsMissing)
{
    write("mesh.obj", obj(2));
    object()->setSource(sourceOf(path("mesh.obj")));
    const OssEvKey key = settled(object()).mesh->key();
    QDir(m_folder.path()).mkdir(text("projects"));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path("projects/House.ossa")));
    const QByteArray hash = m_project->stateHash();
    const QDir kept(path("projects/House.ossa/meshes"));
    ASSERT_EQ(kept.entryList(QDir::Files).size(), 1);

    // Another user: only the project is left.
    QDir(OssPixelStore::newFolder()).removeRecursively();
    const ExpectedLog unreadable("mesh.obj");
    for (const bool isDamaged : {true, false}) {
        SCOPED_TRACE(isDamaged);
        if (isDamaged)
            write("mesh.obj", "garbage");
        else
            QFile::remove(path("mesh.obj"));
        reopened();
        EXPECT_EQ(m_project->stateHash(), hash) << "what is kept is no part of the state";
        const OssMeshes::Look look = settled(object());
        ASSERT_EQ(look.state, State::Kept);
        EXPECT_TRUE(look.mesh->key() == key) << "the very same, so bakes are not out of date";
        EXPECT_TRUE(look.problem.contains(text("mesh.obj"))) << qPrintable(look.problem);
        // Saving it again keeps it.
        ASSERT_TRUE(OssProjectManager::instance()->saveProject());
        EXPECT_EQ(kept.entryList(QDir::Files).size(), 1);
    }
    // It is back, with something else.
    write("mesh.obj", obj(3));
    const OssMeshes::Look back = lookAgain(object());
    EXPECT_EQ(back.state, State::Ready);
    EXPECT_EQ(back.mesh->patches().size(), 3U);
    ASSERT_TRUE(OssProjectManager::instance()->saveProject());

    // What is kept is damaged, too: nothing takes its place.
    QFile::remove(path("mesh.obj"));
    const QStringList files = kept.entryList(QDir::Files);
    for (const QString &name : files) {
        QFile file(kept.filePath(name));
        ASSERT_TRUE(file.resize(100));
    }
    QDir(OssPixelStore::newFolder()).removeRecursively();
    const ExpectedLog damaged("cut off or damaged");
    reopened();
    const OssMeshes::Look none = settled(object());
    EXPECT_EQ(none.state, State::Missing);
    EXPECT_EQ(none.mesh, nullptr);
    EXPECT_TRUE(OssEvaluationService::instance()->patches(object()).isEmpty());
}

TEST_F(ObjectMeshes, whatNobodyLookedAtYetIsKeptBySavingAllTheSame)
{
    write("mesh.obj", obj(1));
    object()->setSource(sourceOf(path("mesh.obj")));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path("House.ossa")));
    EXPECT_EQ(QDir(path("House.ossa/meshes")).entryList(QDir::Files).size(), 1);
}

TEST_F(ObjectMeshes, aCopyOfUnsavedWorkHasTheKeptMeshToo)
{
    write("mesh.obj", obj(2));
    object()->setSource(sourceOf(path("mesh.obj")));
    const QByteArray before = m_project->stateHash();
    const OssEvKey key = settled(object()).mesh->key();
    const QString kept = OssMeshes::instance()->keptFile(object()->source(), true);
    ASSERT_TRUE(OssPixelStore::isMeshName(kept));
    EXPECT_EQ(m_project->stateHash(), before) << "that it was written is no change";
    OssProjectSnapshot snapshot(m_project, {});
    ASSERT_TRUE(snapshot.advance(-1));
    const QByteArray text8 = OssProjectSnapshot::joined(snapshot.takeParts());
    ASSERT_TRUE(OssPixelStore::namesIn(QString::fromUtf8(text8)).contains(kept))
        << "or the cleanup would take it away";
    QDir(m_folder.path()).mkdir(text("copy"));
    write("copy/project.xml", text8);
    QFile::remove(path("mesh.obj"));
    const ExpectedLog unreadable("mesh.obj");
    const OssResult restored = OssProjectManager::instance()->restoreProject(path("copy"), {},
                                                                             false);
    ASSERT_TRUE(restored) << qPrintable(restored.error());
    m_project = OssProjectManager::instance()->currentProject();
    const OssMeshes::Look look = settled(object());
    ASSERT_EQ(look.state, State::Kept);
    EXPECT_TRUE(look.mesh->key() == key);
}

TEST_F(ObjectMeshes, aFileThatChangesIsReadAgainAndWhatIsOtherIsTold)
{
    write("mesh.obj", obj(2));
    object()->setSource(sourceOf(path("mesh.obj")));
    ASSERT_EQ(settled(object()).state, State::Ready);
    QSignalSpy reread(OssMeshes::instance(), &OssMeshes::reread);
    write("mesh.obj", obj(2, 0.75));
    lookAgain(object());
    ASSERT_EQ(reread.size(), 1);
    EXPECT_TRUE(reread[0][1].toString().contains(text("texture coordinates are the same")))
        << qPrintable(reread[0][1].toString());
    write("mesh.obj", obj(1));
    EXPECT_EQ(lookAgain(object()).mesh->patches().size(), 1U);
    ASSERT_EQ(reread.size(), 2);
    EXPECT_TRUE(reread[1][1].toString().contains(text("gone: 1002")))
        << qPrintable(reread[1][1].toString());
    // Damaged, it stays what it was and is told.
    const ExpectedLog unreadable("mesh.obj");
    write("mesh.obj", "garbage");
    const OssMeshes::Look look = lookAgain(object());
    EXPECT_EQ(look.state, State::Kept);
    EXPECT_EQ(look.mesh->patches().size(), 1U);
    EXPECT_EQ(reread.size(), 2);
}

TEST_F(ObjectMeshes, readingThatIsStoppedOrWhoseProjectClosesLeavesNothingBehind)
{
    QByteArray large;
    for (int i = 0; i < 20; ++i)
        large += obj(9);
    // Files are read one after the other: the one behind cannot be done before it is stopped.
    for (const char *name : {"first.obj", "second.obj", "large.obj"}) {
        write(name, large);
        OssMeshes::instance()->look(sourceOf(path(name)));
    }
    OssMeshes::instance()->stopReading();
    object()->setSource(sourceOf(path("large.obj")));
    const OssMeshes::Look stopped = settled(object());
    EXPECT_EQ(stopped.state, State::Missing);
    EXPECT_TRUE(stopped.problem.contains(text("stopped"))) << qPrintable(stopped.problem);
    OssMeshes::instance()->reload(object()->source());
    EXPECT_EQ(settled(object()).state, State::Ready);

    // Closed by what waits behind the reading, as a script's end does.
    write("other.obj", large + "\n");
    object()->setSource(sourceOf(path("other.obj")));
    QMetaObject::invokeMethod(
        qApp, [] { OssProjectManager::instance()->closeProject(); }, Qt::QueuedConnection);
    const OssGeometrySource source = object()->source();
    EXPECT_EQ(OssMeshes::instance()->waitFor(source).mesh, nullptr);
    EXPECT_FALSE(OssMeshes::instance()->isReading());
}

TEST_F(ObjectMeshes, objectsComeAndGoWithAllTheyHaveAndEachIsOneStep)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    const QByteArray before = m_project->stateHash();
    const int steps = undoCount();
    OssGeometrySource cube;
    cube.shape = text("cube");
    OssGeoEntity *made = m_project->createEntity(text("Box"), cube);
    EXPECT_EQ(undoCount(), steps + 1);
    OssShaderNetwork *network = made->shadingGroups().first()->network();
    EXPECT_NE(network->viewerNode(), nullptr);
    networks->setCurrentShaderNetwork(network);
    OssSnBaseNode *node = network->createNode(text("Misc/Dot"), text("Inside"));
    ASSERT_NE(node, nullptr);
    made->changeSource(OssGeometrySource(), text("Replace Mesh"));
    const QByteArray full = m_project->stateHash();
    ASSERT_TRUE(m_project->removeEntity(made));
    EXPECT_EQ(m_project->entities().size(), 1);
    EXPECT_EQ(networks->currentShaderNetwork(), m_network);
    OssUndoManager *undo = OssUndoManager::instance();
    undo->undo();
    EXPECT_EQ(m_project->stateHash(), full);
    EXPECT_EQ(m_project->entity(text("Box")), made);
    networks->setCurrentShaderNetwork(network);
    for (int i = 0; i < 3; ++i)
        undo->undo();
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(networks->currentShaderNetwork(), m_network) << "what is gone is not shown";
    for (int i = 0; i < 3; ++i)
        undo->redo();
    EXPECT_EQ(m_project->stateHash(), full);
    undo->redo();
    EXPECT_EQ(m_project->entities().size(), 1);
    EXPECT_FALSE(m_project->removeEntity(object())) << "the last";
}

TEST_F(ObjectMeshes, aProjectsFolderMayBeCopiedAndRenamedWithWhatLiesInIt)
{
    auto *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(path("House.ossa")));
    write("House.ossa/mesh.obj", obj(1));
    write("House.ossa/wood.png", "a picture");
    object()->setSource(sourceOf(text("House.ossa/mesh.obj")));
    OssSnBaseNode *node = add("Misc/Image");
    node->setAttribute(text("File"), text("House.ossa/wood.png"));
    ASSERT_EQ(settled(object()).state, State::Ready);
    ASSERT_TRUE(projects->saveProject());
    const QString nodePath = node->path();
    const auto expectOwn = [&](const char *folder) {
        ASSERT_TRUE(projects->openProject(path(folder)));
        m_project = projects->currentProject();
        m_network = OssShaderNetworkManager::instance()->currentShaderNetwork();
        const QString own = path(folder) + QLatin1Char('/');
        EXPECT_EQ(object()->source().path(), own + text("mesh.obj"));
        EXPECT_EQ(settled(object()).state, State::Ready);
        const OssSnBaseNode *image = m_network->nodeByPath(nodePath);
        ASSERT_TRUE(image);
        EXPECT_EQ(OssFilePath::valueOf(image->userAttribute(text("File"))).toString(),
                  own + text("wood.png"));
        EXPECT_FALSE(projects->isModified());
    };
    QDir folder(m_folder.path());
    ASSERT_EQ(QProcess::execute(text("cp"), {text("-r"), path("House.ossa"), path("Copy.ossa")}),
              0);
    expectOwn("Copy.ossa");
    ASSERT_TRUE(projects->saveProject());
    ASSERT_TRUE(folder.mkdir(text("far")));
    projects->closeProject(); // one that is open says that its files have gone
    ASSERT_TRUE(folder.rename(text("Copy.ossa"), text("far/Third.ossa")));
    expectOwn("far/Third.ossa");
    // What lies in another project beside it is meant as it is said.
    ASSERT_TRUE(folder.mkdir(text("far/Other.ossa")));
    write("far/Other.ossa/mesh.obj", obj(2));
    object()->setSource(sourceOf(text("Other.ossa/mesh.obj")));
    ASSERT_TRUE(projects->saveProject());
    ASSERT_TRUE(projects->openProject(path("far/Third.ossa")));
    m_project = projects->currentProject();
    EXPECT_EQ(object()->source().path(), path("far/Other.ossa/mesh.obj"));
}

TEST_F(ObjectMeshes, bakesOfAnotherMeshAreToldToBeOutOfDateOnceTheirsIsReadAfterOpening)
{
    write("one.obj", obj(1));
    object()->setSource(sourceOf(path("one.obj")));
    settled(object());
    auto *baked = qobject_cast<OssSnBakePointNode *>(add("Misc/Bake Point"));
    ASSERT_TRUE(baked);
    baked->setInputNode(text("Input"), add("Procedural/Color"), text("Output"));
    baked->setBakedKey(text("of another mesh"), {1001});
    const QString nodePath = baked->path();
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path("Baked.ossa")));
    reopened();
    baked = qobject_cast<OssSnBakePointNode *>(m_network->nodeByPath(nodePath));
    ASSERT_TRUE(baked);
    const QSignalSpy told(baked, &OssSnBakePointNode::bakedStateChanged);
    EXPECT_TRUE(baked->isBakedResultUpToDate()) << "as long as nobody knows better";
    settled(object());
    EXPECT_FALSE(baked->isBakedResultUpToDate());
    EXPECT_TRUE(QTest::qWaitFor([&] { return !told.isEmpty(); }));
}

TEST_F(ObjectMeshes, pathsBelowTheProjectsFolderAreRelativeAndMoveAlong)
{
    QDir(m_folder.path()).mkpath(text("show/meshes"));
    write("show/meshes/mesh.obj", obj(1));
    write("far.obj", obj(2));
    object()->setSource(sourceOf(path("show/meshes/mesh.obj")));
    OssGeoEntity *far = m_project->createEntity(text("Far"), sourceOf(path("far.obj")));
    ASSERT_EQ(settled(object()).state, State::Ready);
    ASSERT_EQ(settled(far).state, State::Ready);
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path("show/House.ossa")));
    EXPECT_EQ(object()->geometry(), text("meshes/mesh.obj"));
    EXPECT_EQ(far->geometry(), path("far.obj"));
    EXPECT_EQ(OssMeshes::instance()->look(object()->source()).state, State::Ready);
    ASSERT_TRUE(QDir(m_folder.path()).rename(text("show"), text("moved")));
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->openProject(path("moved/House.ossa")));
    m_project = projects->currentProject();
    EXPECT_EQ(settled(object()).state, State::Ready);
    // Saved elsewhere it leads where it led.
    ASSERT_TRUE(QDir(m_folder.path()).mkdir(text("else")));
    ASSERT_TRUE(projects->saveProjectAs(path("else/House.ossa")));
    EXPECT_EQ(object()->geometry(), path("moved/meshes/mesh.obj"));
    EXPECT_EQ(lookAgain(object()).state, State::Ready);
}

} // namespace
