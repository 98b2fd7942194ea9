#include "OssModel/Export/OssExportPresets.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Program/OssSettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr qint64 LargestFile = 1 << 20;
const QString Suffix = QStringLiteral(".xml");

QString tr(const char *text)
{
    return QCoreApplication::translate("OssExportPresets", text);
}

OssResult readFile(const QString &path, OssExportPreset *preset)
{
    QByteArray xml;
    const OssResult read = OssAtomicFile::read(path, LargestFile, &xml);
    return read ? OssExportPreset::read(xml, path, preset) : read;
}

void addFolder(const QString &folder, bool isOwn, QVector<OssExportPresets::Entry> *entries)
{
    const QFileInfoList files = QDir(folder).entryInfoList({QLatin1Char('*') + Suffix}, QDir::Files,
                                                           QDir::Name);
    for (const QFileInfo &file : files) {
        OssExportPresets::Entry entry;
        entry.path = file.filePath();
        entry.isOwn = isOwn;
        const OssResult read = readFile(entry.path, &entry.preset);
        if (!read) {
            OssDebug("OssExportPresets", __LINE__, "[ !! ] %s", qPrintable(read.error()));
            continue;
        }
        const auto isSame = [&entry](const auto &other) {
            return other.preset.name == entry.preset.name;
        };
        if (std::none_of(entries->cbegin(), entries->cend(), isSame))
            entries->append(entry);
    }
}

} // namespace

QVector<OssExportPresets::Entry> OssExportPresets::all()
{
    QVector<Entry> entries;
    addFolder(ownFolder(), true, &entries);
    addFolder(OssResourceInfo::instance()->exportPresetPath(), false, &entries);
    std::sort(entries.begin(), entries.end(), [](const Entry &a, const Entry &b) {
        return a.preset.name.localeAwareCompare(b.preset.name) < 0;
    });
    return entries;
}

OssResult OssExportPresets::find(const QString &nameOrPath, OssExportPreset *preset)
{
    const QVector<Entry> entries = all();
    QStringList names;
    for (const Entry &entry : entries) {
        if (entry.preset.name.compare(nameOrPath, Qt::CaseInsensitive) == 0) {
            *preset = entry.preset;
            return {};
        }
        names.append(QLatin1Char('"') + entry.preset.name + QLatin1Char('"'));
    }
    if (nameOrPath.endsWith(Suffix))
        return readFile(nameOrPath, preset);
    return OssResult::failure(tr("There is no export preset \"%1\"; there are %2")
                                  .arg(nameOrPath, names.join(QStringLiteral(", "))));
}

OssResult OssExportPresets::save(const OssExportPreset &preset)
{
    const OssResult possible = preset.check();
    if (!possible)
        return possible;
    const QVector<Entry> entries = all();
    const auto known = std::find_if(
        entries.cbegin(), entries.cend(),
        [&preset](const Entry &entry) { return entry.isOwn && entry.preset.name == preset.name; });
    QString path = known == entries.cend() ? QString() : known->path;
    if (path.isEmpty()) {
        QString name = preset.name;
        name.replace(QRegularExpression(QStringLiteral("[^\\w.-]+")), QStringLiteral("_"));
        path = QDir(ownFolder()).filePath(name + Suffix);
        for (int i = 2; QFile::exists(path); ++i)
            path = QDir(ownFolder())
                       .filePath(QStringLiteral("%1_%2%3").arg(name).arg(i).arg(Suffix));
    }
    const OssResult folder = OssAtomicFile::makeFolder(ownFolder());
    return folder ? OssAtomicFile::write(path, preset.write()) : folder;
}

OssResult OssExportPresets::remove(const QString &name)
{
    const QVector<Entry> entries = all();
    for (const Entry &entry : entries) {
        if (!entry.isOwn || entry.preset.name != name)
            continue;
        QFile file(entry.path);
        return file.remove()
                   ? OssResult()
                   : OssResult::failure(
                       tr("Cannot remove \"%1\": %2").arg(entry.path, file.errorString()));
    }
    return OssResult::failure(tr("There is no export preset \"%1\" of your own").arg(name));
}

QString OssExportPresets::ownFolder()
{
    return QDir(OssSettings::folderPath()).filePath(QStringLiteral("ExportPresets"));
}
