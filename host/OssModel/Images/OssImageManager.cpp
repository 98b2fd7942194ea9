#include "OssModel/Images/OssImageManager.h"

#include "OssCore/Program/OssDebug.h"
#include "OssEvaluation/Files/OssEvImageFormat.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssUdimPath.h"

#include <QCoreApplication>
#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QImageReader>
#include <QMimeData>

#include <algorithm>

namespace {

constexpr int LargestSide = 65536;

/// The files of image paths, or the pictures from outside. Ids say all there is to say.
QList<QUrl> imageUrls(const QMimeData *data)
{
    QList<QUrl> urls = data->urls();
    if (!data->hasFormat(OssImage::PathMimeType)) {
        const QStringList pictures = data->hasFormat(OssImage::MimeType)
                                         ? QStringList()
                                         : OssImageManager::picturesOf(urls);
        urls.clear();
        for (const QString &picture : pictures)
            urls.append(QUrl::fromLocalFile(picture));
        return urls;
    }
    if (!urls.isEmpty())
        return urls;
    const QStringList paths = QString::fromUtf8(data->data(OssImage::PathMimeType))
                                  .split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    for (const QString &path : paths)
        urls.append(QUrl::fromUserInput(path.trimmed(), QString(), QUrl::AssumeLocalFile));
    return urls;
}

} // namespace

OssImageHolder::~OssImageHolder() = default;

OssImageManager::~OssImageManager() = default;

QList<OssImage *> OssImageManager::images() const
{
    return m_holder ? m_holder->images() : QList<OssImage *>();
}

OssImage *OssImageManager::getImage(const OssImageUniqueId &id) const
{
    const QList<OssImage *> all = images();
    for (OssImage *image : all) {
        if (image->uniqueId() == id)
            return image;
    }
    return nullptr;
}

bool OssImageManager::isPictureFile(const QString &path)
{
    return OssEvImageFormat::ofFile(path.toStdString()) != nullptr;
}

QString OssImageManager::fileFilter()
{
    QStringList patterns;
    for (const OssEvImageFormat &format : OssEvImageFormat::all()) {
        for (const std::string_view suffix : format.suffixes)
            patterns.append(QStringLiteral("*.")
                            + QLatin1String(suffix.data(), int(suffix.size())));
    }
    return tr("Images (%1)").arg(patterns.join(QLatin1Char(' ')));
}

OssResult OssImageManager::check(const QString &path)
{
    const QList<int> patches = OssUdimPath::patches(path);
    if (!patches.isEmpty())
        return check(OssUdimPath::file(path, patches.first()));
    const QFileInfo info(path);
    if (!info.isFile() || !info.isReadable())
        return OssResult::failure(tr("%1: there is no such file, or it cannot be read").arg(path));
    if (!isPictureFile(path))
        return OssResult::failure(tr("%1: this is no kind of picture that is known").arg(path));
    // Formats that Qt does not know are checked by whoever reads their pixels.
    const QByteArray format = QImageReader::imageFormat(path);
    if (format.isEmpty())
        return info.size() > 0 ? OssResult()
                               : OssResult::failure(tr("%1: the file is empty").arg(path));
    const QSize size = QImageReader(path).size();
    if (size.width() > LargestSide || size.height() > LargestSide)
        return OssResult::failure(
            tr("%1: %2 x %3 pixels are too many").arg(path).arg(size.width()).arg(size.height()));
    return {};
}

QList<OssImageManager::ImageLayer> OssImageManager::open(const QString &path, int flags,
                                                         const QString &category)
{
    const OssResult result = check(path);
    if (!result || !m_holder) {
        if (!result && (flags & TellFailures))
            OssDebug("OssImageManager", __LINE__, "[ !! ] %s", qPrintable(result.error()));
        return {};
    }
    const QString absolute = QFileInfo(path).absoluteFilePath();
    const QString wanted = flags & GatherPatches ? OssUdimPath::pattern(absolute) : absolute;
    const QList<OssImage *> known = images();
    for (OssImage *image : known) {
        if (image->path() == wanted)
            return {{image->name(), image}};
    }
    OssImage *image = m_holder->addImage(wanted, category);
    Q_EMIT imagesChanged();
    return {{image->name(), image}};
}

// --- drags

QStringList OssImageManager::picturesOf(const QList<QUrl> &urls)
{
    QStringList found;
    QStringList known;
    const auto add = [&](const QString &path) {
        const QString generic = OssUdimPath::pattern(path);
        if (!isPictureFile(path) || known.contains(generic))
            return;
        known.append(generic);
        found.append(path);
    };
    for (const QUrl &url : urls) {
        const QString path = url.toLocalFile();
        if (!QFileInfo(path).isDir()) {
            add(path);
            continue;
        }
        const QDir folder(path);
        const QStringList files = folder.entryList(QDir::Files, QDir::Name);
        for (const QString &file : files)
            add(folder.filePath(file));
    }
    return found;
}

QList<OssImage *> OssImageManager::knownImages(const QMimeData *data) const
{
    const auto ids = OssImageUniqueId::imageIdListFromString(
        QString::fromUtf8(data->data(OssImage::MimeType)));
    QList<OssImage *> found;
    for (const OssImageUniqueId &id : ids) {
        if (OssImage *image = getImage(id))
            found.append(image);
    }
    return found;
}

int OssImageManager::imageCount(const QMimeData *data) const
{
    if (!data || !m_holder)
        return 0;
    const QList<QUrl> urls = imageUrls(data);
    return knownImages(data).size()
           + int(std::count_if(urls.cbegin(), urls.cend(),
                               [](const QUrl &url) { return check(url.toLocalFile()).ok(); }));
}

bool OssImageManager::bringsImages(const QMimeData *data)
{
    return instance()->imageCount(data) > 0;
}

bool OssImageManager::processDragEvent(QDropEvent *event, int target) const
{
    if (!bringsImages(event->mimeData()) || target != NodeGraphTarget)
        return false;
    event->acceptProposedAction();
    return true;
}

QList<QUrl> OssImageManager::dropEvent_AcceptURLs(const QDropEvent *event) const
{
    return imageUrls(event->mimeData());
}

QList<OssImage *> OssImageManager::dropped(const QDropEvent *event)
{
    QList<OssImage *> found = knownImages(event->mimeData());
    const QList<QUrl> urls = dropEvent_AcceptURLs(event);
    for (const QUrl &url : urls) {
        const auto layers = open(url.toLocalFile(), TellFailures | GatherPatches,
                                 defaultCategory());
        if (layers.size() == 1)
            found.append(layers.first().image);
    }
    return found;
}

// --- actions

void OssImageManager::registerGlobalContextMenuAction(QObject *action, const QString &menuTitle,
                                                      const QString &iconPath)
{
    if (action)
        m_actions.append({action, menuTitle, iconPath});
}

QVector<OssImageManager::ContextMenuAction> OssImageManager::globalContextMenuActions() const
{
    QVector<ContextMenuAction> living;
    for (const ContextMenuAction &entry : m_actions) {
        if (entry.action)
            living.append(entry);
    }
    return living;
}
