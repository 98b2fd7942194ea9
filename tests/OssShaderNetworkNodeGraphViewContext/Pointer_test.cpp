#include "GraphUser.h"
#include "OssInterface/Dialogs/OssNodeQuickFindDialog.h"
#include "OssModel/Evaluation/OssSolo.h"
#include "PointerFixture.h"
#include "support/PassTime.h"

#include <QGuiApplication>
#include <QListView>
#include <QStyleHints>

#include <cstdlib>

namespace {

class Pointer : public PointerFixture
{
protected:
    void SetUp() override
    {
        PointerFixture::SetUp();
        m_color = addAt("Procedural/Color", {0, 0}, "Color");
        m_blur = addAt("Filter/Blur", {400, 0}, "Blur");
        m_view->resetTransform();
        m_view->centerOn(300, 100);
        begin();
    }

    /// Lets a new wire from there go over the empty canvas and answers the search that opens; null
    /// answers with Escape. What was offered is kept.
    void pullAndChoose(const QPoint &from, const QPoint &to, const char *typed)
    {
        m_offered.clear();
        drag(from, to);
        whenOpen<OssNodeQuickFindDialog>([this, typed](OssNodeQuickFindDialog *dialog) {
            const QAbstractItemModel *rows = dialog->findChild<QListView *>()->model();
            for (int row = 0; row < rows->rowCount(); ++row)
                m_offered.append(rows->index(row, 0).data().toString());
            auto *field = dialog->findChild<QLineEdit *>();
            if (typed)
                QTest::keyClicks(field, text(typed));
            QTest::keyClick(field, typed ? Qt::Key_Return : Qt::Key_Escape);
        });
        QTest::qWait(10);
    }

    void menuCommand(const QPoint &place, const char *name, QContextMenuEvent::Reason reason)
    {
        whenMenuOpens([this, name](QMenu *menu) {
            QCursor::setPos(m_view->viewport()->mapToGlobal(QPoint(1, 1))); // on its way
            m_menuAt = m_view->creationPoint();
            if (QAction *action = graphAction(name))
                action->trigger();
            menu->close();
        });
        askForMenu(place, reason);
    }

