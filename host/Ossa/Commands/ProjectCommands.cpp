#include "Ossa/Commands/ProjectCommands.h"

#include "Ossa/Commands/Commands.h"
#include "Ossa/Commands/NodeFiles.h"
#include "Ossa/Commands/RecentProjects.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssFileDialog.h"
#include "OssInterface/Popups/OssMessageBox.h"
#include "OssModel/Evaluation/OssBakeManager.h"
#include "OssModel/Images/OssFilePath.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QAction>
#include <QDir>
#include <QFileInfo>
#include <QInputDialog>
#include <QWidget>

namespace {

const QString recentFolder = QStringLiteral("/Ossa/File/Recent/");
const QString exampleFolder = QStringLiteral("/Ossa/File/Example/");
const QString projectPathKey = QStringLiteral("ProjectPath");

/// What the user has in hand, or is typing, belongs to the document.
void settle()
{
    OssUndoManager::instance()->endInteraction();
    OssApplication::takeTyped();
}

// Examples belong to the program: changes to one are saved to a place of the user's own.
bool isExample(const QString &path)
{
    const OssResourceInfo *files = OssResourceInfo::instance();
    return path.startsWith(files->examplePath() + QLatin1Char('/'))
           || path.startsWith(files->manualPath() + QLatin1Char('/'));
}

} // namespace

ProjectCommands::ProjectCommands(QWidget *window)
    : QObject(window)
    , m_window(window)
{
    fileCommands();
    fileExamples();
    fileRecent();
    const auto *projects = OssProjectManager::instance();
    connect(projects, &OssProjectManager::projectOpenCompleted, this, &ProjectCommands::refresh);
    connect(projects, &OssProjectManager::projectClosed, this, &ProjectCommands::refresh);
    connect(projects, &OssProjectManager::projectSaved, this, &ProjectCommands::refresh);
    connect(projects, &OssProjectManager::modifiedChanged, this, &ProjectCommands::refresh);
    refresh();
}

ProjectCommands::~ProjectCommands()
{
    OssCommandTable::setHolds(OssCommandTable::WithProject, true);
}

void ProjectCommands::fileCommands()
{
    Commands::file(this, QStringLiteral("/Ossa/File/New"), [this] { newProject(); });
    Commands::file(this, QStringLiteral("/Ossa/File/Open..."), [this] { askAndOpen(); });
    Commands::file(this, QStringLiteral("/Ossa/File/Save"), [this] { save(); });
    Commands::file(this, QStringLiteral("/Ossa/File/Save As..."), [this] { saveAs(); });
    Commands::file(this, QStringLiteral("/Ossa/File/Close"), [this] { close(); });
    Commands::file(this, QStringLiteral("/Ossa/Edit/Size of New Images..."),
                   [this] { askForNewResolution(); });
    Commands::file(this, QStringLiteral("/Ossa/File/Quit"), [this] { m_window->close(); });
    Commands::file(this, QStringLiteral("/Ossa/File/Clear Recent"), [this] {
        RecentProjects::clear();
        fileRecent();
    });
}

void ProjectCommands::askForNewResolution()
{
    OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project || !OssApplication::popupsAllowed())
        return;
    const QList<int> sizes = OssProject::newResolutions();
    QStringList texts;
    for (const int size : sizes)
        texts.append(QString::number(size));
    bool chosen = false;
    const QString text = QInputDialog::getItem(
        m_window, tr("Size of New Images"),
        tr("Width and height of the project's new images in pixels:"), texts,
        sizes.indexOf(project->newResolution()), false, &chosen);
    if (chosen)
        project->setNewResolution(text.toInt());
}

bool ProjectCommands::isBusy()
{
    OssStatusManager *status = OssStatusManager::instance();
    if (status->isBlocking())
        status->showMessage(tr("Wait until this has ended, or stop it: %1").arg(status->title()));
    return status->isBlocking();
}

bool ProjectCommands::mayStopBaking() const
{
    OssBakeManager *bakes = OssBakeManager::instance();
    if (!bakes->isRunning())
        return true;
    const auto answer = OssMessageBox::question(
        m_window, tr("Bake"), tr("Something is still being baked. Stop that? What is baked stays."),
        QMessageBox::Yes | QMessageBox::Cancel, QMessageBox::Cancel);
    if (answer == QMessageBox::Yes)
        bakes->cancel();
    return answer == QMessageBox::Yes;
}

