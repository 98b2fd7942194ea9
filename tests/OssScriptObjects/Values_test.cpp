#include "OssCore/Program/OssPreferenceManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssScriptObjects/OssaActions.h"
#include "OssScriptObjects/OssaApplication.h"
#include "OssScriptObjects/OssaGeoEntity.h"
#include "OssScriptObjects/OssaImage.h"
#include "OssScriptObjects/OssaImageSet.h"
#include "OssScriptObjects/OssaNode.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssaPreferences.h"
#include "OssScriptObjects/OssaProject.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptObjects.h"
#include "ScriptTestObjects.h"
#include "support/ModelFixture.h"

#include <QAction>
#include <QCoreApplication>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

QString text(const char *utf8)
{
    return QString::fromUtf8(utf8);
}

/// What scripts read of objects and write into them, where all is well.
class ScriptValues : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        OssScriptManager::instance()->clearError();
    }

    void TearDown() override
    {
        EXPECT_FALSE(OssScriptManager::instance()->hasError())
            << qPrintable(OssScriptManager::instance()->lastError().message);
        ModelFixture::TearDown();
    }

    static void expectReported(OssScriptException::Type type, const QString &message)
    {
        ExpectedLog::takePast(message);
        const OssScriptManager *scripts = OssScriptManager::instance();
        EXPECT_TRUE(scripts->hasError()) << qPrintable(message);
        EXPECT_EQ(scripts->lastError().type, type) << qPrintable(message);
        EXPECT_TRUE(scripts->lastError().message.contains(message))
            << qPrintable(scripts->lastError().message);
        OssScriptManager::instance()->clearError();
    }

    QString file(const char *name) const { return m_folder.filePath(text(name)); }

    static Ossa::Node *script(OssSnBaseNode *node) { return OssScriptObject<Ossa::Node>(node); }

    Ossa::Application *const m_application = OssScriptObject<Ossa::Application>(qApp);
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ScriptValues, stateOfANodeIsWrittenAndReadBackEachByItself)
{
    OssSnBaseNode *node = add("Filter/Blur", "Soft");
    Ossa::Node *api = script(node);
    const auto state = [&] {
        return QStringList{api->name(), api->description(),
                           api->isEnabled() ? text("on") : text(""),
                           api->isBypassed() ? text("past") : text(""),
                           api->isSelected() ? text("selected") : text("")};
    };
    api->setSelected(false);
    EXPECT_EQ(state(), (QStringList{text("Soft"), text(""), text("on"), text(""), text("")}));
    api->setName(text("Hard"));
    api->setDescription(text("sharpens"));
    api->setEnabled(false);
    api->setBypassed(true);
    api->setSelected(true);
    EXPECT_EQ(state(), (QStringList{text("Hard"), text("sharpens"), text(""), text("past"),
                                    text("selected")}));
    EXPECT_EQ(node->name(), text("Hard"));
    EXPECT_FALSE(node->enabledAsBool());
    EXPECT_TRUE(node->isBypassed());
    EXPECT_TRUE(node->selected());
    api->setEnabled(true);
    api->setBypassed(false);
    api->setSelected(false);
    EXPECT_EQ(state(),
              (QStringList{text("Hard"), text("sharpens"), text("on"), text(""), text("")}));
    node->setErrorText(text("no picture"));
    EXPECT_EQ(api->error(), text("no picture"));
}

TEST_F(ScriptValues, severalNodesAreRemovedOrTakenOutAtOnce)
{
    auto *graph = OssScriptObject<Ossa::NodeGraph>(m_network);
    OssSnBaseNode *color = add("Procedural/Color");
    OssSnBaseNode *blur = add("Filter/Blur");
    OssSnBaseNode *levels = add("Adjust/Levels");
    OssSnBaseNode *dot = add("Misc/Dot");
    wire(color, blur);
    wire(blur, levels);
    wire(levels, dot);
    graph->extract({script(blur), script(levels)});
    EXPECT_EQ(dot->inputNode(text("Input")), color);
    EXPECT_EQ(blur->inputNode(text("Input")), nullptr);
    graph->remove({script(blur), script(levels)});
    EXPECT_EQ(blur->network(), nullptr);
    EXPECT_EQ(levels->network(), nullptr);
    graph->remove({});
    EXPECT_EQ(m_network->nodes().size(), 3);
}

TEST_F(ScriptValues, imagesSayHowTheyAre)
{
    OssImageSet set(text("Wall"));
    auto *api = OssScriptObject<Ossa::ImageSet>(&set);
    EXPECT_EQ(api->name(), text("Wall"));

    const struct
    {
        int depth;
        int bits;
    } cases[] = {{5121, 8}, {5131, 16}, {OssImageSet::FloatDepth, 32}};

    for (const auto &c : cases) {
        set.setDepth(c.depth);
        EXPECT_EQ(api->bits(), c.bits);
    }
    for (const bool scalar : {true, false}) {
        set.setScalar(scalar);
        EXPECT_EQ(api->isScalar(), scalar);
    }
    set.setResolution(64);
    EXPECT_EQ(api->resolution(), 64);
    const QSignalSpy changed(api, &Ossa::ImageSet::pixelsChanged);
    Q_EMIT set.pixelsChanged();
    EXPECT_EQ(changed.count(), 1);
}

