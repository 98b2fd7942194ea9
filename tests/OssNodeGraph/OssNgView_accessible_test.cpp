#include "support/PassTime.h"
#include "ViewFixture.h"

#include <QAccessible>

// What who cannot see the graph hears of it.

namespace {

class OssNgAccessibleTest : public OssNgViewTest
{
protected:
    void SetUp() override { ASSERT_NE(graph, nullptr); }

    QAccessibleInterface *graph = QAccessible::queryAccessibleInterface(&view);
};

TEST_F(OssNgAccessibleTest, screenReadersHearNodesPortsAndTheirWires)
{
    b->attachInput(In, a, Out);
    b->setErrorText(text("file is missing"));
    ASSERT_EQ(graph->childCount(), 2);
    QAccessibleInterface *second = graph->child(1);
    ASSERT_NE(second, nullptr);
    EXPECT_EQ(second->text(QAccessible::Name), text("B, error: file is missing"));
    EXPECT_TRUE(second->text(QAccessible::Description).contains(text("from A Output")));
    EXPECT_EQ(graph->childAt(second->rect().center().x(), second->rect().center().y())->object(),
              b);
    a->setSelected(true);
    EXPECT_EQ(graph->focusChild()->object(), a);
    second->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
    EXPECT_TRUE(b->isSelected());
    EXPECT_FALSE(a->isSelected());
    b->setVisible(false);
    EXPECT_EQ(graph->childCount(), 1);
}

TEST_F(OssNgAccessibleTest, screenReadersHearStates)
{
    const auto heard = [this] {
        QAccessibleInterface *node = graph->child(0);
        return QStringList{node->text(QAccessible::Name), node->text(QAccessible::Description)};
    };
    States<QStringList> states(heard);
    states.expectOfItsOwn("off", [this](bool on) { a->setDisabled(on); });
    states.expectOfItsOwn("passed by", [this](bool on) { a->setBypassed(on); });
    states.expectOfItsOwn("stale", [this](bool on) { a->setStale(on); });
    states.expectOfItsOwn("wrong", [this](bool on) { a->setErrorText(text(on ? "no" : "")); });
    states.expectOfItsOwn("category",
                          [this](bool on) { a->setCategory(text(on ? "Filter" : "")); });
    EXPECT_FALSE(graph->child(0)->state().offscreen);
    EXPECT_FALSE(graph->child(0)->state().selected);
    a->setSelected(true);
    EXPECT_TRUE(graph->child(0)->state().selected);
    view.centerViewOn({9000, 9000}, false);
    EXPECT_TRUE(graph->child(0)->state().offscreen);
    // Each end tells of the wire.
    scene.connectNodes(a, Out, b, In);
    EXPECT_TRUE(heard()[1].contains(text("B")));
    EXPECT_FALSE(heard()[1].contains(text("from")));
}

TEST_F(OssNgAccessibleTest, screenReadersBringOnlyWhatIsOffTheScreenIntoView)
{
    auto *far = scene.add("Far", {2000, 1500});
    const auto pressed = [this](const OssNgNode *node) {
        for (int i = 0; i < graph->childCount(); ++i) {
            QAccessibleInterface *child = graph->child(i);
            if (child->object() != node)
                continue;
            child->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
            return child->text(QAccessible::Name);
        }
        return QString();
    };
    const QPointF before = middle();
    EXPECT_TRUE(pressed(a).startsWith(text("A")));
    passTime(40);
    EXPECT_EQ(middle(), before);
    EXPECT_EQ(scene.selectedItems(), QList<QGraphicsItem *>{a});
    const QString name = pressed(far);
    EXPECT_TRUE(name.startsWith(text("Far")) && !name.contains(text("error")));
    EXPECT_TRUE(QTest::qWaitFor(
        [&] { return view.viewportInSceneCoords().contains(far->sceneBoundingRect()); }));
    EXPECT_EQ(scene.selectedItems(), QList<QGraphicsItem *>{far});
}

} // namespace
