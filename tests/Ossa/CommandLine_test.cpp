#include "Ossa/Headless/CommandLine.h"

#include "ProgramRun.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

CommandLine parse(std::vector<const char *> arguments)
{
    arguments.insert(arguments.begin(), "ossa");
    return CommandLine::parse(int(arguments.size()), arguments.data());
}

} // namespace

TEST(CommandLineParsing, windowWithAndWithoutProject)
{
    EXPECT_EQ(parse({}).command, CommandLine::Window);
    const CommandLine line = parse({"wall.ossa"});
    EXPECT_EQ(line.command, CommandLine::Window);
    EXPECT_EQ(line.project, QStringLiteral("wall.ossa"));
    EXPECT_FALSE(line.isHeadless());
}

TEST(CommandLineParsing, graphTakesProjectAndPicture)
{
    const CommandLine line = parse({"graph", "wall.ossa", "-o", "out/wall.SVG"});
    EXPECT_EQ(line.command, CommandLine::Graph);
    EXPECT_EQ(line.project, QStringLiteral("wall.ossa"));
    EXPECT_EQ(line.output, QStringLiteral("out/wall.SVG"));
    EXPECT_TRUE(line.isHeadless());
}

TEST(CommandLineParsing, infoTakesAProject)
{
    const CommandLine line = parse({"info", "wall.ossa"});
    EXPECT_EQ(line.command, CommandLine::Info);
    EXPECT_EQ(line.project, QStringLiteral("wall.ossa"));
}

TEST(CommandLineParsing, runTakesAScriptPerhapsAProjectAndWhatIsTheScripts)
{
    const CommandLine line = parse({"run", "a.py", "wall.ossa", "--", "-x", "--help", "--", "b"});
    EXPECT_EQ(line.command, CommandLine::Run);
    EXPECT_EQ(line.run.script, QStringLiteral("a.py"));
    EXPECT_EQ(line.run.project, QStringLiteral("wall.ossa"));
    EXPECT_EQ(line.run.arguments.join(QLatin1Char(' ')), QStringLiteral("-x --help -- b"));
    EXPECT_TRUE(line.isHeadless());
    const CommandLine bare = parse({"run", "a.py", "--", "wall.ossa"});
    EXPECT_TRUE(bare.run.project.isEmpty());
    EXPECT_EQ(bare.run.arguments, QStringList{QStringLiteral("wall.ossa")});
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
        EXPECT_TRUE(line.message.startsWith(QStringLiteral("ossa: ")));
    }
}

TEST(CommandLineParsing, helpAndVersionSucceed)
{
    EXPECT_EQ(parse({"--help"}).exitCode, ExitCode::Success);
    EXPECT_TRUE(parse({"graph", "--help"}).message.contains(QStringLiteral("--output")));
    EXPECT_TRUE(parse({"--version"}).message.startsWith(QStringLiteral("ossa ")));
}

TEST(Program, saysVersionOnStdout)
{
    const ProgramRun outcome = ProgramRun::of({QStringLiteral("--version")});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_TRUE(outcome.out.startsWith("ossa "));
    EXPECT_TRUE(outcome.err.isEmpty()) << outcome.err.constData();
}

TEST(Program, faultyUseEndsWithTwoAndNothingOnStdout)
{
    const ProgramRun outcome = ProgramRun::of({QStringLiteral("graph")});
    EXPECT_EQ(outcome.exitCode, 2);
    EXPECT_TRUE(outcome.out.isEmpty());
    EXPECT_EQ(outcome.err.count('\n'), 1);
}

TEST(Program, aMissingProjectIsNamedAndEndsWithOne)
{
    for (const QStringList &arguments :
         {QStringList{QStringLiteral("info"), QStringLiteral("/nowhere/wall.ossa")},
          QStringList{QStringLiteral("graph"), QStringLiteral("/nowhere/wall.ossa"),
                      QStringLiteral("-o"), QStringLiteral("/nowhere/wall.png")}}) {
        const ProgramRun outcome = ProgramRun::of(arguments);
        EXPECT_EQ(outcome.exitCode, 1) << qPrintable(arguments.first());
        EXPECT_TRUE(outcome.err.contains("/nowhere/wall.ossa")) << outcome.err.constData();
        EXPECT_TRUE(outcome.out.isEmpty()) << outcome.out.constData();
    }
}

TEST(Program, windowWithoutDisplayIsRefusedInWords)
{
    const ProgramRun outcome = ProgramRun::of({});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_TRUE(outcome.err.contains("no display"));
}

TEST(BatchProgram, answersLikeTheOtherAndDoesWhatNeedsNoWidgets)
{
    const QString example = QStringLiteral(OSSA_EXAMPLES "/Old Plaster.ossa");

    const struct
    {
        QStringList arguments;
        int exitCode;
        const char *out; ///< in what it says, null: nothing
        const char *err;
    } cases[] = {
        {{QStringLiteral("--version")}, ExitCode::Success, "ossa ", nullptr},
        {{QStringLiteral("info")}, ExitCode::Usage, nullptr, "PROJECT"},
        {{QStringLiteral("info"), example}, ExitCode::Success, "Standard Surface", nullptr},
        {{QStringLiteral("info"), QStringLiteral("/nowhere/a.ossa")},
         ExitCode::Failure,
         nullptr,
         "/nowhere/a.ossa"},
        {{QStringLiteral("graph"), example, QStringLiteral("-o"), QStringLiteral("a.png")},
         ExitCode::Usage,
         nullptr,
         "only bake and info"},
    };

    for (const auto &c : cases) {
        const ProgramRun run = ProgramRun::ofBatch(c.arguments);
        EXPECT_EQ(run.exitCode, c.exitCode) << run.err.constData();
        EXPECT_TRUE(c.out ? run.out.contains(c.out) : run.out.isEmpty()) << run.out.constData();
        EXPECT_TRUE(c.err ? run.err.contains(c.err) : run.err.isEmpty()) << run.err.constData();
    }
}
