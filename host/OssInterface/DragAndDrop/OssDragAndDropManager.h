#pragma once

#include "OssCore/Program/OssService.h"
#include "OssInterface/OssInterface_export.h"

#include <QVariantMap>

#include <functional>
#include <vector>

class QMimeData;

/// Objects that can be dragged about in the application and from outside it, and what each target
/// does with them. Images and archives, which the graph takes itself, are not among them.
class OSSINTERFACE_EXPORT OssDragAndDropManager : public OssService<OssDragAndDropManager>
{
public:
    /// For one kind of thing and one target.
    struct Handler
    {
        int target;
        std::function<bool(const QMimeData *)> accepts;
        /// True when it was used.
        std::function<bool(const QMimeData *, const QVariantMap &parameters)> drop;
    };

    OssDragAndDropManager();

    /// Asked in the order of registration.
    void registerHandler(const Handler &handler) { m_handlers.push_back(handler); }

    bool acceptDragEnter(const QMimeData *data, int target) const;
    /// `parameters` depend on the target; the node graph gives "NodeGraph", its network, and
    /// "Position", a scene point.
    bool drop(const QMimeData *data, int target, const QVariantMap &parameters) const;

    /// Makes a node of the type in the graph that the user works in, as its menu entry does: under
    /// the pointer, or in the middle when that is elsewhere. False when there is no such entry.
    static bool createNode(const QString &pathKey);

private:
    std::vector<Handler> m_handlers;
};
