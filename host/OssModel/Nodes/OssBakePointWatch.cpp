#include "OssModel/Nodes/OssBakePointWatch.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssMeshes.h"

namespace {

constexpr int Soon = 100; ///< milliseconds

} // namespace

OssBakePointWatch::OssBakePointWatch()
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, &OssBakePointWatch::look);
    const auto lookSoon = [this] {
        if (!m_nodes.isEmpty() && !m_timer.isActive())
            m_timer.start(Soon);
    };
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, lookSoon);
    connect(OssFileWatch::instance(), &OssFileWatch::changed, this, lookSoon);
    connect(OssMeshes::instance(), &OssMeshes::changed, this, lookSoon);
}

void OssBakePointWatch::look()
{
    const QSet<OssSnBakePointNode *> nodes = m_nodes;
    for (OssSnBakePointNode *node : nodes) {
        if (m_nodes.contains(node) && node->network())
            node->checkBakedState();
    }
}
