#pragma once

#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssAPIFactory.h"

#include <QString>

/// An internal object, a subclass of it, and a script object and factory for both.
class Thing : public QObject
{
    Q_OBJECT
};

class SubThing : public Thing
{
    Q_OBJECT
};

class ThingAPI : public Ossa::API
{
    Q_OBJECT

public:
    /// Stays empty for objects of the name "refused".
    explicit ThingAPI(QObject *internal)
    {
        ++living;
        if (internal->objectName() != QLatin1String("refused"))
            initAPI(internal);
    }

    ~ThingAPI() override { --living; }

    static inline int living = 0;
};

class ThingFactory : public OssAPIFactory
{
public:
    explicit ThingFactory(QString scriptClass)
        : m_scriptClass(std::move(scriptClass))
    {
    }

    Ossa::API *create(QObject *internal) override { return new ThingAPI(internal); }

    QString internalClassName() override { return QStringLiteral("Thing"); }

    QString scriptClassName() override { return m_scriptClass; }

private:
    QString m_scriptClass;
};