TEST_F(ScriptValues, picturesAreOpenedAndOtherFilesRefused)
{
    Ossa::Project *project = m_application->project();
    QImage picture(4, 4, QImage::Format_RGB32);
    picture.fill(Qt::red);
    ASSERT_TRUE(picture.save(file("red.png")));
    QFile words(file("words.txt"));
    ASSERT_TRUE(words.open(QIODevice::WriteOnly));
    words.write("no picture");
    words.close();
    for (const char *name : {"none.png", "words.txt"}) {
        const ExpectedLog possible(name, ExpectedLog::Possible);
        EXPECT_EQ(project->addImage(file(name)), nullptr);
        expectReported(OssScriptException::FileInvalid, text(name));
    }
    EXPECT_TRUE(project->images().isEmpty());
    const Ossa::Image *image = project->addImage(file("red.png"));
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(project->images().size(), 1);
}

TEST_F(ScriptValues, aBakeGivesTheFilesItWroteAndSaysWhatItCouldNot)
{
    Ossa::Node *color = script(add("Procedural/Color"));
    EXPECT_EQ(color->bake(file("one.png"), 4, {1001}), QStringList{file("one.png")});
    EXPECT_EQ(QImage(file("one.png")).size(), QSize(4, 4));
    const QStringList two{file("two.1001.png"), file("two.1002.png")};
    EXPECT_EQ(color->bake(file("two.<UDIM>.png"), 4, {1001, 1002}), two);
    for (const QString &path : two)
        EXPECT_TRUE(QFile::exists(path)) << qPrintable(path);
    EXPECT_EQ(color->bake(file("object.png"), 1, {}).size(), 1) << "the patches of the object";
    const ExpectedLog possible("", ExpectedLog::Possible);
    QFile plain(file("plain"));
    ASSERT_TRUE(plain.open(QIODevice::WriteOnly));
    EXPECT_TRUE(color->bake(file("plain/folder.png"), 4, {1001}).isEmpty());
    expectReported(OssScriptException::FileNotAccessible, text("plain"));

    auto *bakePoint = qobject_cast<OssSnBakePointNode *>(
        m_network->createPaintableNode({}, text("Misc/Bake Point")));
    bakePoint->imageSet()->setResolution(8);
    script(bakePoint)->bakeImageSet();
    expectReported(OssScriptException::ObjectUnavailable, text("nothing is connected"));
    ASSERT_TRUE(wire(m_network->node(color->name()), bakePoint));
    script(bakePoint)->bakeImageSet();
    EXPECT_TRUE(bakePoint->hasBakedResult());
    OssGeoEntity *entity = m_network->geoEntity();
    auto *object = OssScriptObject<Ossa::GeoEntity>(entity);
    const Ossa::ImageSet *images = object->imageSet(bakePoint->imageSet()->name());
    ASSERT_NE(images, nullptr);
    EXPECT_EQ(images->patches(), QList<int>{1001});
    EXPECT_EQ(object->imageSets().size(), 1);
}

TEST_F(ScriptValues, preferencesAreReadWrittenAndReset)
{
    Preferred preferred;
    for (const char *key : {"amount", "manner"})
        OssPreferenceManager::instance()->registerPreference(text("Page"), text("Group"),
                                                             &preferred, text(key));
    Ossa::Preferences *preferences = m_application->preferences();
    const QStringList names = preferences->names().filter(text("Page/Group/"));
    ASSERT_EQ(names.size(), 2);
    const QString amount = names.first();
    const QString manner = names.last();
    EXPECT_EQ(preferences->value(amount).toInt(), 5);
    preferences->setValue(amount, 7);
    EXPECT_EQ(preferred.amount(), 7);
    preferences->setValue(amount, text("8"));
    EXPECT_EQ(preferred.amount(), 8);
    preferences->reset(amount);
    EXPECT_EQ(preferred.amount(), 5);
    EXPECT_TRUE(preferences->choices(amount).isEmpty());
    EXPECT_EQ(preferences->choices(manner), QStringList({text("Fast"), text("Fine")}));
    preferences->setValue(manner, text("Fine"));
    EXPECT_EQ(preferences->value(manner).toString(), text("Fine"));
    preferences->setValue(manner, text("Odd"));
    expectReported(OssScriptException::WrongType, text("\"Odd\" is no value for the preference"));
    preferences->setValue(amount, text("many"));
    expectReported(OssScriptException::WrongType, text("\"many\" is no value for the preference"));
    EXPECT_EQ(preferred.amount(), 5);
    EXPECT_EQ(preferred.manner(), text("Fine"));
}

TEST_F(ScriptValues, commandsAreListedByFolderAndOnce)
{
    QAction first(text("First"));
    QAction second(text("Second"));
    QAction other(text("Other"));
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    tree->registerAction(text("/Tests/Listed"), &first);
    tree->registerAction(text("/Tests/Listed/Deep"), &second);
    tree->registerAction(text("/Tests/Elsewhere"), &other);
    const Ossa::Actions *actions = m_application->actions();
    EXPECT_EQ(actions->paths(text("/Tests/Listed")),
              QStringList({text("/Tests/Listed/First"), text("/Tests/Listed/Deep/Second")}));
    for (const char *path : {"/Tests/Listed/First", "/Tests/Elsewhere/Other"})
        EXPECT_EQ(actions->paths({}).count(text(path)), 1) << path;
}
