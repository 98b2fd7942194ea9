#include "OssModel/Types/OssSnNodeTypeLibrary.h"

#include "OssCore/Documents/OssAtomicFile.h"

#include <QCoreApplication>
#include <QDirIterator>

#include <algorithm>

QStringList OssSnNodeTypeLibrary::readFolder(const QString &folder)
{
    constexpr qint64 largest = 1 << 20;
    QStringList paths;
    QDirIterator files(folder, {QStringLiteral("*.xml")}, QDir::Files,
                       QDirIterator::Subdirectories);
    while (files.hasNext())
        paths.append(files.next());
    std::sort(paths.begin(), paths.end());

    QStringList faults;
    for (const QString &path : qAsConst(paths)) {
        QByteArray xml;
        OssResult result = OssAtomicFile::read(path, largest, &xml);
        const TypePointer type = result ? OssSnNodeType::read(xml, path, &result) : nullptr;
        if (!type)
            faults.append(result.error());
        else if (!add(type))
            faults.append(QCoreApplication::translate(
                              "OssSnNodeTypeLibrary",
                              "Cannot use the node type \"%1\": the key \"%2\" is taken")
                              .arg(path, type->pathKey));
    }
    return faults;
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
