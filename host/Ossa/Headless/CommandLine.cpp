#include "Ossa/Headless/CommandLine.h"

#include "Ossa/Headless/CommandLineTexts.h"
#include "Ossa/Headless/PictureFormat.h"
#include "Ossa/Headless/ProgramVersion.h"
#include "OssEvaluation/Files/OssEvImageFormat.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "OssModel/Objects/OssGeometrySource.h"
#include "OssModel/Project/OssProject.h"
#include "OssRender/Surface/OssRdDisplacement.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

namespace {

const char *const description =
    "Ossa paints and generates textures with a node graph.\n"
    "Without a command it opens its window, with PROJECT or an empty one.";

const char *const batchDescription =
    "Computes what Ossa's projects hold, on machines without a screen.\n"
    "It has the commands of ossa that need no widgets.";

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
    if (PictureFormat::of(QString::fromLocal8Bit(path.c_str())) != PictureFormat::None)
        return {};
    return path + ": the picture must be a " + PictureFormat::suffixes + " file";
}

/// The command line as the parser fills it in: one function for each command says what it takes.
class Grammar
{
public:
    explicit Grammar(CommandLine::Program program)
        : m_isBatch(program == CommandLine::Batch)
        , m_app(m_isBatch ? batchDescription : description, name())
    {
        m_app.set_version_flag("--version", name() + " " + ProgramVersion::text());
        m_app.require_subcommand(m_isBatch ? 1 : 0, 1);
        addInfo();
        addBake();
        addExport();
        addRender();
        if (m_isBatch)
            return;
        m_app.add_option("PROJECT", m_project, "Project folder (NAME.ossa) to open");
        addNew();
        addGraph();
        addRun();
        addManual();
        addStubs();
    }

    CLI::App &app() { return m_app; }

    std::string name() const { return m_isBatch ? "ossa-batch" : "ossa"; }

    /// After parsing.
    CommandLine line() const
    {
        CommandLine line;
        const auto chosen = m_app.get_subcommands();
        const std::string name = chosen.empty() ? std::string() : chosen.front()->get_name();
        if (name == "graph")
            line.command = CommandLine::Graph;
        else if (name == "info")
            line.command = CommandLine::Info;
        else if (name == "new")
            line.command = CommandLine::New;
        else if (name == "bake")
            line.command = CommandLine::Bake;
        else if (name == "export")
            line.command = CommandLine::Export;
        else if (name == "render")
            line.command = CommandLine::Render;
        else if (name == "run")
            line.command = CommandLine::Run;
        else if (name == "manual")
            line.command = CommandLine::Manual;
        else if (name == "stubs")
            line.command = CommandLine::Stubs;
        line.project = text(m_project);
        line.output = text(m_output);
        line.tellsProgram = m_tellsProgram;
        line.bake = bakeOptions();
        line.textures = exportOptions();
        line.fresh = newOptions();
        line.still = renderOptions();
        line.run.script = text(m_script);
        line.run.project = text(m_scriptProject);
        return line;
    }

private:
    static QString text(const std::string &bytes) { return QString::fromLocal8Bit(bytes.c_str()); }

    void addGraph()
    {
        CLI::App *graph = m_app.add_subcommand("graph",
                                               "Draw a project's node graph, without a window");
        graph->add_option("PROJECT", m_project, "Project folder")->required();
        graph
            ->add_option("-o,--output", m_output,
                         std::string("Picture to write, ") + PictureFormat::suffixes)
            ->required()
            ->check(pictureFile);
    }

    void addInfo()
    {
        CLI::App *info = m_app.add_subcommand("info",
                                              "Tell what is in a project, without a window");
        auto *project = info->add_option("PROJECT", m_project, "Project folder");
        info->add_flag("--program", m_tellsProgram,
                       "Tell what was loaded from where instead: plug-ins and node types")
            ->excludes(project);
        info->final_callback([this] {
            if (!m_tellsProgram && m_project.empty())
                throw CLI::RequiredError("PROJECT");
        });
    }

