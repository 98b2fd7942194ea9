#include "Ossa/Dialogs/KeyRecorder.h"

#include <QKeyEvent>

namespace {

bool isModifier(int key)
{
    switch (key) {
    case Qt::Key_Shift:
    case Qt::Key_Control:
    case Qt::Key_Meta:
    case Qt::Key_Alt:
    case Qt::Key_AltGr:
    case Qt::Key_unknown:
        return true;
    default:
        return false;
    }
}

// What the keyboard layout needed Shift for, such as "+", is that sign and not Shift with it.
Qt::KeyboardModifiers meantModifiers(const QKeyEvent &event)
{
    Qt::KeyboardModifiers modifiers = event.modifiers() & ~Qt::KeypadModifier;
    const QString text = event.text();
    const bool sign = !text.isEmpty() && text.at(0).isPrint() && !text.at(0).isLetterOrNumber()
                      && !text.at(0).isSpace();
    if (sign)
        modifiers &= ~Qt::ShiftModifier;
    return modifiers;
}

} // namespace

KeyRecorder::KeyRecorder(QWidget *parent)
    : QLineEdit(parent)
{
    setReadOnly(true);
    setPlaceholderText(tr("Press a key"));
    setAccessibleName(tr("New key"));
    setContextMenuPolicy(Qt::NoContextMenu);
}

void KeyRecorder::setKeys(const QKeySequence &keys)
{
    m_keys = keys;
    setText(keys.toString(QKeySequence::NativeText));
    Q_EMIT keysChanged(keys);
}

bool KeyRecorder::event(QEvent *event)
{
    if (event->type() == QEvent::ShortcutOverride) {
        event->accept();
        return true;
    }
    if (event->type() != QEvent::KeyPress)
        return QLineEdit::event(event);
    const auto &press = *static_cast<QKeyEvent *>(event);
    if (isModifier(press.key()))
        return true;
    // Back-tab is what Shift makes of Tab.
    const int key = press.key() == Qt::Key_Backtab ? int(Qt::Key_Tab) : press.key();
    const Qt::KeyboardModifiers modifiers = meantModifiers(press);
    const bool empties = key == Qt::Key_Escape && modifiers == Qt::NoModifier;
    setKeys(empties ? QKeySequence() : QKeySequence(key | int(modifiers)));
    return true;
}
