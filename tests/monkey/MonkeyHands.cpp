#include "MonkeyHands.h"

#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssCommandTable.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssNodeGraph/View/OssNgView.h"
#include "OssScripting/OssScriptEngine.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileDialog>
#include <QLineEdit>
#include <QMainWindow>
#include <QMenu>
#include <QMessageBox>
#include <QProgressDialog>
#include <QTest>
#include <QWheelEvent>
#include <QWindow>

#include <algorithm>

namespace {

/// No separators: what is typed into a field for a file stays in the folder.
const QString Letters = QStringLiteral("abcdefgnoprstxyz AB0123456789.-+*_%&()'\"<>=:\u00e9\u6f22");

const int PlainKeys[] = {Qt::Key_Tab,   Qt::Key_Backtab, Qt::Key_Escape,    Qt::Key_Return,
                         Qt::Key_Enter, Qt::Key_Delete,  Qt::Key_Backspace, Qt::Key_Left,
                         Qt::Key_Right, Qt::Key_Up,      Qt::Key_Down,      Qt::Key_Home,
                         Qt::Key_End,   Qt::Key_PageUp,  Qt::Key_PageDown,  Qt::Key_Space,
                         Qt::Key_Menu,  Qt::Key_F2,      Qt::Key_F10,       Qt::Key_Alt,
                         Qt::Key_Shift, Qt::Key_Control};

const char *const Scripts[] = {
    "import ossa\nprint(ossa)",
    "sum(range(100000))",
    "raise ValueError('monkey')",
    "for i in range(3): print(i)",
};

bool isPopup(const QWidget *widget)
{
    return widget->windowType() == Qt::Popup || widget->windowType() == Qt::ToolTip
           || widget->windowType() == Qt::SplashScreen;
}

/// Qt keeps them by their addresses, which differ from run to run.
QWidgetList windowsInOrder()
{
    const auto name = [](const QWidget *widget) {
        return QLatin1String(widget->metaObject()->className()) + widget->objectName()
               + widget->windowTitle();
    };
    QWidgetList all = QApplication::topLevelWidgets();
    std::sort(all.begin(), all.end(), [&name](const QWidget *one, const QWidget *other) {
        return name(one) < name(other);
    });
    return all;
}

} // namespace

MonkeyHands::MonkeyHands(quint32 seed, const QString &folder)
    : m_random(seed)
    , m_folder(folder)
{
    const QAction *pickUp = OssActionTreeManager::instance()->findAction(
        QStringLiteral("/Ossa/NodeGraph/Pick Up Edge Under Mouse"));
    connect(pickUp, &QAction::triggered, this, [this] { m_pickedUp = true; });
}

bool MonkeyHands::isEmpty() const
{
    return m_down == Qt::NoButton && QGuiApplication::mouseButtons() == Qt::NoButton;
}

void MonkeyHands::act()
{
    if (answerWaiting())
        return;
    // In the middle of a gesture other things happen, too.
    if (!m_planned.isEmpty() && below(12) != 0) {
        send(m_planned.dequeue());
        return;
    }
    begin();
}

bool MonkeyHands::answerWaiting()
{
    auto *dialog = qobject_cast<QDialog *>(QApplication::activePopupWidget());
    QWidget *modal = dialog ? dialog : QApplication::activeModalWidget();
    dialog = qobject_cast<QDialog *>(modal);
    const bool files = qobject_cast<QFileDialog *>(modal);
    const int patience = qobject_cast<QMessageBox *>(modal) ? 8 : 40;
    // A script keeps the user's hands off dialogs, too.
    if (!dialog || OssScriptEngine::instance()->isRunning() || (!files && below(patience) != 0))
        return false;
    answer(dialog);
    return true;
}

bool MonkeyHands::letGo()
{
    m_planned.clear();
    for (const Qt::MouseButton button : {Qt::LeftButton, Qt::MiddleButton, Qt::RightButton}) {
        if (m_down & button) {
            send({QEvent::MouseButtonRelease, m_place, button, {}, m_window});
            return true;
        }
    }
    if (QWidget *popup = QApplication::activePopupWidget()) {
        popup->close();
        return true;
    }
    if (QWidget *modal = QApplication::activeModalWidget()) {
        if (auto *dialog = qobject_cast<QDialog *>(modal))
            dialog->reject();
        modal->close();
        return true;
    }
    if (OssScriptEngine::instance()->isRunning())
        return true;
    m_down = QGuiApplication::mouseButtons();
    return m_down != Qt::NoButton;
}