    /// Which patches, and how large.
    void addSize(CLI::App *command)
    {
        command->add_option("--patches", m_patches, "Such as 1001-1004,1011; all when not given")
            ->check([](const std::string &wanted) {
                return OssPatchList::fromText(QString::fromStdString(wanted)).isEmpty()
                           ? wanted + ": patches are written like 1001-1004,1011"
                           : std::string();
            });
        command->add_option("--resolution", m_resolution, "Width and height of a patch in pixels")
            ->check(CLI::Range(1, 16384));
    }

    void addBake()
    {
        CLI::App *bake = m_app.add_subcommand("bake",
                                              "Write textures per UDIM patch, without a window");
        bake->add_option("PROJECT", m_project, "Project folder")->required();
        bake->add_option("--node", m_nodes,
                         "Node to bake, by name or path; may be given several times")
            ->take_all();
        addSize(bake);
        bake->add_option("--format", m_format, OssEvImageFormat::writtenInDetail())
            ->check(CLI::IsMember(OssEvImageFormat::writtenSuffixes()));
        bake->add_option("-o,--output", m_folder, "Folder for the images")->required();
    }

    void addExport()
    {
        CLI::App *textures = m_app.add_subcommand(
            "export", "Write the textures of a project's materials as a preset says");
        auto *list = textures->add_flag("--list-presets", m_listsPresets,
                                        "Tell which presets there are");
        auto *project = textures->add_option("PROJECT", m_project, "Project folder");
        auto *preset = textures->add_option("--preset", m_preset,
                                            "Name of a preset, or a file of one");
        auto *folder = textures->add_option("-o,--output", m_folder,
                                            "Folder for the textures, or one glTF file of "
                                            "object and textures (*.glb)");
        textures->add_option("--material", m_materials,
                             "OBJECT/MATERIAL; may be given several times; all when not given");
        textures->add_option("--channel", m_channels,
                             "Of presets with a file for each channel; all when not given");
        addSize(textures);
        textures
            ->add_option("--padding", m_padding, "Pixels beyond the charts; -1 fills everything")
            ->check(CLI::Range(-1, 64));
        textures->add_option("--version-number", m_version, "What $version stands for")
            ->check(CLI::Range(0, 999999));
        textures->add_flag("--dry-run", m_listsFiles,
                           "Tell what would be written, with size, bits, space and channels");
        for (CLI::Option *needed : {project, preset, folder})
            list->excludes(needed);
        textures->final_callback([this] {
            if (!m_listsPresets && m_project.empty())
                throw CLI::RequiredError("PROJECT");
        });
    }

    void addRender()
    {
        CLI::App *render = m_app.add_subcommand("render",
                                                "Draw a project's objects in light, without a "
                                                "window");
        render->add_option("PROJECT", m_project, "Project folder")->required();
        render
            ->add_option("-o,--output", m_output,
                         "Picture to write (*.png, *.jpg; *.exr holds light, with an alpha)")
            ->required();
        render->add_option("--node", m_node,
                           "Node to be seen, by name or path; the materials when not given");
        render->add_option("--environment", m_environment,
                           "Light from all around: " + RenderOptions::environments()
                               + ", or a picture of longitude and latitude (*.hdr, *.exr)");
        render->add_option("--background", m_background, "What is behind the objects")
            ->check(CLI::IsMember(RenderOptions::backgrounds()));
        render->add_option("--turn", m_turn, "Degrees from the front, eastwards");
        render->add_option("--size", m_size, "Width and height, such as 1280x720")
            ->check([](const std::string &wanted) {
                return RenderOptions::toSize(QString::fromStdString(wanted)).isEmpty()
                           ? wanted + ": a size is written like 1280x720, of at most "
                                 + std::to_string(RenderOptions::largest)
                           : std::string();
            });
        render->add_option("--turntable", m_frames, "So many pictures, once around")
            ->check(CLI::Range(1, 9999));
        render->add_option("--resolution", m_resolution, "Width and height of a patch in pixels")
            ->check(CLI::Range(1, 4096));
        render
            ->add_option(
                "--displace", m_levels,
                "Move the surfaces by their displacement, each triangle divided by four so "
                "often (1 to 8, as memory allows)")
            ->check(CLI::Range(1, OssRdDisplacement::MostLevels));
    }

