#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"

#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Images/OssImageManager.h"

#include <QAction>
#include <QMimeData>

namespace {

bool bringsNodeTypes(const QMimeData *data)
{
    return data && data->hasFormat(OssNodeTypeListModel::MimeType);
}

bool dropNodeTypes(const QMimeData *data, const QVariantMap &)
{
    const QStringList keys = QString::fromUtf8(data->data(OssNodeTypeListModel::MimeType))
                                 .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    bool made = false;
    for (const QString &key : keys)
        made = OssDragAndDropManager::createNode(key) || made;
    return made;
}

} // namespace

OssDragAndDropManager::OssDragAndDropManager()
{
    registerHandler({OssImageManager::NodeGraphTarget, bringsNodeTypes, dropNodeTypes});
}

bool OssDragAndDropManager::createNode(const QString &pathKey)
{
    const QString menuPath = OssShaderNetworkManager::instance()->nodeMenuPath(pathKey);
    QAction *action = OssActionTreeManager::instance()->findAction(
        QStringLiteral("/Ossa/NodeGraph/Create/") + menuPath);
    if (menuPath.isEmpty() || !action)
        return false;
    action->trigger();
    return true;
}

bool OssDragAndDropManager::acceptDragEnter(const QMimeData *data, int target) const
{
    for (const Handler &handler : m_handlers) {
        if (handler.target == target && handler.accepts(data))
            return true;
    }
    return false;
}

bool OssDragAndDropManager::drop(const QMimeData *data, int target,
                                 const QVariantMap &parameters) const
{
    for (const Handler &handler : m_handlers) {
        if (handler.target == target && handler.accepts(data) && handler.drop(data, parameters))
            return true;
    }
    return false;
}
