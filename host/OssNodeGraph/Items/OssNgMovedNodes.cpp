#include "OssNodeGraph/Items/OssNgMovedNodes.h"

#include "OssNodeGraph/Items/OssNgBackdropNode.h"

#include <QGraphicsScene>
#include <QSet>

QVector<OssNgNode *> nodesMovedWithSelection(const QGraphicsScene *scene)
{
    QVector<OssNgNode *> nodes;
    QSet<OssNgNode *> seen;
    const auto take = [&](OssNgNode *node) {
        if (!node || seen.contains(node))
            return;
        seen.insert(node);
        nodes.append(node);
    };
    const QList<QGraphicsItem *> selected = scene->selectedItems();
    for (QGraphicsItem *item : selected) {
        auto *node = dynamic_cast<OssNgNode *>(item);
        take(node);
        auto *backdrop = qobject_cast<OssNgBackdropNode *>(node);
        if (!backdrop)
            continue;
        backdrop->refreshChildrenList();
        for (const QPointer<OssNgNode> &child : backdrop->childrenList())
            take(child);
    }
    return nodes;
}
