#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Values/OssColor.h"
#include "OssModel/Evaluation/OssBakeManager.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssProjectManager.h"
#include "support/ModelFixture.h"
#include "support/PassTime.h"

#include <QDir>
#include <QFileInfo>
#include <QSignalSpy>
#include <QtTest>

namespace {

constexpr int Wait = 30000; ///< milliseconds, within which anything of these is done

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

/// Bakes while the user goes on working.
class BackgroundBakes : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_color = add("Procedural/Color", "Color");
        m_node = bakePoint("Bake", 16);
        ASSERT_TRUE(wire(m_color, m_node));
        OssUndoManager::instance()->clear();
    }

    OssSnBakePointNode *bakePoint(const char *name, int size)
    {
        auto *node = qobject_cast<OssSnBakePointNode *>(
            m_network->createPaintableNode({}, text("Misc/Bake Point")));
        EXPECT_NE(node, nullptr);
        node->setName(text(name));
        node->imageSet()->setResolution(size);
        return node;
    }

    /// Long enough for what a test does meanwhile.
    void makeSlow()
    {
        OssSnBaseNode *blur = add("Filter/Blur", "Blur");
        blur->setAttribute(text("Radius"), 60.0);
        OssSnBaseNode *noise = add("Procedural/Noise/Fractal Noise", "Noise");
        ASSERT_TRUE(noise && blur);
        ASSERT_TRUE(wire(noise, blur));
        ASSERT_TRUE(wire(blur, m_node));
        m_color = noise;
        m_node->imageSet()->setResolution(4096);
        OssUndoManager::instance()->clear();
    }

    static OssBakeManager *bakes() { return OssBakeManager::instance(); }

    static bool isDone()
    {
        return QTest::qWaitFor([] { return !bakes()->isRunning(); }, Wait);
    }

    /// Until some of it is computed.
    static bool hasBegun()
    {
        return QTest::qWaitFor([] { return bakes()->thousandths() > 0; }, Wait);
    }

    static void paint(OssSnBaseNode *node, const QColor &color)
    {
        node->setAttribute(text("Color"), QVariant::fromValue(OssColor(color)));
    }

    static int filesInStore()
    {
        const QString folder = QFileInfo(OssPixelStore::newPath()).absolutePath();
        return QDir(folder).entryList(QDir::Files).size();
    }

    OssSnBaseNode *m_color = nullptr;
    OssSnBakePointNode *m_node = nullptr;
};

TEST_F(BackgroundBakes, goOnBesideOtherWorkAndAreOneStepEach)
{
    OssSnBakePointNode *after = bakePoint("After", 16);
    ASSERT_TRUE(wire(m_node, after));
    OssUndoManager::instance()->clear();
    QSignalSpy said(OssStatusManager::instance(), &OssStatusManager::messageShown);
    bakes()->start({after, m_node}, OssBakeManager::EmptyAndOutOfDate);
    EXPECT_TRUE(bakes()->isRunning());
    EXPECT_FALSE(OssStatusManager::instance()->isBlocking());
    EXPECT_FALSE(m_node->hasBakedResult());
    ASSERT_TRUE(isDone());
    EXPECT_EQ(bakes()->report().baked, (QStringList{text("Bake"), text("After")}));
    EXPECT_TRUE(m_node->isBakedResultUpToDate());
    EXPECT_TRUE(after->isBakedResultUpToDate());
    EXPECT_EQ(OssUndoManager::instance()->count(), 2);
    ASSERT_EQ(said.count(), 1);
    EXPECT_EQ(said.first().first().toString(), bakes()->report().inWords());
    OssUndoManager::instance()->undo();
    EXPECT_FALSE(after->hasBakedResult());
    bakes()->start({m_node}, OssBakeManager::EmptyAndOutOfDate);
    ASSERT_TRUE(isDone());
    EXPECT_EQ(bakes()->report().upToDate, QStringList{text("Bake")});
    EXPECT_TRUE(OssUndoManager::instance()->canRedo());
}

TEST_F(BackgroundBakes, beginAgainWhenWhatFeedsThemHasChanged)
{
    makeSlow();
    bakes()->start({m_node}, OssBakeManager::EmptyAndOutOfDate);
    ASSERT_TRUE(hasBegun());
    m_color->setAttribute(text("Seed"), 77);
    ASSERT_TRUE(isDone());
    EXPECT_TRUE(logHas(text("Bake has changed meanwhile: its bake begins again")));
    EXPECT_EQ(bakes()->report().baked, QStringList{text("Bake")});
    EXPECT_TRUE(m_node->isBakedResultUpToDate()) << "of the seed that is set now";
}

