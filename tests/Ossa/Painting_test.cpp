#include "Ossa/Painting/EveryMove.h"
#include "Ossa/Painting/PaintPreferences.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Objects/OssCanvasManager.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Project/OssAutosave.h"
#include "PaintFixture.h"
#include "support/DialogAnswers.h"

#include <QImage>
#include <QTemporaryDir>
#include <QWidget>

#include <cmath>

namespace {

/// The paint buffer between the brush and the images.
class Painting : public PaintFixture
{
protected:
    void TearDown() override
    {
        PaintPreferences::instance()->resetBakeBehavior();
        PaintFixture::TearDown();
    }

    /// What the node computes at a place; u and v within the patch.
    QColor seen(double u, double v, int patch = 1001, OssSnBaseNode *node = nullptr)
    {
        OssEvaluationService::BakeJob job;
        job.node = node ? node : m_paint;
        job.outputPoint = job.node->prefferedOutputPoint();
        job.entity = m_network->geoEntity();
        job.patches = {patch};
        job.resolution = Resolution;
        const OssResult baked = OssEvaluationService::instance()->bake(job,
                                                                       file("seen.<UDIM>.png"));
        EXPECT_TRUE(baked) << qPrintable(baked.error());
        return QImage(file("seen.%1.png").arg(patch))
            .pixelColor(int(u * Resolution), int((1.0 - v) * Resolution));
    }

    /// The next box gets this answer.
    static void answer(QMessageBox::StandardButton button)
    {
        OssApplication::setPopupsAllowed(true);
        answerWith(button);
    }

    /// Looks at what the project now open has instead.
    void followProject(const QString &nodeName)
    {
        m_project = OssProjectManager::instance()->currentProject();
        m_network = m_project->shadingGroups().first()->network();
        m_paint = qobject_cast<OssSnImageSetNodeBase *>(m_network->node(nodeName));
        ASSERT_NE(m_paint, nullptr);
    }

    static void undoAll()
    {
        while (history()->canUndo())
            history()->undo();
    }

    static void redoAll()
    {
        while (history()->canRedo())
            history()->redo();
    }

    QString file(const char *name) const { return m_folder.filePath(text(name)); }

