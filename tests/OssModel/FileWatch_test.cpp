#include "OssEvaluation/Files/OssEvFileContents.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssMeshes.h"
#include "support/ModelFixture.h"
#include "support/PassTime.h"

#include <QDateTime>
#include <QFile>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

#include <functional>

namespace {

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

/// Files that change on disk below the open project.
class FileWatch : public ModelFixture
{
protected:
    QString path(const char *name) const { return m_folder.filePath(text(name)); }

    void paint(const QString &file, const QColor &color) const
    {
        QImage picture(16, 16, QImage::Format_RGB32);
        picture.fill(color);
        ASSERT_TRUE(picture.save(file)) << qPrintable(file);
    }

    /// One square patch for each number.
    void writeMesh(int patches) const
    {
        QFile file(path("shape.obj"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        for (int i = 0; i < patches; ++i) {
            const int v = 4 * i;
            for (const auto &[x, y] : {std::pair(0, 0), {1, 0}, {1, 1}, {0, 1}})
                file.write(QStringLiteral("v %1 %2 0\nvt %3 %4\n")
                               .arg(x + 2 * i)
                               .arg(y)
                               .arg(i + 0.1 + 0.8 * x)
                               .arg(0.1 + 0.8 * y)
                               .toLatin1());
            file.write(QStringLiteral("f %1/%1 %2/%2 %3/%3 %4/%4\n")
                           .arg(v + 1)
                           .arg(v + 2)
                           .arg(v + 3)
                           .arg(v + 4)
                           .toLatin1());
        }
    }

    std::function<void()> painting(const char *name, const QColor &color) const
    {
        return [this, file = path(name), color] {
            paint(file, color);
        };
    }

    OssSnBakePointNode *bakePointOf(OssSnBaseNode *source)
    {
        auto *node = qobject_cast<OssSnBakePointNode *>(
            m_network->createPaintableNode({}, text("Misc/Bake Point")));
        EXPECT_TRUE(node && wire(source, node));
        node->imageSet()->setResolution(16);
        return node;
    }

    static OssResult bake(OssSnBakePointNode *node)
    {
        return OssShaderNetworkUtils::bakeBakePoints({node}, true, true);
    }

    static bool becomesStale(const OssSnBakePointNode *node)
    {
        return QTest::qWaitFor([node] { return !node->isBakedResultUpToDate(); });
    }

    /// Long enough for every look that a change causes.
    static void waitForLooks() { passTime(250); }

    static void touch(const QString &path)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTime().addSecs(5),
                                     QFileDevice::FileModificationTime));
    }

