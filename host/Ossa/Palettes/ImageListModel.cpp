#include "Ossa/Palettes/ImageListModel.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QIcon>
#include <QImageReader>
#include <QMimeData>
#include <QPixmap>
#include <QRunnable>

#include <functional>

namespace {

constexpr int openFlags = OssImageManager::TellFailures | OssImageManager::GatherPatches;

/// Not larger than asked for. Null for what Qt cannot read.
QImage readSmall(const QString &path, int side)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QSize size = reader.size();
    if (size.isValid())
        reader.setScaledSize(size.scaled(side, side, Qt::KeepAspectRatio).expandedTo({1, 1}));
    return reader.read();
}

class Reading final : public QRunnable
{
public:
    explicit Reading(std::function<void()> work)
        : m_work(std::move(work))
    {
    }

    void run() override { m_work(); }

private:
    std::function<void()> m_work;
};

} // namespace

ImageListModel::ImageListModel(QObject *parent)
    : QAbstractListModel(parent)
{
    m_readers.setMaxThreadCount(1);
    connect(OssImageManager::instance(), &OssImageManager::imagesChanged, this,
            &ImageListModel::refresh);
    connect(OssUndoManager::instance(), &OssUndoManager::changed, this, &ImageListModel::refresh);
    connect(OssProjectManager::instance(), &OssProjectManager::onMakeProjectCurrent, this,
            &ImageListModel::refresh);
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosed, this,
            &ImageListModel::refresh);
    refresh();
}

ImageListModel::~ImageListModel()
{
    m_readers.clear();
    m_readers.waitForDone();
}

void ImageListModel::refresh()
{
    QList<QPointer<OssImage>> now;
    const QList<OssImage *> images = OssImageManager::instance()->images();
    for (OssImage *image : images)
        now.append(image);
    if (now == m_images)
        return;
    beginResetModel();
    m_images = now;
    endResetModel();
    for (const OssImage *image : images)
        readPicture(image->pathOfPatch(image->patches().value(0)));
}

void ImageListModel::readPicture(const QString &path)
{
    if (m_pictures.contains(path))
        return;
    m_pictures.insert(path, {});
    const auto read = [this, path] {
        const QImage picture = readSmall(path, 2 * pictureSide);
        // The destructor waits for this thread, so the model is alive.
        QMetaObject::invokeMethod(
            this,
            [this, path, picture] {
                m_pictures.insert(path, picture);
                if (rowCount() > 0)
                    Q_EMIT dataChanged(index(0), index(rowCount() - 1), {Qt::DecorationRole});
            },
            Qt::QueuedConnection);
    };
    m_readers.start(new Reading(read)); // the pool deletes it
}

OssImage *ImageListModel::image(const QModelIndex &index) const
{
    return index.isValid() ? m_images.value(index.row()).data() : nullptr;
}

QStringList ImageListModel::add(const QStringList &paths)
{
    const OssUndoManager::AutoMacro macro(tr("Add Images"));
    QStringList reasons;
    for (const QString &path : paths) {
        const OssResult result = OssImageManager::check(path);
        if (!result)
            reasons.append(result.error());
        else
            OssImageManager::instance()->open(path, openFlags, OssImageManager::defaultCategory());
    }
    return reasons;
}

int ImageListModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : m_images.size();
}

QVariant ImageListModel::data(const QModelIndex &index, int role) const
{
    const OssImage *own = image(index);
    if (!own)
        return {};
    const QList<int> patches = own->patches();
    switch (role) {
    case Qt::DisplayRole:
        return own->isUdim() ? tr("%1\n%2 patches").arg(own->name()).arg(patches.size())
                             : own->name();
    case Qt::ToolTipRole:
        return own->path();
    case Qt::DecorationRole: {
        QPixmap picture(2 * pictureSide, 2 * pictureSide);
        picture.fill(Qt::transparent);
        const QImage read = m_pictures.value(own->pathOfPatch(patches.value(0)));
        if (!read.isNull())
            picture = QPixmap::fromImage(read);
        return QIcon(picture); // which is shown at the size of icons
    }
    default:
        return {};
    }
}

Qt::ItemFlags ImageListModel::flags(const QModelIndex &index) const
{
    const Qt::ItemFlags row = index.isValid() ? Qt::ItemIsDragEnabled : Qt::ItemIsDropEnabled;
    return QAbstractListModel::flags(index) | row;
}

// --- drags

QStringList ImageListModel::mimeTypes() const
{
    return {OssImage::MimeType, QStringLiteral("text/uri-list")};
}

QMimeData *ImageListModel::mimeData(const QModelIndexList &indexes) const
{
    QStringList ids;
    for (const QModelIndex &index : indexes) {
        if (const OssImage *own = image(index))
            ids.append(own->uniqueId().toString());
    }
    auto *data = new QMimeData; // the drag takes it
    data->setData(OssImage::MimeType, ids.join(QLatin1Char(',')).toUtf8());
    return data;
}

bool ImageListModel::canDropMimeData(const QMimeData *data, Qt::DropAction, int, int,
                                     const QModelIndex &) const
{
    return data->hasUrls() && !OssImageManager::picturesOf(data->urls()).isEmpty();
}

bool ImageListModel::dropMimeData(const QMimeData *data, Qt::DropAction action, int row, int column,
                                  const QModelIndex &parent)
{
    if (!canDropMimeData(data, action, row, column, parent))
        return false;
    const QStringList reasons = add(OssImageManager::picturesOf(data->urls()));
    if (!reasons.isEmpty())
        Q_EMIT refused(reasons);
    return true;
}
