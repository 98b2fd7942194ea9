#pragma once

#include <QObject>
#include <QPointer>

class ManualWindow;
class QWidget;

/// Opens the manual where one looks: at the node that the pointer is at, the one that is selected, or
/// the palette that has the keyboard.
class HelpCommands : public QObject
{
    Q_OBJECT

public:
    /// The window owns it, and the manual's window with it.
    explicit HelpCommands(QWidget *window);

    /// The page for what is looked at now.
    static QString addressHere();

Q_SIGNALS:
    /// An example that the manual names.
    void projectChosen(const QString &path);

private:
    void open(const QString &address);

    QWidget *m_window;
    QPointer<ManualWindow> m_manual; ///< made when it is asked for first
};
