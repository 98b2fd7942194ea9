#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"
#include "ViewFixture.h"

// What a wire is like, and which port it takes when it is let go.

TEST_F(OssNgViewTest, wiresRunStraightOutOfPortsAsFarAsThereIsRoom)
{
    const OssNgEdge *wire = b->attachInput(In, a, Out);

    const struct
    {
        QPointF span;
        double least = 0.0;
        double most = 0.0;
    } cases[] = {
        {{600, 0}, 299, 301},  // half the way
        {{20, 300}, 49, 51},   // a bend, however narrow
        {{20, 10}, 10, 20},    // no loops between neighbours
        {{-10, 0}, 39, 41},    // back, close by
        {{-200, 300}, 99, 111} // back, far off
    };

    for (const auto &c : cases) {
        const QPointF span = b->inputPortScenePos(In) - a->outputPortScenePos(Out);
        b->setPosition(b->pos() + c.span - span);
        QPointF points[4];
        wire->controlPoints(points);
        EXPECT_NEAR(points[3].x() - points[0].x(), c.span.x(), 8.0);
        EXPECT_GE(points[1].x() - points[0].x(), c.least) << &c - cases;
        EXPECT_LE(points[1].x() - points[0].x(), c.most) << &c - cases;
        EXPECT_EQ(points[1].y(), points[0].y());
        EXPECT_EQ(points[1].x() - points[0].x(), points[3].x() - points[2].x());
        if (c.span.x() < 0.0)
            continue;
        // The band that is clicked goes with the curve, from end to end.
        const QPainterPath path = wire->path();
        const QPainterPath band = wire->shape();
        for (const double t : {0.03, 0.25, 0.5, 0.75, 0.97})
            EXPECT_TRUE(band.contains(path.pointAtPercent(t))) << &c - cases << " at " << t;
        EXPECT_FALSE(band.contains(path.pointAtPercent(0.5) + QPointF(60, 60)));
    }
}

TEST_F(OssNgViewTest, everyStateOfAWireIsToBeSeenAndGoesAgain)
{
    OssNgEdge *wire = b->attachInput(In, a, Out);
    wire->setDebugColor(Qt::magenta);
    States<QImage> states([this] { return picture(&scene, {-50, -50, 700, 300}, {700, 300}); });
    states.expectOfItsOwn("passed by", [wire](bool on) { wire->setBypassed(on); });
    states.expectOfItsOwn("shared", [wire](bool on) { wire->setShared(on); });
    states.expectOfItsOwn("virtual", [wire](bool on) { wire->setVirtual(on); });
    states.expectOfItsOwn("debugged", [wire](bool on) { wire->setDebug(on); });
    states.expectOfItsOwn("chosen", [wire](bool on) { wire->setSelected(on); });
    states.expectOfItsOwn("with a marker", [wire](bool on) { wire->switchToDotableMode(on); });
}

TEST_F(OssNgViewTest, wiresFollowTheColoursOfTheStyle)
{
    const OssNgEdge *wire = b->attachInput(In, a, Out);
    OssNgStyle *style = OssNgStyle::instance();
    const auto &entries = OssNgSceneIndex::of(&scene)->wireEntries();
    const auto shown = [&] {
        for (const auto &entry : entries) {
            if (entry.edge == wire)
                return QColor::fromRgba(entry.color);
        }
        return QColor();
    };
    ASSERT_EQ(shown().rgb(), wire->color().rgb());
    b->input(In)->setSelected(true);
    const QColor old = style->color(OssNgStyle::Role::Accent);
    style->setColor(OssNgStyle::Role::Accent, Qt::magenta);
    EXPECT_EQ(wire->color(), QColor(Qt::magenta));
    EXPECT_EQ(shown(), QColor(Qt::magenta));
    style->setColor(OssNgStyle::Role::Accent, old);
    EXPECT_EQ(shown().rgb(), old.rgb());
}

TEST_F(OssNgViewTest, attachingWhatIsAttachedKeepsTheWire)
{
    a->addOutputPort(text("Second"));
    auto *c = scene.add("C", {300, 200});
    c->attachInput(In, a, text("Second"));
    b->attachInput(In, a, Out)->setShared(true);
    EXPECT_TRUE(b->attachInput(In, a, Out)->hasMark(OssNgEdge::Shared));
    EXPECT_FALSE(b->attachInput(In, a, text("Second"))->hasMark(OssNgEdge::Shared));
    b->attachInput(In, a, Out);
    a->removeOutputPort(Out);
    EXPECT_EQ(b->input(In), nullptr);
    EXPECT_NE(c->input(In), nullptr) << "of another output";
}

