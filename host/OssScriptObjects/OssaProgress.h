#pragma once

#include "OssCore/Program/OssStatusManager.h"
#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <memory>
#include <vector>

namespace Ossa {

/// The progress of long work for scripts.
class OSSSCRIPTOBJECTS_EXPORT Progress : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "The progress in the status bar.")
    Q_PROPERTY(bool cancelled READ isCancelled)
    Q_CLASSINFO("cancelled", "The user wants the work stopped.")
    Q_CLASSINFO("begin", "Shows that work has begun; progress() does it for a with statement.")
    Q_CLASSINFO("set", "How much of how much is done.")
    Q_CLASSINFO("end", "The work that was begun last is over.")
    Q_CLASSINFO("message", "Shows a line in the status bar.")

public:
    explicit Progress(QObject *status);
    ~Progress() override;

    bool isCancelled() const;

public Q_SLOTS:
    void begin(const QString &title);
    void set(int done, int total);
    void end();
    void message(const QString &text);

private:
    void endAll();

    std::vector<std::unique_ptr<OssStatusManager::Work>> m_works;
};

} // namespace Ossa
