#include "Ossa/Headless/BakeCommand.h"
#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Headless/InfoCommand.h"
#include "Ossa/Headless/NewCommand.h"
#include "Ossa/Headless/ProjectTroubles.h"
#include "Ossa/Headless/RenderCommand.h"
#include "Ossa/Pictures/GraphCommand.h"
#include "OssModel/Project/OssAutosave.h"
#include "OssModel/Project/OssProjectFile.h"
#include "ProgramRun.h"
#include "support/ModelFixture.h"
#include "support/OssaFiles.h"
#include "support/Text.h"

#include <glm/glm.hpp>
#include <OpenImageIO/imageio.h>

#include <QDir>
#include <QImage>
#include <QSettings>
#include <QTemporaryDir>

// Commands without a window: how they are called, what they say, what they write.

namespace {

CommandLine parse(std::vector<const char *> arguments)
{
    arguments.insert(arguments.begin(), "ossa");
    return CommandLine::parse(int(arguments.size()), arguments.data());
}

const QString Nowhere = text("/nowhere/wall.ossa");

/// A project that can be described and baked, saved; the commands run here without the program.
class Headless : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_network->geoEntity()->setGeometry(text("cube"));
        OssSnBaseNode *rust = add("Procedural/Color", "Rust Red");
        OssSnBaseNode *soft = add("Filter/Blur", "Soft");
        OssSnBaseNode *shader = add("Shaders/Standard Surface", "Old Wall");
        ASSERT_TRUE(wire(rust, soft) && wire(soft, shader, "Base Color")
                    && wire(rust, shader, "Roughness"));
        ASSERT_NE(m_network->groupNodes({add("Filter/Sharpen", "Crisp")}), nullptr);
        add("Misc/Backdrop", "Note");
        ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path()));
    }

    QString path() const { return m_folder.filePath(text("wall.ossa")); }

    void replace(const char *before, const char *after) const
    {
        QFile file(OssProjectFile::documentPath(path()));
        ASSERT_TRUE(file.open(QIODevice::ReadOnly));
        QByteArray content = file.readAll();
        ASSERT_TRUE(content.contains(before));
        writeFile(file.fileName(), content.replace(before, after));
    }

    std::string info(bool withState = false) const
    {
        testing::internal::CaptureStdout();
        EXPECT_EQ(runInfoCommand(path(), withState), ExitCode::Success);
        std::fflush(stdout);
        return testing::internal::GetCapturedStdout();
    }

    static bool has(const std::string &told, const char *part)
    {
        return told.find(part) != std::string::npos;
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST(CommandLineOfBatch, isItsOwn)
{
    const auto parseBatch = [](std::vector<const char *> arguments) {
        arguments.insert(arguments.begin(), "ossa-batch");
        return CommandLine::parse(int(arguments.size()), arguments.data(), CommandLine::Batch);
    };
    const QString help = parseBatch({"--help"}).message;
    EXPECT_TRUE(help.contains(text("ossa-batch [OPTIONS]")) && help.contains(text("bake")));
    EXPECT_FALSE(help.contains(text("graph")) || help.contains(text("window with")));
    EXPECT_EQ(parseBatch({"info", "wall.ossa"}).command, CommandLine::Info);
    for (const char *unknown : {"graph", "run", "wall.ossa"})
        EXPECT_EQ(parseBatch({unknown}).exitCode, ExitCode::Usage) << unknown;
}

TEST(CommandLineParsing, understandsEveryCommand)
{
    const std::tuple<std::vector<const char *>, CommandLine::Command, const char *, bool> cases[] =
        {
            {{}, CommandLine::Window, "", false},
            {{"wall.ossa"}, CommandLine::Window, "wall.ossa", false},
            {{"info", "wall.ossa"}, CommandLine::Info, "wall.ossa", true},
            {{"graph", "wall.ossa", "-o", "out/wall.SVG"}, CommandLine::Graph, "wall.ossa", true},
        };
    for (const auto &[arguments, command, project, isHeadless] : cases) {
        const CommandLine line = parse(arguments);
        EXPECT_EQ(line.command, command) << line.message.toStdString();
        EXPECT_EQ(line.project, text(project));
        EXPECT_EQ(line.isHeadless(), isHeadless);
        EXPECT_EQ(line.output, text(command == CommandLine::Graph ? "out/wall.SVG" : ""));
    }
}

TEST(CommandLineParsing, newTakesMeshesAndHowTheyAreUnderstood)
{
    const CommandLine line = parse({"new", "wall.ossa", "--mesh", "a.obj", "--mesh", "b.fbx",
                                    "--split", "objects", "--uv-set", "Paint", "--up", "z",
                                    "--scale", "0.01", "--unwrap", "--resolution", "4096"});
    ASSERT_EQ(line.command, CommandLine::New) << line.message.toStdString();
    EXPECT_TRUE(line.isHeadless());
    EXPECT_EQ(line.fresh.project, text("wall.ossa"));
    EXPECT_EQ(line.fresh.meshes, texts({"a.obj", "b.fbx"}));
    EXPECT_EQ(line.fresh.split, text("objects"));
    EXPECT_EQ(line.fresh.uvSet, text("Paint"));
    EXPECT_EQ(line.fresh.up, text("z"));
    EXPECT_EQ(line.fresh.scale, 0.01);
    EXPECT_TRUE(line.fresh.unwraps);
    EXPECT_EQ(line.fresh.resolution, 4096);
    for (const char *wrong : {"--shape=ring", "--split=faces", "--up=x", "--resolution=1000"})
        EXPECT_EQ(parse({"new", "wall.ossa", wrong}).exitCode, ExitCode::Usage) << wrong;
    EXPECT_EQ(parse({"new", "wall.ossa", "--mesh=a.obj", "--shape=cube"}).exitCode, ExitCode::Usage)
        << "one of them would be left out";
}

TEST_F(Headless, aNewProjectHasItsMeshesAndWhatIsMissingLaterIsAFailure)
{
    const QString mesh = m_folder.filePath(text("mesh.obj"));
    writeFile(mesh, "v 0 0 0\nv 1 0 0\nv 0 1 0\nvt 0 0\nvt 1 0\nvt 0 1\nf 1/1 2/2 3/3\n");
    NewOptions options;
    options.project = m_folder.filePath(text("fresh.ossa"));
    options.meshes = QStringList{mesh};
    options.shape = text("plane");
    testing::internal::CaptureStdout();
    EXPECT_EQ(runNewCommand(options), ExitCode::Success);
    std::fflush(stdout);
    EXPECT_TRUE(has(testing::internal::GetCapturedStdout(), "mesh: 1 triangle"));
    testing::internal::CaptureStderr();
    EXPECT_EQ(runNewCommand(options), ExitCode::Failure);
    EXPECT_TRUE(has(testing::internal::GetCapturedStderr(), "there already"));

    const auto infoCode = [&options] {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int code = withProjectTroubles(runInfoCommand(options.project, false));
        std::fflush(stdout);
        const std::string told = testing::internal::GetCapturedStdout();
        return std::make_tuple(code, told, testing::internal::GetCapturedStderr());
    };
    EXPECT_EQ(std::get<0>(infoCode()), ExitCode::Success);
    ASSERT_TRUE(QFile::remove(mesh));
    const ExpectedLog gone("mesh.obj");
    const auto [code, told, failures] = infoCode();
    EXPECT_EQ(code, ExitCode::Failure);
    EXPECT_TRUE(has(told, "missing, kept: 1 triangle")) << told;
    EXPECT_TRUE(has(failures, "mesh.obj")) << failures;
    EXPECT_EQ(withProjectTroubles(ExitCode::Usage), ExitCode::Usage);
}

TEST_F(Headless, aNewProjectHasItsColorsAndWhatStandsInLaterIsAFailure)
{
    const QString config = m_folder.filePath(text("own.ocio"));
    writeFile(config, "ocio_profile_version: 2\nroles: {scene_linear: Wide}\nfile_rules:\n"
                      "  - !<Rule> {name: Default, colorspace: Wide}\ndisplays:\n  Monitor:\n"
                      "    - !<View> {name: Plain, colorspace: Wide}\ncolorspaces:\n"
                      "  - !<ColorSpace>\n    name: Wide\n");
    const CommandLine line = parse(
        {"new", "wall.ossa", "--config", "own.ocio", "--working-space=Wide"});
    EXPECT_EQ(line.fresh.config, text("own.ocio"));
    EXPECT_EQ(line.fresh.workingSpace, text("Wide"));
    NewOptions options;
    options.project = m_folder.filePath(text("colors.ossa"));
    options.shape = text("plane");
    options.config = config;
    const auto made = [&options](int code) {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        EXPECT_EQ(runNewCommand(options), code);
        std::fflush(stdout);
        testing::internal::GetCapturedStdout();
        return testing::internal::GetCapturedStderr();
    };
    options.workingSpace = text("Narrow");
    EXPECT_TRUE(has(made(ExitCode::Failure), "knows no \"Narrow\""));
    EXPECT_FALSE(QFile::exists(options.project)) << "nothing is written then";
    options.workingSpace = text("Wide");
    made(ExitCode::Success);
    const auto info = [&options] {
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int code = withProjectTroubles(runInfoCommand(options.project, false));
        std::fflush(stdout);
        const std::string told = testing::internal::GetCapturedStdout();
        return std::make_tuple(code, told, testing::internal::GetCapturedStderr());
    };
    EXPECT_TRUE(has(std::get<1>(info()), "colors: own.ocio, working in Wide"));
    ASSERT_TRUE(QFile::remove(config));
    const auto [code, told, failures] = info();
    EXPECT_EQ(code, ExitCode::Failure);
    EXPECT_TRUE(has(told, "colors: own.ocio, working in Linear")) << told;
    EXPECT_TRUE(has(failures, "own.ocio\": there is no such file")) << failures;
}

TEST(CommandLineParsing, runTakesAScriptPerhapsAProjectAndWhatIsTheScripts)
{
    const CommandLine line = parse({"run", "a.py", "wall.ossa", "--", "-x", "--help", "--", "b"});
    EXPECT_EQ(line.command, CommandLine::Run);
    EXPECT_EQ(line.run.script, text("a.py"));
    EXPECT_EQ(line.run.project, text("wall.ossa"));
    EXPECT_EQ(line.run.arguments, texts({"-x", "--help", "--", "b"}));
    EXPECT_TRUE(line.isHeadless());
    const CommandLine bare = parse({"run", "a.py", "--", "wall.ossa"});
    EXPECT_TRUE(bare.run.project.isEmpty());
    EXPECT_EQ(bare.run.arguments, texts({"wall.ossa"}));
}

TEST(CommandLineParsing, faultyUseIsAnsweredInOneLine)
{
    const std::vector<std::vector<const char *>> faulty = {
        {"graph"}, {"graph", "wall.ossa"}, {"graph", "wall.ossa", "-o", "wall.bmp"},
        {"info"},  {"--no-such-option"},   {"one.ossa", "two.ossa"},
        {"run"},   {"run", "--", "a"},     {"info", "wall.ossa", "--", "a"},
    };
    for (const auto &arguments : faulty) {
        const CommandLine line = parse(arguments);
        EXPECT_EQ(line.command, CommandLine::Answered) << arguments.front();
        EXPECT_EQ(line.exitCode, ExitCode::Usage);
        EXPECT_FALSE(line.message.trimmed().contains(QLatin1Char('\n')));
        EXPECT_TRUE(line.message.startsWith(text("ossa: ")));
    }
    EXPECT_EQ(parse({"--help"}).exitCode, ExitCode::Success);
    EXPECT_TRUE(parse({"graph", "--help"}).message.contains(text("--output")));
}

TEST(Programs, answerOnTheirStreamsAndEndWithTheirCodes)
{
    const QString example = text(OSSA_EXAMPLES "/Old Plaster.ossa");
    const QStringList bake{text("bake"), example, text("-o"), Nowhere, text("--patches")};
    const std::tuple<bool, QStringList, int, const char *, const char *> cases[] = {
        // of those without widgets, how it is called, code, what it says: null for nothing
        {false, texts({"--version"}), ExitCode::Success, "ossa ", nullptr},
        {false, texts({"graph"}), ExitCode::Usage, nullptr, "ossa: "},
        {false, {}, ExitCode::Failure, nullptr, "no display"},
        {false, {text("info"), Nowhere}, ExitCode::Failure, nullptr, "/nowhere/wall.ossa"},
        {false,
         {text("graph"), Nowhere, text("-o"), text("a.png")},
         ExitCode::Failure,
         nullptr,
         "/nowhere/wall.ossa"},
        {false, bake + texts({"all of them"}), ExitCode::Usage, nullptr, "ossa: "},
        {false, texts({"export"}), ExitCode::Usage, nullptr, "PROJECT"},
        {false,
         {text("export"), example, text("--preset"), text("Mine"), text("-o"), Nowhere},
         ExitCode::Failure,
         nullptr,
         "no export preset \"Mine\""},
        {false,
         {text("export"), example, text("-o"), Nowhere + text(".glb"), text("--dry-run")},
         ExitCode::Success,
         "_baseColor.png\t2048\t8 bit\tsRGB\tBase Color, Opacity\n",
         nullptr},
        {true, texts({"export", "--list-presets"}), ExitCode::Success, "glTF Metallic", nullptr},
        {true,
         {text("export"), example, text("--preset"), text("one file per channel"), text("-o"),
          Nowhere, text("--dry-run")},
         ExitCode::Success,
         "_Roughness.png\t2048\t16 bit\tData\tRoughness\n",
         nullptr},
        {true, texts({"--version"}), ExitCode::Success, "ossa-batch ", nullptr},
        {true, texts({"info"}), ExitCode::Usage, nullptr, "PROJECT"},
        {true, {text("info"), example}, ExitCode::Success, "Standard Surface", nullptr},
        {true, {text("info"), Nowhere}, ExitCode::Failure, nullptr, "/nowhere/wall.ossa"},
        {true,
         {text("graph"), example, text("-o"), text("a.png")},
         ExitCode::Usage,
         nullptr,
         "only bake, export, info and render"},
    };
    for (const auto &[isBatch, arguments, exitCode, out, err] : cases) {
        const ProgramRun run = isBatch ? ProgramRun::ofBatch(arguments) : ProgramRun::of(arguments);
        EXPECT_EQ(run.exitCode, exitCode) << run.err.constData();
        EXPECT_TRUE(out ? run.out.contains(out) : run.out.isEmpty()) << run.out.constData();
        EXPECT_TRUE(err ? run.err.contains(err) : run.err.isEmpty()) << run.err.constData();
        EXPECT_LE(run.err.count('\n'), 1) << run.err.constData();
    }
}

TEST(Programs, bakeAnExampleAndSayWhatWasWritten)
{
    const QTemporaryDir folder;
    const ProgramRun outcome = ProgramRun::of(
        {text("bake"), text(OSSA_EXAMPLES "/Weathered Brick.ossa"), text("--resolution"),
         text("32"), text("--format"), text("png"), text("-o"),
         folder.filePath(text("new/textures"))});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err.constData();
    const QList<QByteArray> written = outcome.out.trimmed().split('\n');
    EXPECT_GE(written.size(), 3);
    for (const QByteArray &path : written) {
        EXPECT_EQ(QImage(QString::fromUtf8(path)).size(), QSize(32, 32)) << path.constData();
        EXPECT_TRUE(path.endsWith(".1001.png"));
    }
    const QImage color(QString::fromUtf8(written.first()));
    EXPECT_NE(color.pixel(2, 2), color.pixel(16, 20)) << "bricks are not all of one colour";
}

TEST_F(Headless, bakesNameFilesAfterShaderAndInputOrAfterTheNode)
{
    OssProjectManager::instance()->newProject(text("empty"));
    const QString empty = m_folder.filePath(text("empty.ossa"));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(empty));
    const std::tuple<QString, QStringList, const char *, QStringList, const char *> cases[] = {
        {path(),
         {},
         "1001",
         texts({"Old_Wall_Ambient_Occlusion.1001.png", "Old_Wall_Base_Color.1001.png",
                "Old_Wall_Clear_Coat.1001.png", "Old_Wall_Clear_Coat_Roughness.1001.png",
                "Old_Wall_Displacement.1001.png", "Old_Wall_Emission.1001.png",
                "Old_Wall_Metallic.1001.png", "Old_Wall_Normal.1001.png",
                "Old_Wall_Opacity.1001.png", "Old_Wall_Roughness.1001.png"}),
         nullptr},
        {path(), texts({"Rust Red", "Soft"}), "1001-1002",
         texts({"Rust_Red.1001.png", "Rust_Red.1002.png", "Soft.1001.png", "Soft.1002.png"}),
         nullptr},
        {path(), texts({"Note"}), "1001", {}, "\"Note\" has no output to bake"},
        {path(), texts({"Soft", "Rust"}), "1001", {}, "no node \"Rust\""},
        {path(), texts({"Soft"}), "1001,1099", {}, "Soft: there is no patch 1099"},
        {empty, {}, "1001", {}, "There is no material to export"},
    };
    for (const auto &[project, nodes, patches, written, error] : cases) {
        const QTemporaryDir into;
        BakeOptions options;
        options.project = project;
        options.nodes = nodes;
        options.patches = text(patches);
        options.resolution = 16;
        options.format = text("png");
        options.folder = into.path();
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int exitCode = runBakeCommand(options);
        std::fflush(stdout);
        const std::string told = testing::internal::GetCapturedStdout();
        const std::string errors = testing::internal::GetCapturedStderr();
        EXPECT_EQ(exitCode, error ? ExitCode::Failure : ExitCode::Success) << errors;
        EXPECT_EQ(QDir(into.path()).entryList(QDir::Files, QDir::Name), written) << nodes.size();
        QStringList paths = QString::fromStdString(told).split(QLatin1Char('\n'),
                                                               Qt::SkipEmptyParts);
        paths.sort();
        ASSERT_EQ(paths.size(), written.size()) << told;
        for (int i = 0; i < paths.size(); ++i)
            EXPECT_EQ(paths.at(i), into.filePath(written.at(i)));
        EXPECT_TRUE(error ? has(errors, error) : errors.empty()) << errors;
    }
}

