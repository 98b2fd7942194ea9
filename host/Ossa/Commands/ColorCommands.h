#pragma once

#include <QObject>
#include <QString>

class QWidget;

/// The commands that are about a project's colours, and what is told when they cannot be had.
class ColorCommands : public QObject
{
    Q_OBJECT

public:
    /// `window` is the parent of dialogs; this object must not outlive it.
    explicit ColorCommands(QWidget *window);

Q_SIGNALS:
    /// Something stands in for what the project asks for; empty once that is no longer so.
    void trouble(const QString &text);

private:
    void editSettings();
    void tellTrouble();

    QWidget *m_window;
    QString m_told;
};