    RenderOptions renderOptions() const
    {
        RenderOptions options;
        options.project = text(m_project);
        options.output = text(m_output);
        options.node = text(m_node);
        options.environment = text(m_environment);
        options.background = text(m_background);
        options.turn = float(m_turn);
        options.size = RenderOptions::toSize(text(m_size));
        options.frames = m_frames;
        options.resolution = m_resolution;
        options.levels = m_levels;
        return options;
    }

    void addNew()
    {
        CLI::App *fresh = m_app.add_subcommand("new", "Make a project, without a window");
        fresh->add_option("PROJECT", m_project, "Project folder to make (NAME.ossa)")->required();
        CLI::Option *meshes = fresh->add_option(
            "--mesh", m_meshes, "Mesh file that is textured; may be given several times");
        meshes->take_all();
        std::vector<std::string> shapes;
        for (const QString &shape : OssGeometrySource::shapes())
            shapes.push_back(shape.toStdString());
        fresh->add_option("--shape", m_shape, "Where no mesh is given")
            ->check(CLI::IsMember(shapes))
            ->excludes(meshes);
        fresh->add_option("--split", m_split, "What of a mesh file becomes an object of its own")
            ->check(CLI::IsMember({"one", "objects", "materials"}));
        fresh->add_option("--uv-set", m_uvSet, "By name; the first when not given");
        fresh->add_option("--up", m_up, "Which axis of the file points up")
            ->check(CLI::IsMember({"file", "y", "z"}));
        fresh->add_option("--scale", m_scale, "Of the mesh")->check(CLI::Range(0.0001, 10000.0));
        fresh->add_flag("--unwrap", m_unwraps, "Make texture coordinates automatically");
        std::vector<int> sizes;
        for (const int size : OssProject::newResolutions())
            sizes.push_back(size);
        fresh->add_option("--resolution", m_resolution, "Width and height of new images in pixels")
            ->check(CLI::IsMember(sizes));
        fresh->add_option("--config", m_config,
                          "OpenColorIO configuration: a file, or $OCIO for the environment's; the "
                          "built-in one when not given");
        fresh->add_option("--working-space", m_workingSpace,
                          "Color space in which everything is computed, such as Linear or ACEScg");
    }

    NewOptions newOptions() const
    {
        NewOptions fresh;
        fresh.project = text(m_project);
        for (const std::string &mesh : m_meshes)
            fresh.meshes.append(text(mesh));
        fresh.shape = text(m_shape);
        fresh.split = text(m_split);
        fresh.uvSet = text(m_uvSet);
        fresh.up = text(m_up);
        fresh.scale = m_scale;
        fresh.unwraps = m_unwraps;
        fresh.resolution = m_resolution;
        fresh.config = text(m_config);
        fresh.workingSpace = text(m_workingSpace);
        return fresh;
    }

    void addRun()
    {
        CLI::App *run = m_app.add_subcommand("run", "Run a Python script, without a window");
        run->add_option("SCRIPT", m_script, "Script (*.py)")->required();
        run->add_option("PROJECT", m_scriptProject,
                        "Project folder to open before the script starts");
        run->footer("What follows -- is passed to the script.");
    }

    void addManual()
    {
        CLI::App *manual = m_app.add_subcommand("manual",
                                                "Write the manual as pages for a browser");
        manual->add_option("-o,--output", m_output, "Folder for the pages")->required();
    }

    void addStubs()
    {
        CLI::App *stubs = m_app.add_subcommand("stubs", "Write type stubs for scripts (ossa.pyi)");
        stubs->add_option("-o,--output", m_output, "File to write; standard output when not given");
    }

    BakeOptions bakeOptions() const
    {
        BakeOptions bake;
        bake.project = text(m_project);
        for (const std::string &node : m_nodes)
            bake.nodes.append(text(node));
        bake.patches = QString::fromStdString(m_patches);
        bake.resolution = m_resolution;
        bake.format = QString::fromStdString(m_format);
        bake.folder = text(m_folder);
        return bake;
    }