    /// What is baked of the source stays so when the file is touched, and not after the change.
    void expectStaleOnlyAfter(const std::function<void()> &change, OssSnBaseNode *source,
                              const QString &file)
    {
        OssSnBakePointNode *node = bakePointOf(source);
        const OssResult baked = bake(node);
        ASSERT_TRUE(baked) << qPrintable(baked.error());
        EXPECT_TRUE(node->isBakedResultUpToDate());
        QSignalSpy told(OssFileWatch::instance(), &OssFileWatch::changed);
        touch(file);
        waitForLooks();
        EXPECT_EQ(told.count(), 0);
        EXPECT_TRUE(node->isBakedResultUpToDate());
        QSignalSpy state(node, &OssSnBakePointNode::bakedStateChanged);
        change();
        EXPECT_TRUE(becomesStale(node));
        EXPECT_TRUE(QTest::qWaitFor([&] { return state.count() == 1; }));
        m_network->removeNodes({node});
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(FileWatch, picturesAndShapesThatChangeOnDiskPutBakesOutOfDateAndTouchedOnesDoNot)
{
    paint(path("one.png"), Qt::red);
    paint(path("patch.1001.png"), Qt::red);
    paint(path("listed.png"), Qt::red);
    writeMesh(1);
    OssSnBaseNode *one = add("Misc/Image");
    one->setAttribute(text("File"), path("one.png"));
    OssSnBaseNode *patched = add("Misc/Image");
    patched->setAttribute(text("File"), path("patch.<UDIM>.png"));
    const auto layers = OssImageManager::instance()->open(path("listed.png"), 0,
                                                          OssImageManager::defaultCategory());
    ASSERT_EQ(layers.size(), 1);
    OssSnBaseNode *listed = add("Procedural/Pattern/Tiled");
    listed->setAttribute(text("TileImage"),
                         OssImageList(layers.first().image->uniqueId()).toVariant());
    m_network->geoEntity()->setGeometry(path("shape.obj"));

    const struct
    {
        const char *what;
        OssSnBaseNode *source;
        const char *file;
        std::function<void()> change;
    } cases[] = {
        {"written in place", one, "one.png", painting("one.png", Qt::green)},
        {"replaced by another under its name", one, "one.png",
         [&] {
             paint(path("new.png"), Qt::blue);
             ASSERT_EQ(std::rename(qPrintable(path("new.png")), qPrintable(path("one.png"))), 0);
         }},
        {"removed", one, "listed.png",
         [&] {
             QFile::remove(path("one.png"));
         }},
        {"one of several", patched, "patch.1001.png", painting("patch.1001.png", Qt::green)},
        {"one more of several", patched, "patch.1001.png", painting("patch.1002.png", Qt::green)},
        {"of the project's list", listed, "listed.png", painting("listed.png", Qt::green)},
        {"the object's shape", listed, "shape.obj",
         [&] {
             writeMesh(2);
         }},
    };

    for (const auto &test : cases) {
        SCOPED_TRACE(test.what);
        expectStaleOnlyAfter(test.change, test.source, path(test.file));
    }
}

TEST_F(FileWatch, whatIsBakedAndComputedAfterAChangeIsWhatIsThereNow)
{
    paint(path("one.png"), Qt::red);
    writeMesh(1);
    m_network->geoEntity()->setGeometry(path("shape.obj"));
    OssSnBaseNode *image = add("Misc/Image");
    image->setAttribute(text("File"), path("one.png"));
    OssSnBakePointNode *node = bakePointOf(image);
    ASSERT_TRUE(bake(node));
    const QMap<int, QString> red = node->imageSet()->pixels();
    // Nothing has told of the change yet.
    paint(path("one.png"), Qt::green);
    writeMesh(2);
    ASSERT_TRUE(bake(node));
    EXPECT_NE(node->imageSet()->pixels().value(1001), red.value(1001));
    EXPECT_EQ(node->imageSet()->pixels().keys(), (QList<int>{1001, 1002}));
    EXPECT_TRUE(node->isBakedResultUpToDate());
    paint(path("one.png"), Qt::red);
    ASSERT_TRUE(becomesStale(node));
    ASSERT_TRUE(bake(node));
    EXPECT_EQ(node->imageSet()->pixels().value(1001), red.value(1001));

    // Up to date is no reason not to, for whoever wants it.
    const int steps = undoCount();
    ASSERT_TRUE(bake(node));
    EXPECT_EQ(undoCount(), steps);
    node->imageSet()->setPixels({});
    ASSERT_TRUE(OssShaderNetworkUtils::bakeAgain({node}));
    EXPECT_EQ(node->imageSet()->pixels().value(1001), red.value(1001));
}

TEST_F(FileWatch, bakesUseTheLastGoodShapeAndNothingWhereThereNeverWasOne)
{
    const ExpectedLog unreadable("shape.obj");
    m_network->geoEntity()->setGeometry(path("shape.obj"));
    OssSnBakePointNode *node = bakePointOf(add("Geometry/Position"));
    OssResult refused = OssShaderNetworkUtils::bakeAgain({node});
    EXPECT_FALSE(refused);
    EXPECT_TRUE(refused.error().contains(text("shape.obj"))) << qPrintable(refused.error());
    EXPECT_TRUE(node->imageSet()->pixels().isEmpty()) << "not those of a plane";
    writeMesh(2);
    ASSERT_TRUE(becomesStale(node) && bake(node));
    const QMap<int, QString> good = node->imageSet()->pixels();
    ASSERT_EQ(good.size(), 2);
    for (const bool removed : {false, true}) {
        QFile file(path("shape.obj"));
        if (removed)
            ASSERT_TRUE(file.remove());
        else
            ASSERT_TRUE(file.open(QIODevice::WriteOnly) && file.write("garbage") > 0);
        file.close();
        OssFileWatch::instance()->settle([] { return true; });
        OssMeshes::instance()->waitFor(m_network->geoEntity()->source());
        EXPECT_TRUE(node->isBakedResultUpToDate()) << "the mesh is still what it was";
        node->imageSet()->setPixels({});
        EXPECT_TRUE(OssShaderNetworkUtils::bakeAgain({node}));
        EXPECT_EQ(node->imageSet()->pixels(), good);
        EXPECT_EQ(OssMeshes::instance()->look(m_network->geoEntity()->source()).state,
                  OssMeshes::State::Kept);
    }
}

TEST_F(FileWatch, aBakeThatWasSavedIsStillGoodWhenTheFilesAre)
{
    paint(path("one.png"), Qt::red);
    OssSnBaseNode *image = add("Misc/Image");
    image->setAttribute(text("File"), path("one.png"));
    ASSERT_TRUE(bake(bakePointOf(image)));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path("Wall.ossa")));
    for (const bool isOther : {false, true}) {
        if (isOther)
            paint(path("one.png"), Qt::green);
        ASSERT_TRUE(OssProjectManager::instance()->openProject(path("Wall.ossa")));
        m_project = OssProjectManager::instance()->currentProject();
        const auto *node = qobject_cast<OssSnBakePointNode *>(
            m_project->shadingGroups().first()->network()->node(text("Bake Point")));
        ASSERT_NE(node, nullptr);
        EXPECT_TRUE(node->isBakedResultUpToDate()) << "nobody has looked yet";
        QSignalSpy known(OssFileWatch::instance(), &OssFileWatch::changed);
        ASSERT_TRUE(known.wait());
        EXPECT_EQ(node->isBakedResultUpToDate(), !isOther);
    }
}

