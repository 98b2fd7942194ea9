#include "Ossa/Headless/CommandLine.h"

#include "OssEvaluation/Files/OssEvImageFormat.h"
#include "OssModel/Evaluation/OssPatchList.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

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

    std::string bakeProject;
    std::string patches;
    std::string format(OssEvImageFormat::usual().suffixes.front());
    std::string folder;
    std::vector<std::string> nodes;
    int resolution = 2048;
    CLI::App *bake = app.add_subcommand("bake", "Write textures per UDIM patch, without a window");
    bake->add_option("PROJECT", bakeProject, "Project folder")->required();
    bake->add_option("--node", nodes, "Node to bake, by name or path; may be given several times")
        ->take_all();
    bake->add_option("--patches", patches, "Such as 1001-1004,1011; all when not given")
        ->check([](const std::string &text) {
            return OssPatchList::fromText(QString::fromStdString(text)).isEmpty()
                       ? text + ": patches are written like 1001-1004,1011"
                       : std::string();
        });
    bake->add_option("--resolution", resolution, "Width and height of a patch in pixels")
        ->check(CLI::Range(1, 32768));
    bake->add_option("--format", format, OssEvImageFormat::writtenInDetail())
        ->check(CLI::IsMember(OssEvImageFormat::writtenSuffixes()));
    bake->add_option("-o,--output", folder, "Folder for the images")->required();

    std::string script;
    std::string scriptProject;
    CLI::App *run = app.add_subcommand("run", "Run a Python script, without a window");
    run->add_option("SCRIPT", script, "Script (*.py)")->required();
    run->add_option("PROJECT", scriptProject, "Project folder to open before the script starts");
    run->footer("What follows -- is passed to the script.");

    std::string stubs;
    CLI::App *stub = app.add_subcommand("stubs", "Write type stubs for scripts (ossa.pyi)");
    stub->add_option("-o,--output", stubs, "File to write; standard output when not given");

    // The parser would take what follows -- for values of its own.
    const int ownCount = int(std::find(argv, argv + argc, std::string_view("--")) - argv);
    if (ownCount < argc && (argc < 2 || std::string_view(argv[1]) != "run"))
        return answered(ExitCode::Usage, "ossa: only run takes -- (see ossa --help)");

    try {
        app.parse(ownCount, const_cast<char **>(argv));
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
    } else if (bake->parsed()) {
        line.command = Bake;
        project = bakeProject;
        for (const std::string &node : nodes)
            line.bake.nodes.append(QString::fromLocal8Bit(node.c_str()));
        line.bake.patches = QString::fromStdString(patches);
        line.bake.resolution = resolution;
        line.bake.format = QString::fromStdString(format);
        line.bake.folder = QString::fromLocal8Bit(folder.c_str());
        line.bake.project = QString::fromLocal8Bit(project.c_str());
    }
    if (run->parsed()) {
        line.command = Run;
        line.run.script = QString::fromLocal8Bit(script.c_str());
        line.run.project = QString::fromLocal8Bit(scriptProject.c_str());
        for (int i = ownCount + 1; i < argc; ++i)
            line.run.arguments.append(QString::fromLocal8Bit(argv[i]));
    } else if (stub->parsed()) {
        line.command = Stubs;
        output = stubs;
    }
    line.project = QString::fromLocal8Bit(project.c_str());
    line.output = QString::fromLocal8Bit(output.c_str());
    return line;
}
