#include "NodePicture.h"
#include "ViewFixture.h"

#include <QAccessible>
#include <QPainter>

#include <functional>

// States of nodes for the eye and the ear.

namespace {

using State = std::pair<const char *, std::function<void(bool)>>;

} // namespace

TEST(OssNgNodeStates, everyOneDiffersFromTheOthersNearAndFar)
{
    GraphScene scene;
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, {In},
                                        {Out, QStringLiteral("Second")});
    QPixmap thumbnail(64, 64);
    thumbnail.fill(Qt::magenta);
    node->setDebugColor(Qt::cyan);
    const auto shape = [node](int type) {
        return [node, type](bool on) {
            node->setShapeType(on ? type : 0);
            node->updateShape();
        };
    };
    const State states[] = {
        {"of an unknown type",
         [=](bool on) {
             node->setPlaceholder(on);
         }},
        {"a material", shape(3)},
        {"a group", shape(4)},
        {"of many channels", shape(7)},
        {"under the pointer",
         [=](bool on) {
             node->setHovered(on);
         }},
        {"without labels",
         [=](bool on) {
             node->setLabelsVisible(!on);
         }},
        {"lit",
         [=](bool on) {
             node->setHighlighted(on);
         }},
        {"debugged",
         [=](bool on) {
             node->setDebug(on);
         }},
        {"with a picture",
         [=](bool on) {
             node->setThumbnail(on ? thumbnail : QPixmap());
         }},
        {"a colour below",
         [=](bool on) {
             node->setNodeColor({}, on ? QColor(Qt::darkRed) : QColor());
         }},
        {"a colour above",
         [=](bool on) {
             node->setNodeColor(on ? QColor(Qt::darkRed) : QColor(), {});
         }},
    };
    const QImage plain = picture(&scene, node);
    QVector<QImage> seen{plain};
    for (const auto &[name, set] : states) {
        set(true);
        const QImage marked = picture(&scene, node);
        EXPECT_FALSE(seen.contains(marked)) << name;
        seen.append(marked);
        set(false);
        EXPECT_EQ(picture(&scene, node), plain) << name;
    }
    const QSize far(40, 26);
    const QImage small = picture(&scene, node, far);
    for (const int state : {4, 6, 7, 10}) {
        states[state].second(true);
        EXPECT_NE(picture(&scene, node, far), small) << states[state].first;
        states[state].second(false);
        EXPECT_EQ(picture(&scene, node, far), small) << states[state].first;
    }
}

TEST_F(OssNgViewTest, screenReadersHearStates)
{
    QAccessibleInterface *graph = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(graph, nullptr);
    const auto heard = [graph] {
        QAccessibleInterface *node = graph->child(0);
        return QStringList{node->text(QAccessible::Name), node->text(QAccessible::Description)};
    };
    const State states[] = {
        {"off",
         [this](bool on) {
             a->setDisabled(on);
         }},
        {"passed by",
         [this](bool on) {
             a->setBypassed(on);
         }},
        {"stale",
         [this](bool on) {
             a->setStale(on);
         }},
        {"wrong",
         [this](bool on) {
             a->setErrorText(on ? QStringLiteral("no") : QString());
         }},
        {"category",
         [this](bool on) {
             a->setCategory(on ? QStringLiteral("Filter") : QString());
         }},
    };
    const QStringList plain = heard();
    QList<QStringList> all{plain};
    for (const auto &[name, set] : states) {
        set(true);
        EXPECT_FALSE(all.contains(heard())) << name;
        all.append(heard());
        set(false);
        EXPECT_EQ(heard(), plain) << name;
    }
    EXPECT_FALSE(graph->child(0)->state().offscreen);
    EXPECT_FALSE(graph->child(0)->state().selected);
    a->setSelected(true);
    EXPECT_TRUE(graph->child(0)->state().selected);
    view.centerViewOn({9000, 9000}, false);
    EXPECT_TRUE(graph->child(0)->state().offscreen);
    // Each end tells of the wire.
    scene.connectNodes(a, Out, b, In);
    EXPECT_TRUE(heard()[1].contains(QStringLiteral("B")));
    EXPECT_FALSE(heard()[1].contains(QStringLiteral("from")));
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