void MonkeyHands::begin()
{
    QWidget *popup = QApplication::activePopupWidget();
    if (auto *menu = qobject_cast<QMenu *>(popup); menu && below(3) == 0) {
        choosePopupEntry(menu);
        return;
    }
    const int what = below(100);
    if (what < 25)
        click();
    else if (what < 42)
        drag();
    else if (what < 52) {
        if (pick())
            point(QEvent::MouseMove, Qt::NoButton, anyModifiers());
    } else if (what < 58)
        turnWheel();
    else if (what < 90)
        useKeyboard();
    else if (what < 97)
        chooseCommand();
    else if (what < 99)
        resizeWindow();
    else
        runScript();
}

// --- the pointer

/// Chooses a place under the pointer; false when there is no window, or a button holds the pointer.
bool MonkeyHands::pick()
{
    QWidget *widget = anyWidget();
    if (!widget || !widget->window()->windowHandle())
        return false;
    const QPoint place = widget->mapTo(widget->window(), anyPlaceIn(widget));
    QWindow *window = widget->window()->windowHandle();
    // While a button is down its window has the pointer, wherever that is.
    m_place = m_down && m_window ? m_window->mapFromGlobal(window->mapToGlobal(place)) : place;
    if (!m_down || !m_window)
        m_window = window;
    return true;
}

void MonkeyHands::point(QEvent::Type type, Qt::MouseButton button, Qt::KeyboardModifiers modifiers)
{
    send({type, m_place, button, modifiers, m_window});
}

void MonkeyHands::click()
{
    if (!pick())
        return;
    const int which = below(10);
    const Qt::MouseButton button = which < 7   ? Qt::LeftButton
                                   : which < 9 ? Qt::RightButton
                                               : Qt::MiddleButton;
    const Qt::KeyboardModifiers modifiers = anyModifiers();
    const int times = below(5) == 0 ? 2 : 1;
    for (int i = 0; i < times; ++i) {
        m_planned.enqueue(
            {QEvent::MouseButtonPress, m_place, button, modifiers, m_window, i == 0 ? 1000 : 20});
        m_planned.enqueue({QEvent::MouseButtonRelease, m_place, button, modifiers, m_window, 20});
    }
    point(QEvent::MouseMove, Qt::NoButton, modifiers);
}

void MonkeyHands::drag()
{
    if (!pick())
        return;
    const QPoint from = m_place;
    const QPointer<QWindow> window = m_window;
    const int which = below(10);
    const Qt::MouseButton button = which < 8   ? Qt::LeftButton
                                   : which < 9 ? Qt::MiddleButton
                                               : Qt::RightButton;
    const Qt::KeyboardModifiers modifiers = anyModifiers();
    QPoint to = from + QPoint(below(301) - 150, below(301) - 150);
    if (below(2) == 0 && pick())
        to = window ? window->mapFromGlobal(m_window->mapToGlobal(m_place)) : m_place;
    m_window = window;
    m_place = from;
    m_planned.enqueue({QEvent::MouseButtonPress, from, button, modifiers, window, 1000});
    const int steps = 1 + below(7);
    for (int i = 1; i <= steps; ++i)
        m_planned.enqueue({QEvent::MouseMove, from + (to - from) * i / steps, Qt::NoButton,
                           modifiers, window, 10});
    if (below(20) != 0) // or it is held, and let go by what is pressed later
        m_planned.enqueue({QEvent::MouseButtonRelease, to, button, modifiers, window, 10});
    point(QEvent::MouseMove, Qt::NoButton, modifiers);
}

void MonkeyHands::turnWheel()
{
    QWidget *widget = anyWidget();
    if (!widget || m_down)
        return;
    const QPoint place = anyPlaceIn(widget);
    QWheelEvent event(place, widget->mapToGlobal(place), {}, {0, below(2) ? 120 : -120},
                      Qt::NoButton, anyModifiers(), Qt::NoScrollPhase, false);
    m_last = QStringLiteral("wheel over ") + QLatin1String(widget->metaObject()->className());
    QApplication::sendEvent(widget, &event);
}

