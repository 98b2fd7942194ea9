#include "Graphs.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QRandomGenerator>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr int PartCount = 6;
constexpr int NearBy = 14;

class Filling
{
public:
    Filling(OssShaderNetwork *network, int count, unsigned seed)
        : m_network(network)
        , m_random(seed)
        , m_side(int(std::ceil(std::sqrt(double(count)))))
    {
    }

    int below(int limit) { return limit > 0 ? int(m_random.bounded(quint32(limit))) : 0; }

    void add()
    {
        OssSnBaseNode *node = m_network->createNode(QStringLiteral("Layer/Merge"),
                                                    QStringLiteral("Node %1").arg(m_nodes.size()));
        node->viewContext()->setNodePosition(
            {400.0 + below(m_side) * 240.0 + below(100), below(m_side) * 180.0 + below(100)});
        m_nodes.push_back(node);
        m_used.push_back(0);
    }

    void wire(int from, int to)
    {
        OssSnBaseNode *target = m_nodes[std::size_t(to)];
        OssSnBaseNode *source = m_nodes[std::size_t(from)];
        const QStringList inputs = target->inputNames();
        int &used = m_used[std::size_t(to)];
        if (used < inputs.size())
            target->setInputNode(inputs.at(used++), source, source->prefferedOutputPoint());
    }

private:
    OssShaderNetwork *m_network;
    QRandomGenerator m_random;
    int m_side;
    std::vector<OssSnBaseNode *> m_nodes;
    std::vector<int> m_used;
};

} // namespace

void Graphs::fill(OssShaderNetwork *network, Shape shape, int count, unsigned seed)
{
    const OssUndoManager::Pause pause;
    const OssShaderNetwork::ViewUpdateLock lock(network);
    Filling filling(network, count, seed);
    const int part = count / PartCount;
    for (int i = 0; i < count; ++i) {
        filling.add();
        const int first = shape == Shape::Parts ? i / part * part : 0;
        if (i == first)
            continue;
        switch (shape) {
        case Shape::Near:
        case Shape::Parts:
            for (int wires = filling.below(5) < 3 ? 1 : 2; wires > 0; --wires)
                filling.wire(std::max(first, i - 1 - filling.below(NearBy)), i);
            break;
        case Shape::Wild:
            for (int wires = filling.below(3); wires > 0; --wires)
                filling.wire(filling.below(i), i);
            break;
        case Shape::Star:
            filling.wire(0, i);
            break;
        case Shape::Tree:
            filling.wire(i, (i - 1) / 2);
            break;
        }
    }
}
