#include "OssModel/Nodes/OssNodeArchive.h"

#include "OssCore/Documents/OssArchive.h"
#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Images/OssImage.h"
#include "OssModel/Images/OssImageList.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Nodes/OssSnCustomProceduralNode.h"
#include "OssModel/Nodes/OssSnMaterialNode.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QXmlStreamReader>
#include <QXmlStreamWriter>

namespace {

const QString Manifest = QStringLiteral("manifest.xml");
const QString Nodes = QStringLiteral("nodes.ong");
const QString ImageFolder = QStringLiteral("images/");
const QString ProceduralKey = QStringLiteral("_System/Custom Procedural");
constexpr int FormatMajor = 1;
constexpr qint64 LargestImage = qint64(256) << 20;

QString tr(const char *text)
{
    return QCoreApplication::translate("OssNodeArchive", text);
}

QString kindName(OssNodeArchive::Kind kind)
{
    return kind == OssNodeArchive::Kind::Material ? QStringLiteral("material")
                                                  : QStringLiteral("customProcedural");
}

QList<OssImage *> imagesIn(const OssSnGroupNode *group)
{
    QList<OssImage *> images;
    const QList<OssSnBaseNode *> nodes = group->groupNetwork()->getAllNodes();
    for (const OssSnBaseNode *node : nodes) {
        const QVector<OssCustomAttribute> attributes = node->userAttributes();
        for (const OssCustomAttribute &attribute : attributes) {
            if (attribute.value().userType() != QMetaType::QStringList)
                continue;
            const QList<OssImageUniqueId> ids = OssImageList::fromVariant(attribute.value()).ids();
            for (const OssImageUniqueId &id : ids) {
                OssImage *image = OssImageManager::instance()->getImage(id);
                if (image && !images.contains(image))
                    images.append(image);
            }
        }
    }
    return images;
}

OssResult packImages(const OssSnGroupNode *group, OssArchive::Parts *parts,
                     QXmlStreamWriter *manifest)
{
    const QList<OssImage *> images = imagesIn(group);
    for (const OssImage *image : images) {
        const QString id = image->uniqueId().toString();
        manifest->writeStartElement(QStringLiteral("image"));
        manifest->writeAttribute(QStringLiteral("id"), id);
        manifest->writeAttribute(QStringLiteral("name"), image->name());
        manifest->writeEndElement();
        const QList<int> patches = image->patches();
        for (const int patch : patches) {
            const QString file = image->pathOfPatch(patch);
            QByteArray content;
            const OssResult result = OssAtomicFile::read(file, LargestImage, &content);
            if (!result)
                return result;
            parts->insert(ImageFolder + id + QLatin1Char('/') + QFileInfo(file).fileName(),
                          content);
        }
    }
    return {};
}

struct Contents
{
    QMap<QString, QString> imageNames; ///< by id
};

OssResult readManifest(const QString &path, const QByteArray &xml, OssNodeArchive::Kind kind,
                       Contents *contents)
{
    const auto fault = [&path](const QString &reason) {
        return OssResult::failure(path + QStringLiteral(": ") + reason);
    };
    QXmlStreamReader reader(xml);
    reader.setEntityExpansionLimit(0);
    if (!reader.readNextStartElement() || reader.name() != QLatin1String("ossaArchive"))
        return fault(tr("there is no manifest in it"));
    const QXmlStreamAttributes head = reader.attributes();
    const int major = head.value(QLatin1String("major")).toInt();
    if (major < 1 || major > FormatMajor)
        return fault(tr("it is in a format that is not known here"));
    if (head.value(QLatin1String("kind")) != kindName(kind))
        return fault(kind == OssNodeArchive::Kind::Material ? tr("it holds no material")
                                                            : tr("it holds no custom procedural"));
    while (reader.readNextStartElement()) {
        const QXmlStreamAttributes attributes = reader.attributes();
        const QString name = attributes.value(QLatin1String("name")).toString();
        if (reader.name() == QLatin1String("image") && QFileInfo(name).fileName() == name) {
            // It names a folder, and what is replaced in the text of the nodes.
            const QString id = attributes.value(QLatin1String("id")).toString();
            if (OssImageUniqueId::fromString(id).toString() != id)
                return fault(tr("\"%1\" is no id of an image").arg(id));
            contents->imageNames.insert(id, name);
        }
        reader.skipCurrentElement();
    }
    return reader.hasError() ? fault(reader.errorString()) : OssResult();
}

/// Into a private folder first, which then takes its name: a half-done one is never used.
OssResult unpackImages(const QString &path, const OssArchive::Parts &parts, QString *folder)
{
    QCryptographicHash hash(QCryptographicHash::Sha256);
    for (auto part = parts.cbegin(); part != parts.cend(); ++part) {
        hash.addData(part.key().toUtf8());
        hash.addData(part.value());
    }
    const QString imported = OssSettings::folderPath() + QStringLiteral("/imported/");
    *folder = imported + QString::fromLatin1(hash.result().toHex().left(24));
    if (QFileInfo::exists(*folder))
        return {};
    const QString making = *folder + QStringLiteral(".part");
    QDir(making).removeRecursively();
    for (auto part = parts.cbegin(); part != parts.cend(); ++part) {
        if (!part.key().startsWith(ImageFolder) || !OssImageManager::isPictureFile(part.key()))
            continue;
        const QString file = making + QLatin1Char('/') + part.key().mid(ImageFolder.size());
        OssResult result = OssAtomicFile::makeFolder(QFileInfo(file).absolutePath());
        if (result)
            result = OssAtomicFile::write(file, part.value());
        if (!result)
            return result;
    }
    if (!QFileInfo::exists(making))
        return {};
    const OssResult moved = OssAtomicFile::move(making, *folder);
    return moved ? OssResult() : OssResult::failure(path + QStringLiteral(": ") + moved.error());
}

/// The nodes' text with the ids that the images have in this project.
QByteArray withOwnIds(QByteArray nodes, const Contents &contents, const QString &folder)
{
    for (auto image = contents.imageNames.cbegin(); image != contents.imageNames.cend(); ++image) {
        const QDir own(folder + QLatin1Char('/') + image.key());
        const QString first = own.entryList(QDir::Files, QDir::Name).value(0);
        if (first.isEmpty())
            continue;
        const auto layers = OssImageManager::instance()->open(
            own.filePath(first), OssImageManager::GatherPatches | OssImageManager::TellFailures,
            OssImageManager::defaultCategory());
        if (layers.size() == 1)
            nodes.replace(image.key().toUtf8(),
                          layers.first().image->uniqueId().toString().toUtf8());
    }
    return nodes;
}

bool isOfKind(const OssSnBaseNode *node, OssNodeArchive::Kind kind)
{
    return kind == OssNodeArchive::Kind::Material
               ? qobject_cast<const OssSnMaterialNode *>(node) != nullptr
               : qobject_cast<const OssSnCustomProceduralNode *>(node) != nullptr;
}

} // namespace

