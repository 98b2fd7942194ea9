#include "Ossa/Commands/EditCommands.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Dialogs/PreferencesDialog.h"
#include "Ossa/Dialogs/ShortcutEditor.h"
#include "OssCore/OssUndoManager.h"

#include <QAction>
#include <QWidget>

namespace {

const QString folder = QStringLiteral("/Ossa/Edit/");

void refreshStep(QAction *action, const QString &verb, bool possible, const QString &title)
{
    action->setEnabled(possible);
    action->setText(possible && !title.isEmpty() ? verb + QLatin1Char(' ') + title : verb);
}

} // namespace

EditCommands::EditCommands(QWidget *window)
    : QObject(window)
    , m_window(window)
{
    auto *history = OssUndoManager::instance();
    m_undo = Commands::file(this, folder, tr("Undo"), [history] { history->undo(); });
    m_redo = Commands::file(this, folder, tr("Redo"), [history] { history->redo(); });
    Commands::file(
        this, folder, tr("Preferences..."), [this] { showPreferences(); },
        tr("Set how the program behaves"));
    Commands::file(
        this, folder, tr("Keyboard Shortcuts..."), [this] { showShortcuts(); },
        tr("See and change the keys of all commands"));
    connect(history, &OssUndoManager::changed, this, &EditCommands::refresh);
    refresh();
}

void EditCommands::refresh()
{
    const auto *history = OssUndoManager::instance();
    refreshStep(m_undo, tr("Undo"), history->canUndo(), history->undoText());
    refreshStep(m_redo, tr("Redo"), history->canRedo(), history->redoText());
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
