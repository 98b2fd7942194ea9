#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssNodeGraph/View/OssNgView.h"
#include "Program/StartedProgram.h"

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QTest>
#include <QWindow>

namespace {

/// Keys as the window system brings them.
class Keys : public StartedProgram
{
protected:
    void SetUp() override
    {
        StartedProgram::SetUp();
        s_window->activateWindow();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete); // views of the last
        const auto views = s_window->findChildren<OssNgView *>();
        for (OssNgView *view : views) {
            if (view->isVisible())
                m_view = view;
        }
        ASSERT_NE(m_view, nullptr);
        m_view->setFocus();
        ASSERT_EQ(QApplication::focusWidget(), m_view);
    }

    void TearDown() override { OssShortcutManager::instance()->resetAll(); }

    static void press(int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QTest::keyClick(s_window->windowHandle(), Qt::Key(key), modifiers);
    }

    static void setKeys(const char *command, const QList<QKeySequence> &keys)
    {
        OssShortcutManager::instance()->setKeys(text("/Ossa/NodeGraph/") + text(command), keys);
    }

    OssNgView *m_view = nullptr;
};

TEST_F(Keys, whatTheGraphReadsCanBeChanged)
{
    const auto zoom = [this] {
        return m_view->transform().m11();
    };
    const auto left = [this] {
        return m_view->toScene({0, 0}).x();
    };
    const double zoomBefore = zoom();
    press(Qt::Key_Plus);
    EXPECT_GT(zoom(), zoomBefore);
    press(Qt::Key_Minus, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(zoom(), zoomBefore);
    const double leftBefore = left();
    press(Qt::Key_Right);
    EXPECT_GT(left(), leftBefore);
    press(Qt::Key_Left, Qt::KeypadModifier);
    EXPECT_NEAR(left(), leftBefore, 1.0);

    setKeys("Zoom In", {QKeySequence(Qt::Key_K)});
    setKeys("Pan Right", {});
    const double leftNow = left();
    press(Qt::Key_Plus);
    press(Qt::Key_Right);
    EXPECT_DOUBLE_EQ(zoom(), zoomBefore) << "this key was taken away";
    EXPECT_EQ(left(), leftNow);
    press(Qt::Key_K);
    EXPECT_GT(zoom(), zoomBefore);
}

TEST_F(Keys, nudgesAreCommands)
{
    OssSnBaseNode *node = add("Filter/Blur");
    select({node});
    history()->clear();
    const auto place = [this] {
        return m_view->scene()->selectedItems().first()->pos();
    };
    const QPointF before = place();
    press(Qt::Key_Right, Qt::AltModifier);
    press(Qt::Key_Right, Qt::AltModifier);
    press(Qt::Key_Up, Qt::AltModifier | Qt::ShiftModifier);
    EXPECT_EQ(place(), before + QPointF(48, -1));
    EXPECT_EQ(history()->count(), 1) << "one way of moving them";
    history()->undo();
    EXPECT_EQ(place(), before);
    setKeys("Nudge Right", {QKeySequence(Qt::CTRL + Qt::Key_J)});
    press(Qt::Key_Right, Qt::AltModifier);
    EXPECT_EQ(place(), before);
    press(Qt::Key_J, Qt::ControlModifier);
    EXPECT_EQ(place(), before + QPointF(24, 0));
}

TEST_F(Keys, ofScopesDoNotActFromTheMenuBarNorBelowADialog)
{
    // Keys of the graph and of the Viewer alike: Qt would call them ambiguous.
    setKeys("Group Selected Nodes", {QKeySequence(Qt::CTRL + Qt::Key_K)});
    OssShortcutManager::instance()->setKeys(text("/Ossa/Viewer/Compare"),
                                            {QKeySequence(Qt::CTRL + Qt::Key_K)});
    for (const char *keys : {"A", "F", "L", "E", "Ctrl+K"}) {
        const int key = QKeySequence(text(keys))[0];
        s_window->menuBar()->setFocus();
        ASSERT_EQ(QApplication::focusWidget(), s_window->menuBar());
        press(key & ~Qt::KeyboardModifierMask,
              Qt::KeyboardModifiers(key & Qt::KeyboardModifierMask));
    }
    m_view->setFocus();
    OssSnBaseNode *node = add("Filter/Blur");
    select({node});
    history()->clear();
    QMessageBox box(s_window);
    box.setModal(true);
    OssApplication::setPopupsAllowed(true); // nobody answers the box for us
    box.show();
    QApplication::setActiveWindow(s_window);
    m_view->setFocus();
    press(Qt::Key_D);
    EXPECT_EQ(history()->count(), 0) << "the dialog keeps the user from the graph";
    box.close();
    OssApplication::setPopupsAllowed(false);
    QCoreApplication::processEvents();
    press(Qt::Key_D);
    EXPECT_EQ(history()->count(), 1);
}

TEST_F(Keys, anOpenMenuHasAllOfThem)
{
    OssApplication::setPopupsAllowed(true);
    QMenu menu(s_window);
    menu.addAction(text("Entry"));
    add("Filter/Blur");
    const int before = history()->index();
    menu.popup(s_window->mapToGlobal(QPoint(50, 50)));
    ASSERT_EQ(QApplication::activePopupWidget(), &menu);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(history()->index(), before);
    menu.close();
    OssApplication::setPopupsAllowed(false);
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(history()->index(), before - 1);
}

TEST_F(Keys, aMenuThatClosedKeepsNoFocus)
{
    OssApplication::setPopupsAllowed(true);
    QMenu menu(s_window);
    menu.addAction(text("Entry"));
    m_view->clearFocus();
    menu.popup(s_window->mapToGlobal(QPoint(50, 50)));
    menu.setFocus();
    ASSERT_EQ(QApplication::focusWidget(), &menu);
    menu.close();
    OssApplication::setPopupsAllowed(false);
    QCoreApplication::processEvents();
    s_window->activateWindow(); // as a window manager does
    QCoreApplication::processEvents();
    EXPECT_EQ(QApplication::focusWidget(), m_view);
}

} // namespace
