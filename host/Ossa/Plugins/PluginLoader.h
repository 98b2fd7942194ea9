#pragma once

#include <QPointer>
#include <QString>
#include <QStringList>
#include <QVector>

class OssPluginInterface;

/// Brings plug-ins to life. Their metadata are read without running their code;
/// what has another interface id is left alone. Plug-ins are initialised once, in the order of
/// their priority, and stay to the end of the process.
class PluginLoader
{
public:
    struct Plugin
    {
        QString file;
        QPointer<QObject> object; ///< the plug-in's, never deleted by the host
        OssPluginInterface *interface;
    };

    struct Failure
    {
        QString file; ///< or the folder, when that is what is missing
        QString reason;
    };

    /// The program's folder, which must hold one, and folders that may; of plug-ins of one name the first counts. Each
    /// failure is also a line in the log.
    void load(const QString &folder, const QStringList &others = {});

    const QVector<Plugin> &plugins() const { return m_plugins; }

    const QVector<Failure> &failures() const { return m_failures; }

private:
    void open(const QString &path);
    int openAll(const QString &folder);
    void initialize();
    void fail(const QString &file, const QString &reason);

    QVector<Plugin> m_plugins;
    QVector<Failure> m_failures;
};
