#include "OssModel/Images/OssPixelStore.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssSettings.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QUuid>

namespace {

const QString Suffix = QStringLiteral(".exr");
const QString MeshSuffix = QStringLiteral(".mesh");
const QString NewPrefix = QStringLiteral("new-");
const QString NameShape = QStringLiteral("[0-9a-f]{64}\\.exr");
const QString MeshNameShape = QStringLiteral("[0-9a-f]{64}\\.mesh");
const QString NewNameShape = NewPrefix + QStringLiteral("[0-9a-f]{32}\\.(?:exr|mesh)");

QString suffixOf(const QString &path)
{
    return path.endsWith(MeshSuffix) ? MeshSuffix : Suffix;
}

/// Where a project has the file of the name.
QString placeIn(const QString &projectFolder, const QString &name)
{
    return QDir(name.endsWith(MeshSuffix) ? OssPixelStore::meshFolderOf(projectFolder)
                                          : OssPixelStore::folderOf(projectFolder))
        .filePath(name);
}

QString freePath(const QString &suffix)
{
    return QDir(OssPixelStore::newFolder())
        .filePath(NewPrefix + QUuid::createUuid().toString(QUuid::Id128) + suffix);
}

OssResult hashOf(const QString &path, QString *hash)
{
    QFile file(path);
    QCryptographicHash sum(QCryptographicHash::Sha256);
    if (!file.open(QIODevice::ReadOnly) || !sum.addData(&file))
        return OssResult::failure(
            QCoreApplication::translate("OssPixelStore", "%1: %2").arg(path, file.errorString()));
    *hash = QString::fromLatin1(sum.result().toHex());
    return {};
}

QString &currentFolder()
{
    static QString folder;
    return folder;
}

} // namespace

QString OssPixelStore::projectFolder()
{
    return currentFolder();
}

void OssPixelStore::setProjectFolder(const QString &folder)
{
    currentFolder() = folder;
}

bool OssPixelStore::isName(const QString &name)
{
    static const QRegularExpression shape(QRegularExpression::anchoredPattern(NameShape));
    return shape.match(name).hasMatch();
}

bool OssPixelStore::isMeshName(const QString &name)
{
    static const QRegularExpression shape(QRegularExpression::anchoredPattern(MeshNameShape));
    return shape.match(name).hasMatch();
}

QStringList OssPixelStore::namesIn(const QString &text)
{
    static const QRegularExpression shape(NameShape + QLatin1Char('|') + MeshNameShape);
    QStringList names;
    for (auto match = shape.globalMatch(text); match.hasNext();)
        names.append(match.next().captured());
    return names;
}

QString OssPixelStore::newFolder()
{
    return QDir(OssSettings::folderPath()).filePath(QStringLiteral("pixels"));
}

QString OssPixelStore::folderOf(const QString &projectFolder)
{
    return QDir(projectFolder).filePath(QStringLiteral("images"));
}

QString OssPixelStore::meshFolderOf(const QString &projectFolder)
{
    return QDir(projectFolder).filePath(QStringLiteral("meshes"));
}

QString OssPixelStore::newPath()
{
    return freePath(Suffix);
}

QString OssPixelStore::newMeshPath()
{
    return freePath(MeshSuffix);
}

bool OssPixelStore::isNewName(const QString &name)
{
    static const QRegularExpression shape(QRegularExpression::anchoredPattern(NewNameShape));
    return shape.match(name).hasMatch();
}

OssResult OssPixelStore::adopt(const QString &path, QString *name)
{
    QString hash;
    const OssResult read = hashOf(path, &hash);
    if (!read)
        return read;
    *name = hash + suffixOf(path);
    return OssAtomicFile::move(path, QDir(newFolder()).filePath(*name));
}

QString OssPixelStore::find(const QString &name, const QString &projectFolder)
{
    if (!isName(name) && !isMeshName(name))
        return {};
    QStringList paths{QDir(newFolder()).filePath(name)};
    if (!projectFolder.isEmpty())
        paths.prepend(placeIn(projectFolder, name));
    for (const QString &path : qAsConst(paths)) {
        if (QFile::exists(path))
            return path;
    }
    return {};
}

OssResult OssPixelStore::bring(const QString &name, const QString &projectFolder)
{
    const QString path = find(name, projectFolder);
    QString hash;
    OssResult result =
        path.isEmpty() ? OssResult::failure(
            QCoreApplication::translate("OssPixelStore", "%1: it is not there").arg(name))
                       : hashOf(path, &hash);
    if (result && hash + suffixOf(name) != name)
        result = OssResult::failure(
            QCoreApplication::translate("OssPixelStore", "%1: it holds something else").arg(path));
    if (result)
        result = OssAtomicFile::makeFolder(newFolder());
    return result ? OssAtomicFile::copy(path, QDir(newFolder()).filePath(name)) : result;
}

OssResult OssPixelStore::keep(const QStringList &names, const QString &projectFolder,
                              const QString &folder)
{
    for (const QString &name : names) {
        const QString kept = placeIn(folder, name);
        if (QFile::exists(kept))
            continue;
        const QString path = find(name, projectFolder);
        if (path.isEmpty()) {
            OssDebug("OssPixelStore", __LINE__,
                     isMeshName(name) ? "[ !! ] The kept mesh %s is gone"
                                      : "[ !! ] The pixels %s are gone",
                     qPrintable(name));
            continue;
        }
        const OssResult made = OssAtomicFile::makeFolder(QFileInfo(kept).path());
        if (!made)
            return made;
        const OssResult copied = OssAtomicFile::copy(path, kept);
        if (!copied)
            return copied;
    }
    return {};
}
