#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"

#include "OssCore/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseContext.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Images/OssImageManager.h"

#include <QAction>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMimeData>

namespace {

constexpr int OpenFlags = OssImageManager::TellFailures | OssImageManager::GatherPatches;

bool bringsPictureFiles(const QMimeData *data)
{
    return data && !data->hasFormat(OssImage::MimeType) && !data->hasFormat(OssImage::PathMimeType)
           && !OssImageManager::picturesOf(data->urls()).isEmpty();
}

void giveImage(OssSnBaseNode *node, const OssImage *image)
{
    const QVariant images = OssImageList(image->uniqueId()).toVariant();
    for (const char *attribute : {"TileImage", "frontImage", "topImage", "rightImage"}) {
        const QString name = QString::fromLatin1(attribute);
        if (node->exists(name))
            node->setAttribute(name, images);
    }
}

/// Pictures from outside become a node each, as those of the image list do.
bool dropPictureFiles(const QMimeData *data, const QVariantMap &parameters)
{
    auto *network = qobject_cast<OssShaderNetwork *>(
        parameters.value(QStringLiteral("NodeGraph")).value<QObject *>());
    const QStringList paths = OssImageManager::picturesOf(data->urls());
    if (!network || paths.isEmpty())
        return false;
    const bool triPlanar = QGuiApplication::keyboardModifiers() & Qt::ShiftModifier;
    const QString key = triPlanar ? QStringLiteral("Environment/Tri Planar Projection")
                                  : QStringLiteral("Procedural/Pattern/Tiled");
    const OssUndoManager::AutoMacro macro(
        QCoreApplication::translate("OssDragAndDropManager", "Drop %1 images").arg(paths.size()));
    bool made = false;
    for (const QString &path : paths) {
        const auto layers = OssImageManager::instance()->open(path, OpenFlags,
                                                              OssImageManager::defaultCategory());
        OssSnBaseNode *node = layers.size() == 1 ? network->createNode(key) : nullptr;
        if (!node)
            continue;
        made = true;
        giveImage(node, layers.first().image);
        if (OssSnBaseContext *context = node->viewContext()) {
            context->setNodePosition(parameters.value(QStringLiteral("Position")).toPointF());
            context->placeNode();
        }
    }
    return made;
}

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

OssDragAndDropManager *OssDragAndDropManager::instance()
{
    static OssDragAndDropManager manager;
    return &manager;
}

OssDragAndDropManager::OssDragAndDropManager()
{
    registerHandler({OssImageManager::NodeGraphTarget, bringsPictureFiles, dropPictureFiles});
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
