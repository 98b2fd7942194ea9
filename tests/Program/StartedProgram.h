#pragma once

#include "Ossa/Commands/GroupCommands.h"
#include "Ossa/Commands/MarkCommands.h"
#include "Ossa/Plugins/PluginActions.h"
#include "Ossa/Start/HostServices.h"
#include "Ossa/Window/HostPalettes.h"
#include "Ossa/Window/MainWindow.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "support/DialogAnswers.h"
#include "support/ExpectedLog.h"
#include "support/Text.h"

#include <gtest/gtest.h>

#include <QAction>

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
        static MarkCommands markCommands(nullptr);
        HostPalettes::registerAll();
        s_window = new MainWindow;
        s_window->setPlugins(plugins.plugins());
        s_window->show();
        testing::UnitTest::GetInstance()->listeners().Append(new TakeDown); // takes it
    }

    void SetUp() override
    {
        const OssProject *made = OssProjectManager::instance()->newProject(text("Test"));
        m_network = made->shadingGroups().first()->network();
        history()->clear();
    }

    /// Somebody answers dialogs now, and keys go to the window; views of the last test are gone.
    static void bringUser()
    {
        OssApplication::setPopupsAllowed(true);
        s_window->activateWindow();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    static OssUndoManager *history() { return OssUndoManager::instance(); }

    static OssProject *project() { return OssProjectManager::instance()->currentProject(); }

    OssSnBaseNode *add(const char *key, const char *name = "")
    {
        return m_network->createNode(text(key), text(name));
    }

    static void wire(OssSnBaseNode *source, OssSnBaseNode *target)
    {
        target->setInputNode(text("Input"), source, source->prefferedOutputPoint());
    }

    /// These and no others, groups included.
    void select(const QList<OssSnBaseNode *> &nodes)
    {
        const QList<OssSnBaseNode *> all = m_network->getAllNodes();
        for (OssSnBaseNode *node : all)
            node->setSelected(nodes.contains(node));
    }

    /// A command by its path below "/Ossa/".
    static void triggerCommand(const std::string &path)
    {
        QAction *action = OssActionTreeManager::instance()->findAction(
            text(("/Ossa/" + path).c_str()));
        ASSERT_NE(action, nullptr) << path;
        action->trigger();
    }

    /// A command of the node graph, by its name there.
    static void trigger(const char *name) { triggerCommand(std::string("NodeGraph/") + name); }

    OssShaderNetwork *m_network = nullptr; ///< of the new project's object
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