TEST_F(BackgroundBakes, costNoUndoneSteps)
{
    m_color->setAttribute(text("Color"), QVariant::fromValue(OssColor(QColor(Qt::red))));
    OssSnBaseNode *other = add("Procedural/Color", "Other");
    paint(other, Qt::green);
    OssUndoManager::instance()->undo();
    bakes()->start({m_node}, OssBakeManager::EmptyAndOutOfDate);
    ASSERT_TRUE(QTest::qWaitFor([] { return !bakes()->waitsFor().isEmpty(); }, Wait));
    passTime(200);
    EXPECT_TRUE(OssUndoManager::instance()->canRedo());
    EXPECT_FALSE(m_node->hasBakedResult());
    EXPECT_TRUE(bakes()->waitsFor().contains(text("redo"))) << qPrintable(bakes()->waitsFor());
    OssUndoManager::instance()->redo();
    ASSERT_TRUE(isDone());
    EXPECT_TRUE(m_node->isBakedResultUpToDate());
}

TEST_F(BackgroundBakes, waitForTheEndOfAGesture)
{
    {
        const OssUndoManager::AutoMacro gesture(text("Drag"));
        bakes()->start({m_node}, OssBakeManager::EmptyAndOutOfDate);
        passTime(300);
        EXPECT_FALSE(m_node->hasBakedResult());
        paint(m_color, Qt::yellow);
    }
    ASSERT_TRUE(isDone());
    EXPECT_TRUE(m_node->isBakedResultUpToDate());
    EXPECT_EQ(OssUndoManager::instance()->count(), 2) << "the gesture's step has no part of it";
}

TEST_F(BackgroundBakes, areStoppedWithoutATrace)
{
    makeSlow();
    OssSnBakePointNode *second = bakePoint("Second", 16);
    ASSERT_TRUE(wire(m_node, second));
    const QByteArray before = m_project->stateHash();
    const int files = filesInStore();
    bakes()->start({m_node, second}, OssBakeManager::Again);
    ASSERT_TRUE(hasBegun());
    bakes()->setPaused(true);
    passTime(500);
    const int done = bakes()->thousandths();
    passTime(500);
    EXPECT_EQ(bakes()->thousandths(), done) << "it rests";
    bakes()->setPaused(false);
    bakes()->cancel();
    ASSERT_TRUE(isDone());
    EXPECT_TRUE(bakes()->report().isStopped);
    EXPECT_FALSE(m_node->hasBakedResult());
    EXPECT_FALSE(second->hasBakedResult());
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(filesInStore(), files);
}

TEST_F(BackgroundBakes, ofWhatIsRemovedOrClosedEndThereAndThen)
{
    makeSlow();
    const int files = filesInStore();
    bakes()->start({m_node}, OssBakeManager::Again);
    ASSERT_TRUE(hasBegun());
    m_network->removeNode(m_node, true, true);
    ASSERT_TRUE(isDone());
    EXPECT_TRUE(logHas(text("Bake was removed: it is not baked")));
    EXPECT_EQ(filesInStore(), files);
    OssUndoManager::instance()->undo();
    EXPECT_FALSE(m_node->hasBakedResult());
    bakes()->start({m_node}, OssBakeManager::Again);
    ASSERT_TRUE(hasBegun());
    OssProjectManager::instance()->closeProject();
    m_project = nullptr;
    ASSERT_TRUE(isDone());
    EXPECT_EQ(filesInStore(), files);
}

TEST_F(BackgroundBakes, thatFailKeepNoOtherFromIt)
{
    const ExpectedLog expected("nothing is connected");
    OssSnBakePointNode *loose = bakePoint("Loose", 16);
    OssUndoManager::instance()->clear();
    bakes()->start({loose, m_node}, OssBakeManager::Again);
    ASSERT_TRUE(isDone());
    EXPECT_EQ(bakes()->report().failures, QStringList{text("Loose: nothing is connected")});
    EXPECT_EQ(bakes()->report().baked, QStringList{text("Bake")});
}

TEST_F(BackgroundBakes, makeImagesAsTheBakePointSaysWhereThereAreNone)
{
    auto *fresh = qobject_cast<OssSnBakePointNode *>(add("Misc/Bake Point", "Fresh"));
    ASSERT_NE(fresh, nullptr);
    ASSERT_EQ(fresh->imageSet(), nullptr);
    EXPECT_TRUE(fresh->asksForSize());
    fresh->setAttribute(text("resolution"), text("256"));
    fresh->setAttribute(text("depth"), text("32 bit float"));
    EXPECT_FALSE(fresh->asksForSize());
    ASSERT_TRUE(wire(m_color, fresh));
    const QByteArray before = m_project->stateHash();
    OssUndoManager::instance()->clear();
    bakes()->start({fresh}, OssBakeManager::EmptyAndOutOfDate);
    ASSERT_TRUE(isDone());
    ASSERT_NE(fresh->imageSet(), nullptr);
    EXPECT_EQ(fresh->imageSet()->resolution(), 256);
    EXPECT_EQ(fresh->imageSet()->depth(), OssImageSet::FloatDepth);
    EXPECT_TRUE(fresh->isBakedResultUpToDate());
    ASSERT_EQ(OssUndoManager::instance()->count(), 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
}

} // namespace
