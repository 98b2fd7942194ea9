#include "OssModel/Project/OssPixelCleanup.h"

#include "OssCore/Program/OssDebug.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Project/OssRecovery.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QSet>

namespace {

const QString Documents = QStringLiteral("*.xml");

QStringList documentsBelow(const QString &folder)
{
    QStringList paths;
    QDirIterator files(folder, {Documents}, QDir::Files | QDir::Hidden,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.append(files.next());
    return paths;
}

bool addNames(const QString &document, QSet<QString> *names)
{
    QFile file(document);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError)
        return false;
    const QStringList found = OssPixelStore::namesIn(QString::fromLatin1(bytes));
    *names += QSet<QString>(found.cbegin(), found.cend());
    return true;
}

QDateTime latest()
{
    return QDateTime::currentDateTimeUtc().addDays(-OssPixelCleanup::KeptDays);
}

/// Of what may be a pixel file of ours: finished, or left by a bake that was killed.
bool isOurs(const QString &name)
{
    return OssPixelStore::isName(name) || OssPixelStore::isMeshName(name)
           || OssPixelStore::isNewName(name);
}

} // namespace

int OssPixelCleanup::removeForgotten(const QString &folder, const QStringList &documents,
                                     const QDateTime &before)
{
    QSet<QString> named;
    for (const QString &document : documents) {
        if (!addNames(document, &named)) {
            OssDebug("OssPixelCleanup", __LINE__, "[ -- ] %s cannot be read: no pixels are removed",
                     qPrintable(document));
            return 0;
        }
    }
    int removed = 0;
    const QFileInfoList files = QDir(folder).entryInfoList(QDir::Files | QDir::NoSymLinks);
    for (const QFileInfo &file : files) {
        if (isOurs(file.fileName()) && !named.contains(file.fileName())
            && file.lastModified() < before && QFile::remove(file.filePath()))
            ++removed;
    }
    if (removed > 0)
        OssDebug("OssPixelCleanup", __LINE__, "[ -- ] Removed %d forgotten pixel files from %s",
                 removed, qPrintable(folder));
    return removed;
}

int OssPixelCleanup::cleanProject(const QString &projectFolder)
{
    int removed = 0;
    if (projectFolder.isEmpty())
        return removed;
    for (const QString &folder :
         {OssPixelStore::folderOf(projectFolder), OssPixelStore::meshFolderOf(projectFolder)}) {
        if (QFileInfo(folder).isDir())
            removed += removeForgotten(folder,
                                       documentsBelow(projectFolder)
                                           + documentsBelow(OssRecovery::standardFolder()),
                                       latest());
    }
    return removed;
}

int OssPixelCleanup::cleanNewPixels()
{
    return removeForgotten(OssPixelStore::newFolder(),
                           documentsBelow(OssRecovery::standardFolder()), latest());
}
