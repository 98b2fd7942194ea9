#include "Ossa/Start/Session.h"

#include "Ossa/Commands/GroupCommands.h"
#include "Ossa/Commands/MarkCommands.h"
#include "Ossa/Common/ApplicationPreferences.h"
#include "Ossa/Common/Theme.h"
#include "Ossa/Headless/InfoCommand.h"
#include "Ossa/Headless/ProgramVersion.h"
#include "Ossa/Headless/ProjectTroubles.h"
#include "Ossa/Help/ManualWriter.h"
#include "Ossa/Painting/BrushPresets.h"
#include "Ossa/Pictures/GraphCommand.h"
#include "Ossa/Plugins/PluginActions.h"
#include "Ossa/Scripting/RunCommand.h"
#include "Ossa/Start/EndSignals.h"
#include "Ossa/Window/HostPalettes.h"
#include "Ossa/Window/MainWindow.h"
#include "Ossa/Window/WorkRecovery.h"
#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssIcon.h"
#include "OssCore/Program/OssPluginInterface.h"
#include "OssCore/Program/OssPreferenceManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Project/OssPixelCleanup.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QApplication>
#include <QThreadPool>

#include <cstdio>
#include <functional>
#include <optional>
#include <utility>

namespace {

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

/// Beside the user's work: it reads every document.
void removeForgottenPixels()
{
    const auto inBackground = [](std::function<void()> work) {
        QThreadPool::globalInstance()->start(std::move(work));
    };
    inBackground([] { OssPixelCleanup::cleanNewPixels(); });
    QObject::connect(
        OssProjectManager::instance(), &OssProjectManager::projectOpenCompleted, qApp,
        [inBackground](const OssProject *project, bool fromDisk) {
            if (fromDisk && !project->isReadOnly())
                inBackground([folder = project->path()] { OssPixelCleanup::cleanProject(folder); });
        });
}

/// The brush of the session before.
void takeUpBrush()
{
    if (const std::optional<Brush> kept = BrushPresets::keptInHand())
        Brushes::instance()->edit(*kept);
}

void keepBrush()
{
    const OssResult kept = BrushPresets::keepInHand(Brushes::instance()->current());
    if (!kept)
        OssDebug("Session", __LINE__, "[ !! ] %s", qPrintable(kept.error()));
}

} // namespace

int Session::run(const CommandLine &line, int &argc, char **argv)
{
    // Containers must not differ from run to run: files and hashes are written from them.
    qSetGlobalQHashSeed(0);
    if (line.isHeadless() && !qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    if (!hasDisplay()) {
        std::fprintf(stderr, "ossa: there is no display to open a window on (ossa graph, info, "
                             "bake and run need none)\n");
        return ExitCode::Failure;
    }
    QCoreApplication::setApplicationName(QStringLiteral("Ossa"));
    QCoreApplication::setApplicationVersion(QString::fromLatin1(ProgramVersion::number));
    if (!line.isHeadless())
        chooseScaling();

    QApplication application(argc, argv);
    Theme::apply();
    QApplication::setWindowIcon(OssIcon::createIconFromFilename(QStringLiteral("Ossa.png")));
    Session session(line);
    if (line.isHeadless())
        WorkRecovery::report();
    switch (line.command) {
    case CommandLine::Graph:
        return runGraphCommand(line.project, line.output);
    case CommandLine::Info:
        if (line.tellsProgram)
            return runProgramInfo(session.toldPlugins());
        return withProjectTroubles(runInfoCommand(line.project, true));
    case CommandLine::New:
        return runNewCommand(line.fresh);
    case CommandLine::Bake:
        return withProjectTroubles(runBakeCommand(line.bake));
    case CommandLine::Export:
        return withProjectTroubles(runExportCommand(line.textures));
    case CommandLine::Render:
        return withProjectTroubles(runRenderCommand(line.still));
    case CommandLine::Run:
        return runRunCommand(line.run);
    case CommandLine::Manual:
        return runManualCommand(line.output);
    case CommandLine::Stubs:
        return runStubsCommand(line.output);
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
    m_services.start(&m_plugins);
    PluginActions::fileUnfiled(m_plugins);
    m_groupCommands = std::make_unique<GroupCommands>(nullptr);
    m_markCommands = std::make_unique<MarkCommands>(nullptr);
    HostPalettes::registerAll();
}

QVector<ProgramInfoPlugin> Session::toldPlugins() const
{
    QVector<ProgramInfoPlugin> told;
    for (const PluginLoader::Plugin &plugin : m_plugins.plugins())
        told.append({plugin.file, QStringLiteral("%1, version %2")
                                      .arg(plugin.interface->name())
                                      .arg(plugin.interface->version())});
    for (const PluginLoader::Failure &failure : m_plugins.failures())
        told.append({failure.file, failure.reason});
    return told;
}

Session::~Session()
{
    if (!m_line.isHeadless())
        OssPreferenceManager::instance()->savePreferences();
}

int Session::runWindow()
{
    MainWindow window;
    QObject::connect(&window, &MainWindow::closed, qApp, &QApplication::quit);
    const EndSignals signalled;
    QObject::connect(&signalled, &EndSignals::endAsked, &window, [&window] {
        window.keepWork();
        QApplication::quit();
    });
    window.askForUnsavedWork();
    window.restoreLayout();
    window.show();
    window.tellAbout(m_plugins.failures());
    window.setPlugins(m_plugins.plugins());
    // What asks at the start is a loop of its own that the signal ended.
    if (signalled.received() == 0)
        window.openAtStart(m_line.project);
    removeForgottenPixels();
    takeUpBrush();
    const int exitCode = signalled.received() == 0 ? QApplication::exec() : 0;
    keepBrush();
    return signalled.received() == 0 ? exitCode : ExitCode::Signalled + signalled.received();
}
