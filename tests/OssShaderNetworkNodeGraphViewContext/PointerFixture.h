#pragma once

#include "GraphFixture.h"
#include "PluginUnderTest.h"

#include <QApplication>
#include <QContextMenuEvent>
#include <QTest>
#include <QTimer>

#include <functional>

/// A graph in a window and a pointer over it. Places are pixels of the viewport.
class PointerFixture : public GraphFixture
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(pluginUnderTest());
        GraphFixture::SetUp();
        m_view->window()->show(); // or the view has no size of its own
        m_view->window()->activateWindow();
        m_view->setFocus();
    }

    QPoint at(const QPointF &scenePos) const { return m_view->mapFromScene(scenePos); }

    /// On the node's header.
    QPoint headerOf(const OssSnBaseNode *node) const
    {
        return at(rectOf(node).topLeft() + QPointF(60, 14));
    }

    QPoint outputOf(const OssSnBaseNode *node) const
    {
        return at(itemOf(node)->outputPortScenePos(node->prefferedOutputPoint()));
    }

    void pointer(QEvent::Type type, const QPoint &place, Qt::MouseButton button,
                 Qt::MouseButtons held, Qt::KeyboardModifiers keys = Qt::NoModifier) const
    {
        QWidget *viewport = m_view->viewport();
        QMouseEvent event(type, QPointF(place), viewport->mapToGlobal(place), button, held, keys);
        QCoreApplication::sendEvent(viewport, &event);
    }

    void drag(const QPoint &from, const QPoint &to) const
    {
        pointer(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        for (const QPoint &place : {(from + to) / 2, to})
            pointer(QEvent::MouseMove, place, Qt::NoButton, Qt::LeftButton);
        pointer(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    }

    void click(const QPoint &place, Qt::MouseButton button,
               Qt::KeyboardModifiers keys = Qt::NoModifier) const
    {
        pointer(QEvent::MouseButtonPress, place, button, button, keys);
        pointer(QEvent::MouseButtonRelease, place, button, Qt::NoButton, keys);
    }

    /// As a platform asks for a menu; the menu must be closed by a timer set before.
    void askForMenu(const QPoint &place,
                    QContextMenuEvent::Reason reason = QContextMenuEvent::Mouse) const
    {
        QContextMenuEvent event(reason, place, m_view->viewport()->mapToGlobal(place));
        QCoreApplication::sendEvent(m_view->viewport(), &event);
    }
};
