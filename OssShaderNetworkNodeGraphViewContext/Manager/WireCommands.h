#pragma once

#include <QObject>

/// The command "Toggle Wire": switches the inputs at which the selected wires end, or the wire under
/// the pointer, off or on again. What comes to an input that is off is not used; the wire stays.
class WireCommands : public QObject
{
    Q_OBJECT

public:
    explicit WireCommands(QObject *parent);

private:
    static void toggle();
};
