#pragma once

#include <QObject>

/// Commands that show where something is or what it depends on, and change nothing.
class MarkCommands : public QObject
{
    Q_OBJECT

public:
    explicit MarkCommands(QObject *parent);

    /// Goes to the node that a step of the history changes; of several, to the one that its title names, else to
    /// the first that is still in a graph. False where there is none.
    static bool goToStep(int step);

private:
    static void goToLastChange();
    static void markDependencies();
    static void clearMarks();
};
