#include "Ossa/Viewer/PaintSession.h"

#include "Ossa/Viewer/PaintComposer.h"
#include "Ossa/Viewer/PaintPreferences.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssImageSet.h"
#include "support/ModelFixture.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>

namespace {

/// Paint on the patch of a plane, and who is told of it.
class PaintSessions : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_popups = OssApplication::popupsAllowed();
        OssApplication::setPopupsAllowed(false);
        m_network->geoEntity()->setGeometry(QStringLiteral("plane"));
        m_node = qobject_cast<OssSnImageSetNodeBase *>(m_network->createPaintableNode({}));
        ASSERT_TRUE(m_node && m_node->imageSet());
        m_node->imageSet()->setResolution(64);
        m_session = std::make_unique<PaintSession>();
        ASSERT_TRUE(m_session->setNode(m_node));
    }

    void TearDown() override
    {
        ModelFixture::TearDown();
        m_session.reset();
        OssApplication::setPopupsAllowed(m_popups);
    }

    void stroke()
    {
        ASSERT_TRUE(m_session->begin({0.5, 0.5}));
        m_session->end();
    }

    bool hasPaint() const { return !m_session->buffer().isEmpty(); }

    OssSnImageSetNodeBase *m_node = nullptr;
    std::unique_ptr<PaintSession> m_session;
    bool m_popups = true;
};

TEST_F(PaintSessions, paintIsAsFineAsItsImagesUntilThereIsSome)
{
    OssImageSet *images = m_node->imageSet();

    const struct
    {
        int resolution;
        int texels;
    } cases[] = {{64, 64}, {128, 128}, {2, 16}, {100000, 16384}};

    for (const auto &c : cases) {
        images->setResolution(c.resolution);
        EXPECT_EQ(m_session->texelsAcross(), std::clamp(images->resolution(), 16, 16384))
            << c.resolution;
    }
    images->setResolution(64);
    stroke();
    images->setResolution(256);
    EXPECT_EQ(m_session->texelsAcross(), 64) << "what is painted stays as it is";
    ASSERT_TRUE(m_session->bake());
    EXPECT_EQ(m_session->texelsAcross(), 256);
    images->setResolution(32);
    EXPECT_EQ(m_session->texelsAcross(), 64) << "as the pixels that were baked";
    ASSERT_TRUE(m_session->setNode(nullptr));
    EXPECT_EQ(m_session->texelsAcross(), m_session->buffer().resolution());
}

TEST_F(PaintSessions, viewsAreToldWhatToDrawAndWhatIsOnlyBaked)
{
    QSignalSpy painted(m_session.get(), &PaintSession::painted);
    QSignalSpy baked(m_session.get(), &PaintSession::baked);
    OssUndoManager *history = OssUndoManager::instance();
    const auto told = [&] {
        const QString text =
            QStringLiteral("%1 %2").arg(painted.isEmpty() ? 0 : 1).arg(baked.isEmpty() ? 0 : 1);
        painted.clear();
        baked.clear();
        return text.toStdString();
    };
    stroke();
    EXPECT_EQ(told(), "1 0");
    history->undo();
    EXPECT_EQ(told(), "1 0");
    history->redo();
    EXPECT_EQ(told(), "1 0");
    m_session->clear();
    EXPECT_EQ(told(), "1 0");
    history->undo();
    EXPECT_EQ(told(), "1 0");
    ASSERT_TRUE(m_session->bake());
    EXPECT_EQ(told(), "0 1") << "it looks as before";
    m_session->clear();
    EXPECT_EQ(told(), "0 0");
    ASSERT_TRUE(m_session->begin({0.25, 0.25}));
    told();
    m_session->cancel();
    EXPECT_EQ(told(), "1 0");
}

TEST_F(PaintSessions, anotherObjectEndsPaintingOnThisOneAndAnotherGraphDoesNot)
{
    auto *networks = OssShaderNetworkManager::instance();
    stroke();
    OssSnGroupNode *group = m_network->groupNodes({add("Filter/Blur")});
    networks->setCurrentViewNetwork(group->groupNetwork());
    QCoreApplication::processEvents();
    EXPECT_EQ(m_session->node(), m_node);
    EXPECT_TRUE(hasPaint());
    OssGeoEntity *other = m_project->addEntity(QStringLiteral("Other"));
    ASSERT_TRUE(other && !other->shadingGroups().isEmpty());
    networks->setCurrentShaderNetwork(other->shadingGroups().first()->network());
    QCoreApplication::processEvents();
    EXPECT_EQ(m_session->node(), nullptr);
    EXPECT_FALSE(hasPaint());
    EXPECT_FALSE(m_node->imageSet()->pixels().isEmpty()) << "it was baked";
}

TEST_F(PaintSessions, onlyPatchesWithOtherPaintAreComposedAnew)
{
    PaintComposer composer;
    const auto composed = [&] {
        QMap<int, QString> pixels;
        EXPECT_TRUE(composer.compose(m_session->buffer(), m_node->imageSet(), &pixels));
        return pixels;
    };
    stroke();
    const QMap<int, QString> first = composed();
    EXPECT_EQ(first.keys(), QList<int>{1001});
    EXPECT_EQ(composed(), first);
    OssEvBrush brush = m_session->brush();
    brush.color = {0.0F, 1.0F, 0.0F};
    m_session->setBrush(brush);
    stroke();
    EXPECT_NE(composed(), first);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(composed(), first);
}

TEST_F(PaintSessions, erasingThatCannotBeBakedIsToldInTheStatusBar)
{
    stroke();
    ASSERT_TRUE(m_session->bake());
    QSignalSpy messages(OssStatusManager::instance(), &OssStatusManager::messageShown);
    OssEvBrush brush = m_session->brush();
    brush.erases = true;
    m_session->setBrush(brush);
    m_session->setBakesErasing(true);
    stroke();
    EXPECT_FALSE(hasPaint()) << "it is in the images at once";
    EXPECT_TRUE(messages.isEmpty());
    const QDir folder(OssSettings::folderPath());
    QDir(folder.filePath(QStringLiteral("pixels"))).removeRecursively();
    QFile inTheWay(folder.filePath(QStringLiteral("pixels")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    stroke();
    inTheWay.remove();
    ASSERT_EQ(messages.size(), 1);
    EXPECT_TRUE(messages.first().first().toString().contains(QStringLiteral("pixels")));
    EXPECT_TRUE(hasPaint());
    m_session->setBakesErasing(false);
    stroke();
    EXPECT_EQ(messages.size(), 1) << "nothing was to be baked";
}

TEST_F(PaintSessions, undoneBakingBringsPaintBackAsFineAsItWas)
{
    OssUndoManager *history = OssUndoManager::instance();
    stroke();
    const OssEvPaintBuffer::Tiles tiles = m_session->buffer().tiles();
    ASSERT_TRUE(m_session->bake());
    m_node->imageSet()->setResolution(256);
    stroke();
    EXPECT_EQ(m_session->buffer().resolution(), 256);
    while (m_session->buffer().tiles() != tiles && history->canUndo())
        history->undo();
    EXPECT_EQ(m_session->buffer().resolution(), 64);
    EXPECT_TRUE(hasPaint());
}

TEST_F(PaintSessions, strokesOutliveTheirSession)
{
    stroke();
    const int count = undoCount();
    m_session.reset();
    OssUndoManager::instance()->undo();
    EXPECT_EQ(OssUndoManager::instance()->index(), count - 1);
    OssUndoManager::instance()->redo();
    EXPECT_EQ(OssUndoManager::instance()->index(), count);
}

} // namespace