TEST_F(OssNgViewTest, aWireOnANodesBodyTakesTheFreeInputThatIsPreferred)
{
    const QString mask = text("Mask");
    const QString third = text("Third");

    const struct
    {
        QStringList preferred;
        QStringList taken;
        QString wanted;
    } cases[] = {
        {{}, {}, mask},   {{third}, {}, third},        {{third}, {third}, mask},
        {{}, {mask}, In}, {{mask}, {mask, In}, third},
    };

    for (const auto &c : cases) {
        auto *node = scene.add("C", {300, 150}, {}, {Out});
        for (const QString &name : {mask, In, third})
            node->addInputPort(name, c.preferred.contains(name));
        for (const QString &name : c.taken)
            node->attachInput(name, b, Out);
        drag(a->outputPortScenePos(Out), node->pos() + node->bodyRect().center());
        ASSERT_NE(node->input(c.wanted), nullptr) << &c - cases;
        EXPECT_EQ(node->input(c.wanted)->source(), a) << &c - cases;
        node->setPosition({5000, 5000});
    }
}

TEST_F(OssNgViewTest, ofTwoPortsInReachTheNearerOneTakesTheWire)
{
    const QStringList names = texts({"One", "Two", "Three"});
    auto *node = scene.add("C", {300, 150}, names, {Out});
    for (const QString &name : names) {
        node->detachInput(name);
        drag(a->outputPortScenePos(Out), node->inputPortScenePos(name) - QPointF(3, 0));
        ASSERT_NE(node->input(name), nullptr) << qPrintable(name);
        EXPECT_EQ(node->input(name)->source(), a);
    }
}

TEST_F(OssNgViewTest, aClickOnAWireSelectsItAndShiftAddsOrTakesAway)
{
    OssNgEdge *wire = b->attachInput(In, a, Out);
    const QPointF place = wire->path().pointAtPercent(0.5);
    a->setSelected(true);
    click(place, Qt::ShiftModifier);
    EXPECT_TRUE(wire->isSelected() && a->isSelected());
    click(place, Qt::ShiftModifier);
    EXPECT_TRUE(!wire->isSelected() && a->isSelected());
    click(place);
    EXPECT_TRUE(wire->isSelected() && !a->isSelected());
    EXPECT_EQ(b->input(In), wire);
}

TEST_F(OssNgViewTest, aVirtualWireIsNoUsersToTake)
{
    b->setVirtualInput(In, true);
    OssNgEdge *wire = b->attachInput(In, a, Out);
    ASSERT_TRUE(wire->isVirtual());
    const QPointF place = wire->path().pointAtPercent(0.5);
    drag(place, place + QPointF(0, 150));
    EXPECT_EQ(b->input(In), wire) << "it stays";
    EXPECT_TRUE(b->isVirtualInput(In));
    b->setVirtualInput(In, false);
    EXPECT_FALSE(b->isVirtualInput(In));
    b->attachInput(In, nullptr, Out);
    EXPECT_EQ(b->input(In), nullptr);
    EXPECT_FALSE(b->attachInput(In, a, Out)->isVirtual());
}

TEST_F(OssNgViewTest, aChosenWireLiesAboveThoseThatItCrosses)
{
    b->setPosition({300, 200});
    auto *c = scene.add("C", {0, 200});
    auto *d = scene.add("D", {300, 0});
    OssNgEdge *down = b->attachInput(In, a, Out);
    OssNgEdge *up = d->attachInput(In, c, Out);
    const QPointF crossing = down->path().pointAtPercent(0.5);
    ASSERT_LT((up->path().pointAtPercent(0.5) - crossing).manhattanLength(), 1.0);
    const QColor accent = OssNgStyle::instance()->color(OssNgStyle::Role::Accent);
    for (OssNgEdge *wire : {down, up}) {
        scene.clearSelection();
        wire->setSelected(true);
        const QColor seen = shown().pixelColor(at(crossing));
        EXPECT_LT(std::abs(seen.red() - accent.red()) + std::abs(seen.green() - accent.green())
                      + std::abs(seen.blue() - accent.blue()),
                  60);
    }
}
