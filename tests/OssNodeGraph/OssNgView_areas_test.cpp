#include "OssCore/Undo/OssUndoManager.h"
#include "ViewFixture.h"

// Gestures that draw a rectangle, and how far the view goes.

TEST_F(OssNgViewTest, resizedBackdropsKeepTheirLeastSizeAndTheOtherEdges)
{
    const QSizeF least = OssNgBackdropNode::minimumSize();
    const QRectF area(-100, 150, 400, 300);
    auto *backdrop = addBackdrop(area);

    const struct
    {
        QPointF from;
        QPointF way;
        QRectF wanted;
    } cases[] = {
        {{-98, 300}, {900, 0}, {QPointF(300 - least.width(), 150), QSizeF(least.width(), 300)}},
        {{298, 300}, {-900, 0}, {area.topLeft(), QSizeF(least.width(), 300)}},
        {{100, 152}, {0, 900}, {QPointF(-100, 450 - least.height()), QSizeF(400, least.height())}},
        {{100, 448}, {0, -900}, {area.topLeft(), QSizeF(400, least.height())}},
        {{298, 448}, {40, 20}, {area.topLeft(), QSizeF(440, 320)}},
        {{-98, 152}, {-40, -20}, {QPointF(-140, 130), QSizeF(440, 320)}},
    };

    for (const auto &c : cases) {
        backdrop->setPosition(area.topLeft());
        backdrop->setRect({QPointF(), area.size()});
        OssUndoManager::instance()->clear();
        drag(c.from, c.from + c.way);
        EXPECT_EQ(backdrop->sceneBoundingRect(), c.wanted) << &c - cases;
        EXPECT_EQ(OssUndoManager::instance()->count(), 1);
        OssUndoManager::instance()->undo();
        EXPECT_EQ(backdrop->sceneBoundingRect(), area);
        OssUndoManager::instance()->redo();
        EXPECT_EQ(backdrop->sceneBoundingRect(), c.wanted);
        OssUndoManager::instance()->undo();
        press(c.from);
        move(c.from + c.way);
        key(Qt::Key_Escape);
        release(c.from + c.way);
        EXPECT_EQ(backdrop->sceneBoundingRect(), area) << "taken back";
    }
    OssUndoManager::instance()->clear();
    drag(cases[0].from, cases[0].from);
    EXPECT_EQ(OssUndoManager::instance()->count(), 0) << "a click is no step";
}

TEST_F(OssNgViewTest, rubberBandsTakeWiresOnlyWhereNoNodeIsMeant)
{
    scene.connectNodes(a, Out, b, In);
    const OssNgEdge *wire = b->input(In);
    const QRectF gap(QPointF(a->sceneBoundingRect().right() + 10, -40), QSizeF(60, 200));
    drag(gap.topLeft(), gap.bottomRight());
    EXPECT_TRUE(wire->isSelected());
    drag(gap.topLeft(), {290, 300});
    EXPECT_TRUE(wire->isSelected());
    drag(gap.topLeft(), {360, 100});
    EXPECT_TRUE(b->isSelected());
    EXPECT_FALSE(wire->isSelected()) << "a node is meant";
    drag({250, 300}, {260, 310});
    EXPECT_TRUE(scene.selectedItems().isEmpty());
}

TEST_F(OssNgViewTest, rubberBandsMeanABackdropOnlyWhenItLiesInsideWhole)
{
    const auto *backdrop = addBackdrop({0, 150, 200, 120});
    drag({-40, 130}, {100, 220});
    EXPECT_FALSE(backdrop->isSelected());
    drag({-40, 130}, {220, 290});
    EXPECT_TRUE(backdrop->isSelected());
}

