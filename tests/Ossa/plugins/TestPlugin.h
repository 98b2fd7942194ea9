#pragma once

#include "OssCore/Program/OssPluginInterface.h"

#include <QCoreApplication>
#include <QObject>
#include <QVariant>

/// Base of the plug-ins that the loader is tested with. Each start is noted in the application
/// object's property "started".
class TestPlugin
    : public QObject
    , public OssPluginInterface
{
public:
    bool initialize() override
    {
        QStringList started = qApp->property("started").toStringList();
        started.append(name());
        qApp->setProperty("started", started);
        return true;
    }

    bool uninitialize() override { return true; }

    QString name() override { return QString::fromLatin1(metaObject()->className()); }

    QString description() override { return {}; }

    QString authorName() override { return {}; }

    QString legalNotice() override { return {}; }

    int version() override { return 1; }
};