/// Of a file of light, from the top.
glm::vec4 texel(const QString &path, int x, int y)
{
    const auto in = OIIO::ImageInput::open(path.toStdString());
    if (!in || in->spec().nchannels != 4 || in->spec().format != OIIO::TypeDesc::FLOAT)
        return glm::vec4(-1.0F);
    std::vector<glm::vec4> all(std::size_t(in->spec().width) * std::size_t(in->spec().height));
    in->read_image(0, 0, 0, -1, OIIO::TypeDesc::FLOAT, all.data());
    return all[std::size_t(y) * std::size_t(in->spec().width) + std::size_t(x)];
}

TEST_F(Headless, rendersObjectsInLight)
{
    RenderOptions options;
    options.project = path();
    options.output = m_folder.filePath(text("still.png"));
    options.size = {96, 64};
    options.resolution = 64;
    ASSERT_EQ(runRenderCommand(options), int(ExitCode::Success));
    const QImage still(options.output);
    ASSERT_EQ(still.size(), options.size);
    const QColor corner = still.pixelColor(1, 1);
    const QColor middle = still.pixelColor(48, 32);
    EXPECT_GT(middle.red(), corner.red()) << "the wall stands there, in light";

    // What is behind is the surrounding; the light comes from it.
    options.background = text("environment");
    options.environment = text("Sunset");
    ASSERT_EQ(runRenderCommand(options), int(ExitCode::Success));
    EXPECT_NE(QImage(options.output).pixelColor(1, 1), corner);

    // Light, with nothing where there is nothing.
    options.background = text("plain");
    options.output = m_folder.filePath(text("still.exr"));
    ASSERT_EQ(runRenderCommand(options), int(ExitCode::Success));
    EXPECT_EQ(texel(options.output, 1, 1)[3], 0.0F);
    EXPECT_EQ(texel(options.output, 48, 32)[3], 1.0F);
    EXPECT_GT(texel(options.output, 48, 32)[0], 0.01F);
    options.output = m_folder.filePath(text("still.png"));

    // Once around: a cube looks the same after each quarter but for the light.
    options.background = text("plain");
    options.frames = 4;
    options.node = text("Soft");
    ASSERT_EQ(runRenderCommand(options), int(ExitCode::Success));
    EXPECT_TRUE(QFile::exists(m_folder.filePath(text("still.0004.png"))));
    EXPECT_NE(QImage(m_folder.filePath(text("still.0001.png"))),
              QImage(m_folder.filePath(text("still.0002.png"))));

    const auto reason = [](const RenderOptions &wrong) {
        testing::internal::CaptureStderr();
        EXPECT_EQ(runRenderCommand(wrong), int(ExitCode::Failure));
        return testing::internal::GetCapturedStderr();
    };
    RenderOptions wrong = options;
    wrong.node = text("Nobody");
    EXPECT_NE(reason(wrong).find("Nobody"), std::string::npos);
    wrong = options;
    wrong.environment = text("/nowhere/sky.hdr");
    EXPECT_NE(reason(wrong).find("/nowhere/sky.hdr"), std::string::npos);
    wrong = options;
    wrong.output = text("still.doc");
    EXPECT_NE(reason(wrong).find("still.doc"), std::string::npos);
}

