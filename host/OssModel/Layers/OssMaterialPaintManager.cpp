#include "OssModel/Layers/OssMaterialPaintManager.h"

#include "OssModel/Graph/OssLayerStreamUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Types/OssNodeSuffixes.h"

#include <QMimeData>
#include <QUrl>

#include <algorithm>

namespace {

bool hasFiles(const QMimeData *data, const QString &suffix)
{
    const QStringList paths = OssMaterialPaintManager::instance()->pathListFromMimeData(data);
    return std::any_of(paths.cbegin(), paths.cend(), [&](const QString &path) {
        return path.endsWith(suffix, Qt::CaseInsensitive);
    });
}

} // namespace

bool OssMaterialPaintManager::autoconnectMergeNode(OssSnBaseNode *source, OssSnBaseNode *merge)
{
    if (!source || !merge || source->prefferedOutputPoint().isEmpty())
        return false;
    const QStringList order{OssLayerStreamUtils::baseInputName({}),
                            OssLayerStreamUtils::overInputName({}), QStringLiteral("Mask")};
    for (const QString &input : order) {
        if (merge->hasInput(input) && !merge->inputNode(input))
            return merge->setInputNode(input, source, source->prefferedOutputPoint());
    }
    return false;
}

bool OssMaterialPaintManager::draggableMaterialType(const QMimeData *data) const
{
    return hasFiles(data, OssNodeSuffixes::Material);
}

bool OssMaterialPaintManager::draggableCustomProceduralType(const QMimeData *data) const
{
    return hasFiles(data, OssNodeSuffixes::CustomProcedural);
}

QStringList OssMaterialPaintManager::pathListFromMimeData(const QMimeData *data) const
{
    QStringList paths;
    const QList<QUrl> urls = data ? data->urls() : QList<QUrl>();
    for (const QUrl &url : urls) {
        const QString path = url.toLocalFile();
        if (path.endsWith(OssNodeSuffixes::Material, Qt::CaseInsensitive)
            || path.endsWith(OssNodeSuffixes::CustomProcedural, Qt::CaseInsensitive))
            paths.append(path);
    }
    return paths;
}
