#pragma once

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QTest>
#include <QWheelEvent>
#include <QWidget>

// What a user does to widgets, where QTest does less: its moves bear no buttons, and it turns no
// wheel and drops nothing. Places are the widget's own.

inline void moveMouse(QWidget *widget, const QPoint &to, Qt::MouseButtons held = Qt::LeftButton,
                      Qt::KeyboardModifiers modifiers = {})
{
    QMouseEvent move(QEvent::MouseMove, to, Qt::NoButton, held, modifiers);
    QApplication::sendEvent(widget, &move);
}

inline void dragMouse(QWidget *widget, Qt::MouseButton button, const QPoint &from, const QPoint &to,
                      Qt::KeyboardModifiers modifiers = {})
{
    QTest::mousePress(widget, button, modifiers, from);
    moveMouse(widget, to, button, modifiers);
    QTest::mouseRelease(widget, button, modifiers, to);
}

/// Whether the widget used it; a click of a wheel is an angle of 120.
inline bool turnWheel(QWidget *widget, const QPoint &at, int angle)
{
    QWheelEvent event(at, widget->mapToGlobal(at), {}, {0, angle}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(widget, &event);
    return event.isAccepted();
}

/// Whether the widget would take it.
inline bool dragOver(QWidget *widget, const QMimeData &mime)
{
    QDragEnterEvent enter({3, 3}, Qt::CopyAction, &mime, Qt::LeftButton, {});
    enter.ignore();
    QApplication::sendEvent(widget, &enter);
    return enter.isAccepted();
}

inline void dropOn(QWidget *widget, const QMimeData &mime)
{
    QDropEvent drop({3, 3}, Qt::CopyAction, &mime, Qt::LeftButton, {});
    QApplication::sendEvent(widget, &drop);
}

/// Whether the widget keeps a key from the commands that have it.
inline bool takesShortcut(QWidget *widget, Qt::Key key, Qt::KeyboardModifiers modifiers = {},
                          const QString &typed = {})
{
    QKeyEvent event(QEvent::ShortcutOverride, key, modifiers, typed);
    event.ignore();
    QApplication::sendEvent(widget, &event);
    return event.isAccepted();
}

inline void loseFocus(QWidget *widget)
{
    QFocusEvent out(QEvent::FocusOut);
    QApplication::sendEvent(widget, &out);
}

/// The button with that text, whose mnemonic does not count; null when there is none.
template <class Button = QAbstractButton>
Button *button(const QWidget *parent, const char *text)
{
    const auto all = parent->findChildren<Button *>();
    for (Button *one : all) {
        if (one->text().remove(QLatin1Char('&')) == QLatin1String(text))
            return one;
    }
    return nullptr;
}

inline void press(const QWidget *parent, const char *text)
{
    QAbstractButton *found = button(parent, text);
    ASSERT_NE(found, nullptr) << "no button " << text;
    found->click();
}

/// The field that screen readers call so; null when there is none.
template <class Field>
Field *named(const QWidget *parent, const char *accessibleName)
{
    const auto all = parent->findChildren<Field *>();
    for (Field *one : all) {
        if (one->accessibleName() == QLatin1String(accessibleName))
            return one;
    }
    return nullptr;
}