    OssSnBaseNode *m_color = nullptr;
    OssSnBaseNode *m_blur = nullptr;
    QStringList m_offered;
    QPoint m_menuAt;
};

TEST_F(Pointer, theKeyLooksAtWhatIsUnderThePointerAndAtNothingWhenItWasHeld)
{
    QAction *action = graphAction("Look At");
    ASSERT_NE(action, nullptr);
    action->setShortcut(Qt::Key_S);
    const QByteArray before = m_project->stateHash();
    const auto pointAt = [this](const OssSnBaseNode *node) {
        QCursor::setPos(m_view->viewport()->mapToGlobal(headerOf(node)));
        pointer(QEvent::MouseMove, headerOf(node), Qt::NoButton, Qt::NoButton);
        return OssSolo::instance()->node();
    };
    const auto press = [action] {
        QShortcutEvent event(QKeySequence(Qt::Key_S), 0);
        QCoreApplication::sendEvent(action, &event);
        return OssSolo::instance()->node();
    };
    const auto letGo = [this] {
        QTest::keyRelease(m_view, Qt::Key_S);
        passTime(100);
        return OssSolo::instance()->node();
    };
    select({m_color});
    pointAt(m_blur);
    QStyleHints *hints = QGuiApplication::styleHints();
    const int usual = hints->keyboardInputInterval();
    hints->setKeyboardInputInterval(60000);
    EXPECT_EQ(press(), m_blur);
    EXPECT_EQ(letGo(), m_blur) << "a tap";
    EXPECT_TRUE(action->isChecked());
    EXPECT_EQ(pointAt(m_color), m_blur) << "the key is not held";
    EXPECT_EQ(press(), nullptr);
    letGo();
    pointAt(m_blur);
    press();
    QKeyEvent repeated(QEvent::KeyRelease, Qt::Key_S, {}, QString(), true);
    QCoreApplication::sendEvent(m_view, &repeated);
    passTime(100);
    hints->setKeyboardInputInterval(50);
    EXPECT_EQ(OssSolo::instance()->node(), m_blur) << "held, however late the key comes again";
    EXPECT_EQ(pointAt(m_color), m_color);
    EXPECT_EQ(letGo(), nullptr) << "it was held";
    hints->setKeyboardInputInterval(usual);
    EXPECT_FALSE(action->isChecked());
    EXPECT_EQ(m_project->stateHash(), before);
    action->setShortcut({});
}

TEST_F(Pointer, menusLookAtTheSelectionUntilItGoes)
{
    QAction *action = graphAction("Look At");
    const QByteArray before = m_project->stateHash();
    select({m_color});
    action->trigger();
    EXPECT_EQ(OssSolo::instance()->node(), m_color);
    QTest::keyClick(m_view, Qt::Key_Escape);
    EXPECT_EQ(OssSolo::instance()->node(), nullptr);
    action->trigger();
    m_view->deleteSelectedNodes();
    EXPECT_EQ(OssSolo::instance()->node(), nullptr);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(OssSolo::instance()->node(), nullptr) << "undo brings a node, and no more";
    EXPECT_EQ(m_project->stateHash(), before);
    select({addAt("Misc/Backdrop", {0, 300})});
    action->trigger();
    EXPECT_EQ(OssSolo::instance()->node(), nullptr) << "it has no picture";
}

TEST_F(Pointer, aNodeInAGroupIsLookedAtUntilTheGroupGoes)
{
    OssSnGroupNode *group = addGroup();
    OssSnBaseNode *inside = addInside(group, "Procedural/Color");
    ASSERT_TRUE(OssSolo::instance()->look(inside));
    m_blur->setName(text("Other"));
    EXPECT_EQ(OssSolo::instance()->node(), inside);
    select({group});
    m_view->deleteSelectedNodes();
    EXPECT_EQ(OssSolo::instance()->node(), nullptr);
    ASSERT_TRUE(OssSolo::instance()->look(m_color));
    m_view->connectSelectedNodeToViewer(m_blur, 1);
    EXPECT_EQ(OssSolo::instance()->node(), nullptr) << "or the viewer would not be seen";
    ASSERT_TRUE(OssSolo::instance()->look(m_color));
    replaceProject();
    EXPECT_EQ(OssSolo::instance()->node(), nullptr);
}

TEST_F(Pointer, aWireDroppedOnNothingOffersTheTypesThatFitAndIsWiredToTheNewNode)
{
    const QPoint nothing = at({250, 220});
    const QByteArray before = m_project->stateHash();
    pullAndChoose(outputOf(m_color), nothing, "Invert");
    OssSnBaseNode *invert = m_network->node(text("Invert"));
    ASSERT_NE(invert, nullptr);
    EXPECT_TRUE(invert->inputNodes().contains(m_color));
    EXPECT_FALSE(m_offered.contains(text("Color"))) << "nothing goes into it";
    EXPECT_FALSE(m_offered.contains(text("Backdrop")));
    expectStep("Create Node : Invert");

    pullAndChoose(at(itemOf(m_blur)->inputPortScenePos(text("Input"))), at({250, 320}), "Color");
    const OssSnBaseNode *made = m_blur->inputNode(text("Input"));
    ASSERT_NE(made, nullptr);
    EXPECT_NE(made, m_color);
    EXPECT_LE(rectOf(made).right(), 251.0) << "it comes from the left";
    EXPECT_TRUE(m_offered.contains(text("Color")));
    OssUndoManager::instance()->undo();
    pullAndChoose(at(itemOf(m_blur)->inputPortScenePos(text("Input"))), at({250, 320}),
                  "Perlin Noise");
    ASSERT_NE(m_blur->inputNode(text("Input")), nullptr);
    EXPECT_EQ(m_blur->inputPorts().first().sourceOutput, text("Color")) << "no value is wanted";
    undoAll();
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(Pointer, aWireThatComesToNothingOrBackOffersNothing)
{
    pullAndChoose(outputOf(m_color), at({250, 220}), nullptr);
    EXPECT_FALSE(m_offered.isEmpty());
    expectNothingDone("escape");
    wire(m_color, m_blur);
    begin();
    drag(at(itemOf(m_blur)->inputPortScenePos(text("Input"))), at({250, 220}));
    drag(outputOf(m_color), headerOf(m_color));
    QWidget *seen = nullptr;
    QTimer::singleShot(0, [&] {
        seen = QApplication::activePopupWidget();
        if (seen)
            seen->close();
    });
    QTest::qWait(10);
    EXPECT_EQ(seen, nullptr) << "a wire that is taken away, and one that goes back";
    EXPECT_EQ(m_blur->inputNode(text("Input")), nullptr);
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(Pointer, aRightClickSelectsWhatItHitsUnlessItIsSelected)
{
    select({m_color});
    click(headerOf(m_blur), Qt::RightButton);
    EXPECT_EQ(m_network->selectedNodes(), QList<OssSnBaseNode *>{m_blur});
    select({m_color, m_blur});
    click(headerOf(m_blur), Qt::RightButton);
    EXPECT_EQ(m_network->selectedNodes().size(), 2);
    click(at({250, 220}), Qt::RightButton);
    EXPECT_EQ(m_network->selectedNodes().size(), 2) << "the canvas is no thing";
    wire(m_color, m_blur);
    const OssNgEdge *edge = itemOf(m_blur)->input(text("Input"));
    click(at(edge->markerPosition()), Qt::RightButton);
    EXPECT_TRUE(edge->isSelected());
    EXPECT_TRUE(m_network->selectedNodes().isEmpty());
}

TEST_F(Pointer, whatTheMenuMakesStandsWhereItWasAskedFor)
{
    const QPoint place = at({200, 250});
    menuCommand(place, "Create/Layer/Merge", QContextMenuEvent::Mouse);
    EXPECT_EQ(m_menuAt, place);
    const OssSnBaseNode *merge = m_network->node(text("Merge"));
    ASSERT_NE(merge, nullptr);
    EXPECT_LE(QLineF(rectOf(merge).topLeft(), {200, 250}).length(), 2.0);
}

TEST_F(Pointer, whatTheMenuMakesOverNodesStaysInSightAndNear)
{
    // A pile that the way diagonally down leads out of at its far end.
    const QRectF seen = m_view->viewportInSceneCoords();
    QPointF next = rectOf(m_blur).bottomRight() + QPointF(5, 5);
    while (seen.contains(next)) {
        const OssSnBaseNode *node = addAt("Filter/Blur", next);
        next = rectOf(node).bottomRight() + QPointF(5, 5);
    }
    begin();
    const QPointF asked = rectOf(m_blur).topLeft() + QPointF(20, 20);
    menuCommand(at(asked), "Create/Layer/Merge", QContextMenuEvent::Mouse);
    const OssSnBaseNode *merge = m_network->node(text("Merge"));
    ASSERT_NE(merge, nullptr);
    EXPECT_TRUE(m_view->viewportInSceneCoords().contains(rectOf(merge)));
    EXPECT_EQ(m_view->viewportInSceneCoords(), seen) << "nobody scrolled";
    const QRectF map = m_view->minimapRect();
    EXPECT_FALSE(QRectF(m_view->toScene(map.topLeft()), m_view->toScene(map.bottomRight()))
                     .intersects(rectOf(merge)));
    EXPECT_LE(QLineF(rectOf(merge).center(), asked).length(), 300.0);
    const QList<OssSnBaseNode *> nodes = m_network->getAllNodes();
    for (const OssSnBaseNode *other : nodes)
        EXPECT_TRUE(other == merge || !rectOf(other).intersects(rectOf(merge)));
    const QPointF place = itemOf(merge)->pos();
    expectStep("Create Node : Merge");
    undo();
    OssUndoManager::instance()->redo();
    EXPECT_EQ(itemOf(m_network->node(text("Merge")))->pos(), place);
}

TEST_F(Pointer, aKeyOpensTheMenuAtTheSelection)
{
    select({m_blur});
    menuCommand({5, 5}, "", QContextMenuEvent::Keyboard);
    EXPECT_TRUE(
        QRectF(at(rectOf(m_blur).topLeft()), at(rectOf(m_blur).bottomRight())).contains(m_menuAt));
    select({});
    menuCommand({5, 5}, "", QContextMenuEvent::Keyboard);
    EXPECT_EQ(m_menuAt, m_view->viewport()->rect().center());
}

TEST_F(Pointer, markersOfWiresYieldToNodesAndComeWithNewDots)
{
    wire(m_color, m_blur);
    OssNgEdge *edge = itemOf(m_blur)->input(text("Input"));
    OssSnBaseNode *above = add("Adjust/Invert");
    contextOf(above)->setNodePosition(edge->markerPosition()
                                      - itemOf(above)->boundingRect().center());
    select({});
    QTest::keyPress(m_view, Qt::Key_Control, Qt::ControlModifier);
    ASSERT_TRUE(edge->isDotable());
    const QPoint marker = at(edge->markerPosition());
    for (const bool selected : {true, false}) {
        click(marker, Qt::LeftButton, Qt::ControlModifier);
        EXPECT_EQ(itemOf(above)->isSelected(), selected);
        EXPECT_EQ(m_blur->inputNode(text("Input")), m_color);
    }
    contextOf(above)->setNodePosition({0, 300});
    click(marker, Qt::LeftButton, Qt::ControlModifier);
    const OssSnBaseNode *dot = m_blur->inputNode(text("Input"));
    ASSERT_NE(dot, m_color);
    EXPECT_TRUE(itemOf(m_blur)->input(text("Input"))->isDotable());
    EXPECT_TRUE(itemOf(dot)->inputs().first()->isDotable());
    QTest::keyRelease(m_view, Qt::Key_Control);
    EXPECT_FALSE(itemOf(m_blur)->input(text("Input"))->isDotable());
}

TEST_F(Pointer, severalMovedNodesGoIntoNoWire)
{
    wire(m_color, m_blur);
    const QPointF middle = itemOf(m_blur)->input(text("Input"))->markerPosition();
    OssSnBaseNode *a = addAt("Adjust/Invert", {100, 300});
    OssSnBaseNode *b = addAt("Adjust/Invert", {400, 300});
    const auto ontoWire = [&](OssSnBaseNode *node) {
        drag(headerOf(node), headerOf(node) + at(middle) - at(rectOf(node).center()));
    };
    select({a, b});
    ontoWire(a);
    EXPECT_EQ(m_blur->inputNode(text("Input")), m_color);
    select({b});
    contextOf(a)->setNodePosition({100, 300});
    ontoWire(a);
    EXPECT_EQ(m_blur->inputNode(text("Input")), a);
}

TEST_F(Pointer, aShakenNodeGoesIntoTheWireThatIsLitAndIntoNoOther)
{
    OssSnBaseNode *levels = addAt("Adjust/Levels", {200, 200}, "Levels");
    wire(m_color, levels);
    wire(levels, m_blur);
    OssSnBaseNode *source = addAt("Procedural/Color", {-100, 200}, "Source");
    OssSnBaseNode *target = addAt("Filter/Blur", {500, 200}, "Target");
    wire(source, target); // lies under the node from the start
    OssNgEdge *under = itemOf(target)->input(text("Input"));
    const QPointF onWire = under->markerPosition() - itemOf(levels)->boundingRect().center();
    contextOf(levels)->setNodePosition(onWire);
    if (m_view->isSnapToGridOn())
        m_view->toggleSnapToGrid();
    m_view->onShakeToExtractEnabledChanged(true);
    m_view->onShakeToExtractShakesChanged(4);
    m_view->onShakeToExtractTimeChanged(5000);
    m_view->setCursorTrackingMode(0);
    select({levels});
    begin();
    for (const QPoint &way : {QPoint(2, 1), QPoint(12, 0)}) {
        const QPoint from = headerOf(levels);
        const auto moveTo = [&](const QPoint &to) {
            pointer(QEvent::MouseMove, from + to, Qt::NoButton, Qt::LeftButton);
        };
        pointer(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        for (int i = 0; i < 48; ++i)
            moveTo({std::abs(i % 8 - 4) * 15, 0});
        ASSERT_EQ(m_blur->inputNode(text("Input")), m_color) << "it was shaken";
        moveTo(way);
        const bool lit = under->hasMark(OssNgEdge::Inviting);
        EXPECT_EQ(lit, way.x() == 12) << "brought back it was not moved";
        pointer(QEvent::MouseButtonRelease, from + way, Qt::LeftButton, Qt::NoButton);
        EXPECT_EQ(target->inputNode(text("Input")), lit ? levels : source);
        undoAll();
        under = itemOf(target)->input(text("Input"));
    }
}

TEST_F(Pointer, whatOthersMoveWhileAButtonHoldsNothingStaysWhereItIs)
{
    select({m_color, m_blur});
    const QPoint place = headerOf(m_blur);
    pointer(QEvent::MouseButtonPress, place, Qt::LeftButton, Qt::LeftButton, Qt::ControlModifier);
    ASSERT_FALSE(m_view->hasGesture()) << "the click took the node out of the selection";
    contextOf(m_color)->setNodePositionUndo({40, 90});
    m_view->scene()->clearSelection();
    pointer(QEvent::MouseButtonRelease, place, Qt::LeftButton, Qt::NoButton, Qt::ControlModifier);
    EXPECT_EQ(itemOf(m_color)->pos(), QPointF(40, 90));
    EXPECT_EQ(undoCount(), 1);
}

} // namespace
