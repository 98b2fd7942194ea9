#include "OssModel/Project/OssProjectFile.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Documents/OssDeserializer.h"
#include "OssCore/Documents/OssSerializer.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectHistory.h"

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

QString OssProjectFile::documentPath(const QString &folder)
{
    return QDir(folder).filePath(DocumentName);
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
    const QList<OssGeoEntity *> entities = project->entities();
    for (const OssGeoEntity *entity : entities)
        OssMeshes::instance()->keptFile(entity->source(), true);
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer);
    if (!writeText(serializer, project))
        return OssResult::failure(
            tr("Cannot write \"%1\": the project could not be put into words").arg(folder));
    const bool isNew = !QFileInfo::exists(folder);
    const OssResult made = OssAtomicFile::makeFolder(folder);
    if (!made)
        return OssResult::failure(tr("Cannot write \"%1\": %2").arg(folder, made.error()));
    const OssResult pixels = OssPixelStore::keep(project->pixelFiles(), project->path(), folder);
    if (!pixels)
        return OssResult::failure(tr("Cannot write \"%1\": %2").arg(folder, pixels.error()));
    OssProjectHistory history(folder);
    history.settle();
    const OssResult written = OssAtomicFile::write(
        documentPath(folder), buffer.data(), [&](const QByteArray &document) {
            const OssResult whole = checkText(document, DocumentName);
            if (!whole)
                return whole;
            const OssResult kept = history.keepDocument();
            // To save again what is open must not fail for want of a copy. What lies there and is
            // another project must not go without one.
            return folder == project->path() ? OssResult() : kept;
        });
    history.settle();
    if (!written && isNew)
        QDir().rmdir(folder); // only when it is empty
    return written;
}

bool OssProjectFile::writeText(OssSerializer &serializer, OssProject *project,
                               const OssSerializer::Attributes &attributes)
{
    OssSerializer::Attributes all = attributes;
    all.insert(QStringLiteral("major"), QString::number(FormatMajor));
    all.insert(QStringLiteral("minor"), QString::number(FormatMinor));
    serializer.beginDocument(DocumentElement, all);
    const bool complete = project->save(serializer, project->name(), {});
    serializer.endDocument();
    return complete && !serializer.failed();
}

OssResult OssProjectFile::checkText(const QByteArray &document, const QString &fileName)
{
    QBuffer buffer;
    buffer.setData(document);
    buffer.open(QIODevice::ReadOnly);
    OssDeserializer reader(&buffer, fileName);
    OssDeserializer::Attributes attributes;
    const OssResult begun = reader.beginDocument(DocumentElement, &attributes);
    if (!begun)
        return begun;
    while (reader.nextElement())
        reader.skipElement();
    return reader.result();
}
