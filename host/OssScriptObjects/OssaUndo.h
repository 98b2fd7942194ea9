#pragma once

#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QList>
#include <QStringList>

namespace Ossa {

class Node;

/// The history for scripts.
class OSSSCRIPTOBJECTS_EXPORT Undo : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "The history. A script is one step, unless it opens macros of its own.")
    Q_PROPERTY(int count READ count)
    Q_CLASSINFO("count", "Steps that were recorded before the running script.")
    Q_CLASSINFO("texts", "Titles of the steps, the oldest first.")
    Q_CLASSINFO("nodes", "The nodes that a step changes and that are still in a graph.")
    Q_CLASSINFO("undo", "Takes the last step back, also one of this script's.")
    Q_CLASSINFO("redo", "Does again what was undone last.")
    Q_CLASSINFO("begin", "Opens a macro; undoMacro() does it for a with statement.")
    Q_CLASSINFO("end", "Closes the macro that was opened last.")

public:
    explicit Undo(QObject *manager);
    ~Undo() override;

    int count() const;

public Q_SLOTS:
    QStringList texts() const;
    QList<Node *> nodes(int step) const;
    void undo();
    void redo();
    void begin(const QString &title);
    void end();

private:
    /// False, and reported, inside a macro of the script's own.
    static bool mayMove();
};

} // namespace Ossa
