#include "Graphs.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cmath>
#include <vector>

void Graphs::fill(OssShaderNetwork *network, int count)
{
    const OssUndoManager::Pause pause;
    const OssShaderNetwork::ViewUpdateLock lock(network);
    const char *const keys[] = {"Layer/Merge", "Filter/Blur", "Adjust/Levels",
                                "Procedural/Noise/Fractal Noise", "Math/Math"};
    const char *const inputs[] = {"Base", "Input", "Input", "Frequency", "A"};
    QRandomGenerator random(7);
    const int side = int(std::ceil(std::sqrt(double(count))));
    std::vector<OssSnBaseNode *> nodes;
    for (int i = 0; i < count; ++i) {
        // New nodes appear at the origin, which is kept free: none has to make way.
        OssSnBaseNode *node = network->createNode(QString::fromLatin1(keys[i % 5]),
                                                  QStringLiteral("Node %1").arg(i));
        QMetaObject::invokeMethod(
            node->context(QStringLiteral("NodeGraphView")), "setNodePosition",
            Q_ARG(QPointF, QPointF(400.0 + (i % side) * 240.0, (i / side) * 180.0)));
        if (i > 0) {
            OssSnBaseNode *source = nodes[std::size_t(std::max(0, i - 1 - random.bounded(20)))];
            node->setInputNode(QString::fromLatin1(inputs[i % 5]), source,
                               source->prefferedOutputPoint());
        }
        nodes.push_back(node);
    }
}
