#include "Ossa/Window/MainWindow.h"

#include "Ossa/Commands/ColorCommands.h"
#include "Ossa/Commands/Commands.h"
#include "Ossa/Commands/EditCommands.h"
#include "Ossa/Commands/ExportCommands.h"
#include "Ossa/Commands/MeshCommands.h"
#include "Ossa/Commands/ProjectCommands.h"
#include "Ossa/Commands/RecentProjects.h"
#include "Ossa/Common/ApplicationPreferences.h"
#include "Ossa/Common/Theme.h"
#include "Ossa/Dialogs/CommandPalette.h"
#include "Ossa/Headless/ProgramVersion.h"
#include "Ossa/Help/HelpCommands.h"
#include "Ossa/Scripting/ScriptCommands.h"
#include "Ossa/Viewer/NodeThumbnails.h"
#include "Ossa/Window/MainMenus.h"
#include "Ossa/Window/NotificationBar.h"
#include "Ossa/Window/PaletteDocks.h"
#include "Ossa/Window/StatusArea.h"
#include "Ossa/Window/WelcomePanel.h"
#include "Ossa/Window/WorkRecovery.h"
#include "OssCore/Program/OssPluginInterface.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssEvaluation/Geometry/OssEvMeshFile.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Actions/OssShortcutManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectFile.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssNodeGraph/View/OssNgGlide.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QDropEvent>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMimeData>
#include <QUrl>
#include <QVBoxLayout>

namespace {

const QString geometryKey = QStringLiteral("MainWindow/geometry");
const QString thumbnailsKey = QStringLiteral("MainWindow/NodeThumbnails");
const QSize firstSize(1400, 880);

/// The project that is dragged; empty when it is anything else.
QString projectIn(const QMimeData *data)
{
    const QList<QUrl> urls = data->urls();
    if (urls.size() != 1 || !urls.first().isLocalFile())
        return {};
    const QFileInfo file(QDir::cleanPath(urls.first().toLocalFile()));
    return file.isDir() && QFileInfo::exists(OssProjectFile::documentPath(file.filePath()))
               ? file.filePath()
               : QString();
}

/// The mesh file that is dragged; empty when it is anything else.
QString meshIn(const QMimeData *data)
{
    const QList<QUrl> urls = data->urls();
    if (urls.size() != 1 || !urls.first().isLocalFile())
        return {};
    const QString path = QDir::cleanPath(urls.first().toLocalFile());
    return QFileInfo(path).isFile() && OssEvMeshFile::isMeshFile(path.toStdString()) ? path
                                                                                     : QString();
}

} // namespace

MainWindow::MainWindow()
    : m_notifications(new NotificationBar)
    , m_docks(new PaletteDocks(this))
{
    // The strip stands above the docks, which made themselves the central widget.
    auto *center = new QWidget;
    auto *layout = new QVBoxLayout(center);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_notifications);
    layout->addWidget(takeCentralWidget(), 1);
    setCentralWidget(center);

    OssApplication::setMainWindow(this);
    OssShortcutManager::instance()->setScope(QStringLiteral("/Ossa"), this);
    setStatusBar(new StatusArea(this));
    m_project = new ProjectCommands(this);
    m_recovery = new WorkRecovery(m_project, this); // owned by the window
    const auto told = [this](const char *subject) {
        return [this, subject](const QString &text) {
            m_notifications->tell(text, QLatin1String(subject));
        };
    };
    connect(m_recovery, &WorkRecovery::trouble, this, told("recovery"));
    m_meshes = new MeshCommands(m_project, this);
    connect(m_meshes, &MeshCommands::trouble, this, told("meshes"));
    m_notifications->addRemedy(QStringLiteral("meshes"),
                               OssActionTreeManager::instance()->findAction(
                                   QStringLiteral("/Ossa/File/Missing Files...")));
    const auto *colors = new ColorCommands(this); // owned by the window
    connect(colors, &ColorCommands::trouble, this, told("colors"));
    new EditCommands(this);   // owned by the window
    new ExportCommands(this); // owned by the window
    new ScriptCommands(this); // owned by the window
    fileViewCommands();
    fileHelpCommands();
    new MainMenus(menuBar()); // owned by the menu bar
    m_welcome = new WelcomePanel(this);
    m_welcome->hide();
    connect(m_welcome, &WelcomePanel::projectChosen, this, &MainWindow::openSoon);
    setAcceptDrops(true);
    connect(m_project, &ProjectCommands::projectStateChanged, this, &MainWindow::refreshTitle);
    refreshTitle();
    resize(Theme::fitting(firstSize));
}

