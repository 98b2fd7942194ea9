#include "OssScriptObjects/OssScriptManager.h"

#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptClasses.h"

#include <QMetaObject>

#include <utility>

OssScriptManager::OssScriptManager()
{
    OssScriptClasses::registerAll(this);
}

OssScriptManager::~OssScriptManager()
{
    m_registry.clear();
    const QSet<QObject *> owned = std::exchange(m_owned, {});
    qDeleteAll(owned);
}

void OssScriptManager::registerAPIFactory(OssAPIFactory *factory)
{
    if (!factory) {
        OssDebug(__FILE__, __LINE__, "Factory is NULL");
        return;
    }
    m_factories.emplace_back(factory);
}

OssAPIFactory *OssScriptManager::findFactory(const QObject *internal,
                                             const QString &scriptClass) const
{
    if (!internal)
        return nullptr;
    for (const QMetaObject *type = internal->metaObject(); type; type = type->superClass()) {
        OssAPIFactory *latest = nullptr;
        for (const auto &factory : m_factories) {
            if (factory->internalClassName() != QLatin1String(type->className()))
                continue;
            if (factory->scriptClassName() == scriptClass)
                return factory.get();
            latest = factory.get();
        }
        if (latest && scriptClass.isEmpty())
            return latest;
    }
    return nullptr;
}

Ossa::API *OssScriptManager::findAPI(const QObject *internal, const QString &scriptClass) const
{
    return m_registry.value({internal, scriptClass});
}

Ossa::API *OssScriptManager::obtainAPI(QObject *internal, const QString &scriptClass)
{
    if (Ossa::API *known = findAPI(internal, scriptClass))
        return known;
    OssAPIFactory *factory = findFactory(internal, scriptClass);
    if (!factory)
        return nullptr;
    // With no class asked for, the factory decides: the object may have been made already.
    const QString made = factory->scriptClassName();
    if (Ossa::API *known = findAPI(internal, made))
        return known;
    Ossa::API *api = factory->create(internal);
    if (!api)
        return nullptr;
    if (api->isNull()) {
        deleteAPI(api);
        return nullptr;
    }
    registerAPI(api, made);
    return api;
}

void OssScriptManager::registerAPI(Ossa::API *api, const QString &scriptClass)
{
    if (!api) {
        OssDebug(__FILE__, __LINE__, "API is NULL");
        return;
    }
    m_owned.insert(api);
    connect(api, &QObject::destroyed, this, &OssScriptManager::dropAPI, Qt::UniqueConnection);
    const Key key(api->internalObject(), scriptClass);
    if (api->isNull() || m_registry.contains(key))
        return;
    m_registry.insert(key, api);
    connect(api->internalObject(), &QObject::destroyed, this, &OssScriptManager::dropInternal,
            Qt::UniqueConnection);
}

void OssScriptManager::deleteAPI(Ossa::API *api)
{
    if (!api)
        return;
    dropAPI(api);
    delete api;
}

void OssScriptManager::reportError(const OssScriptException &error)
{
    if (m_runs == 0)
        OssDebug(__FILE__, __LINE__, "[ !! ] %s", qPrintable(error.message));
    // The first error is the cause; what follows in the same call follows from it.
    if (!m_failed)
        m_error = error;
    m_failed = true;
}

void OssScriptManager::clearError()
{
    m_failed = false;
    m_error = {};
}

OssScriptManager::Run::Run()
{
    OssScriptManager *manager = instance();
    if (manager->m_runs++ == 0)
        manager->clearError();
}

OssScriptManager::Run::~Run()
{
    --instance()->m_runs;
}

void OssScriptManager::beginScript(const QString &title)
{
    m_undo.start(title);
}

void OssScriptManager::endScript()
{
    m_undo.finish();
    Q_EMIT scriptEnded();
}

void OssScriptManager::dropInternal(QObject *internal)
{
    for (auto entry = m_registry.begin(); entry != m_registry.end();)
        entry = entry.key().first == internal ? m_registry.erase(entry) : std::next(entry);
}

void OssScriptManager::dropAPI(QObject *api)
{
    // Compared as addresses: the object may be half destroyed.
    for (auto entry = m_registry.begin(); entry != m_registry.end();)
        entry = entry.value() == api ? m_registry.erase(entry) : std::next(entry);
    m_owned.remove(api);
}