TEST_F(OssNgViewTest, shiftAddsToTheSelectionAndEscapeGivesItBack)
{
    a->setSelected(true);
    const QPointF from(290, 200);
    const auto band = [&](Qt::KeyboardModifiers modifiers) {
        press(from, Qt::LeftButton, modifiers);
        move({330, 120});
        move({400, 60});
    };
    band(Qt::ShiftModifier);
    release({400, 60});
    EXPECT_TRUE(a->isSelected() && b->isSelected());
    b->setSelected(false);
    band({});
    EXPECT_TRUE(!a->isSelected() && b->isSelected());
    key(Qt::Key_Escape);
    EXPECT_TRUE(a->isSelected() && !b->isSelected());
    release({400, 60});
    EXPECT_TRUE(a->isSelected());
}

TEST_F(OssNgViewTest, zoomEndsWhereNothingCouldBeSeen)
{
    const struct
    {
        std::function<void()> zoom;
        double least;
        double most;
    } cases[] = {{[&] { view.zoomIn(); }, 1.5, 64.0}, {[&] { view.zoomOut(); }, 0.001, 0.5}};

    for (const auto &c : cases) {
        for (int i = 0; i < 80; ++i)
            c.zoom();
        const double before = view.transform().m11();
        EXPECT_GT(before, c.least);
        EXPECT_LT(before, c.most);
        c.zoom();
        EXPECT_EQ(view.transform().m11(), before);
    }
}

TEST_F(OssNgViewTest, aKeyAsksForTheMenu)
{
    key(Qt::Key_F10);
    EXPECT_EQ(view.menus, 0);
    key(Qt::Key_F10, Qt::ShiftModifier);
    EXPECT_EQ(view.menus, 1);
}

