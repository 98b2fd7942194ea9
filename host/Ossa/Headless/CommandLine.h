#pragma once

#include "Ossa/Headless/BakeCommand.h"
#include "Ossa/Headless/ExportCommand.h"
#include "Ossa/Headless/NewCommand.h"
#include "Ossa/Headless/RenderCommand.h"

#include <QString>
#include <QStringList>

/// What "ossa run" was asked for.
struct RunOptions
{
    QString script;
    QString project; ///< opened before the script starts; empty for none
    QStringList arguments;
};

/// What the user asked for on the command line.
struct CommandLine
{
    enum Command {
        Window,  ///< the application, with `project` or without
        Graph,   ///< a picture of the project's node graph into the file `output`
        Info,    ///< what is in the project
        New,     ///< a project, as `fresh` says
        Bake,    ///< textures into files, as `bake` says
        Export,  ///< textures of materials into files, as `textures` says
        Render,  ///< pictures of the objects in light, as `still` says
        Run,     ///< a script, as `run` says
        Manual,  ///< the manual as pages for a browser, into the folder `output`
        Stubs,   ///< types of the scripting module into the file `output`
        Answered ///< nothing to run: print `message` and end with `exitCode`
    };

    /// Which of the programs is asked: ossa-batch has the commands that need no widgets.
    enum Program { Ossa, Batch };

    Command command = Window;
    QString project;
    QString output;
    bool tellsProgram = false; ///< Info: of the program, not of a project
    BakeOptions bake;
    ExportOptions textures;
    NewOptions fresh;
    RenderOptions still;
    RunOptions run;
    QString message;
    int exitCode = 0;

    /// Commands that open no window.
    bool isHeadless() const { return command != Window && command != Answered; }

    /// Never ends the program itself. Faulty use is Answered with ExitCode::Usage.
    static CommandLine parse(int argc, const char *const *argv, Program program = Ossa);
};

/// Tells on stderr, in one line, why the work could not be done. ExitCode::Failure.
int failCommand(const QString &reason);

/// What the program ends with.
namespace ExitCode {
constexpr int Success = 0;
constexpr int Failure = 1; ///< the work could not be done; stderr says why
constexpr int Usage = 2;   ///< the command line makes no sense
/// And the number of the signal that ended the window, as shells have it.
constexpr int Signalled = 128;
} // namespace ExitCode
