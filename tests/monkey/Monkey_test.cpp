#include "Monkey.h"

#include "Ossa/Commands/GroupCommands.h"
#include "Ossa/Commands/MarkCommands.h"
#include "Ossa/Common/Theme.h"
#include "Ossa/Plugins/PluginActions.h"
#include "Ossa/Start/HostServices.h"
#include "Ossa/Window/HostPalettes.h"
#include "Ossa/Window/MainWindow.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssModel/Export/OssExportManager.h"
#include "OssModel/Project/OssProjectManager.h"
#include "support/ExpectedLog.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QDir>
#include <QTest>

#include <deque>

namespace {

/// What the program says to whoever asks for what cannot be done. Everything else that is logged as a
/// warning is a fault.
const char *const Refusals[] = {
    // A command that was chosen while no graph had the focus goes to the one that is shown.
    "Could not get the current active widget, fallback onto current nodegraph view",
    // Wires that would make no sense, and inputs that cannot change places.
    "Cannot connect: \"",
    "Swap Inputs: ",
    "Connecting a node to the viewer's input 0 is not allowed",
    // A part of such a text.
    "Cannot read \"the clipboard\"",
    // Nothing there that the command is for.
    "Nothing to autoplace.",
    "The clipboard holds no nodes",
    "No nodes are selected",
    "No Bake Point nodes are selected",
    "No Bake Point nodes found",
    "No upstream Bake Point nodes found",
    "No downstream Bake Point nodes found",
    "it computes no pixels",
    // Nodes that a network keeps, and those that belong to it alone.
    "is protected and stays",
    "An object has one viewer",
    "Grouping leaves out",
    "do not come along",
    // What another version of a node's type has not.
    "cannot be converted",
    "has no place any more",
    "\", which is gone",
    // The same of nodes that lost their wires, or came without.
    ": nothing is connected",
    ": Nothing is connected",
    // A folder whose name was pasted from elsewhere.
    "Cannot make the folder",
    // A file of another kind, where a mesh or a picture is asked for.
    "script.py\": it is no ",
    "script.py' failed. yaml-cpp",
    // How many a search looks through.
    "nodes in the network",
};

/// The program as it is started, with its plug-in and its window, once for each process.
class MonkeyTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        qputenv("OSSA_PLUGIN_DIR", OSSA_WATCHED_PLUGIN);
        QApplication::setQuitOnLastWindowClosed(false);
        Theme::apply();
        static PluginLoader plugins;
        s_services = new HostServices;
        s_services->start(&plugins);
        ASSERT_EQ(plugins.plugins().size(), 1);
        PluginActions::fileUnfiled(plugins);
        static GroupCommands groupCommands(nullptr);
        static MarkCommands markCommands(nullptr);
        HostPalettes::registerAll();
        s_window = new MainWindow;
        s_window->resize(1400, 900);
        s_window->show();
        s_window->activateWindow();
    }

    static void TearDownTestSuite()
    {
        OssProjectManager::instance()->closeProject();
        delete s_window;
        delete s_services;
    }

    /// Rounds on one example, each from the seed that follows.
    static void play(const QString &example, quint32 seed, int events)
    {
        constexpr int Round = 2000;
        const QString path = QDir(OssResourceInfo::instance()->examplePath()).filePath(example);
        for (int done = 0; done < events && !HasFailure(); done += Round) {
            Monkey monkey(seed++, path);
            monkey.play(qMin(Round, events - done));
            endExport();
            std::printf("%s: %d events\n", qPrintable(example), qMin(done + Round, events));
            std::fflush(stdout);
        }
    }

    /// One that goes on would miss its folder, which goes with the example.
    static void endExport()
    {
        OssExportManager *exports = OssExportManager::instance();
        exports->setWatching(false);
        if (exports->isRunning())
            exports->job()->cancel();
        EXPECT_TRUE(QTest::qWaitFor([exports] { return !exports->isRunning(); }, 30000));
    }

    static int number(const char *name, int otherwise)
    {
        const int given = qEnvironmentVariableIntValue(name);
        return given > 0 ? given : otherwise;
    }

    inline static HostServices *s_services = nullptr;
    inline static MainWindow *s_window = nullptr;
};

/// OSSA_EVENTS says how many on each example, OSSA_SEED where they begin, OSSA_EXAMPLE on which alone.
TEST_F(MonkeyTest, whateverIsDoneNothingCrashesWarnsOrStaysInHand)
{
    std::deque<ExpectedLog> refusals;
    for (const char *text : Refusals)
        refusals.emplace_back(text, ExpectedLog::Possible);
    const QString only = qEnvironmentVariable("OSSA_EXAMPLE");
    for (const char *example :
         {"Old Plaster.ossa", "Weathered Brick.ossa", "Harbor.ossa", "Barrel.ossa",
          "Guides/1 First Material.ossa", "Guides/2 Masks and Layers.ossa",
          "Guides/3 Painting on the Object.ossa", "Guides/4 UDIM and Baking.ossa",
          "Guides/5 Groups and Knobs.ossa", "Guides/6 Scripting.ossa"}) {
        if (only.isEmpty() || QLatin1String(example).startsWith(only))
            play(QLatin1String(example), quint32(number("OSSA_SEED", 1)),
                 number("OSSA_EVENTS", 500));
    }
}

} // namespace