OssResult OssNodeArchive::write(const OssSnGroupNode *group, Kind kind, const QString &path)
{
    if (!group)
        return OssResult::failure(tr("There is no group to export"));
    OssArchive::Parts parts;
    QByteArray manifest;
    QXmlStreamWriter xml(&manifest);
    xml.writeStartDocument();
    xml.writeStartElement(QStringLiteral("ossaArchive"));
    xml.writeAttribute(QStringLiteral("major"), QString::number(FormatMajor));
    xml.writeAttribute(QStringLiteral("kind"), kindName(kind));
    xml.writeAttribute(QStringLiteral("name"), group->name());
    const OssResult packed = packImages(group, &parts, &xml);
    if (!packed)
        return packed;
    xml.writeEndDocument();
    parts.insert(Manifest, manifest);
    auto *node = const_cast<OssSnGroupNode *>(group);
    parts.insert(Nodes,
                 OssShaderNetworkIO::nodesToText(
                     {node}, {}, kind == Kind::CustomProcedural ? ProceduralKey : QString()));
    return OssArchive::write(path, parts);
}

OssResult OssNodeArchive::read(OssShaderNetwork *network, Kind kind, const QString &path,
                               QList<OssSnBaseNode *> *inserted)
{
    inserted->clear();
    OssArchive::Parts parts;
    Contents contents;
    OssResult result = OssArchive::read(path, &parts);
    if (result)
        result = readManifest(path, parts.value(Manifest), kind, &contents);
    if (!result)
        return result;
    const QByteArray nodes = parts.value(Nodes);
    QString folder;
    result = unpackImages(path, parts, &folder);
    if (!result)
        return result;
    OssUndoManager::AutoMacro macro(tr("Import %1").arg(QFileInfo(path).completeBaseName()));
    result = OssShaderNetworkIO::nodesFromText(network, withOwnIds(nodes, contents, folder), path,
                                               inserted);
    if (result && (inserted->size() != 1 || !isOfKind(inserted->first(), kind)))
        result = OssResult::failure(path + QStringLiteral(": ")
                                    + tr("what is in it is not what it says it is"));
    if (!result) {
        macro.cancel();
        inserted->clear();
    }
    return result;
}
