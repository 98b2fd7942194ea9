#include "Ossa/Commands/EditCommands.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Dialogs/PreferencesDialog.h"
#include "Ossa/Dialogs/ShortcutEditor.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssMenu.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssInterface/Properties/OssNodePropertyPanel.h"
#include "OssInterface/Properties/OssPropertyRow.h"
#include "OssModel/Project/OssNodeTypeWatch.h"

#include <QAction>
#include <QDesktopServices>
#include <QDir>
#include <QUrl>
#include <QWidget>

namespace {

const QString undoPath = QStringLiteral("/Ossa/Edit/Undo");
const QString redoPath = QStringLiteral("/Ossa/Edit/Redo");

void showStep(QAction *action, const QString &path, const QString &title)
{
    const QString verb = OssCommandTable::text(*OssCommandTable::find(path));
    const bool known = action->isEnabled() && !title.isEmpty();
    action->setText(known ? verb + QLatin1Char(' ') + OssMenu::asTyped(title) : verb);
}

} // namespace

EditCommands::EditCommands(QWidget *window)
    : QObject(window)
    , m_window(window)
{
    auto *history = OssUndoManager::instance();
    m_undo = Commands::file(
        this, undoPath, [history] { history->takeBack(); }, Commands::InHand::Stays);
    m_redo = Commands::file(this, redoPath, [history] { history->redo(); });
    Commands::file(this, QStringLiteral("/Ossa/Edit/Preferences..."),
                   [this] { showPreferences(); });
    Commands::file(this, QStringLiteral("/Ossa/Edit/Keyboard Shortcuts..."),
                   [this] { showShortcuts(); });
    Commands::file(this, QStringLiteral("/Ossa/Edit/Node Type Folder"),
                   [this] { showNodeTypeFolder(); });
    const QStringList ofRows = OssPropertyRow::commandPaths();
    for (const QString &path : ofRows)
        Commands::file(this, path, [path] { runInRow(path); });
    connect(history, &OssUndoManager::changed, this, &EditCommands::refresh);
    refresh();
}

void EditCommands::runInRow(const QString &path)
{
    OssPropertyRow *row = OssNodePropertyPanel::rowWithKeyboard();
    if (!row || !row->run(path))
        OssStatusManager::instance()->showMessage(
            tr("%1: click into a row of a panel first that it is for")
                .arg(OssCommandTable::text(*OssCommandTable::find(path))));
}

void EditCommands::refresh()
{
    const auto *history = OssUndoManager::instance();
    OssCommandTable::setHolds(OssCommandTable::WithUndo, history->canUndo());
    OssCommandTable::setHolds(OssCommandTable::WithRedo, history->canRedo());
    showStep(m_undo, undoPath, history->undoText());
    showStep(m_redo, redoPath, history->redoText());
}

void EditCommands::showNodeTypeFolder()
{
    const OssResult made = OssNodeTypeWatch::makeFolder();
    const QString path = OssNodeTypeWatch::folderPath();
    if (!made) {
        OssMessageBox::warning(m_window, tr("Node Type Folder"), made.error());
        return;
    }
    OssStatusManager::instance()->showMessage(QDir::toNativeSeparators(path));
    // Where nothing shows folders the status bar has to do.
    if (OssApplication::popupsAllowed())
        QDesktopServices::openUrl(QUrl::fromLocalFile(path));
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
