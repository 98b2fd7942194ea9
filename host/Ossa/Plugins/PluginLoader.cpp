#include "Ossa/Plugins/PluginLoader.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssPluginInterface.h"

#include <QCoreApplication>
#include <QDir>
#include <QJsonObject>
#include <QLibrary>
#include <QPluginLoader>

#include <algorithm>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("PluginLoader", text);
}

} // namespace

void PluginLoader::load(const QString &folder, const QStringList &others)
{
    if (openAll(folder) == 0)
        fail(QDir::toNativeSeparators(folder), tr("no plug-in is in this folder"));
    for (const QString &other : others)
        openAll(other);
    initialize();
}

/// Gives how many libraries there were.
int PluginLoader::openAll(const QString &folder)
{
    const QDir dir(folder);
    QStringList files = dir.entryList(QDir::Files, QDir::Name);
    files.erase(std::remove_if(files.begin(), files.end(),
                               [](const QString &file) { return !QLibrary::isLibrary(file); }),
                files.end());
    for (const QString &file : qAsConst(files)) {
        const auto same = std::find_if(
            m_plugins.cbegin(), m_plugins.cend(),
            [&file](const Plugin &plugin) { return QFileInfo(plugin.file).fileName() == file; });
        if (same == m_plugins.cend())
            open(dir.absoluteFilePath(file));
        else
            fail(QDir::toNativeSeparators(dir.absoluteFilePath(file)),
                 tr("one of this name was loaded from %1")
                     .arg(QDir::toNativeSeparators(QFileInfo(same->file).path())));
    }
    return files.size();
}

void PluginLoader::open(const QString &path)
{
    const QString file = QFileInfo(path).fileName();
    QPluginLoader loader(path);
    const QJsonObject metaData = loader.metaData();
    if (metaData.isEmpty()) {
        fail(file, tr("it is no plug-in, or damaged"));
        return;
    }
    const QString iid = metaData.value(QStringLiteral("IID")).toString();
    if (iid != QLatin1String(OssPluginInterface_iid)) {
        fail(file, tr("it is made for \"%1\", not for this program").arg(iid));
        return;
    }
    QObject *object = loader.instance();
    auto *interface = qobject_cast<OssPluginInterface *>(object);
    if (!interface) {
        fail(file, object ? tr("it lacks the interface it names") : loader.errorString());
        return;
    }
    m_plugins.append({path, object, interface});
}

void PluginLoader::initialize()
{
    std::stable_sort(m_plugins.begin(), m_plugins.end(), [](const Plugin &a, const Plugin &b) {
        return a.interface->initializePriority() < b.interface->initializePriority();
    });
    QVector<Plugin> usable;
    for (const Plugin &plugin : qAsConst(m_plugins)) {
        if (plugin.interface->initialize())
            usable.append(plugin);
        else
            fail(QFileInfo(plugin.file).fileName(), tr("it could not be started"));
    }
    m_plugins = usable;
}

void PluginLoader::fail(const QString &file, const QString &reason)
{
    m_failures.append({file, reason});
    OssDebug(__FILE__, __LINE__, "[ !! ] Plug-in %s cannot be used: %s", qPrintable(file),
             qPrintable(reason));
}
