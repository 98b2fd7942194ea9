#include "OssCore/Program/OssPreferenceManager.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssScriptObjects/OssaActions.h"
#include "OssScriptObjects/OssaGeoEntity.h"
#include "OssScriptObjects/OssaImage.h"
#include "OssScriptObjects/OssaImageSet.h"
#include "OssScriptObjects/OssaPreferences.h"
#include "OssScriptObjects/OssaProgress.h"
#include "OssScriptObjects/OssaProject.h"
#include "OssScriptObjects/OssaUndo.h"
#include "ScriptFixture.h"
#include "support/InterfacePreferences.h"
#include "support/OssaFiles.h"

#include <QAction>
#include <QFileInfo>
#include <QImage>
#include <QSignalSpy>

using ProjectObjects = ScriptFixture;

TEST_F(ProjectObjects, objectsAreMadeUnderNamesOfTheirOwnAndFoundByThem)
{
    EXPECT_FALSE(m_api->isReadOnly());
    const QString first = m_api->objects().first()->name();
    Ossa::GeoEntity *second = m_api->createObject(text("Second"), text("cube"));
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->geometry(), text("cube"));
    EXPECT_EQ(m_api->object(text("Second")), second);
    EXPECT_EQ(m_api->object(first), m_api->objects().first());
    EXPECT_EQ(m_api->object(text("Third")), nullptr);
    EXPECT_EQ(m_api->graphs().size(), 2);
    EXPECT_TRUE(m_api->graphs().contains(m_graph));
    EXPECT_EQ(second->graphs(), QList<Ossa::NodeGraph *>{m_api->graphs().last()});
    EXPECT_TRUE(second->geoChannels().isEmpty());
    second->addGeoChannel(text("Dirt"));
    EXPECT_EQ(second->geoChannels(), texts({"Dirt"}));
    for (const char *name : {"Dirt", " "}) {
        second->addGeoChannel(text(name));
        expectReported(Type::NotAllowed, "is no name for a geo-channel");
    }

    for (const char *name : {"Second", " ", ""}) {
        EXPECT_EQ(m_api->createObject(text(name), text("cube")), nullptr);
        expectReported(Type::NotAllowed, "An object cannot be named");
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
    expectRefused({{[=] { object->setName(text("  ")); }, Type::NotAllowed, "must have a name"}});
    object->setName(text("Other"));
    EXPECT_EQ(undoCount(), steps + 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(object->name(), old);
    OssUndoManager::instance()->redo();
    EXPECT_EQ(object->name(), text("Other"));
}

TEST_F(ProjectObjects, projectsAreSavedOpenedAndClosedOutsideMacrosOnly)
{
    const QString path = file("Kept.ossa");
    writeFile(file("file"));
    m_api->save();
    expectReported(Type::FileNotAccessible, "");
    m_api->saveAs(file("file/Kept.ossa"));
    expectReported(Type::FileNotAccessible, "Kept.ossa");
    m_api->saveAs(path);
    EXPECT_TRUE(QFileInfo::exists(path + text("/project.xml")));
    EXPECT_FALSE(m_api->isModified());
    add("Misc/Dot");
    EXPECT_TRUE(m_api->isModified());
    m_api->save();
    EXPECT_FALSE(m_api->isModified());

    EXPECT_EQ(m_application->openProject(file("None.ossa")), nullptr);
    expectReported(Type::FileInvalid, "None.ossa");
    EXPECT_EQ(m_application->project(), m_api) << "the open one stays";

    m_application->undo()->begin(text("Mine"));
    m_api->close();
    expectReported(Type::WrongState, "closed inside an undo macro");
    EXPECT_EQ(m_application->newProject(text("N"), text("plane")), nullptr);
    expectReported(Type::WrongState, "started inside an undo macro");
    EXPECT_EQ(m_application->openProject(path), nullptr);
    expectReported(Type::WrongState, "opened inside an undo macro");
    EXPECT_EQ(m_application->project(), m_api);
    m_application->undo()->end();
    m_application->undo()->end();
    expectReported(Type::WrongState, "No undo macro is open");

    m_api->close();
    EXPECT_EQ(OssProjectManager::instance()->currentProject(), nullptr);
    EXPECT_EQ(m_application->openProject(path)->objects().size(), 1);
    const Ossa::Project *fresh = m_application->newProject(text("N"), text("sphere"));
    ASSERT_NE(fresh, nullptr);
    EXPECT_EQ(fresh->objects().first()->geometry(), text("sphere"));
}

TEST_F(ProjectObjects, texturesAreExportedAsPresetsAndOptionsSay)
{
    EXPECT_TRUE(m_api->exportPresets().contains(text("One File per Channel")));
    add("Shaders/Standard Surface")->setName(text("Skin"));
    const QVariantMap options{{text("resolution"), 16},
                              {text("version"), 7},
                              {text("patches"), text("1001")},
                              {text("channels"), QStringList{text("Metallic")}}};
    const QStringList written = m_api->exportTextures(text("film, udim exr in acescg"), file("out"),
                                                      options);
    ASSERT_EQ(written.size(), 1);
    EXPECT_TRUE(written.first().endsWith(text("_Metallic.1001.exr"))
                && written.first().contains(text("/out/v007/")))
        << qPrintable(written.first());
    EXPECT_TRUE(QFileInfo::exists(written.first()));
    const QString preset = text("One File per Channel");
    EXPECT_TRUE(m_api->exportTextures(preset, file("out"), {{text("size"), 16}}).isEmpty());
    expectReported(Type::OutOfRange, "There is no option \"size\"");
    EXPECT_TRUE(
        m_api->exportTextures(preset, file("out"), {{text("patches"), text("x")}}).isEmpty());
    expectReported(Type::OutOfRange, "\"patches\" cannot be x");
    m_api->exportGltf(file("skin.glb"), {{text("resolution"), 16}});
    EXPECT_TRUE(QFileInfo::exists(file("skin.glb")));
    m_api->exportGltf(file("skin.obj"), {});
    expectReported(Type::NotAllowed, "glTF is written as *.glb");
    EXPECT_TRUE(m_api->exportTextures(text("None"), file("out"), {}).isEmpty());
    expectReported(Type::NotAllowed, "There is no export preset \"None\"");
}

TEST_F(ProjectObjects, commandsAreListedFoundTriggeredAndSayHowTheyAre)
{
    const Ossa::Actions *actions = m_application->actions();
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    QAction command(text("Switch"));
    QAction deep(text("Deep"));
    command.setCheckable(true);
    tree->registerAction(text("/Tests/How"), &command);
    tree->registerAction(text("/Tests/How/Below"), &deep);
    const QString path = text("/Tests/How/Switch");
    const QString none = text("/Tests/How/None");
    EXPECT_EQ(actions->paths(text("/Tests/How")),
              QStringList({path, text("/Tests/How/Below/Deep")}));
    EXPECT_EQ(actions->paths({}).count(path), 1);
    EXPECT_TRUE(actions->paths(none).isEmpty());
    EXPECT_TRUE(actions->exists(path));
    EXPECT_FALSE(actions->exists(none));
    EXPECT_TRUE(actions->isEnabled(path));
    EXPECT_FALSE(actions->isChecked(path));
    m_application->trigger(text("Tests/How/Switch"));
    EXPECT_TRUE(actions->isChecked(path));
    command.setEnabled(false);
    EXPECT_FALSE(actions->isEnabled(path));
    m_application->trigger(path);
    expectReported(Type::NotAllowed, "is not available now");
    EXPECT_TRUE(actions->isChecked(path));
    expectRefused({
        {[=] { EXPECT_FALSE(actions->isEnabled(none)); }, Type::UnknownName, "There is no command"},
        {[=] { EXPECT_FALSE(actions->isChecked(none)); }, Type::UnknownName, "There is no command"},
        {[=] { m_application->trigger(none); }, Type::UnknownName, "There is no command"},
    });
}

TEST_F(ProjectObjects, workIsShownUntilItEndsOrTheScriptDoes)
{
    Ossa::Progress *status = m_application->status();
    const QSignalSpy messages(OssStatusManager::instance(), &OssStatusManager::messageShown);
    status->message(text("Half done"));
    ASSERT_EQ(messages.count(), 1);
    EXPECT_EQ(messages.first().first().toString(), text("Half done"));
    EXPECT_FALSE(status->isCancelled()) << "without work";
    status->set(1, 2);
    expectReported(Type::WrongState, "No work has begun");
    status->begin(text("Working"));
    EXPECT_FALSE(status->isCancelled()) << "nobody has asked for it";
    status->set(1, 2);
    scripts()->endScript();
    status->end();
    expectReported(Type::WrongState, "No work has begun");
}

TEST_F(ProjectObjects, imagesSayHowTheyAreAndOtherFilesAreRefused)
{
    OssImageSet set(text("Wall"));
    auto *images = OssScriptObject<Ossa::ImageSet>(&set);
    EXPECT_EQ(images->name(), text("Wall"));
    for (const auto &[depth, bits] :
         {std::pair(5121, 8), std::pair(5131, 16), std::pair(int(OssImageSet::FloatDepth), 32)}) {
        set.setDepth(depth);
        EXPECT_EQ(images->bits(), bits);
        set.setScalar(bits == 16);
        EXPECT_EQ(images->isScalar(), bits == 16);
    }
    set.setResolution(64);
    EXPECT_EQ(images->resolution(), 64);
    const QSignalSpy changed(images, &Ossa::ImageSet::pixelsChanged);
    Q_EMIT set.pixelsChanged();
    EXPECT_EQ(changed.count(), 1);

    ASSERT_TRUE(QImage(4, 4, QImage::Format_RGB32).save(file("red.png")));
    writeFile(file("words.txt"), "no picture");
    for (const char *name : {"none.png", "words.txt"}) {
        const ExpectedLog possible(name, ExpectedLog::Possible);
        EXPECT_EQ(m_api->addImage(file(name)), nullptr);
        expectReported(Type::FileInvalid, name);
    }
    EXPECT_TRUE(m_api->images().isEmpty());
    EXPECT_NE(m_api->addImage(file("red.png")), nullptr);
    EXPECT_EQ(m_api->images().size(), 1);
}

TEST_F(ProjectObjects, meshesAreImportedReplacedFoundAgainAndRemoved)
{
    QTemporaryDir folder;
    const auto write = [&folder](const char *name, double v) {
        QFile file(folder.filePath(text(name)));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("o One\nv 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0.1 0.1\nvt 0.9 0.1\nvt 0.1 "
                   + QByteArray::number(v)
                   + "\nf 1/1 2/2 3/3\no Two\nv 0 0 1\nv 1 0 1\nv 0 1 1\nvt 1.1 0.1\nvt 1.9 "
                     "0.1\nvt 1.1 0.9\nf 4/4 5/5 6/6\n");
        return file.fileName();
    };
    const QString first = write("first.obj", 0.9);
    const QList<Ossa::GeoEntity *> made = m_api->importMesh(first, text("objects"));
    ASSERT_EQ(made.size(), 2);
    EXPECT_EQ(made[1]->name(), text("Two"));
    EXPECT_EQ(made[1]->patches(), QList<int>{1002});
    EXPECT_EQ(made[0]->meshState(), text("ready"));
    EXPECT_EQ(made[0]->meshProblem(), QString());
    EXPECT_TRUE(m_api->importMesh(folder.filePath(text("none.obj"))).isEmpty());
    expectReported(Type::FileInvalid, "none.obj");

    const QString told = made[0]->replaceMesh(write("second.obj", 0.5));
    EXPECT_TRUE(told.contains(text("1001"))) << qPrintable(told);
    made[0]->setUnwraps(true);
    EXPECT_TRUE(made[0]->unwraps());
    EXPECT_EQ(made[0]->patches(), QList<int>{1001});
    const ExpectedLog missing("UV 9");
    made[1]->setUvSet(text("UV 9"));
    expectReported(Type::FileInvalid, "UV 9");
    EXPECT_EQ(made[1]->uvSet(), QString()) << "nothing changed";

    const ExpectedLog gone("first.obj");
    QDir(folder.path()).mkdir(text("moved"));
    ASSERT_TRUE(QFile::rename(first, folder.filePath(text("moved/first.obj"))));
    made[1]->reloadMesh();
    EXPECT_EQ(made[1]->meshState(), text("kept"));
    EXPECT_TRUE(made[1]->meshProblem().contains(text("first.obj")));
    EXPECT_EQ(m_api->missingFiles(), QStringList{first});
    EXPECT_EQ(m_api->relinkFolder(folder.path()), 1);
    EXPECT_EQ(made[1]->meshState(), text("ready"));
    EXPECT_EQ(m_api->relink(folder.filePath(text("moved/first.obj")), first), 1);

    const int count = m_api->objects().size();
    m_api->removeObject(made[0]);
    EXPECT_EQ(m_api->objects().size(), count - 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_api->objects().size(), count);
}

TEST_F(ProjectObjects, preferencesAreReadWrittenAndReset)
{
    PreferencesTestObject object;
    for (const char *key : {"count", "mode"})
        OssPreferenceManager::instance()->registerPreference(text("Page"), text("Group"), &object,
                                                             text(key));
    Ossa::Preferences *preferences = m_application->preferences();
    const QStringList names = preferences->names().filter(text("Page/Group/"));
    ASSERT_EQ(names.size(), 2);
    const QString count = names.first();
    const QString mode = names.last();
    EXPECT_EQ(preferences->value(count).toInt(), 4);
    preferences->setValue(count, 7);
    EXPECT_EQ(object.count, 7);
    preferences->setValue(count, text("8"));
    EXPECT_EQ(object.count, 8);
    preferences->reset(count);
    EXPECT_EQ(object.count, 4);
    EXPECT_TRUE(preferences->choices(count).isEmpty());
    EXPECT_EQ(preferences->choices(mode), texts({"Prompt", "Change", "Leave"}));
    preferences->setValue(mode, text("Leave"));
    EXPECT_EQ(preferences->value(mode).toString(), text("Leave"));
    expectRefused({
        {[=] { preferences->setValue(mode, text("Odd")); }, Type::WrongType,
         "\"Odd\" is no value for the preference"},
        {[=] { preferences->setValue(count, text("many")); }, Type::WrongType,
         "\"many\" is no value for the preference"},
        {[=] { preferences->value(text("No")); }, Type::UnknownName, "no preference"},
        {[=] { preferences->setValue(text("No"), 1); }, Type::UnknownName, "no preference"},
        {[=] { preferences->reset(text("No")); }, Type::UnknownName, "no preference"},
        {[=] { preferences->choices(text("No")); }, Type::UnknownName, "no preference"},
    });
    EXPECT_EQ(object.count, 4);
    EXPECT_EQ(object.mode, text("Leave"));
}

TEST_F(ProjectObjects, colorsOfAProjectAreChosenAndWhatCannotBeHadIsRefused)
{
    EXPECT_EQ(m_api->workingSpace(), text("Linear"));
    EXPECT_TRUE(m_api->colorSpaces().contains(text("ACEScg")));
    Ossa::Node *node = m_graph->createNode(text("Procedural/Color"));
    node->setAttribute(text("Color"), QVariant::fromValue(OssColor(1.0, 0.0, 0.0, 1.0)));
    EXPECT_EQ(m_api->changeWorkingSpace(text("ACEScg")), 1);
    EXPECT_EQ(m_api->workingSpace(), text("ACEScg"));
    EXPECT_NEAR(node->attribute(text("Color")).value<OssColor>().red(), 0.6131, 1e-3);
    EXPECT_EQ(m_api->colorProblem(), QString());
    expectRefused({
        {[=] { m_api->setWorkingSpace(text("Nothing")); }, Type::NotAllowed,
         "The color configuration knows no \"Nothing\""},
        {[=] { m_api->changeWorkingSpace(text("Raw")); }, Type::NotAllowed,
         "\"Raw\" holds no colors"},
        {[=] { m_api->setColorConfig(text("/nowhere/own.ocio")); }, Type::NotAllowed,
         "Cannot read \"/nowhere/own.ocio\": there is no such file"},
        {[=] { m_api->setFileRules({text("no rule")}); }, Type::OutOfRange,
         "\"no rule\" is no rule: PATTERN=SPACE is one"},
    });
    EXPECT_EQ(m_api->workingSpace(), text("ACEScg"));
    m_api->setFileRules({text("*_plate*=ACEScg")});
    EXPECT_EQ(m_api->fileRules(), QStringList{text("*_plate*=ACEScg")});
}
