#include "OssCoreModules/Project/OssProjectFile.h"

#include "OssCore/OssAtomicFile.h"
#include "OssCore/OssDebug.h"
#include "OssCore/OssDeserializer.h"
#include "OssCore/OssSerializer.h"
#include "OssCoreModules/Project/OssProject.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>

namespace {

const QString DocumentElement = QStringLiteral("ossaProject");
const QString DocumentName = QStringLiteral("project.xml");

QString tr(const char *text)
{
    return QCoreApplication::translate("OssProjectFile", text);
}

QString documentPath(const QString &folder)
{
    return QDir(folder).filePath(DocumentName);
}

/// Whether the text is a whole document of ours: the last look before the old one is given up.
OssResult checkDocument(const QByteArray &document)
{
    QBuffer buffer;
    buffer.setData(document);
    buffer.open(QIODevice::ReadOnly);
    OssDeserializer reader(&buffer, DocumentName);
    OssDeserializer::Attributes attributes;
    const OssResult begun = reader.beginDocument(DocumentElement, &attributes);
    if (!begun)
        return begun;
    while (reader.nextElement())
        reader.skipElement();
    return reader.result();
}

void keepGeneration(const QString &folder)
{
    const QString current = documentPath(folder);
    if (!QFileInfo::exists(current))
        return;
    const QDir history(QDir(folder).filePath(QStringLiteral("history")));
    if (!history.exists() && !history.mkpath(QStringLiteral(".")))
        return;
    const auto generation = [&history](int number) {
        return history.filePath(QStringLiteral("project.%1.xml").arg(number));
    };
    for (int number = OssProjectFile::Generations; number > 1; --number) {
        QFile::remove(generation(number));
        QFile::rename(generation(number - 1), generation(number));
    }
    // A generation is a courtesy: a full disk must not keep the user from saving over it.
    const OssResult copied = OssAtomicFile::copy(current, generation(1));
    if (!copied)
        OssDebug("OssProjectFile", __LINE__, "[ !! ] %s", qPrintable(copied.error()));
}

OssResult readDocument(OssDeserializer &reader, std::unique_ptr<OssProject> &owner)
{
    OssDeserializer::Attributes attributes;
    const OssResult begun = reader.beginDocument(DocumentElement, &attributes);
    if (!begun)
        return begun;
    bool isNumber = false;
    const int major = attributes.value(QStringLiteral("major")).toInt(&isNumber);
    if (!isNumber || major < 1) {
        reader.raiseError(tr("it does not say which version of the format it has"));
        return reader.result();
    }
    while (reader.nextElement()) {
        if (owner || reader.elementName() != QLatin1String("object")) {
            reader.skipElement();
            continue;
        }
        owner = std::make_unique<OssProject>(reader.attribute(QStringLiteral("name")));
        owner->setReadOnly(major > OssProjectFile::FormatMajor);
        reader.loadObject(owner.get());
    }
    if (!owner && !reader.failed())
        reader.raiseError(tr("there is no project in it"));
    return reader.result();
}

} // namespace

QString OssProjectFile::folderOf(const QString &path)
{
    const QFileInfo info(path);
    return info.fileName() == DocumentName ? info.absolutePath() : info.absoluteFilePath();
}

std::unique_ptr<OssProject> OssProjectFile::read(const QString &path, OssResult *result)
{
    const QString folder = folderOf(path);
    const QString document = documentPath(folder);
    QByteArray content;
    *result = OssAtomicFile::read(document, OssDeserializer::MaximumSize, &content);
    if (!*result)
        return nullptr;
    QBuffer buffer(&content);
    buffer.open(QIODevice::ReadOnly);
    OssDeserializer reader(&buffer, document);
    std::unique_ptr<OssProject> owner;
    *result = readDocument(reader, owner);
    if (!*result || !owner)
        return nullptr;
    owner->setPath(folder);
    return owner;
}

OssResult OssProjectFile::write(OssProject *project, const QString &folder)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer);
    serializer.beginDocument(DocumentElement,
                             {{QStringLiteral("major"), QString::number(FormatMajor)},
                              {QStringLiteral("minor"), QString::number(FormatMinor)}});
    const bool complete = project->save(serializer, project->name(), {});
    serializer.endDocument();
    if (!complete || serializer.failed())
        return OssResult::failure(
            tr("Cannot write \"%1\": the project could not be put into words").arg(folder));
    if (!QDir().mkpath(folder))
        return OssResult::failure(tr("Cannot write \"%1\": the folder cannot be made").arg(folder));
    keepGeneration(folder);
    return OssAtomicFile::write(documentPath(folder), buffer.data(), checkDocument);
}
