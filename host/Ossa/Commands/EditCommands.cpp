#include "Ossa/Commands/EditCommands.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Dialogs/PreferencesDialog.h"
#include "Ossa/Dialogs/ShortcutEditor.h"
#include "OssCore/Undo/OssUndoManager.h"

#include <QAction>
#include <QWidget>

namespace {

void showStep(QAction *action, const QString &verb, const QString &title)
{
    const bool known = action->isEnabled() && !title.isEmpty();
    action->setText(known ? verb + QLatin1Char(' ') + title : verb);
}

} // namespace

EditCommands::EditCommands(QWidget *window)
    : QObject(window)
    , m_window(window)
{
    auto *history = OssUndoManager::instance();
    m_undo = Commands::file(this, QStringLiteral("/Ossa/Edit/Undo"),
                            [history] { history->undo(); });
    m_redo = Commands::file(this, QStringLiteral("/Ossa/Edit/Redo"),
                            [history] { history->redo(); });
    Commands::file(this, QStringLiteral("/Ossa/Edit/Preferences..."),
                   [this] { showPreferences(); });
    Commands::file(this, QStringLiteral("/Ossa/Edit/Keyboard Shortcuts..."),
                   [this] { showShortcuts(); });
    connect(history, &OssUndoManager::changed, this, &EditCommands::refresh);
    refresh();
}

void EditCommands::refresh()
{
    const auto *history = OssUndoManager::instance();
    Commands::setHolds(OssCommandTable::WithUndo, history->canUndo());
    Commands::setHolds(OssCommandTable::WithRedo, history->canRedo());
    showStep(m_undo, tr("Undo"), history->undoText());
    showStep(m_redo, tr("Redo"), history->redoText());
}

void EditCommands::showPreferences()
{
    PreferencesDialog dialog(m_window);
    dialog.exec();
}

void EditCommands::showShortcuts()
{
    ShortcutEditor dialog(m_window);
    dialog.exec();
}
