#include "Ossa/Session.h"

#include "Ossa/ApplicationPreferences.h"
#include "Ossa/GraphCommand.h"
#include "Ossa/HostPalettes.h"
#include "Ossa/InfoCommand.h"
#include "Ossa/MainWindow.h"
#include "Ossa/PluginActions.h"
#include "Ossa/Theme.h"
#include "OssCore/OssDebug.h"
#include "OssCore/OssIcon.h"
#include "OssCore/OssPreferenceManager.h"
#include "OssCore/OssResourceInfo.h"
#include "OssCore/OssStatusManager.h"
#include "OssCore/OssUndoManager.h"
#include "OssCoreModules/Interface/OssActionTreeManager.h"
#include "OssCoreModules/Interface/OssApplication.h"
#include "OssCoreModules/Interface/OssMenuManager.h"
#include "OssCoreModules/Interface/OssPaletteManager.h"
#include "OssCoreModules/Interface/OssShortcutManager.h"
#include "OssCoreModules/Network/OssShaderNetworkManager.h"
#include "OssCoreModules/Project/OssProjectManager.h"
#include "OssCoreModules/Script/OssScriptManager.h"

#include <QApplication>

#include <cstdio>

namespace {

// Managers that plug-ins file things with must be there before them, and so outlive them.
void startManagers()
{
    OssDebugLog::instance();
    OssStatusManager::instance();
    OssUndoManager::instance();
    OssPreferenceManager::instance();
    OssActionTreeManager::instance();
    OssShortcutManager::instance();
    OssMenuManager::instance();
    OssPaletteManager::instance();
    OssScriptManager::instance();
    OssShaderNetworkManager::instance();
    OssProjectManager::instance();
}

bool hasDisplay()
{
    return qEnvironmentVariableIsSet("QT_QPA_PLATFORM") || qEnvironmentVariableIsSet("DISPLAY")
           || qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
}

void chooseScaling()
{
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
    QGuiApplication::setHighDpiScaleFactorRoundingPolicy(
        Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    const int percent = ApplicationPreferences::storedInterfaceScale();
    if (percent != 100 && !qEnvironmentVariableIsSet("QT_SCALE_FACTOR"))
        qputenv("QT_SCALE_FACTOR", QByteArray::number(percent / 100.0));
}

} // namespace

int Session::run(const CommandLine &line, int &argc, char **argv)
{
    // Containers must not differ from run to run: files and hashes are written from them.
    qSetGlobalQHashSeed(0);
    if (line.isHeadless() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!hasDisplay()) {
        std::fprintf(stderr, "ossa: there is no display to open a window on (ossa graph and ossa "
                             "info need none)\n");
        return ExitCode::Failure;
    }
    QCoreApplication::setApplicationName(QStringLiteral("Ossa"));
    QCoreApplication::setApplicationVersion(QStringLiteral(OSSA_VERSION));
    if (!line.isHeadless())
        chooseScaling();

    QApplication application(argc, argv);
    Theme::apply();
    QApplication::setWindowIcon(OssIcon::createIconFromFilename(QStringLiteral("Ossa.png")));
    Session session(line);
    switch (line.command) {
    case CommandLine::Graph:
        return runGraphCommand(line.project, line.output);
    case CommandLine::Info:
        return runInfoCommand(line.project);
    case CommandLine::Window:
    case CommandLine::Answered:
        break;
    }
    return session.runWindow();
}

Session::Session(const CommandLine &line)
    : m_line(line)
{
    OssApplication::setPopupsAllowed(!line.isHeadless());
    startManagers();
    ApplicationPreferences::instance();
    OssShaderNetworkManager::instance()->loadNodeTypes(OssResourceInfo::instance()->nodeTypePath());
    m_plugins.load(OssResourceInfo::instance()->pluginPath());
    PluginActions::fileUnfiled(m_plugins);
    HostPalettes::registerAll();
}

Session::~Session()
{
    OssProjectManager::instance()->closeProject();
    if (!m_line.isHeadless())
        OssPreferenceManager::instance()->savePreferences();
    // Widgets and the keys on them go while there is an application; what lives longer finds
    // nothing of them.
    OssShortcutManager::instance()->shutdown();
    OssPaletteManager::instance()->shutdown();
    OssActionTreeManager::instance()->shutdown();
}

int Session::runWindow()
{
    MainWindow window;
    QObject::connect(&window, &MainWindow::closed, qApp, &QApplication::quit);
    window.restoreLayout();
    window.show();
    window.tellAbout(m_plugins.failures());
    window.openAtStart(m_line.project);
    return QApplication::exec();
}