bool ProjectCommands::mayClose()
{
    if (isBusy() || !mayStopBaking())
        return false;
    settle();
    const auto *projects = OssProjectManager::instance();
    if (!projects->currentProject() || !projects->isModified())
        return true;
    const auto answer = OssMessageBox::question(
        m_window, tr("Unsaved Changes"),
        tr("Do you want to save the changes to \"%1\"?")
            .arg(projects->currentProject()->shownName()),
        QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, QMessageBox::Save);
    if (answer == QMessageBox::Save)
        return save();
    return answer == QMessageBox::Discard;
}

bool ProjectCommands::open(const QString &path)
{
    if (!mayClose())
        return false;
    const bool isOfNodes = NodeFiles::isOne(path);
    const OssResult result = isOfNodes ? NodeFiles::openAsProject(path)
                                       : OssProjectManager::instance()->openProject(path);
    if (!result.ok()) {
        OssMessageBox::warning(m_window, tr("Open Project"), result.error());
        return false;
    }
    if (isOfNodes)
        return true;
    RecentProjects::add(OssProjectManager::instance()->currentProject()->path());
    fileRecent();
    return true;
}

void ProjectCommands::newProject()
{
    if (mayClose())
        OssProjectManager::instance()->newProject(tr("Untitled"));
}

void ProjectCommands::close()
{
    if (mayClose())
        OssProjectManager::instance()->closeProject();
}

bool ProjectCommands::save()
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project || isBusy())
        return false;
    if (project->path().isEmpty() || project->isReadOnly() || isExample(project->path()))
        return saveAs();
    return saveTo(project->path());
}

bool ProjectCommands::saveAs()
{
    const OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project || isBusy())
        return false;
    const QString path = OssFileDialog::getSaveFileName(
        tr("Save Project As"), tr("Ossa projects (*.ossa)"), projectPathKey, m_window,
        project->shownName(), OssFilePath::base());
    return !path.isEmpty() && saveTo(path);
}

bool ProjectCommands::saveTo(const QString &path)
{
    settle();
    auto *projects = OssProjectManager::instance();
    if (!projects->currentProject() || isBusy()) // the user was asked for a name meanwhile
        return false;
    const bool sameFile = projects->currentProject()->path() == path;
    const OssResult result = sameFile ? projects->saveProject() : projects->saveProjectAs(path);
    if (!result.ok()) {
        OssMessageBox::warning(m_window, tr("Save Project"), result.error());
        return false;
    }
    OssStatusManager::instance()->showMessage(tr("Saved %1").arg(QDir::toNativeSeparators(path)));
    RecentProjects::add(path);
    fileRecent();
    refresh();
    return true;
}

void ProjectCommands::askAndOpen()
{
    const QString path = OssFileDialog::getExistingDirectory(tr("Open Project"), projectPathKey,
                                                             m_window);
    if (!path.isEmpty())
        open(path);
}

void ProjectCommands::fileRecent()
{
    for (const QPointer<QAction> &action : qAsConst(m_recent))
        delete action; // and it drops out of the tree
    m_recent.clear();
    const QStringList paths = RecentProjects::list();
    for (const QString &path : paths) {
        // Queued: opening files the list anew and deletes the command that is running.
        m_recent.append(Commands::fileNamed(
            this, recentFolder, QFileInfo(path).completeBaseName(),
            [this, path] {
                QMetaObject::invokeMethod(
                    this, [this, path] { open(path); }, Qt::QueuedConnection);
            },
            QDir::toNativeSeparators(path)));
        m_recent.last()->setToolTip(QDir::toNativeSeparators(path));
    }
    OssCommandTable::setHolds(OssCommandTable::WithRecent, !paths.isEmpty());
}

void ProjectCommands::fileExamples()
{
    const QString folder = OssResourceInfo::instance()->examplePath();
    for (const QString &path : {folder + QStringLiteral("/Guides"), folder}) {
        const QFileInfoList examples = QDir(path).entryInfoList({QStringLiteral("*.ossa")},
                                                                QDir::Dirs, QDir::Name);
        for (const QFileInfo &example : examples) {
            Commands::fileNamed(
                this, exampleFolder, example.completeBaseName(),
                [this, file = example.absoluteFilePath()] { open(file); },
                tr("Open this example project"));
        }
    }
}

void ProjectCommands::refresh()
{
    OssCommandTable::setHolds(OssCommandTable::WithProject,
                              OssProjectManager::instance()->currentProject());
    Q_EMIT projectStateChanged();
}