void MonkeyHands::send(const Move &move)
{
    QWindow *window = move.window;
    if (!window || !window->isVisible()) {
        // The window went: the system tells of the release all the same.
        QWidget *main = OssApplication::mainWindow();
        main->show();
        window = main->windowHandle();
    }
    m_time += move.pause;
    m_place = move.place;
    if (move.type == QEvent::MouseButtonPress) {
        if (m_down & move.button)
            return;
        m_down |= move.button;
        m_pickedUp = m_pickedUp && move.button != Qt::LeftButton;
    } else if (move.type == QEvent::MouseButtonRelease) {
        if (!(m_down & move.button))
            return;
        m_down &= ~Qt::MouseButtons(move.button);
    }
    m_window = window;
    m_last = QStringLiteral("%1 %2 at %3, %4 in %5, modifiers %6")
                 .arg(move.type == QEvent::MouseMove          ? QStringLiteral("move")
                      : move.type == QEvent::MouseButtonPress ? QStringLiteral("press")
                                                              : QStringLiteral("release"))
                 .arg(int(move.button))
                 .arg(move.place.x())
                 .arg(move.place.y())
                 .arg(window->objectName())
                 .arg(int(move.modifiers), 0, 16);
    qt_handleMouseEvent(window, move.place, window->mapToGlobal(move.place), m_down, move.button,
                        move.type, move.modifiers, m_time);
}

Qt::KeyboardModifiers MonkeyHands::anyModifiers()
{
    const int which = below(12);
    return which < 8    ? Qt::KeyboardModifiers(Qt::NoModifier)
           : which < 9  ? Qt::ShiftModifier
           : which < 10 ? Qt::ControlModifier
           : which < 11 ? Qt::AltModifier
                        : Qt::ControlModifier | Qt::ShiftModifier;
}

/// The menu or dialog that waits, mostly, or any window; in it the graph, or anything.
QWidget *MonkeyHands::anyWidget()
{
    QWidget *top = QApplication::activePopupWidget();
    if (!top || below(6) == 0)
        top = QApplication::activeModalWidget();
    if (!top || below(10) == 0) {
        QList<QWidget *> tops;
        const QWidgetList all = windowsInOrder();
        for (QWidget *one : all) {
            if (one->isVisible() && !isPopup(one) && !qobject_cast<QFileDialog *>(one)) {
                tops.append(one);
                if (qobject_cast<QMainWindow *>(one)) // most of the time
                    tops.append({one, one, one});
            }
        }
        top = tops.isEmpty() ? nullptr : tops.at(below(tops.size()));
    }
    if (!top)
        return nullptr;
    QList<QWidget *> shown;
    QList<QWidget *> graphs;
    const auto all = top->findChildren<QWidget *>();
    for (QWidget *one : all) {
        if (one->isVisible() && !one->isWindow() && one->width() > 0 && one->height() > 0)
            shown.append(one);
        if (auto *view = qobject_cast<OssNgView *>(one); view && view->isVisible())
            graphs.append(view->viewport());
    }
    if (!graphs.isEmpty() && below(2) == 0)
        return graphs.at(below(graphs.size()));
    return shown.isEmpty() || below(8) == 0 ? top : shown.at(below(shown.size()));
}

QPoint MonkeyHands::anyPlaceIn(QWidget *widget)
{
    const auto *view = qobject_cast<OssNgView *>(widget->parentWidget());
    if (view && view->scene() && below(4) != 0) {
        const QList<QGraphicsItem *> items = view->items(view->viewport()->rect());
        if (!items.isEmpty()) {
            const QRectF box = items.at(below(items.size()))->sceneBoundingRect();
            const QPoint place = view->mapFromScene(
                box.topLeft()
                + QPointF(box.width() * below(101) / 100.0, box.height() * below(101) / 100.0));
            if (widget->rect().contains(place))
                return place;
        }
    }
    return {below(qMax(1, widget->width())), below(qMax(1, widget->height()))};
}

// --- keys and commands

void MonkeyHands::press(int key, Qt::KeyboardModifiers modifiers, const QString &text)
{
    const QPointer<QWindow> window = QGuiApplication::focusWindow();
    if (!window)
        return;
    const QWidget *focus = QApplication::focusWidget();
    m_last = QStringLiteral("key %1 in %2")
                 .arg(QKeySequence(key | int(modifiers)).toString(QKeySequence::PortableText),
                      QLatin1String(focus ? focus->metaObject()->className() : "nothing"));
    qt_handleKeyEvent(window, QEvent::KeyPress, key, modifiers, text);
    if (window) // the key may have closed it
        qt_handleKeyEvent(window, QEvent::KeyRelease, key, modifiers, text);
}

void MonkeyHands::useKeyboard()
{
    const int what = below(10);
    if (what < 5) {
        pressKeyOfCommand();
    } else if (what < 7) {
        press(PlainKeys[below(int(std::size(PlainKeys)))], anyModifiers());
    } else {
        const QChar letter = Letters.at(below(Letters.size()));
        const int key = letter.unicode() < 128 ? letter.toUpper().unicode() : Qt::Key_unknown;
        press(key, letter.isUpper() ? Qt::ShiftModifier : Qt::NoModifier, letter);
    }
}

