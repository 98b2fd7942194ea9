#include "OssModel/Graph/OssSnBaseNode.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"

// The backdrop that holds the node.

namespace {

bool holds(const OssSnBaseNode *node, const OssSnBaseNode *inner)
{
    while (inner && inner != node)
        inner = inner->container();
    return inner;
}

} // namespace

OssSnBaseNode *OssSnBaseNode::container() const
{
    // One that was removed, or stayed outside of a group, holds the node again when it comes back.
    OssSnBaseNode *holder = m_container.node;
    return holder && holder->network() == m_network ? holder : nullptr;
}

void OssSnBaseNode::setContainer(OssSnBaseNode *container)
{
    OssSnBaseNode *now = this->container();
    if (container == now)
        return;
    if (container && (container->network() != m_network || holds(this, container))) {
        OssDebug("OssSnBaseNode", __LINE__, "[ !! ] '%s' cannot lie in '%s'", qPrintable(path()),
                 qPrintable(container->path()));
        return;
    }
    const auto assign = [this](const QPointer<OssSnBaseNode> &holder) {
        m_container.node = holder;
    };
    const QPointer<OssSnBaseNode> before = m_container.node;
    const QPointer<OssSnBaseNode> after = container;
    assign(after);
    OssUndoManager::instance()->record(
        container ? tr("Put %1 into %2").arg(name(), container->name())
                  : tr("Take %1 out of %2").arg(name(), now->name()),
        [assign, before] { assign(before); }, [assign, after] { assign(after); });
}
