#pragma once

#include "NodeFixture.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/View/OssNgView.h"

#include <QtTest>

#include <functional>

class TestView : public OssNgView
{
public:
    using OssNgView::m_navigationControlType;
    using OssNgView::m_shakeToExtractEnabled;
    using OssNgView::m_shakeToExtractShakes;
    using OssNgView::m_shakeToExtractTime;
    bool insert = false;

    int menus = 0; ///< asked for so far

    bool isAutoInsertOn() const override { return insert; }

protected:
    void contextMenuEvent(QContextMenuEvent *) override { ++menus; }
};

/// A real view without a screen, two nodes, real events.
class OssNgViewTest : public testing::Test
{
protected:
    OssNgViewTest()
    {
        view.setScene(&scene);
        view.setMinimapVisible(false);
        view.resize(800, 600);
        view.init();
        view.show();
        view.centerViewOn({250, 100}, false);
        QCoreApplication::processEvents();
    }

    QPoint at(const QPointF &scenePos) const { return view.fromScene(scenePos).toPoint(); }

    void press(const QPointF &scenePos, Qt::MouseButton button = Qt::LeftButton,
               Qt::KeyboardModifiers modifiers = {})
    {
        QTest::mousePress(view.viewport(), button, modifiers, at(scenePos));
    }

    /// QTest's moves carry no buttons; ours do.
    void move(const QPointF &scenePos, Qt::MouseButtons buttons = Qt::LeftButton)
    {
        const QPointF local = view.fromScene(scenePos);
        QMouseEvent event(QEvent::MouseMove, local, view.viewport()->mapToGlobal(local.toPoint()),
                          Qt::NoButton, buttons, Qt::NoModifier);
        QCoreApplication::sendEvent(view.viewport(), &event);
    }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {})
    {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        event.ignore();
        QCoreApplication::sendEvent(&view, &event);
    }

    void release(const QPointF &scenePos, Qt::MouseButton button = Qt::LeftButton)
    {
        QTest::mouseRelease(view.viewport(), button, {}, at(scenePos));
    }

    void click(const QPointF &scenePos, Qt::KeyboardModifiers modifiers = {})
    {
        press(scenePos, Qt::LeftButton, modifiers);
        release(scenePos);
    }

    void drag(const QPointF &from, const QPointF &to)
    {
        press(from);
        move((from + to) / 2.0);
        move(to);
        release(to);
    }

    /// What stands on the screen.
    QImage shown() { return view.grab().toImage(); }

    /// The middle of what is seen.
    QPointF middle() const { return view.viewportInSceneCoords().center(); }

    OssNgBackdropNode *addBackdrop(const QRectF &area)
    {
        auto *backdrop = scene.add<OssNgBackdropNode>(QString(), area.topLeft());
        backdrop->setRect({QPointF(), area.size()});
        return backdrop;
    }

    QPointF body(const OssNgNode *node) const
    {
        return node->pos() + node->bodyRect().topLeft() + QPointF(40, 13);
    }

    GraphScene scene;
    OssNgExtendedNode *a = scene.add("A", {0, 0});
    OssNgExtendedNode *b = scene.add("B", {300, 40});
    TestView view;
};
