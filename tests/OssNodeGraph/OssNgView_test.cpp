#include "OssNodeGraph/View/OssNgView.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "ViewFixture.h"

#include <QKeyEvent>

TEST_F(OssNgViewTest, framingTheViewportsRectangleChangesNothing)
{
    for (const qreal factor : {1.0, 0.37, 1.7, 0.813, 2.0 / 3.0}) {
        view.scaleView(factor);
        view.scrollBy({37.0, -12.0});
        const QRectF before = view.viewportInSceneCoords();
        const QTransform transform = view.viewportTransform();
        view.scaleView(1.31);
        view.fitInView(before, Qt::KeepAspectRatio);
        EXPECT_EQ(view.viewportTransform(), transform) << factor;
        EXPECT_EQ(view.viewportInSceneCoords(), before) << factor;
    }
}

TEST_F(OssNgViewTest, zoomingOutAndInLandsExactly)
{
    view.scaleView(0.7391);
    for (const double factor : {1.1, 1.25, 3.0, 7.7}) {
        const qreal before = view.zoom();
        for (int i = 0; i < 5; ++i)
            view.zoomOut(factor, QGraphicsView::AnchorViewCenter);
        for (int i = 0; i < 5; ++i)
            view.zoomIn(factor, QGraphicsView::AnchorViewCenter);
        EXPECT_EQ(view.zoom(), before) << factor;
    }
}

TEST_F(OssNgViewTest, scaleViewKeepsTheCentre)
{
    view.setTransformationAnchor(QGraphicsView::AnchorUnderMouse);
    const QPointF center = middle();
    view.scaleView(2.0);
    EXPECT_LT(QLineF(center, middle()).length(), 1.0);
}

TEST_F(OssNgViewTest, clickSelectsAndShiftClickExtends)
{
    click(body(a));
    EXPECT_TRUE(a->isSelected());
    click(body(b), Qt::ShiftModifier);
    EXPECT_TRUE(a->isSelected() && b->isSelected());
    click(body(a));
    EXPECT_TRUE(a->isSelected() && !b->isSelected());
    click({250, 300});
    EXPECT_TRUE(scene.selectedItems().isEmpty());
}

TEST_F(OssNgViewTest, wheelZoomsAtThePointer)
{
    const QPointF fixed(120.0, 90.0);
    const QPointF under = view.toScene(fixed);
    QWheelEvent wheel(fixed, view.viewport()->mapToGlobal(fixed.toPoint()), {}, {0, 120},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(view.viewport(), &wheel);
    EXPECT_GT(view.zoom(), 1.0);
    EXPECT_LT(QLineF(view.toScene(fixed), under).length(), 1.0);
}

TEST_F(OssNgViewTest, hiddenNodesHideTheirWiresAndAreNotFramed)
{
    const OssNgEdge *edge = b->attachInput(In, a, Out);
    a->setVisible(false);
    EXPECT_EQ(view.visibleNodeBounds(), b->sceneBoundingRect());
    EXPECT_FALSE(edge->isVisible());
    EXPECT_EQ(view.sceneIndex()->edgeAt(edge->markerPosition(), 5.0), nullptr);
    a->setVisible(true);
    EXPECT_TRUE(edge->isVisible());
    EXPECT_EQ(view.sceneIndex()->edgeAt(edge->markerPosition(), 5.0), edge);
    for (OssNgNode *node : QList<OssNgNode *>{a, b})
        node->setVisible(false);
    EXPECT_TRUE(view.visibleNodeBounds().isEmpty());
}

TEST_F(OssNgViewTest, minimapMovesTheView)
{
    view.setMinimapVisible(true);
    QCoreApplication::processEvents();
    view.grab();
    const QPointF spot = view.minimapRect().center() + QPointF(20, 5);
    const QPointF wanted = view.minimapToScene(spot);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, spot.toPoint());
    EXPECT_LT(QLineF(middle(), wanted).length(), 5.0);
    view.resize(300, 200);
    EXPECT_FALSE(view.isMinimapVisible());
}

TEST_F(OssNgViewTest, selectionIsSortedFromTopToBottom)
{
    OssNgEdge *edge = b->attachInput(In, a, Out);
    a->setPosition({0, 500});
    edge->setSelected(true);
    a->setSelected(true);
    b->setSelected(true);
    EXPECT_EQ(view.sortedSelection(), (QList<QGraphicsItem *>{b, a, edge}));
}

TEST_F(OssNgViewTest, newColoursReachTheScreen)
{
    OssNgStyle *style = OssNgStyle::instance();
    const QColor old = style->color(OssNgStyle::Role::Body);
    const QPoint spot = at(a->pos() + a->bodyRect().topLeft() + QPointF(100, 45));
    view.grab();
    view.grab();
    EXPECT_EQ(shown().pixelColor(spot), old);
    style->setColor(OssNgStyle::Role::Body, Qt::darkGreen);
    EXPECT_EQ(shown().pixelColor(spot), QColor(Qt::darkGreen));
    style->setColor(OssNgStyle::Role::Body, old);
}