    QTemporaryDir m_folder;
};

TEST_F(Painting, strokesAreStepsAndBakingIsOneThatGivesThemBack)
{
    const QByteArray start = m_project->stateHash();
    stroke({0.2, 0.5}, {0.8, 0.5});
    setBrush(Qt::green);
    stroke({0.5, 0.2}, {0.5, 0.8});
    ASSERT_EQ(undoCount(), 2);
    EXPECT_EQ(m_project->stateHash(), start) << "paint is in no image yet";
    const OssEvPaintBuffer::Tiles tiles = m_session->buffer().tiles();

    ASSERT_TRUE(m_session->bake());
    EXPECT_FALSE(hasPaint());
    ASSERT_EQ(undoCount(), 3);
    EXPECT_EQ(history()->undoText(), text("Bake Paint"));
    EXPECT_EQ(seen(0.25, 0.5), QColor(Qt::red));
    EXPECT_EQ(seen(0.5, 0.3), QColor(Qt::green));
    EXPECT_EQ(seen(0.1, 0.1).alpha(), 0);
    const QByteArray end = m_project->stateHash();

    history()->undo();
    EXPECT_EQ(m_session->buffer().tiles(), tiles);
    EXPECT_TRUE(images()->pixels().isEmpty());
    history()->undo();
    EXPECT_TRUE(hasPaint()) << "the red stroke";
    history()->undo();
    EXPECT_FALSE(hasPaint());
    EXPECT_EQ(m_project->stateHash(), start);
    redoAll();
    EXPECT_FALSE(hasPaint());
    EXPECT_EQ(m_project->stateHash(), end);
}

TEST_F(Painting, aNodeThatNeverHadImagesGetsThemWithItsFirstStroke)
{
    auto *fresh = qobject_cast<OssSnImageSetNodeBase *>(
        m_network->createNode(text("Channel Input/Paint")));
    ASSERT_EQ(fresh->imageSet(), nullptr);
    history()->clear();
    const QByteArray start = m_project->stateHash();
    ASSERT_TRUE(m_session->setNode(fresh));
    EXPECT_EQ(m_session->node(), fresh);
    ASSERT_TRUE(m_session->begin(QPointF(0.5, 0.5)));
    m_session->cancel();
    EXPECT_EQ(undoCount(), 0);
    EXPECT_EQ(m_project->stateHash(), start);
    stroke({0.2, 0.5}, {0.8, 0.5});
    EXPECT_EQ(undoCount(), 1);
    history()->undo();
    EXPECT_EQ(m_project->stateHash(), start);
    history()->redo();
    ASSERT_TRUE(m_session->bake());
    EXPECT_GT(seen(0.25, 0.5, 1001, fresh).alpha(), 0) << "a thin line on larger images";
}

TEST_F(Painting, everyMoveIsToldFromBeforeAPressUntilTheStrokeEnds)
{
    const auto isTold = [] {
        return !QCoreApplication::testAttribute(Qt::AA_CompressHighFrequencyEvents);
    };
    const bool usual = isTold();
    QWidget canvas;
    EveryMoveOver over(&canvas);
    const auto send = [&canvas](QEvent::Type type) {
        QEvent event(type);
        QCoreApplication::sendEvent(&canvas, &event);
    };
    over.setWanted(true);
    EXPECT_TRUE(isTold()) << "what waits behind a press is gone when that is handled";
    ASSERT_TRUE(m_session->begin(QPointF(0.5, 0.5)));
    send(QEvent::Leave);
    EXPECT_TRUE(isTold()) << "the stroke goes on";
    m_session->end();
    EXPECT_EQ(isTold(), usual);
    send(QEvent::Enter);
    EXPECT_TRUE(isTold());
}

TEST_F(Painting, laterPaintIsComposedOverWhatWasBaked)
{
    stroke({0.2, 0.5}, {0.8, 0.5});
    ASSERT_TRUE(m_session->bake());
    const QMap<int, QString> before = images()->pixels();
    setBrush(Qt::blue);
    dab();
    setBrush(Qt::black, true);
    dab({0.7, 0.5});
    ASSERT_TRUE(m_session->bake());
    EXPECT_EQ(seen(0.3, 0.5), QColor(Qt::red));
    EXPECT_EQ(seen(0.5, 0.5), QColor(Qt::blue));
    EXPECT_EQ(seen(0.7, 0.5).alpha(), 0);
    EXPECT_EQ(before.keys(), images()->pixels().keys()) << "no other patch was touched";
}

TEST_F(Painting, aStrokeOverTheBorderOfPatchesIsBakedIntoBoth)
{
    // Sides of the cube: 1001 and 1002 side by side, 1007 is not there.
    stroke({0.9, 0.5}, {1.1, 0.5});
    ASSERT_TRUE(m_session->bake());
    EXPECT_EQ(images()->pixels().keys(), (QList<int>{1001, 1002}));
    EXPECT_EQ(seen(0.97, 0.5), QColor(Qt::red));
    EXPECT_EQ(seen(0.03, 0.5, 1002), QColor(Qt::red));
    EXPECT_EQ(seen(0.5, 0.5, 1002).alpha(), 0);
    stroke({5.9, 0.5}, {6.5, 0.5});
    EXPECT_EQ(m_session->buffer().patches(), std::vector<int>{1006});
}

TEST_F(Painting, savingBakesAndReopeningShowsThePaint)
{
    stroke({0.2, 0.5}, {0.8, 0.5});
    EXPECT_TRUE(OssProjectManager::instance()->isModified()) << "closing asks";
    const QString path = file("Painted.ossa");
    const OssResult saved = OssProjectManager::instance()->saveProjectAs(path);
    ASSERT_TRUE(saved) << qPrintable(saved.error());
    EXPECT_FALSE(hasPaint());
    EXPECT_FALSE(OssProjectManager::instance()->isModified());
    const QString name = m_paint->name();
    const OssResult opened = OssProjectManager::instance()->openProject(path);
    ASSERT_TRUE(opened) << qPrintable(opened.error());
    followProject(name);
    EXPECT_EQ(seen(0.5, 0.5), QColor(Qt::red));
    EXPECT_EQ(m_session->node(), nullptr) << "of the project before";
}

TEST_F(Painting, aCrashLosesNoPaintThatACopyWasTakenOf)
{
    const QString recovery = file("recovery");
    auto autosave = std::make_unique<OssAutosave>(recovery);
    stroke({0.2, 0.5}, {0.8, 0.5});
    ASSERT_TRUE(m_session->bake());
    setBrush(Qt::green);
    stroke({0.5, 0.2}, {0.5, 0.8});
    const QByteArray state = m_project->stateHash();
    const auto saved = [this] {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        OssSerializer serializer(&buffer);
        m_project->save(serializer, m_project->name(), {});
        return buffer.data();
    };
    EXPECT_TRUE(saved().contains("unbakedPaint"));
    EXPECT_EQ(m_project->stateHash(), state);
    EXPECT_TRUE(hasPaint());
    EXPECT_EQ(undoCount(), 3);
    autosave->takeCopy();
    autosave->waitForDisk();
    autosave.reset();
    const QString name = m_paint->name();
    m_session->clear();
    EXPECT_FALSE(saved().contains("unbakedPaint")) << "what is cleared is named no more";
    OssProjectManager::instance()->newProject(text("Next"));

    const QVector<OssRecovery::Entry> entries = OssRecovery::entries(recovery);
    ASSERT_EQ(entries.size(), 1);
    ASSERT_TRUE(OssAutosave(recovery).restore(entries.first()));
    followProject(name);
    EXPECT_EQ(seen(0.5, 0.3), QColor(Qt::green));
    EXPECT_EQ(seen(0.25, 0.5), QColor(Qt::red));
}

TEST_F(Painting, paintThatCannotBeBakedStaysAndNothingIsSaved)
{
    stroke({0.2, 0.5}, {0.8, 0.5});
    OssResult saved;
    {
        const NoRoomForPixels none;
        const ExpectedLog told("Bake Paint: ");
        saved = OssProjectManager::instance()->saveProjectAs(file("Painted.ossa"));
        EXPECT_FALSE(m_session->setNode(paintNode()));
        EXPECT_EQ(m_session->node(), m_paint);
        m_session->handleBakeBehavior(images());
    }
    history()->undo(); // the other node
    EXPECT_FALSE(saved);
    EXPECT_TRUE(saved.error().contains(text("Cannot make the folder")))
        << qPrintable(saved.error());
    EXPECT_TRUE(hasPaint());
    EXPECT_TRUE(OssProjectManager::instance()->isModified());
    EXPECT_EQ(history()->index(), 1);
}

TEST_F(Painting, paintIsBakedBeforeOtherImagesArePaintedOn)
{
    OssSnImageSetNodeBase *other = paintNode();
    history()->clear();
    stroke({0.2, 0.5}, {0.8, 0.5});
    ASSERT_TRUE(m_session->setNode(other));
    EXPECT_FALSE(hasPaint());
    setBrush(Qt::green);
    stroke({0.2, 0.5}, {0.8, 0.5});
    ASSERT_TRUE(m_session->bake());
    EXPECT_EQ(seen(0.5, 0.5), QColor(Qt::red));
    EXPECT_EQ(seen(0.5, 0.5, 1001, other), QColor(Qt::green));
    undoAll();
    EXPECT_TRUE(other->imageSet()->pixels().isEmpty());
    redoAll();
    EXPECT_EQ(seen(0.5, 0.5), QColor(Qt::red));
}

TEST_F(Painting, whoWantsToBeAskedIsAsked)
{
    PaintPreferences::instance()->setBakeBehavior(text("Ask"));
    OssSnImageSetNodeBase *other = paintNode();
    history()->clear();
    stroke({0.2, 0.5}, {0.8, 0.5});

    answer(QMessageBox::Cancel);
    EXPECT_FALSE(m_session->setNode(other));
    EXPECT_EQ(m_session->node(), m_paint);
    EXPECT_TRUE(hasPaint());

    answer(QMessageBox::No);
    m_canvas->handleBakeBehavior(images());
    EXPECT_TRUE(hasPaint()) << "left out, and kept";
    OssApplication::setPopupsAllowed(false);
    EXPECT_EQ(seen(0.5, 0.5).alpha(), 0);

    answer(QMessageBox::No);
    EXPECT_TRUE(m_session->setNode(other));
    EXPECT_FALSE(hasPaint());
    EXPECT_TRUE(images()->pixels().isEmpty());
    history()->undo();
    EXPECT_TRUE(hasPaint()) << "clearing can be undone";

    answer(QMessageBox::Yes);
    m_canvas->handleBakeBehavior(images());
    EXPECT_FALSE(images()->pixels().isEmpty());
}

TEST_F(Painting, whatReadsTheImagesGetsFreshPaintToo)
{
    OssSnBaseNode *grade = add("Adjust/Invert");
    ASSERT_TRUE(wire(m_paint, grade));
    stroke({0.2, 0.5}, {0.8, 0.5});
    OssSnBaseNode *apart = add("Procedural/Color");
    seen(0.5, 0.5, 1001, apart);
    EXPECT_TRUE(hasPaint()) << "nothing of it was asked for";
    m_canvas->handleBakeBehavior(nullptr);
    m_canvas->handleBakeBehavior(paintNode()->imageSet());
    EXPECT_TRUE(hasPaint()) << "other images";
    EXPECT_EQ(seen(0.5, 0.5, 1001, grade), QColor(Qt::cyan));
    EXPECT_FALSE(hasPaint());
}

TEST_F(Painting, aStrokeInHandCanBeTakenBackAndIsNoStep)
{
    stroke({0.2, 0.2}, {0.3, 0.2});
    const OssEvPaintBuffer::Tiles tiles = m_session->buffer().tiles();
    ASSERT_TRUE(m_session->begin(QPointF(0.5, 0.5)));
    m_session->moveTo({1.5, 0.5});
    history()->undo();
    EXPECT_TRUE(m_session->isPainting()) << "nothing is undone below a stroke";
    m_session->cancel();
    EXPECT_EQ(m_session->buffer().tiles(), tiles);
    EXPECT_EQ(undoCount(), 1);
    m_session->clear();
    EXPECT_FALSE(hasPaint());
    EXPECT_EQ(history()->undoText(), text("Clear Paint"));
    history()->undo();
    EXPECT_EQ(m_session->buffer().tiles(), tiles);
}

TEST_F(Painting, aHandThatIsFasterThanItsPaintMakesTheSameStrokeAndKeepsItsAlongs)
{
    images()->setResolution(1024);
    OssSnImageSetNodeBase *fine = paintNode();
    fine->imageSet()->setResolution(2048); // which paints for itself
    history()->clear();
    ASSERT_TRUE(m_session->setAlong({fine}));
    setBrush(Qt::red, false, 150.0);
    const auto painted = [this](const auto &move) {
        EXPECT_TRUE(m_session->begin({{0.2, 0.5}}));
        for (int i = 1; i <= 40; ++i)
            move(QPointF(0.2 + 0.015 * i, 0.5 + 0.2 * std::sin(0.3 * i)));
        m_session->end();
        std::vector<OssEvPaintTile::Texel> row(1024);
        EXPECT_TRUE(m_session->buffer().readRow(1001, 1024, 0, 400, 1024, row.data()));
        EXPECT_EQ(undoCount(), 1);
        history()->undo();
        EXPECT_FALSE(m_session->hasPaint());
        return row;
    };
    const auto slow = painted([this](const QPointF &to) { m_session->moveTo(to); });
    const auto fast = painted([this](const QPointF &to) { m_session->follow(to, 1.0); });
    EXPECT_EQ(slow, fast);
    // What waits comes by itself, and goes with the stroke.
    EXPECT_TRUE(m_session->begin({{0.2, 0.5}}));
    for (int i = 1; i <= 40; ++i)
        m_session->follow({0.2 + 0.015 * i, 0.5}, 1.0);
    OssEvPaintTile::Texel there{};
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return m_session->buffer().readRow(1001, 1024, 800, 512, 1, &there) && there[3] > 0.9F;
    }));
    m_session->follow({0.9, 0.9}, 1.0);
    m_session->cancel();
    m_session->follow({0.9, 0.1}, 1.0);
    QCoreApplication::processEvents();
    EXPECT_FALSE(m_session->hasPaint());
    EXPECT_FALSE(history()->canUndo());
}

