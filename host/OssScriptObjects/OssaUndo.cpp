#include "OssScriptObjects/OssaUndo.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssScriptObjects/OssaNode.h"
#include "OssScriptObjects/OssScriptManager.h"
#include "OssScriptObjects/OssScriptObjects.h"

namespace Ossa {

Undo::Undo(QObject *manager)
{
    initAs<OssUndoManager>(manager);
}

Undo::~Undo() = default;

int Undo::count() const
{
    const auto *own = wrapped<OssUndoManager>();
    return own ? own->count() : 0;
}

QStringList Undo::texts() const
{
    QStringList titles;
    const auto *own = wrapped<OssUndoManager>();
    for (int i = 0; own && i < own->count(); ++i)
        titles.append(own->text(i));
    return titles;
}

QList<Node *> Undo::nodes(int step) const
{
    QList<OssSnBaseNode *> found;
    const auto *own = wrapped<OssUndoManager>();
    if (own && (step < 0 || step >= own->count())) {
        fail(OssScriptException::OutOfRange, QStringLiteral("There is no step %1").arg(step));
        return {};
    }
    const QList<QObject *> subjects = own ? own->subjects(step) : QList<QObject *>();
    for (QObject *subject : subjects) {
        auto *node = qobject_cast<OssSnBaseNode *>(subject);
        if (node && node->network())
            found.append(node);
    }
    return OssScriptObjectList<Node>(found);
}

bool Undo::mayMove()
{
    if (!OssScriptManager::instance()->undo().isInOwnMacro())
        return true;
    fail(OssScriptException::WrongState,
         QStringLiteral("Nothing can be undone inside an undo macro"));
    return false;
}

void Undo::undo()
{
    auto *own = wrapped<OssUndoManager>();
    if (!own || !mayMove())
        return;
    const OssScriptUndo::Interruption interruption;
    if (own->canUndo())
        own->undo();
    else
        fail(OssScriptException::WrongState, QStringLiteral("There is nothing to undo"));
}

void Undo::redo()
{
    auto *own = wrapped<OssUndoManager>();
    if (!own || !mayMove())
        return;
    const OssScriptUndo::Interruption interruption;
    if (own->canRedo())
        own->redo();
    else
        fail(OssScriptException::WrongState, QStringLiteral("There is nothing to redo"));
}

void Undo::begin(const QString &title)
{
    if (wrapped<OssUndoManager>())
        OssScriptManager::instance()->undo().openMacro(title);
}

void Undo::end()
{
    if (wrapped<OssUndoManager>() && !OssScriptManager::instance()->undo().closeMacro())
        fail(OssScriptException::WrongState, QStringLiteral("No undo macro is open"));
}

} // namespace Ossa
