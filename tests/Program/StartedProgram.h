#pragma once

#include "Ossa/Commands/GroupCommands.h"
#include "Ossa/Plugins/PluginActions.h"
#include "Ossa/Start/HostServices.h"
#include "Ossa/Window/HostPalettes.h"
#include "Ossa/Window/MainWindow.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Project/OssProjectManager.h"

#include <gtest/gtest.h>

/// Everything that a start of the program makes, once for all tests of this process: services,
/// plug-in, palettes, and a window with a new project.
class StartedProgram : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        if (s_window)
            return;
        OssApplication::setPopupsAllowed(false);
        static PluginLoader plugins;
        s_services = new HostServices; // deleted by the listener, as the window
        s_services->start(&plugins);
        ASSERT_EQ(plugins.plugins().size(), 1) << "build/plugins holds the node graph";
        PluginActions::fileUnfiled(plugins);
        static GroupCommands groupCommands(nullptr);
        HostPalettes::registerAll();
        s_window = new MainWindow;
        s_window->show();
        testing::UnitTest::GetInstance()->listeners().Append(new TakeDown); // takes it
    }

    void SetUp() override { OssProjectManager::instance()->newProject(QStringLiteral("Test")); }

    inline static HostServices *s_services = nullptr;
    inline static MainWindow *s_window = nullptr;

private:
    /// While there is still an application.
    struct TakeDown : testing::EmptyTestEventListener
    {
        void OnTestProgramEnd(const testing::UnitTest &) override
        {
            delete s_window;
            delete s_services;
        }
    };
};
