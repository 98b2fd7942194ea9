#pragma once

#include <QHash>
#include <QObject>
#include <QPointer>
#include <QWidget>

/// Gives the keyboard back to what had it before a dialog or menu came, once that has closed. Qt leaves
/// this to the window system and to the main window, which has nothing to give it to when the keyboard
/// was in another window, or nowhere: then a menu that nobody sees any more goes on having it. Whoever
/// sets the focus after a dialog closed has the last word. GUI thread.
class OssFocusReturn : public QObject
{
    Q_OBJECT

public:
    OssFocusReturn();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void onFocusChanged(const QWidget *old, QWidget *now);
    void remember(QWidget *dialog);
    void giveBack(const QWidget *dialog);
    /// Where nobody has the keyboard, or only something that is hidden.
    void mend();

    QPointer<QWidget> m_last; ///< had it last, outside of menus and dialogs
    QHash<const QObject *, QPointer<QWidget>> m_before; ///< for each dialog that is shown
};
