#include "OssModel/Project/OssNodeTypeWatch.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>

namespace {

constexpr int Pause = 250; // milliseconds

} // namespace

OssNodeTypeWatch::OssNodeTypeWatch()
{
    m_soon.setSingleShot(true);
    m_soon.setInterval(Pause);
    connect(&m_soon, &QTimer::timeout, this, &OssNodeTypeWatch::read);
    const auto readSoon = qOverload<>(&QTimer::start);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, &m_soon, readSoon);
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, &m_soon, readSoon);
}

QString OssNodeTypeWatch::folderPath()
{
    return QDir(OssSettings::folderPath()).filePath(QStringLiteral("NodeTypes"));
}

OssResult OssNodeTypeWatch::makeFolder()
{
    return QDir().mkpath(folderPath())
               ? OssResult()
               : OssResult::failure(tr("The folder \"%1\" cannot be made")
                                        .arg(QDir::toNativeSeparators(folderPath())));
}

void OssNodeTypeWatch::start()
{
    read();
}

void OssNodeTypeWatch::watch()
{
    // The nearest folder above that there is tells when this one, or one on the way to it, comes.
    QDir above(folderPath());
    while (!above.exists() && !above.isRoot())
        above.setPath(QFileInfo(above.path()).path());
    QStringList paths{above.path(), folderPath()};
    QDirIterator inside(folderPath(), {QStringLiteral("*.xml")},
                        QDir::Files | QDir::AllDirs | QDir::NoDotAndDotDot,
                        QDirIterator::Subdirectories);
    while (inside.hasNext())
        paths.append(inside.next());
    const QStringList known = m_watcher.files() + m_watcher.directories();
    for (const QString &path : qAsConst(paths)) {
        if (!known.contains(path) && QFileInfo::exists(path))
            m_watcher.addPath(path);
    }
}

QStringList OssNodeTypeWatch::read()
{
    watch();
    OssSnNodeTypeLibrary::Changes changes;
    const QStringList faults = OssShaderNetworkManager::instance()->readUserNodeTypes(folderPath(),
                                                                                      &changes);
    const QString words = tr("Node types of your own: %1 new, %2 changed, %3 gone")
                              .arg(changes.added.size())
                              .arg(changes.changed.size())
                              .arg(changes.removed.size());
    if (!changes.isEmpty())
        OssDebug("OssNodeTypeWatch", __LINE__, "[ -- ] %s", qPrintable(words));
    // The folder is read again for each file that changes.
    QStringList fresh = faults;
    for (const QString &known : qAsConst(m_faults))
        fresh.removeAll(known);
    m_faults = faults;
    const bool isChange = !changes.isEmpty() && !m_isFirst;
    if (isChange || !faults.isEmpty())
        OssStatusManager::instance()->showMessage(!fresh.isEmpty() ? fresh.first()
                                                  : isChange       ? words
                                                                   : faults.first());
    m_isFirst = false;
    return faults;
}

QString OssNodeTypeWatch::filePath(const QString &pathKey)
{
    return QDir(folderPath()).filePath(pathKey + QStringLiteral(".xml"));
}

bool OssNodeTypeWatch::isPublished(const QString &pathKey)
{
    const auto type = OssShaderNetworkManager::instance()->nodeType(pathKey);
    return type && type->isPublishedGroup() && QFileInfo::exists(filePath(pathKey));
}

OssResult OssNodeTypeWatch::canPublish(const OssSnGroupNode *group,
                                       const OssPublishedGroup::Form &form)
{
    const OssResult can = OssPublishedGroup::canPublish(group, form);
    const QString key = form.pathKey();
    if (can && OssShaderNetworkManager::instance()->nodeType(key) && !isPublished(key))
        return OssResult::failure(tr("\"%1\" is the name of another node type").arg(key));
    return can;
}

OssResult OssNodeTypeWatch::publish(OssSnGroupNode *group, const OssPublishedGroup::Form &form)
{
    const OssResult can = canPublish(group, form);
    if (!can)
        return can;
    const QString key = form.pathKey();
    const auto *networks = OssShaderNetworkManager::instance();
    const auto before = networks->nodeType(key);
    const QByteArray description = OssPublishedGroup::describe(group, form);
    const QString path = filePath(key);
    OssResult result;
    if (!OssSnNodeType::read(description, path, &result))
        return result;
    const QString folder = QFileInfo(path).path();
    if (!QDir().mkpath(folder))
        return OssResult::failure(
            tr("The folder \"%1\" cannot be made").arg(QDir::toNativeSeparators(folder)));
    result = OssAtomicFile::write(path, description);
    if (!result)
        return result;
    const QStringList faults = read();
    const auto type = networks->nodeType(key);
    if (!type || type == before)
        return OssResult::failure(faults.isEmpty() ? tr("The node type cannot be read")
                                                   : faults.first());
    OssPublishedGroup::adopt(group, type);
    Q_EMIT published(group, form);
    return {};
}
