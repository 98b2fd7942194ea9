#pragma once

#include "OssCore/Program/OssService.h"
#include "OssScriptObjects/OssAPIFactory.h"
#include "OssScriptObjects/OssScriptException.h"
#include "OssScriptObjects/OssScriptObjects_export.h"
#include "OssScriptObjects/OssScriptUndo.h"

#include <QHash>
#include <QObject>
#include <QPair>
#include <QSet>
#include <QString>

#include <memory>
#include <vector>

namespace Ossa {
class API;
} // namespace Ossa

/// Registry of script objects and of the factories that make them, and the place where a running
/// script's errors arrive. GUI thread.
///
/// There is one script object per internal object and script class. Its entry goes when either of
/// the two dies; a script object that outlives its internal object stays valid, empty, until
/// deleteAPI() or the end.
class OSSSCRIPTOBJECTS_EXPORT OssScriptManager
    : public QObject
    , public OssService<OssScriptManager>
{
    Q_OBJECT

public:
    OssScriptManager();
    ~OssScriptManager() override;

    /// Takes ownership. Of two factories for the same pair of classes the first is used.
    void registerAPIFactory(OssAPIFactory *factory);
    /// For the nearest class of the object, its own first and then upwards, that has a factory for
    /// the script class. With no script class, the nearest class's latest factory. Null if none.
    OssAPIFactory *findFactory(const QObject *internal, const QString &scriptClass) const;

    /// Null when none was made or registered yet.
    Ossa::API *findAPI(const QObject *internal, const QString &scriptClass) const;
    /// Finds the script object or makes it. Null when there is no factory, or when what the
    /// factory made is empty.
    Ossa::API *obtainAPI(QObject *internal, const QString &scriptClass);
    /// Enters a script object that the caller made; takes ownership. One that is empty, or comes
    /// second for its object and class, is owned but not found.
    void registerAPI(Ossa::API *api, const QString &scriptClass);
    /// Takes the object out of the registry and deletes it, registered or not.
    void deleteAPI(Ossa::API *api);

    void reportError(const OssScriptException &error);

    bool hasError() const { return m_failed; }

    /// What the running call reported first, when hasError().
    const OssScriptException &lastError() const { return m_error; }

    /// Runners call this before a call and after having raised the error.
    void clearError();

    /// What the running script leaves in the history.
    OssScriptUndo &undo() { return m_undo; }

    /// While a script runs its errors are the runner's to tell, and are not logged.
    class OSSSCRIPTOBJECTS_EXPORT Run
    {
    public:
        Run();
        Run(const Run &) = delete;
        Run &operator=(const Run &) = delete;
        ~Run();
    };

    /// A script begins, ends: opens and closes its undo step.
    void beginScript(const QString &title);
    void endScript();

Q_SIGNALS:
    void scriptEnded();

private:
    using Key = QPair<const QObject *, QString>;

    void dropInternal(QObject *internal);
    void dropAPI(QObject *api);

    std::vector<std::unique_ptr<OssAPIFactory>> m_factories;
    QHash<Key, Ossa::API *> m_registry;
    QSet<QObject *> m_owned; ///< script objects, by address: some are half destroyed when they go
    OssScriptException m_error;
    OssScriptUndo m_undo;
    bool m_failed = false;
    int m_runs = 0;
};
