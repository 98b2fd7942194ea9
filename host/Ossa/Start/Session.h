#pragma once

#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Headless/ProgramInfo.h"
#include "Ossa/Plugins/PluginLoader.h"
#include "Ossa/Start/HostServices.h"

#include <memory>

class GroupCommands;
class MarkCommands;

/// One run of the program, from the application object to the teardown: makes the services, loads
/// the plug-ins, does what the command line wants, and takes everything down while QApplication
/// still lives.
class Session
{
public:
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    /// Returns the program's exit code. At most once per process.
    static int run(const CommandLine &line, int &argc, char **argv);

private:
    explicit Session(const CommandLine &line);
    ~Session();

    int runWindow();
    QVector<ProgramInfoPlugin> toldPlugins() const;

    const CommandLine &m_line;
    HostServices m_services;
    PluginLoader m_plugins;
    std::unique_ptr<GroupCommands> m_groupCommands;
    std::unique_ptr<MarkCommands> m_markCommands;
};
