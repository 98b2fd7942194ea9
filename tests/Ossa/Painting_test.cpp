#include "../support/ModelFixture.h"
#include "Ossa/Viewer/PaintPreferences.h"
#include "Ossa/Viewer/PaintSession.h"
#include "Ossa/Viewer/UvView.h"
#include "Ossa/Viewer/ViewerPictures.h"
#include "OssCore/Program/OssSettings.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Nodes/OssSnImageSetNodeBase.h"
#include "OssModel/Objects/OssCanvasManager.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssShadingContext.h"
#include "OssModel/Project/OssAutosave.h"

#include <QAbstractButton>
#include <QDir>
#include <QImage>
#include <QMessageBox>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>

namespace {

/// The paint buffer between the brush and the images.
class Painting : public ModelFixture
{
protected:
    static constexpr int Resolution = 64;

    void SetUp() override
    {
        ModelFixture::SetUp();
        m_popups = OssApplication::popupsAllowed();
        OssApplication::setPopupsAllowed(false);
        m_network->geoEntity()->setGeometry(QStringLiteral("cube"));
        m_paint = paintNode();
        m_session = std::make_unique<PaintSession>();
        m_canvas = std::make_unique<UvView>(&m_pictures, m_session.get());
        m_pictures.setPaint(&m_session->buffer());
        QObject::connect(m_session.get(), &PaintSession::painted, &m_pictures,
                         &ViewerPictures::showPaint);
        setBrush(Qt::red);
        ASSERT_TRUE(m_session->setNode(m_paint));
        OssUndoManager::instance()->clear();
    }

    void TearDown() override
    {
        PaintPreferences::instance()->resetBakeBehavior();
        ModelFixture::TearDown();
        m_canvas.reset();
        m_session.reset();
        OssApplication::setPopupsAllowed(m_popups);
    }

    OssSnImageSetNodeBase *paintNode()
    {
        auto *node = qobject_cast<OssSnImageSetNodeBase *>(m_network->createPaintableNode({}));
        EXPECT_TRUE(node && node->imageSet());
        node->imageSet()->setResolution(Resolution);
        return node;
    }

    void setBrush(const QColor &color, bool erases = false, double radius = 6.0)
    {
        OssEvBrush brush;
        brush.color = {float(color.redF()), float(color.greenF()), float(color.blueF())};
        brush.radius = radius;
        brush.hardness = 1.0;
        brush.erases = erases;
        m_session->setBrush(brush);
    }

    void stroke(const QPointF &from, const QPointF &to)
    {
        ASSERT_TRUE(m_session->begin(from));
        m_session->moveTo(to);
        m_session->end();
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
        const OssResult baked = OssEvaluationService::instance()->bake(
            job, m_folder.filePath(QStringLiteral("seen.<UDIM>.png")));
        EXPECT_TRUE(baked) << qPrintable(baked.error());
        return QImage(m_folder.filePath(QStringLiteral("seen.%1.png").arg(patch)))
            .pixelColor(int(u * Resolution), int((1.0 - v) * Resolution));
    }

    bool hasPaint() const { return !m_session->buffer().isEmpty(); }

    static OssUndoManager *history() { return OssUndoManager::instance(); }

    static void answerWith(QMessageBox::StandardButton button)
    {
        OssApplication::setPopupsAllowed(true);
        QTimer::singleShot(0, [button] {
            auto *box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
            ASSERT_NE(box, nullptr);
            QTest::mouseClick(box->button(button), Qt::LeftButton);
        });
    }

    QTemporaryDir m_folder;
    OssSnImageSetNodeBase *m_paint = nullptr;
    ViewerPictures m_pictures;
    std::unique_ptr<PaintSession> m_session;
    std::unique_ptr<UvView> m_canvas;
    bool m_popups = true;
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
    EXPECT_EQ(history()->undoText(), QStringLiteral("Bake Paint"));
    EXPECT_EQ(seen(0.25, 0.5), QColor(Qt::red));
    EXPECT_EQ(seen(0.5, 0.3), QColor(Qt::green));
    EXPECT_EQ(seen(0.1, 0.1).alpha(), 0);
    const QByteArray end = m_project->stateHash();