TEST_F(OssNgViewTest, everyWayOfZoomingKeepsThePointThatWasChosen)
{
    const QPoint pointer(200, 150);
    QCursor::setPos(view.viewport()->mapToGlobal(pointer));
    const auto wheel = [&] {
        QWheelEvent event(pointer, view.viewport()->mapToGlobal(pointer), {}, {0, 120},
                          Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QCoreApplication::sendEvent(view.viewport(), &event);
    };
    const auto dragged = [&] {
        const QPointF start = view.toScene(pointer);
        press(start, Qt::MiddleButton, Qt::AltModifier);
        move(start + QPointF(60, 0), Qt::MiddleButton);
        release(start + QPointF(60, 0), Qt::MiddleButton);
    };
    const auto pinched = [&] {
        QNativeGestureEvent event(Qt::ZoomNativeGesture, nullptr, pointer, pointer, pointer, 0.3, 0,
                                  0);
        QCoreApplication::sendEvent(view.viewport(), &event);
    };
    const std::function<void()> ways[] = {wheel, dragged, pinched, [&] { view.zoomOut(); },
                                          [&] {
                                              view.zoomIn();
                                          }};
    for (const bool atPointer : {true, false}) {
        view.setTransformationAnchor(atPointer ? QGraphicsView::AnchorUnderMouse
                                               : QGraphicsView::AnchorViewCenter);
        const QPointF fixed = atPointer ? QPointF(pointer)
                                        : QRectF(view.viewport()->rect()).center();
        for (const auto &way : ways) {
            view.zoomAbout(1.0, fixed);
            const QPointF before = view.toScene(fixed);
            const qreal zoom = view.zoom();
            way();
            EXPECT_NE(view.zoom(), zoom) << &way - ways;
            const QPointF moved = (view.toScene(fixed) - before) * view.zoom();
            EXPECT_LE(moved.manhattanLength(), 1.5) << &way - ways << (atPointer ? "p" : "c");
        }
    }
}

TEST_F(OssNgViewTest, whatWasFittedUnderALimitStaysSoInAnotherSize)
{
    const QRectF small(100, 100, 200, 50);
    view.fitInView(small, Qt::KeepAspectRatio);
    view.limitFittedZoom(1.0);
    EXPECT_EQ(view.zoom(), 1.0);
    view.resize(400, 700);
    EXPECT_EQ(view.zoom(), 1.0);
    EXPECT_LE((middle() - small.center()).manhattanLength(), 2.0);
    view.resize(100, 100);
    EXPECT_EQ(view.zoom(), 0.5);
    view.resize(900, 900);
    EXPECT_EQ(view.zoom(), 1.0);
    EXPECT_LE((middle() - small.center()).manhattanLength(), 2.0);
    view.zoomOut();
    view.resize(500, 500);
    EXPECT_EQ(view.zoom(), 0.8) << "the user looks elsewhere";
}

TEST_F(OssNgViewTest, aNodeOnAWireTakesItAtItsPreferredInputWhenAskedFor)
{
    b->setPosition({600, 0});
    b->attachInput(In, a, Out);
    auto *c = scene.add("C", {300, 0}, {text("Mask")});
    c->addInputPort(In, true);
    c->setPosition(b->input(In)->markerPosition() - c->boundingRect().center());
    c->processAutoinsert();
    EXPECT_EQ(b->input(In)->source(), a);
    view.insert = true;
    c->processAutoinsert();
    EXPECT_EQ(b->input(In)->source(), c);
    EXPECT_EQ(c->input(text("Mask")), nullptr);
    ASSERT_NE(c->input(In), nullptr);
    EXPECT_EQ(c->input(In)->source(), a);
}

TEST_F(OssNgViewTest, aNodeBetweenTwoWiresTakesTheNearerOne)
{
    b->setPosition({600, 0});
    b->attachInput(In, a, Out);
    auto *far = scene.add("Far", {600, 10});
    far->attachInput(In, a, Out);
    auto *c = scene.add("C", {300, 0});
    view.insert = true;
    for (OssNgNode *wanted : QList<OssNgNode *>{b, far}) {
        const QPointF core = c->bodyRect().center();
        c->setPosition(wanted->input(In)->markerPosition() - core);
        EXPECT_EQ(c->autoinsertCandidate(), wanted->input(In));
    }
}

TEST_F(OssNgViewTest, buttonsNavigateAsTheControlTypeSays)
{
    const QString usual = view.m_navigationControlType;

    const struct
    {
        QString type;
        Qt::MouseButton button;
        Qt::KeyboardModifiers modifiers;
        int state;
    } cases[] = {
        {usual, Qt::MiddleButton, {}, OssNgView::Panning},
        {usual, Qt::MiddleButton, Qt::AltModifier, OssNgView::Zooming},
        {usual, Qt::RightButton, Qt::AltModifier, OssNgView::Idle},
        {text("Ossa"), Qt::LeftButton, Qt::AltModifier, OssNgView::Panning},
        {text("Ossa"), Qt::RightButton, Qt::AltModifier, OssNgView::Zooming},
        {text("Ossa"), Qt::MiddleButton, Qt::AltModifier, OssNgView::Idle},
        {text("Ossa"), Qt::MiddleButton, {}, OssNgView::Idle},
    };

    const QPointF place(250, 250);
    for (const auto &c : cases) {
        view.m_navigationControlType = c.type;
        press(place, c.button, c.modifiers);
        EXPECT_EQ(view.interactionState(), c.state) << &c - cases;
        if (c.state == OssNgView::Panning) {
            const QPointF corner = view.viewportInSceneCoords().topLeft();
            move(place + QPointF(30, 10), c.button);
            EXPECT_EQ(view.viewportInSceneCoords().topLeft(), corner - QPointF(30, 10));
        }
        if (c.button == Qt::RightButton) {
            const QPoint local = at(place);
            QContextMenuEvent menu(QContextMenuEvent::Mouse, local, local);
            menu.ignore();
            view.menus = 0;
            QCoreApplication::sendEvent(view.viewport(), &menu);
            EXPECT_EQ(view.interactionState(), c.state) << "no menu comes into a zoom";
            EXPECT_EQ(view.menus, c.state == OssNgView::Zooming ? 0 : 1);
        }
        release(place, c.button);
        EXPECT_EQ(view.interactionState(), OssNgView::Idle);
    }
}