TEST_F(Painting, choosingANodeMakesItsImagesTheCurrentOnes)
{
    EXPECT_EQ(m_network->shadingContext()->currentImageSet(), images());
    ASSERT_NE(images()->channel(), nullptr);
    EXPECT_EQ(images()->channel()->shadingContext(), m_network->shadingContext());
    EXPECT_EQ(OssProjectManager::instance()->currentChannel(), images()->channel());
    EXPECT_EQ(OssCanvasManager::instance()->currentCanvas(), m_canvas.get());
}

TEST_F(Painting, paintIsAsFineAsItsImagesUntilThereIsSome)
{
    for (const int resolution : {64, 128, 2, 100000}) {
        images()->setResolution(resolution);
        EXPECT_EQ(m_session->texelsAcross(), std::clamp(images()->resolution(), 16, 16384))
            << resolution;
    }
    images()->setResolution(64);
    dab();
    images()->setResolution(256);
    EXPECT_EQ(m_session->texelsAcross(), 64) << "what is painted stays as it is";
    ASSERT_TRUE(m_session->bake());
    EXPECT_EQ(m_session->texelsAcross(), 256);
    images()->setResolution(32);
    EXPECT_EQ(m_session->texelsAcross(), 64) << "as the pixels that were baked";
    dab();
    EXPECT_EQ(m_session->buffer().resolution(), 64);
    m_session->clear();
    ASSERT_TRUE(m_session->setNode(nullptr));
    EXPECT_EQ(m_session->texelsAcross(), m_session->buffer().resolution());
}