    history()->undo();
    EXPECT_EQ(m_session->buffer().tiles(), tiles);
    EXPECT_TRUE(m_paint->imageSet()->pixels().isEmpty());
    history()->undo();
    EXPECT_TRUE(hasPaint()) << "the red stroke";
    history()->undo();
    EXPECT_FALSE(hasPaint());
    EXPECT_EQ(m_project->stateHash(), start);
    while (history()->canRedo())
        history()->redo();
    EXPECT_FALSE(hasPaint());
    EXPECT_EQ(m_project->stateHash(), end);
}

TEST_F(Painting, laterPaintIsComposedOverWhatWasBaked)
{
    stroke({0.2, 0.5}, {0.8, 0.5});
    ASSERT_TRUE(m_session->bake());
    const QMap<int, QString> before = m_paint->imageSet()->pixels();
    setBrush(Qt::blue);
    stroke({0.5, 0.5}, {0.5, 0.5});
    setBrush(Qt::black, true);
    stroke({0.7, 0.5}, {0.7, 0.5});
    ASSERT_TRUE(m_session->bake());
    EXPECT_EQ(seen(0.3, 0.5), QColor(Qt::red));
    EXPECT_EQ(seen(0.5, 0.5), QColor(Qt::blue));
    EXPECT_EQ(seen(0.7, 0.5).alpha(), 0);
    EXPECT_EQ(before.keys(), m_paint->imageSet()->pixels().keys()) << "no other patch was touched";
}

TEST_F(Painting, aStrokeOverTheBorderOfPatchesIsBakedIntoBoth)
{
    // Sides of the cube: 1001 and 1002 side by side, 1007 is not there.
    stroke({0.9, 0.5}, {1.1, 0.5});
    ASSERT_TRUE(m_session->bake());
    EXPECT_EQ(m_paint->imageSet()->pixels().keys(), (QList<int>{1001, 1002}));
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
    const QString path = m_folder.filePath(QStringLiteral("Painted.ossa"));
    const OssResult saved = OssProjectManager::instance()->saveProjectAs(path);
    ASSERT_TRUE(saved) << qPrintable(saved.error());
    EXPECT_FALSE(hasPaint());
    EXPECT_FALSE(OssProjectManager::instance()->isModified());
    const QString name = m_paint->name();
    const OssResult opened = OssProjectManager::instance()->openProject(path);
    ASSERT_TRUE(opened) << qPrintable(opened.error());
    m_network = OssProjectManager::instance()->currentProject()->shadingGroups().first()->network();
    m_paint = qobject_cast<OssSnImageSetNodeBase *>(m_network->node(name));
    ASSERT_NE(m_paint, nullptr);
    EXPECT_EQ(seen(0.5, 0.5), QColor(Qt::red));
    EXPECT_EQ(m_session->node(), nullptr) << "of the project before";
}

TEST_F(Painting, aCrashLosesNoPaintThatACopyWasTakenOf)
{
    const QString recovery = m_folder.filePath(QStringLiteral("recovery"));
    auto autosave = std::make_unique<OssAutosave>(recovery);
    stroke({0.2, 0.5}, {0.8, 0.5});
    ASSERT_TRUE(m_session->bake());
    setBrush(Qt::green);
    stroke({0.5, 0.2}, {0.5, 0.8});
    const QByteArray state = m_project->stateHash();
    const auto text = [this] {
        QBuffer buffer;
        buffer.open(QIODevice::WriteOnly);
        OssSerializer serializer(&buffer);
        m_project->save(serializer, m_project->name(), {});
        return buffer.data();
    };
    const QByteArray before = text();
    ASSERT_TRUE(QTest::qWaitFor([&] { return text() != before; }, 10000));
    EXPECT_EQ(m_project->stateHash(), state);
    EXPECT_TRUE(hasPaint());
    EXPECT_EQ(undoCount(), 3);
    autosave->takeCopy();
    autosave->waitForDisk();
    autosave.reset();
    const QString name = m_paint->name();
    m_session->clear();
    EXPECT_EQ(text(), before) << "no copy of what is cleared is named any more";
    OssProjectManager::instance()->newProject(QStringLiteral("Next"));

    const QVector<OssRecovery::Entry> entries = OssRecovery::entries(recovery);
    ASSERT_EQ(entries.size(), 1);
    ASSERT_TRUE(OssAutosave(recovery).restore(entries.first()));
    m_project = OssProjectManager::instance()->currentProject();
    m_network = m_project->shadingGroups().first()->network();
    m_paint = qobject_cast<OssSnImageSetNodeBase *>(m_network->node(name));
    EXPECT_EQ(seen(0.5, 0.3), QColor(Qt::green));
    EXPECT_EQ(seen(0.25, 0.5), QColor(Qt::red));
}

TEST_F(Painting, paintThatCannotBeBakedStaysAndNothingIsSaved)
{
    stroke({0.2, 0.5}, {0.8, 0.5});
    const QDir folder(OssSettings::folderPath());
    QDir(folder.filePath(QStringLiteral("pixels"))).removeRecursively();
    QFile inTheWay(folder.filePath(QStringLiteral("pixels")));
    ASSERT_TRUE(inTheWay.open(QIODevice::WriteOnly));
    const OssResult saved = OssProjectManager::instance()->saveProjectAs(
        m_folder.filePath(QStringLiteral("Painted.ossa")));
    {
        const ExpectedLog told("Bake Paint: ");
        EXPECT_FALSE(m_session->setNode(paintNode()));
        EXPECT_EQ(m_session->node(), m_paint);
    }
    {
        const ExpectedLog told("Bake Paint: ");
        m_session->handleBakeBehavior(m_paint->imageSet());
    }
    history()->undo(); // the other node
    inTheWay.remove();
    EXPECT_FALSE(saved);
    EXPECT_TRUE(saved.error().contains(QStringLiteral("Cannot make the folder")))
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
    while (history()->canUndo())
        history()->undo();
    EXPECT_TRUE(other->imageSet()->pixels().isEmpty());
    while (history()->canRedo())
        history()->redo();
    EXPECT_EQ(seen(0.5, 0.5), QColor(Qt::red));
}

TEST_F(Painting, whoWantsToBeAskedIsAsked)
{
    PaintPreferences::instance()->setBakeBehavior(QStringLiteral("Ask"));
    OssSnImageSetNodeBase *other = paintNode();
    history()->clear();
    stroke({0.2, 0.5}, {0.8, 0.5});

    answerWith(QMessageBox::Cancel);
    EXPECT_FALSE(m_session->setNode(other));
    EXPECT_EQ(m_session->node(), m_paint);
    EXPECT_TRUE(hasPaint());

    answerWith(QMessageBox::No);
    m_canvas->handleBakeBehavior(m_paint->imageSet());
    EXPECT_TRUE(hasPaint()) << "left out, and kept";
    OssApplication::setPopupsAllowed(false);
    EXPECT_EQ(seen(0.5, 0.5).alpha(), 0);

    answerWith(QMessageBox::No);
    EXPECT_TRUE(m_session->setNode(other));
    EXPECT_FALSE(hasPaint());
    EXPECT_TRUE(m_paint->imageSet()->pixels().isEmpty());
    history()->undo();
    EXPECT_TRUE(hasPaint()) << "clearing can be undone";

    answerWith(QMessageBox::Yes);
    m_canvas->handleBakeBehavior(m_paint->imageSet());
    EXPECT_FALSE(m_paint->imageSet()->pixels().isEmpty());
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
    ASSERT_TRUE(m_session->begin({0.5, 0.5}));
    m_session->moveTo({1.5, 0.5});
    history()->undo();
    EXPECT_TRUE(m_session->isPainting()) << "nothing is undone below a stroke";
    m_session->cancel();
    EXPECT_EQ(m_session->buffer().tiles(), tiles);
    EXPECT_EQ(undoCount(), 1);
    m_session->clear();
    EXPECT_FALSE(hasPaint());
    EXPECT_EQ(history()->undoText(), QStringLiteral("Clear Paint"));
    history()->undo();
    EXPECT_EQ(m_session->buffer().tiles(), tiles);
}

TEST_F(Painting, anEraserOverImagesIsBakedInItsOwnStep)
{
    stroke({0.2, 0.5}, {0.8, 0.5});
    ASSERT_TRUE(m_session->bake());
    setBrush(Qt::black, true);
    m_session->setBakesErasing(true);
    const int steps = undoCount();
    stroke({0.5, 0.5}, {0.5, 0.5});
    EXPECT_FALSE(hasPaint());
    EXPECT_EQ(undoCount(), steps + 1);
    EXPECT_EQ(seen(0.5, 0.5).alpha(), 0);
    history()->undo();
    EXPECT_EQ(seen(0.5, 0.5), QColor(Qt::red));
    stroke({1.5, 0.5}, {1.5, 0.5});
    EXPECT_TRUE(hasPaint()) << "there are no images to erase from";
}

TEST_F(Painting, paintIsAsFineAsTheImagesThatItLiesOn)
{
    OssEvaluationService::BakeJob job;
    OssSnBaseNode *color = add("Procedural/Color");
    job.node = color;
    job.outputPoint = color->prefferedOutputPoint();
    job.entity = m_network->geoEntity();
    job.patches = {1001};
    job.resolution = 4 * Resolution;
    ASSERT_TRUE(OssEvaluationService::instance()->bakeInto(m_paint->imageSet(), job));
    stroke({0.5, 0.5}, {0.5, 0.5});
    EXPECT_EQ(m_session->buffer().resolution(), 4 * Resolution);
}

TEST_F(Painting, choosingANodeMakesItsImagesTheCurrentOnes)
{
    const OssImageSet *images = m_paint->imageSet();
    EXPECT_EQ(m_network->shadingContext()->currentImageSet(), images);
    ASSERT_NE(images->channel(), nullptr);
    EXPECT_EQ(images->channel()->shadingContext(), m_network->shadingContext());
    EXPECT_EQ(OssProjectManager::instance()->currentChannel(), images->channel());
    EXPECT_EQ(OssCanvasManager::instance()->currentCanvas(), m_canvas.get());
}

// --- with the mouse

TEST_F(Painting, theCanvasPaintsWhereThePointerGoes)
{
    m_pictures.begin({1001, 1002}, Resolution, {});
    m_canvas->resize(400, 250);
    m_canvas->show();
    m_canvas->frameAll();
    QSignalSpy shown(&m_pictures, &ViewerPictures::changed);
    const QPoint left(m_canvas->width() / 4, m_canvas->height() / 2);
    const QPoint right(3 * m_canvas->width() / 4, m_canvas->height() / 2);
    const auto drag = [&](Qt::MouseButton button, const QPoint &from, const QPoint &to) {
        QTest::mousePress(m_canvas.get(), button, {}, from);
        // QTest's moves bear no buttons.
        QMouseEvent move(QEvent::MouseMove, to, button, button, {});
        QApplication::sendEvent(m_canvas.get(), &move);
        QTest::mouseRelease(m_canvas.get(), button, {}, to);
    };
    drag(Qt::LeftButton, left, left);
    EXPECT_FALSE(hasPaint()) << "not while looking";
    m_canvas->setPainting(true);
    drag(Qt::LeftButton, left, right);
    EXPECT_EQ(m_session->buffer().patches(), (std::vector<int>{1001, 1002}));
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(m_pictures.picture(1001).pixelColor(50, 32), QColor(Qt::red));
    EXPECT_EQ(m_pictures.picture(1001).pixelColor(50, 10).alpha(), 0);
    for (const auto &change : shown)
        EXPECT_LT(change.at(1).toRect().height(), 20) << "only where the brush was";
    history()->undo();
    EXPECT_EQ(m_pictures.picture(1001).pixelColor(50, 32).alpha(), 0);
    history()->redo();

    const QImage before = m_pictures.picture(1001);
    drag(Qt::MiddleButton, left, right);
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(m_pictures.picture(1001), before);

    const double radius = m_session->brush().radius;
    QTest::keyClick(m_canvas.get(), Qt::Key_BracketRight);
    EXPECT_GT(m_session->brush().radius, radius);
    QTest::keyClick(m_canvas.get(), Qt::Key_BracketLeft);
    EXPECT_DOUBLE_EQ(m_session->brush().radius, radius);
    QTest::keyClick(m_canvas.get(), Qt::Key_E);
    EXPECT_TRUE(m_session->brush().erases);
}

TEST_F(Painting, picturesShowPaintOverTheValuesBeneath)
{
    m_pictures.begin({1001}, Resolution, {});
    const auto tile = std::make_shared<OssEvTile>(4, OssEvTile::Format::Half,
                                                  std::array<float, 4>{0.0F, 0.0F, 1.0F, 1.0F});
    ViewerLook look;
    look.raw = true;
    m_pictures.setLook(look);
    OssEvBrush brush = m_session->brush();
    brush.opacity = 0.5;
    m_session->setBrush(brush);
    stroke({0.5, 0.5}, {0.5, 0.5});
    // A tile that comes later has the paint on it as well.
    m_pictures.setTile(1001, Resolution, {0, 0}, ViewerPixels::picture(*tile, look), tile);
    const QRgb half = m_pictures.picture(1001).pixel(32, 32);
    EXPECT_NEAR(qRed(half), 128, 1);
    EXPECT_NEAR(qBlue(half), 128, 1);
    EXPECT_EQ(m_pictures.picture(1001).pixelColor(5, 5), QColor(Qt::blue));
    QVector<float> values;
    ASSERT_TRUE(m_pictures.values(1001, {32, 32}, &values));
    EXPECT_NEAR(values.at(0), 0.5F, 1e-3F);

    // Behind other nodes an eraser shows what the fresh paint lies on, on its own also below.
    brush.opacity = 1.0;
    brush.erases = true;
    m_session->setBrush(brush);
    stroke({0.5, 0.5}, {0.5, 0.5});
    EXPECT_EQ(m_pictures.picture(1001).pixelColor(32, 32), QColor(Qt::blue));
    m_pictures.setShowsOwnImages(true);
    m_pictures.showPaint(1001, {0.0, 0.0, 1.0, 1.0});
    EXPECT_EQ(m_pictures.picture(1001).pixelColor(32, 32).alpha(), 0);
}

} // namespace