TEST_F(OssNgViewTest, fileOfTheGraphShowsWhatTheViewShows)
{
    b->attachInput(In, a, Out);
    const QImage file = picture(&scene, view.viewportInSceneCoords(), view.viewport()->size());
    const QImage screen = shown().convertToFormat(QImage::Format_RGB32);
    int different = 0;
    for (int y = 0; y < file.height(); ++y) {
        for (int x = 0; x < file.width(); ++x)
            different += std::abs(qGreen(file.pixel(x, y)) - qGreen(screen.pixel(x, y))) > 40;
    }
    EXPECT_LT(different, file.width() * file.height() / 500);
}

TEST_F(OssNgViewTest, everyLevelOfDetailShowsTheNode)
{
    a->setCategory(text("Layer"));
    const QColor header = a->mainColor();
    for (const qreal zoom : {2.0, 1.0, 0.6, 0.4, 0.2, 0.1}) {
        view.scaleView(zoom / view.zoom());
        view.centerViewOn(a->sceneBoundingRect().center(), false);
        for (int pass = 0; pass < 3; ++pass) { // direct, into the cache, from the cache
            const QImage image = shown();
            const QPointF spot = a->pos() + a->bodyRect().topLeft() + QPointF(100, 6);
            const QColor seen = image.pixelColor(at(spot));
            const int away = std::abs(seen.red() - header.red())
                             + std::abs(seen.green() - header.green())
                             + std::abs(seen.blue() - header.blue());
            EXPECT_LT(away, 90) << "zoom " << zoom << " pass " << pass;
        }
    }
}

TEST_F(OssNgViewTest, portsAreDrawnOnlyWhereThereIsRoomForThem)
{
    const auto drawn = [this] {
        view.grab();
        view.grab();
        return shown(); // from the cache
    };
    for (const qreal zoom : {1.0, 0.55, 0.45}) {
        view.scaleView(zoom / view.zoom());
        const QImage plain = drawn();
        a->setLitPort(Out, false);
        EXPECT_EQ(drawn() != plain, zoom >= OssNgStyle::FullDetail) << zoom;
        a->setLitPort({}, false);
        EXPECT_EQ(drawn(), plain) << zoom;
        a->setSelected(true);
        EXPECT_NE(drawn(), plain) << zoom;
        a->setSelected(false);
    }
}

/// What of a widget is painted.
class PaintWatch : public QObject
{
public:
    explicit PaintWatch(QWidget *widget) { widget->installEventFilter(this); }

    QRegion painted;

    bool eventFilter(QObject *, QEvent *event) override
    {
        if (event->type() == QEvent::Paint)
            painted += static_cast<QPaintEvent *>(event)->region();
        return false;
    }
};

TEST_F(OssNgViewTest, movingAWireRepaintsOnlyWhatItCovers)
{
    b->attachInput(In, a, Out);
    QCoreApplication::processEvents();

    PaintWatch watch(view.viewport());
    b->setPosition(b->pos() + QPointF(5, 5));
    QCoreApplication::processEvents();
    EXPECT_FALSE(watch.painted.isEmpty());
    EXPECT_FALSE(watch.painted.contains(QPoint(5, 5)));
}

TEST_F(OssNgViewTest, keysThatAreNotUsedStayIgnored)
{
    QKeyEvent unused(QEvent::KeyPress, Qt::Key_Control, Qt::NoModifier);
    unused.ignore();

    struct Open : OssNgView
    {
        using OssNgView::keyPressEvent;
    } open;

    open.keyPressEvent(&unused);
    EXPECT_FALSE(unused.isAccepted());
    QKeyEvent used(QEvent::KeyPress, Qt::Key_F10, Qt::ShiftModifier);
    used.ignore();
    open.keyPressEvent(&used);
    EXPECT_TRUE(used.isAccepted());
}

TEST_F(OssNgViewTest, whereANodeWasIsPaintedAgain)
{
    PaintWatch watch(view.viewport());
    for (const qreal zoom : {1.0, 0.37, 0.2}) {
        view.scaleView(zoom / view.zoom());
        OssNgExtendedNode *fresh = scene.add("C", {250, 100});
        QCoreApplication::processEvents();
        const QRect place = view.mapFromScene(fresh->sceneBoundingRect()).boundingRect();
        ASSERT_TRUE(view.viewport()->rect().contains(place));
        watch.painted = QRegion();
        fresh->setSelected(true);
        fresh->setPosition({400, 300});
        fresh->setSelected(false);
        QCoreApplication::processEvents();
        EXPECT_TRUE((QRegion(place) - watch.painted).isEmpty()) << "moved at " << zoom;
        const QRect now = view.mapFromScene(fresh->sceneBoundingRect()).boundingRect();
        watch.painted = QRegion();
        scene.removeItem(fresh);
        QCoreApplication::processEvents();
        EXPECT_TRUE((QRegion(now) - watch.painted).isEmpty()) << "removed at " << zoom;
    }
}