    bool isGltf() const
    {
        return text(m_folder).endsWith(QLatin1String(".glb"), Qt::CaseInsensitive);
    }

    ExportOptions exportOptions() const
    {
        ExportOptions options;
        options.project = text(m_project);
        options.preset = text(m_preset);
        options.listsPresets = m_listsPresets;
        options.listsFiles = m_listsFiles;
        (isGltf() ? options.choices.file : options.choices.folder) = text(m_folder);
        for (const std::string &material : m_materials)
            options.choices.materials.append(text(material));
        for (const std::string &channel : m_channels)
            options.choices.channels.append(text(channel));
        options.choices.patches = OssPatchList::fromText(QString::fromStdString(m_patches));
        options.choices.resolution = m_resolution;
        options.choices.padding = m_padding;
        options.choices.version = m_version;
        return options;
    }

    bool m_isBatch;
    CLI::App m_app;
    std::string m_project;
    std::string m_output;
    std::string m_patches;
    std::string m_format = std::string(OssEvImageFormat::usual().suffixes.front());
    std::string m_folder;
    std::vector<std::string> m_nodes;
    std::vector<std::string> m_meshes;
    std::string m_shape = OssGeometrySource::usualShape().toStdString();
    std::string m_split = "one";
    std::string m_uvSet;
    std::string m_up = "file";
    double m_scale = 1.0;
    bool m_unwraps = false;
    int m_resolution = 2048;
    std::string m_config;
    std::string m_workingSpace;
    std::string m_preset;
    std::vector<std::string> m_materials;
    std::vector<std::string> m_channels;
    int m_padding = OssExportOptions::UsualPadding;
    int m_version = 1;
    bool m_tellsProgram = false;
    bool m_listsPresets = false;
    bool m_listsFiles = false;
    std::string m_node;
    std::string m_environment;
    int m_levels = 0;
    std::string m_background = RenderOptions::backgrounds().front();
    double m_turn = 0.0;
    std::string m_size = "1280x720";
    int m_frames = 0;
    std::string m_script;
    std::string m_scriptProject;
};

} // namespace

int failCommand(const QString &reason)
{
    std::fprintf(stderr, "ossa: %s\n", qPrintable(reason));
    return ExitCode::Failure;
}

CommandLine CommandLine::parse(int argc, const char *const *argv, Program program)
{
    Grammar grammar(program);
    const std::string name = grammar.name();
    // The parser would take what follows -- for values of its own.
    const int ownCount = int(std::find(argv, argv + argc, std::string_view("--")) - argv);
    if (ownCount < argc && (argc < 2 || std::string_view(argv[1]) != "run"))
        return answered(ExitCode::Usage,
                        program == Batch ? name + ": no command takes -- (see " + name + " --help)"
                                         : "ossa: only run takes -- (see ossa --help)");
    CLI::App &app = grammar.app();
    // For whoever makes a package of the program: its manual page and completions.
    if (argc == 3 && std::string_view(argv[1]) == "--describe") {
        const std::string told = CommandLineTexts::describe(&app, argv[2], ProgramVersion::number);
        return told.empty() ? answered(ExitCode::Usage, name + ": there is no such description")
                            : answered(ExitCode::Success, told);
    }
    try {
        app.parse(ownCount, const_cast<char **>(argv));
    } catch (const CLI::CallForHelp &) {
        const auto chosen = app.get_subcommands();
        return answered(ExitCode::Success, (chosen.empty() ? &app : chosen.front())->help());
    } catch (const CLI::CallForVersion &version) {
        return answered(ExitCode::Success, version.what());
    } catch (const CLI::ParseError &error) {
        return answered(ExitCode::Usage,
                        name + ": " + error.what()
                            + (program == Batch
                                   ? "; only bake, export, info and render do without widgets"
                                   : "")
                            + " (see " + name + " --help)");
    }
    CommandLine line = grammar.line();
    for (int i = ownCount + 1; i < argc; ++i)
        line.run.arguments.append(QString::fromLocal8Bit(argv[i]));
    return line;
}
