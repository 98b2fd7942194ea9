#include "View/Drops.h"

#include "OssInterface/Dialogs/OssNodeTypeListModel.h"
#include "OssInterface/DragAndDrop/OssDragAndDropManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Layers/OssMaterialPaintManager.h"
#include "OssModel/Nodes/OssSnCustomProceduralNode.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"
#include "OssModel/Project/OssProjectFile.h"
#include "OssModel/Types/OssNodeSuffixes.h"
#include "OssShaderNetworkView.h"

#include <QDropEvent>
#include <QFileInfo>
#include <QMimeData>
#include <QUrl>

namespace {

QString tr(const char *text)
{
    return OssShaderNetworkView::tr(text);
}

QStringList withSuffix(const QStringList &paths, const QString &suffix)
{
    QStringList found;
    for (const QString &path : paths) {
        if (path.endsWith(suffix, Qt::CaseInsensitive))
            found.append(path);
    }
    return found;
}

QStringList readableFiles(const QList<QUrl> &urls)
{
    QStringList paths;
    for (const QUrl &url : urls) {
        const QFileInfo info(url.toLocalFile());
        if (info.isFile() && info.isReadable())
            paths.append(info.filePath());
    }
    return paths;
}

/// Its folder holds pictures, too, but who drops it wants to open it.
bool isProject(const QList<QUrl> &urls)
{
    return urls.size() == 1
           && QFileInfo::exists(OssProjectFile::documentPath(urls.first().toLocalFile()));
}

int objectsIn(const QMimeData *data)
{
    if (!OssDragAndDropManager::instance()->acceptDragEnter(data, OssImageManager::NodeGraphTarget))
        return 0;
    return std::max(1, data->data(OssNodeTypeListModel::MimeType).count('\n') + 1);
}

} // namespace

NodeFileKind NodeFileKind::nodes()
{
    return {tr("Import nodes"), tr("Import Nodes from File"),
            OssShaderNetworkIO::loadNodesFromXmlFile};
}

NodeFileKind NodeFileKind::material()
{
    return {tr("Import material"), tr("Material Import errors"), OssSnMaterialNode::importFromFile};
}

NodeFileKind NodeFileKind::customProcedural()
{
    return {tr("Import custom procedural"), tr("Custom Procedural Import errors"),
            OssSnCustomProceduralNode::importFromFile};
}

void NodeImport::refuse(const QString &title, const QStringList &reasons)
{
    if (errors.isEmpty())
        errorTitle = title;
    errors.append(reasons);
}

void NodeImport::tellErrors() const
{
    if (!errors.isEmpty())
        OssMessageBox::warning(OssApplication::mainWindow(), errorTitle,
                               errors.join(QLatin1Char('\n')));
}

DropContents DropContents::of(const QMimeData *data)
{
    DropContents found;
    found.nodeTypes = objectsIn(data);
    const QList<QUrl> urls = data->urls();
    if (found.nodeTypes > 0 || isProject(urls))
        return found;
    found.images = OssImageManager::instance()->imageCount(data);
    // What comes from the list of images is images and nothing else.
    if (data->hasFormat(OssImage::MimeType) || data->hasFormat(OssImage::PathMimeType))
        return found;
    const OssMaterialPaintManager *archives = OssMaterialPaintManager::instance();
    const QStringList paths = archives->pathListFromMimeData(data);
    if (archives->draggableMaterialType(data))
        found.materials = withSuffix(paths, OssNodeSuffixes::Material);
    if (archives->draggableCustomProceduralType(data))
        found.customProcedurals = withSuffix(paths, OssNodeSuffixes::CustomProcedural);
    found.nodeFiles = withSuffix(readableFiles(urls), OssNodeSuffixes::Nodes);
    found.nodesText = OssShaderNetworkIO::nodesTextOf(data);
    return found;
}

int DropContents::count() const
{
    return nodeTypes + images + materials.size() + customProcedurals.size() + nodeFiles.size()
           + (nodesText.isEmpty() ? 0 : 1);
}

void DropContents::accept(QDropEvent *event) const
{
    event->setDropAction(nodesText.isEmpty() ? event->proposedAction() : Qt::CopyAction);
    event->accept();
}

QString DropContents::inWords() const
{
    const struct
    {
        int count;
        const char *one;
        const char *several;
    } kinds[] = {
        {nodeTypes, "1 node type", "%1 node types"},
        {images, "1 image", "%1 images"},
        {materials.size(), "1 material", "%1 materials"},
        {customProcedurals.size(), "1 custom procedural", "%1 custom procedurals"},
        {nodeFiles.size(), "1 node file", "%1 node files"},
        {nodesText.isEmpty() ? 0 : 1, "the text", ""},
    };

    QStringList parts;
    for (const auto &kind : kinds) {
        if (kind.count > 0)
            parts.append(kind.count == 1 ? tr(kind.one) : tr(kind.several).arg(kind.count));
    }
    if (parts.isEmpty())
        return tr("Nothing of this can become a node");
    const bool holdsSeveral = !nodeFiles.isEmpty() || !nodesText.isEmpty();
    const QString last = parts.takeLast();
    const QString all = parts.isEmpty()
                            ? last
                            : tr("%1 and %2").arg(parts.join(QStringLiteral(", ")), last);
    if (count() > 1)
        return tr("Drop: %1 become nodes").arg(all);
    return holdsSeveral ? tr("Drop: %1 becomes nodes").arg(all)
                        : tr("Drop: %1 becomes a node").arg(all);
}
