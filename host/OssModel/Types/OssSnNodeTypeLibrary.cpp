#include "OssModel/Types/OssSnNodeTypeLibrary.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssModel/Types/OssSnTags.h"

#include <QCoreApplication>
#include <QDirIterator>

#include <algorithm>

namespace {

constexpr qint64 Largest = 16 << 20; // bytes of a description

QString tr(const char *text)
{
    return QCoreApplication::translate("OssSnNodeTypeLibrary", text);
}

/// Of all descriptions in a folder, in the order of their names. `take` gets the type, or the reason why
/// there is none.
template <class Take>
void readDescriptions(const QString &folder, Take take)
{
    QStringList paths;
    QDirIterator files(folder, {QStringLiteral("*.xml")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.append(files.next());
    std::sort(paths.begin(), paths.end());
    for (const QString &path : qAsConst(paths)) {
        QByteArray xml;
        OssResult result = OssAtomicFile::read(path, Largest, &xml);
        const OssSnNodeTypeLibrary::TypePointer type = result
                                                           ? OssSnNodeType::read(xml, path, &result)
                                                           : nullptr;
        take(path, type, result);
    }
}

QString refusal(const QString &path, const QString &reason)
{
    return tr("Cannot use the node type \"%1\": %2").arg(path, reason);
}

} // namespace

QStringList OssSnNodeTypeLibrary::readFolder(const QString &folder)
{
    QStringList faults;
    readDescriptions(
        folder, [&](const QString &path, const TypePointer &type, const OssResult &result) {
            if (!type)
                faults.append(result.error());
            else if (!add(type))
                faults.append(refusal(path, tr("the key \"%1\" is taken").arg(type->pathKey)));
        });
    return faults;
}

OssResult OssSnNodeTypeLibrary::mayCome(const TypePointer &type, const Types &others) const
{
    const bool isInstalled = m_types.contains(type->pathKey) && !m_changing.contains(type->pathKey);
    if (isInstalled || others.contains(type->pathKey))
        return OssResult::failure(tr("the key \"%1\" is taken").arg(type->pathKey));
    if (type->pathKey.startsWith(QLatin1String("_System/")))
        return OssResult::failure(tr("keys below \"_System\" are the application's own"));
    for (const QString &tag :
         {OssSnTags::viewer(), OssSnTags::input(), OssSnTags::output(), OssSnTags::systemShader(),
          OssSnTags::currentMaterialProxy(), OssSnTags::graphLayerInput()}) {
        if (type->tags.contains(tag))
            return OssResult::failure(tr("the tag \"%1\" is the application's own").arg(tag));
    }
    const TypePointer same = m_byVersion.value(type->versionUUID);
    const bool isTaken = (same && m_changing.value(same->pathKey) != same)
                         || std::any_of(others.cbegin(), others.cend(), [&](const auto &other) {
                                return other->versionUUID == type->versionUUID;
                            });
    return isTaken ? OssResult::failure(
               tr("the version id \"%1\" is that of another type").arg(type->versionUUID))
                   : OssResult();
}

QStringList OssSnNodeTypeLibrary::readChangingFolder(const QString &folder, Changes *changes)
{
    QStringList faults;
    Types now;
    readDescriptions(folder,
                     [&](const QString &path, const TypePointer &type, const OssResult &result) {
                         const OssResult can = type ? mayCome(type, now) : OssResult();
                         if (!type)
                             faults.append(result.error());
                         else if (!can)
                             faults.append(refusal(path, can.error()));
                         else
                             now.insert(type->pathKey, type);
                     });
    *changes = {};
    for (auto type = now.begin(); type != now.end(); ++type) {
        const TypePointer before = m_changing.value(type.key());
        if (!before)
            changes->added.append(type.key());
        else if (before->source == (*type)->source)
            *type = before;
        else
            changes->changed.append(type.key());
    }
    for (auto type = m_changing.cbegin(); type != m_changing.cend(); ++type) {
        if (!now.contains(type.key()))
            changes->removed.append(type.key());
        remove(type.key());
    }
    m_changing = now;
    for (const TypePointer &type : qAsConst(now))
        add(type);
    return faults;
}

void OssSnNodeTypeLibrary::remove(const QString &pathKey)
{
    const TypePointer type = m_types.take(pathKey);
    if (type && m_byVersion.value(type->versionUUID) == type)
        m_byVersion.remove(type->versionUUID);
}

bool OssSnNodeTypeLibrary::add(const TypePointer &type)
{
    if (!type || m_types.contains(type->pathKey))
        return false;
    m_types.insert(type->pathKey, type);
    if (!m_byVersion.contains(type->versionUUID))
        m_byVersion.insert(type->versionUUID, type);
    return true;
}

QStringList OssSnNodeTypeLibrary::pathKeys() const
{
    QStringList keys = m_types.keys();
    std::sort(keys.begin(), keys.end());
    return keys;
}