TEST_F(Headless, infoCountsWhatIsInTheProject)
{
    const std::string told = info();
    EXPECT_EQ(told.find("wall\n" + path().toStdString() + "\n"), 0U) << told;
    EXPECT_TRUE(has(told, " 1 groups\n")) << told;
    EXPECT_TRUE(has(told, "     1  Filter/Blur\n")) << told;
    for (const char *absent : {"state ", "not known", "newer version"})
        EXPECT_FALSE(has(told, absent)) << told;
    EXPECT_TRUE(has(info(true), "\nstate "));
}

TEST_F(Headless, infoSaysWhatIsUnusual)
{
    const ExpectedLog told[] = {ExpectedLog("has the unknown type 'Future/Blur'"),
                                ExpectedLog("newer", ExpectedLog::Possible)};
    replace("\"Filter/Blur\"", "\"Future/Blur\"");
    EXPECT_TRUE(has(info(), "  1 nodes of types that are not known here\n"));
    replace("<ossaProject major=\"1\"", "<ossaProject major=\"9\"");
    EXPECT_TRUE(has(info(), "written by a newer version\n"));
}

TEST_F(Headless, whatCannotBeDoneIsAFailureInOneLine)
{
    testing::internal::CaptureStderr();
    EXPECT_EQ(runInfoCommand(Nowhere, false), ExitCode::Failure);
    EXPECT_EQ(runGraphCommand(Nowhere, path()), ExitCode::Failure);
    EXPECT_EQ(runGraphCommand(path(), m_folder.filePath(text("wall.png"))), ExitCode::Failure);
    const std::string errors = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(errors.begin(), errors.end(), '\n'), 3) << errors;
    EXPECT_TRUE(has(errors, "/nowhere/wall.ossa")) << errors;
    EXPECT_TRUE(has(errors, "plug-in is not loaded")) << errors;
}

TEST_F(Headless, theProgramTellsOfUnsavedWorkAndLeavesPreferencesAlone)
{
    const QTemporaryDir settings;
    const auto run = [&] {
        return ProgramRun::of({text("info"), path()}, {}, settings.path());
    };
    EXPECT_TRUE(run().err.isEmpty());
    {
        OssAutosave autosave(settings.filePath(text("recovery")));
        add("Filter/Blur", "Unsaved");
        autosave.takeCopy();
        autosave.waitForDisk();
    }
    const ProgramRun told = run();
    EXPECT_EQ(told.exitCode, ExitCode::Success);
    EXPECT_TRUE(told.err.contains("wall")) << told.err.constData();
    const QSettings stored(settings.filePath(text("ossa.ini")), QSettings::IniFormat);
    EXPECT_EQ(stored.allKeys(), QStringList()) << "preferences are the window's to save";
}
