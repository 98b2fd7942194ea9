#pragma once

#include <QGraphicsScene>

/// The scene of one network. Shows items that the nodes' contexts own, so it lets go of them before
/// it dies.
class OssSnNodeGraphScene : public QGraphicsScene
{
    Q_OBJECT

public:
    OssSnNodeGraphScene();
    ~OssSnNodeGraphScene() override;
};