MainWindow::~MainWindow()
{
    OssApplication::setMainWindow(nullptr);
    // Before the dock manager, which would delete the palettes.
    delete m_docks;
}

void MainWindow::askForUnsavedWork()
{
    m_recovery->ask();
}

void MainWindow::restoreLayout()
{
    restoreGeometry(OssSettings().value(geometryKey).toByteArray());
    m_docks->restoreLayout();
}

void MainWindow::tellAbout(const QVector<PluginLoader::Failure> &failures)
{
    for (const PluginLoader::Failure &failure : failures)
        m_notifications->tell(
            tr("Plug-in %1 cannot be used: %2.").arg(failure.file, failure.reason));
    // Said now, and not when there is work to lose.
    const OssResult settings = OssSettings::checkFolder();
    if (!settings)
        m_notifications->tell(tr("%1. Preferences, the layout, fresh pixels and copies of unsaved "
                                 "work are lost when Ossa ends.")
                                  .arg(settings.error()));
}

void MainWindow::openAtStart(const QString &path)
{
    if (m_recovery->restoreChosen() || (!path.isEmpty() && m_project->open(path)))
        return;
    const QStringList recent = RecentProjects::list();
    const bool reopen = path.isEmpty() && ApplicationPreferences::instance()->reopenLastProject();
    if (reopen && !recent.isEmpty() && m_project->open(recent.first()))
        return;
    if (m_welcome->isVisible())
        m_welcome->setFocus();
}

void MainWindow::keepWork()
{
    m_recovery->keepCopy();
    if (isVisible()) // or the layout of the last session is not restored yet
        saveLayout();
}

QString MainWindow::notificationText() const
{
    return m_notifications->text();
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    if (!m_project->mayClose() || !ExportCommands::mayQuit(this)) {
        event->ignore();
        return;
    }
    m_recovery->forgetCopy();
    saveLayout();
    event->accept();
    Q_EMIT closed();
}

void MainWindow::openSoon(const QString &path)
{
    // Not while whoever was clicked or dropped on has its say: it may be gone then.
    QMetaObject::invokeMethod(
        this, [this, path] { m_project->open(path); }, Qt::QueuedConnection);
}

void MainWindow::dragEnterEvent(QDragEnterEvent *event)
{
    const QString mesh = meshIn(event->mimeData());
    if (!mesh.isEmpty()) {
        event->acceptProposedAction();
        OssStatusManager::instance()->showMessage(
            tr("Drop: imports %1").arg(QFileInfo(mesh).fileName()));
        return;
    }
    const QString path = projectIn(event->mimeData());
    if (path.isEmpty())
        return;
    event->acceptProposedAction();
    OssStatusManager::instance()->showMessage(
        tr("Drop: opens %1").arg(QFileInfo(path).completeBaseName()));
}

void MainWindow::dropEvent(QDropEvent *event)
{
    const QString mesh = meshIn(event->mimeData());
    if (!mesh.isEmpty()) {
        event->acceptProposedAction();
        // Whoever dragged waits for the drop to end; it must not wait for a dialog.
        QMetaObject::invokeMethod(
            this, [this, mesh] { m_meshes->importFile(mesh); }, Qt::QueuedConnection);
        return;
    }
    const QString path = projectIn(event->mimeData());
    if (path.isEmpty())
        return;
    event->acceptProposedAction();
    openSoon(path);
}

void MainWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape)
        OssStatusManager::instance()->askToStop();
    else
        QMainWindow::keyPressEvent(event);
    const QString disabled = OssShortcutManager::instance()->disabledCommand(
        *event, QApplication::focusWidget());
    if (!disabled.isEmpty())
        OssStatusManager::instance()->showMessage(OssCommandTable::whyDisabled(disabled));
}

void MainWindow::fileViewCommands()
{
    const auto *preferences = ApplicationPreferences::instance();
    OssNgGlide::setEnabled(preferences->nodesGlide());
    connect(preferences, &ApplicationPreferences::nodesGlideChanged, this, &OssNgGlide::setEnabled);
    QAction *fullScreen = Commands::file(this, QStringLiteral("/Ossa/View/Full Screen"), [this] {
        setWindowState(windowState() ^ Qt::WindowFullScreen);
    });
    fullScreen->setCheckable(true);
    auto *thumbnails = new NodeThumbnails(this); // owned by the window
    QAction *pictures = Commands::file(
        this, QStringLiteral("/Ossa/View/Node Thumbnails"), [thumbnails] {
            thumbnails->setEnabled(!thumbnails->isEnabled());
            OssSettings().setValue(thumbnailsKey, thumbnails->isEnabled());
        });
    pictures->setCheckable(true);
    pictures->setChecked(OssSettings().value(thumbnailsKey).toBool());
    thumbnails->setEnabled(pictures->isChecked());
    Commands::file(this, QStringLiteral("/Ossa/View/Reset Layout"),
                   [this] { m_docks->resetLayout(); });
}

void MainWindow::fileHelpCommands()
{
    const auto *help = new HelpCommands(this); // owned by the window
    connect(help, &HelpCommands::projectChosen, this, &MainWindow::openSoon);
    Commands::file(this, QStringLiteral("/Ossa/Help/Find Command..."),
                   [this] { showCommandPalette(); });
    Commands::file(this, QStringLiteral("/Ossa/Help/About Ossa"), [this] { showAbout(); });
}

void MainWindow::showCommandPalette()
{
    CommandPalette(this).exec();
}

void MainWindow::showAbout()
{
    OssMessageBox::information(this, tr("About Ossa"), aboutText());
}

QString MainWindow::aboutText() const
{
    QString text = QStringLiteral("<html>")
                   + tr("<h3>Ossa %1</h3><p>Paints and generates textures with a node graph.</p>")
                         .arg(QString::fromStdString(ProgramVersion::text()));
    for (const PluginLoader::Plugin &plugin : m_plugins) {
        OssPluginInterface *told = plugin.object ? plugin.interface : nullptr;
        if (!told)
            continue;
        text += tr("<p><b>%1</b>, version %2<br>%3<br>%4<br>%5<br>%6</p>")
                    .arg(told->name().toHtmlEscaped(), QString::number(told->version()),
                         told->description().toHtmlEscaped(), told->authorName().toHtmlEscaped(),
                         told->legalNotice().toHtmlEscaped(),
                         QDir::toNativeSeparators(plugin.file).toHtmlEscaped());
    }
    return text + QStringLiteral("</html>");
}

void MainWindow::refreshTitle()
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    setWindowModified(project && OssProjectManager::instance()->isModified());
    // "[*]" is where Qt puts the mark of changes; twice it stands for itself.
    const QString mark = QStringLiteral("[*]");
    const QString name = project ? project->shownName().replace(mark, mark + mark) : QString();
    m_docks->coverGraph(m_welcome, !project);
    setWindowTitle(project ? tr("%1[*] \u2013 Ossa").arg(name) : tr("Ossa"));
}

void MainWindow::saveLayout() const
{
    OssSettings().setValue(geometryKey, saveGeometry());
    m_docks->saveLayout();
}