TEST_F(FileWatch, thousandsOfFilesCostFewWatchesAndAreStillFollowed)
{
    constexpr int Count = 600;
    for (int i = 0; i < Count; ++i) {
        QFile file(path("rock.") + QString::number(1001 + i) + text(".png"));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("not read here");
    }
    auto *watch = OssFileWatch::instance();
    const QString pattern = path("rock.<UDIM>.png");
    EXPECT_TRUE(watch->contentOf(pattern).isNull());
    watch->settle([] { return true; });
    const QString before = watch->contentOf(pattern);
    EXPECT_FALSE(before.isEmpty());
    EXPECT_LT(watch->findChild<QFileSystemWatcher *>()->files().size(), 300);
    QFile last(path("rock.1600.png"));
    ASSERT_TRUE(last.open(QIODevice::ReadWrite));
    last.write("NOT READ HERE");
    last.close();
    EXPECT_TRUE(QTest::qWaitFor([&] { return watch->contentOf(pattern) != before; }, 8000));
}

TEST_F(FileWatch, picturesAreKnownByTheirBytesAndNeverTakenForOthers)
{
    OssEvImageFiles files(OssEvFileColors(), OssFileWatch::instance()->contents());
    const auto seen = [&](const char *name) {
        OssEvImageProvider::Image image{path(name).toStdString()};
        OssEvImageInfo info;
        EXPECT_TRUE(files.describe(image, &info));
        image.content = info.content;
        return image;
    };
    const auto read = [&](const OssEvImageProvider::Image &image) {
        return files.read(image, 0, 0, {}, [](int, int, const OssEvTilePointer &) {});
    };
    paint(path("one.png"), Qt::red);
    paint(path("same.png"), Qt::red);
    const auto red = seen("one.png");
    EXPECT_EQ(seen("same.png").content, red.content);
    paint(path("one.png"), Qt::red);
    EXPECT_EQ(seen("one.png").content, red.content);
    EXPECT_TRUE(read(red));
    paint(path("one.png"), Qt::green);
    EXPECT_NE(seen("one.png").content, red.content);
    EXPECT_NE(read(red).error().find("another one"), std::string::npos) << read(red).error();
    EXPECT_TRUE(read(seen("one.png")));
}
