#pragma once

#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QVector>

class OssNgNode;
class QGraphicsScene;

/// The nodes that move when the selection of the scene is moved: the selected ones and what lies in
/// selected backdrops, whose lists of children are brought up to date; each once.
OSSNODEGRAPH_EXPORT QVector<OssNgNode *> nodesMovedWithSelection(const QGraphicsScene *scene);
