#include "Ossa/CommandLine.h"

#include <CLI/CLI.hpp>

#include <string>

namespace {

const char *const description =
    "Ossa paints and generates textures with a node graph.\n"
    "Without a command it opens its window, with PROJECT or an empty one.";

CommandLine answered(int exitCode, const std::string &message)
{
    CommandLine line;
    line.command = CommandLine::Answered;
    line.exitCode = exitCode;
    line.message = QString::fromLocal8Bit(message.c_str());
    return line;
}

std::string pictureFile(const std::string &path)
{
    const QString name = QString::fromLocal8Bit(path.c_str()).toLower();
    const bool known = name.endsWith(QLatin1String(".png")) || name.endsWith(QLatin1String(".svg"));
    return known ? std::string() : path + ": the picture must be a .png or .svg file";
}

} // namespace

CommandLine CommandLine::parse(int argc, const char *const *argv)
{
    std::string project;
    std::string graphProject;
    std::string infoProject;
    std::string output;

    CLI::App app(description, "ossa");
    app.set_version_flag("--version", std::string("ossa ") + OSSA_VERSION);
    app.require_subcommand(0, 1);
    app.add_option("PROJECT", project, "Project folder (NAME.ossa) to open");

    CLI::App *graph = app.add_subcommand("graph", "Draw a project's node graph, without a window");
    graph->add_option("PROJECT", graphProject, "Project folder")->required();
    graph->add_option("-o,--output", output, "Picture to write, .png or .svg")
        ->required()
        ->check(pictureFile);

    CLI::App *info = app.add_subcommand("info", "Tell what is in a project, without a window");
    info->add_option("PROJECT", infoProject, "Project folder")->required();

    try {
        app.parse(argc, const_cast<char **>(argv));
    } catch (const CLI::CallForHelp &) {
        const auto chosen = app.get_subcommands();
        return answered(ExitCode::Success, (chosen.empty() ? &app : chosen.front())->help());
    } catch (const CLI::CallForVersion &version) {
        return answered(ExitCode::Success, version.what());
    } catch (const CLI::ParseError &error) {
        return answered(ExitCode::Usage,
                        std::string("ossa: ") + error.what() + " (see ossa --help)");
    }

    CommandLine line;
    if (graph->parsed()) {
        line.command = Graph;
        project = graphProject;
    } else if (info->parsed()) {
        line.command = Info;
        project = infoProject;
    }
    line.project = QString::fromLocal8Bit(project.c_str());
    line.output = QString::fromLocal8Bit(output.c_str());
    return line;
}