TEST_F(Painting, anotherObjectEndsPaintingOnThisOneAndAnotherGraphDoesNot)
{
    auto *networks = OssShaderNetworkManager::instance();
    dab();
    OssSnGroupNode *group = m_network->groupNodes({add("Filter/Blur")});
    networks->setCurrentViewNetwork(group->groupNetwork());
    QCoreApplication::processEvents();
    EXPECT_EQ(m_session->node(), m_paint);
    EXPECT_TRUE(hasPaint());
    OssGeoEntity *other = m_project->addEntity(text("Other"));
    ASSERT_TRUE(other && !other->shadingGroups().isEmpty());
    networks->setCurrentShaderNetwork(other->shadingGroups().first()->network());
    QCoreApplication::processEvents();
    EXPECT_EQ(m_session->node(), nullptr);
    EXPECT_FALSE(hasPaint());
    EXPECT_FALSE(images()->pixels().isEmpty()) << "it was baked";
}

TEST_F(Painting, undoneBakingBringsPaintBackAsFineAsItWas)
{
    dab();
    const OssEvPaintBuffer::Tiles tiles = m_session->buffer().tiles();
    ASSERT_TRUE(m_session->bake());
    images()->setResolution(256);
    dab();
    EXPECT_EQ(m_session->buffer().resolution(), 256);
    while (m_session->buffer().tiles() != tiles && history()->canUndo())
        history()->undo();
    EXPECT_EQ(m_session->buffer().resolution(), 64);
    EXPECT_TRUE(hasPaint());
}

TEST_F(Painting, strokesOutliveTheirSession)
{
    dab();
    const int count = undoCount();
    m_session.reset();
    history()->undo();
    EXPECT_EQ(history()->index(), count - 1);
    history()->redo();
    EXPECT_EQ(history()->index(), count);
}

} // namespace
