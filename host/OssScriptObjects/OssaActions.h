#pragma once

#include "OssScriptObjects/OssaAPI.h"
#include "OssScriptObjects/OssScriptObjects_export.h"

#include <QStringList>

class QAction;

namespace Ossa {

/// The commands of the program for scripts, by their paths in the action tree.
class OSSSCRIPTOBJECTS_EXPORT Actions : public API
{
    Q_OBJECT
    Q_CLASSINFO("doc", "The commands of the program, by path.")
    Q_CLASSINFO("paths", "Of all commands, or of those below a folder.")
    Q_CLASSINFO("exists", "Whether there is a command of that path.")
    Q_CLASSINFO("isEnabled", "Whether the command can be used now.")
    Q_CLASSINFO("isChecked", "Whether a command that is switched on and off is on.")
    Q_CLASSINFO("trigger", "Does what choosing the command in a menu does. No dialog opens: a "
                           "question gets its usual answer.")

public:
    explicit Actions(QObject *actionTree);
    ~Actions() override;

public Q_SLOTS:
    QStringList paths(const QString &folder = QString()) const;
    bool exists(const QString &path) const;
    bool isEnabled(const QString &path) const;
    bool isChecked(const QString &path) const;
    void trigger(const QString &path);

private:
    /// Null, and reported, when there is none.
    QAction *action(const QString &path) const;
};

} // namespace Ossa
