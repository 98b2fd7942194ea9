#include "OssScriptObjects/OssaUndo.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssScriptObjects/OssScriptManager.h"

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
