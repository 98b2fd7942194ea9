#pragma once

#include <QEvent>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QQueue>
#include <QRandomGenerator>
#include <QString>

class QAction;
class QDialog;
class QWidget;
class QWindow;

/// A user who knows nothing and wants nothing: moves, presses, drags, turns the wheel, types, opens
/// menus and answers dialogs at random, through the window system's queue as a real hand does. What
/// waits for the user (menus, dialogs, drags) goes on being used from inside its own loop. Nothing is
/// written but below one folder.
class MonkeyHands : public QObject
{
    Q_OBJECT

public:
    /// Everything the hands write and open is in the folder.
    MonkeyHands(quint32 seed, const QString &folder);

    /// One event.
    void act();
    /// Lets go of everything and closes what waits for an answer; false: there is nothing left.
    bool letGo();

    /// Whether the program knows of no button that is down.
    bool isEmpty() const;

    /// Whether a command put a wire into the hand: it stays there until the next click.
    bool hasWirePickedUp() const { return m_pickedUp; }

    /// What was done last, for whoever reads of a failure.
    QString last() const { return m_last; }

    int below(int bound) { return int(m_random.bounded(quint32(bound))); }

private:
    struct Move
    {
        QEvent::Type type = QEvent::None;
        QPoint place; ///< in the window
        Qt::MouseButton button = Qt::NoButton;
        Qt::KeyboardModifiers modifiers = {};
        QPointer<QWindow> window;
        int pause = 1; ///< milliseconds since the last, as the program is told
    };

    void begin();
    void point(QEvent::Type type, Qt::MouseButton button, Qt::KeyboardModifiers modifiers);
    void drag();
    void click();
    void turnWheel();
    void useKeyboard();
    void press(int key, Qt::KeyboardModifiers modifiers, const QString &text = {});
    void pressKeyOfCommand();
    void chooseCommand();
    void choosePopupEntry(QWidget *popup);
    void runScript();
    void resizeWindow();
    void send(const Move &move);
    void answer(QDialog *dialog);
    bool answerWaiting();

    QWidget *anyWidget();
    QPoint anyPlaceIn(QWidget *widget);
    Qt::KeyboardModifiers anyModifiers();
    QString fileFor(const QDialog *dialog);
    bool pick();

    QRandomGenerator m_random;
    const QString m_folder;
    QQueue<Move> m_planned; ///< the rest of a click or a drag
    QPointer<QWindow> m_window;
    QPoint m_place;
    Qt::MouseButtons m_down;
    int m_time = 10000;
    bool m_pickedUp = false;
    QString m_last;
};
