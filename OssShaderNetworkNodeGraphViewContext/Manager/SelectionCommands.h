#pragma once

#include <QObject>
#include <QTimer>

class OssShaderNetwork;

/// Enables the commands that need a certain selection in the network that is shown. Selections change
/// node by node, so it looks once at the next pause, or when somebody asks. GUI thread.
class SelectionCommands : public QObject
{
    Q_OBJECT

public:
    explicit SelectionCommands(QObject *parent);

public Q_SLOTS:

    /// The selection or the shown network is another.
    void onChanged() { m_pause.start(); }

private:
    void settle();
    void update();

    QTimer m_pause;
};
