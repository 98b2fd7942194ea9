#include "OssScriptObjects/OssaApplication.h"

#include "OssCore/Program/OssPreferenceManager.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssScriptObjects/OssaActions.h"
#include "OssScriptObjects/OssaNodeGraph.h"
#include "OssScriptObjects/OssaPalette.h"
#include "OssScriptObjects/OssaPreferences.h"
#include "OssScriptObjects/OssaProgress.h"
#include "OssScriptObjects/OssaProject.h"
#include "OssScriptObjects/OssaUndo.h"
#include "OssScriptObjects/OssScriptObjects.h"

#include <QCoreApplication>

namespace Ossa {

namespace {

bool isInMacro()
{
    return OssScriptManager::instance()->undo().isInOwnMacro();
}

/// "Ossa::NodeGraphPalette" for the help key "node_graph_palette".
QString scriptClassOf(const OssPalette *palette)
{
    QString name = QStringLiteral("Ossa::");
    const QStringList words = palette->contextHelpKey().split(QLatin1Char('_'));
    for (const QString &word : words)
        name += word.left(1).toUpper() + word.mid(1);
    return name;
}

} // namespace

Application::Application(QObject *application)
{
    initAs<QCoreApplication>(application);
}

Application::~Application() = default;

QString Application::version() const
{
    return QCoreApplication::applicationVersion();
}

Project *Application::project() const
{
    return OssScriptObject<Project>(OssProjectManager::instance()->currentProject());
}

Project *Application::newProject(const QString &name, const QString &geometry)
{
    if (isInMacro()) {
        fail(OssScriptException::WrongState,
             QStringLiteral("A project cannot be started inside an undo macro"));
        return nullptr;
    }
    const OssScriptUndo::Interruption interruption;
    OssProject *project = OssProjectManager::instance()->newProject(name);
    if (!project->entities().isEmpty())
        project->entities().first()->setGeometry(geometry);
    return OssScriptObject<Project>(project);
}

Project *Application::openProject(const QString &path)
{
    if (isInMacro()) {
        fail(OssScriptException::WrongState,
             QStringLiteral("A project cannot be opened inside an undo macro"));
        return nullptr;
    }
    const OssScriptUndo::Interruption interruption;
    const OssResult opened = OssProjectManager::instance()->openProject(path);
    if (!opened) {
        fail(OssScriptException::FileInvalid, opened.error());
        return nullptr;
    }
    return project();
}

NodeGraph *Application::graph() const
{
    return OssScriptObject<NodeGraph>(OssShaderNetworkManager::instance()->currentShaderNetwork());
}

NodeGraph *Application::shownGraph() const
{
    OssShaderNetwork *shown = OssShaderNetworkManager::instance()->currentViewNetwork();
    return shown ? OssScriptObject<NodeGraph>(shown) : graph();
}

QStringList Application::nodeTypes() const
{
    return OssShaderNetworkManager::instance()->nodeGraphPathKeys();
}

QStringList Application::palettes() const
{
    QStringList names;
    const QVector<OssPalette *> palettes = OssPaletteManager::instance()->palettes();
    for (const OssPalette *palette : palettes)
        names.append(palette->identity());
    return names;
}

Palette *Application::palette(const QString &name) const
{
    OssPalette *found = OssPaletteManager::instance()->find(name);
    if (!found) {
        fail(OssScriptException::UnknownName,
             QStringLiteral("There is no palette \"%1\"").arg(name));
        return nullptr;
    }
    OssScriptManager *scripts = OssScriptManager::instance();
    if (auto *own = qobject_cast<Palette *>(scripts->obtainAPI(found, scriptClassOf(found))))
        return own;
    return OssScriptObject<Palette>(found);
}

Actions *Application::actions() const
{
    return OssScriptObject<Actions>(OssActionTreeManager::instance());
}

Preferences *Application::preferences() const
{
    return OssScriptObject<Preferences>(OssPreferenceManager::instance());
}

Undo *Application::undo() const
{
    return OssScriptObject<Undo>(OssUndoManager::instance());
}

Progress *Application::status() const
{
    return OssScriptObject<Progress>(OssStatusManager::instance());
}

void Application::trigger(const QString &path) const
{
    if (Actions *commands = actions())
        commands->trigger(path);
}

} // namespace Ossa