void MonkeyHands::pressKeyOfCommand()
{
    const auto &rows = OssCommandTable::rows();
    const OssCommandTable::Row &row = rows.at(std::size_t(below(int(rows.size()))));
    const QList<QKeySequence> keys = OssCommandTable::keys(OssCommandTable::path(row));
    if (keys.isEmpty())
        return;
    const int combined = keys.at(below(keys.size()))[0];
    const int key = combined & ~int(Qt::KeyboardModifierMask);
    const auto modifiers = Qt::KeyboardModifiers(combined & int(Qt::KeyboardModifierMask));
    const bool types = key < 0x80 && !(modifiers & (Qt::ControlModifier | Qt::AltModifier));
    press(key, modifiers, types ? QString(QChar(key)).toLower() : QString());
}

/// From anywhere a user has them: menus, buttons, the list of commands.
void MonkeyHands::chooseCommand()
{
    OssActionTreeManager *tree = OssActionTreeManager::instance();
    const QStringList paths = tree->paths();
    const QString path = paths.at(below(paths.size()));
    QAction *action = tree->findAction(path);
    // What a dialog or a script keeps from the user cannot be chosen.
    if (!action || !action->isEnabled() || QApplication::activeModalWidget()
        || QApplication::activePopupWidget() || OssScriptEngine::instance()->isRunning())
        return;
    m_last = QStringLiteral("command ") + path;
    action->trigger();
}

void MonkeyHands::choosePopupEntry(QWidget *popup)
{
    auto *menu = qobject_cast<QMenu *>(popup);
    const QList<QAction *> actions = menu->actions();
    if (actions.isEmpty())
        return;
    QAction *action = actions.at(below(actions.size()));
    const QPoint place = menu->actionGeometry(action).center();
    QWindow *window = menu->windowHandle();
    if (!window || !menu->rect().contains(place))
        return;
    m_window = window;
    m_place = place;
    m_planned.enqueue({QEvent::MouseButtonPress, place, Qt::LeftButton, {}, window, 1000});
    m_planned.enqueue({QEvent::MouseButtonRelease, place, Qt::LeftButton, {}, window, 20});
    point(QEvent::MouseMove, Qt::NoButton, {});
}

void MonkeyHands::runScript()
{
    if (QApplication::activeModalWidget() || QApplication::activePopupWidget())
        return; // nobody comes to the console past them
    const char *const script = Scripts[below(int(std::size(Scripts)))];
    m_last = QStringLiteral("script ") + QLatin1String(script);
    OssScriptEngine::instance()->runInput(QLatin1String(script), true);
}

void MonkeyHands::resizeWindow()
{
    const QWidgetList all = windowsInOrder();
    for (QWidget *one : all) {
        if (!qobject_cast<QMainWindow *>(one) || one->parentWidget())
            continue;
        m_last = QStringLiteral("resize");
        one->show(); // the user may have left
        one->activateWindow();
        if (below(4) == 0 && !one->isFullScreen())
            one->resize(700 + below(900), 500 + below(600));
    }
}

// --- dialogs

void MonkeyHands::answer(QDialog *dialog)
{
    m_last = QStringLiteral("answer ") + QLatin1String(dialog->metaObject()->className())
             + QLatin1Char(' ') + dialog->windowTitle();
    const QPointer<QFileDialog> files = qobject_cast<QFileDialog *>(dialog);
    const QString file = files ? fileFor(files) : QString();
    if (files && (file.isEmpty() || below(2) == 0)) {
        files->reject();
    } else if (files) {
        // Typed: a file that is selected does not change a name whose field has the keyboard.
        files->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"))->setText(file);
        static_cast<QDialog *>(files)->accept();
        // What it does not take, such as a file of the other kind.
        if (files && files->isVisible())
            files->reject();
    } else if (auto *box = qobject_cast<QMessageBox *>(dialog); box && !box->buttons().isEmpty()) {
        box->buttons().at(below(box->buttons().size()))->click();
    } else if (qobject_cast<QProgressDialog *>(dialog) || below(2) == 0) {
        dialog->reject();
    } else {
        dialog->accept();
    }
}

/// In the folder; empty: none that fits.
QString MonkeyHands::fileFor(const QDialog *dialog)
{
    const auto *files = qobject_cast<const QFileDialog *>(dialog);
    const QDir folder(m_folder);
    if (files->acceptMode() == QFileDialog::AcceptSave)
        return folder.filePath(QStringLiteral("saved %1").arg(below(6)));
    const QStringList names = folder.entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    return names.isEmpty() ? QString() : folder.filePath(names.at(below(names.size())));
}
