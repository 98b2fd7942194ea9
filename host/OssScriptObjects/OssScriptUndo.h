#pragma once

#include "OssCore/Undo/OssUndoManager.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QString>

#include <memory>
#include <vector>

/// What a running script leaves in the history: one step for all that it does, or, where it opens
/// macros of its own, these and a step for what it does between them. GUI thread.
class OSSSCRIPTOBJECTS_EXPORT OssScriptUndo
{
public:
    /// A script begins. Scripts do not nest.
    void start(const QString &title);
    /// It ended, however: closes what is open.
    void finish();

    /// A macro of the script's own. The second one inside it is a titled part of it.
    void openMacro(const QString &title);
    /// False when none of the script's own is open.
    bool closeMacro();

    bool isInOwnMacro() const { return !m_own.empty(); }

    /// Scope in which no macro is open: undoing, opening and saving need that. Not to be used while
    /// isInOwnMacro().
    class OSSSCRIPTOBJECTS_EXPORT Interruption
    {
    public:
        Interruption();
        Interruption(const Interruption &) = delete;
        Interruption &operator=(const Interruption &) = delete;
        ~Interruption();
    };

private:
    using Macro = std::unique_ptr<OssUndoManager::AutoMacro>;

    QString m_title;
    bool m_running = false;
    Macro m_whole; ///< while none of the script's own is open
    std::vector<Macro> m_own;
};
