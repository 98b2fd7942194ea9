#include "Ossa/Headless/BakeCommand.h"

#include "Ossa/Headless/CommandLine.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "ProgramRun.h"
#include "support/ModelFixture.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

namespace {

const QString wall = QStringLiteral(OSSA_EXAMPLES "/Weathered Brick.ossa");

ProgramRun bake(const QString &folder, const QStringList &more)
{
    return ProgramRun::of(QStringList{QStringLiteral("bake"), wall, QStringLiteral("--resolution"),
                                      QStringLiteral("32"), QStringLiteral("--format"),
                                      QStringLiteral("png"), QStringLiteral("-o"), folder}
                          + more);
}

} // namespace

TEST(BakeCommand, understandsListsOfPatches)
{
    EXPECT_EQ(OssPatchList::fromText(QStringLiteral("1001")), QList<int>({1001}));
    EXPECT_EQ(OssPatchList::fromText(QStringLiteral("1011, 1001-1003,1002")),
              QList<int>({1001, 1002, 1003, 1011}));
    for (const char *nonsense : {"", "1", "1004-1001", "1001-1002-1003", "1001,x", "99999"})
        EXPECT_TRUE(OssPatchList::fromText(QString::fromUtf8(nonsense)).isEmpty()) << nonsense;
}

TEST(BakeCommand, writesWhatFeedsTheShadersAndSaysWhatItWrote)
{
    const QTemporaryDir folder;
    const ProgramRun outcome = bake(folder.filePath(QStringLiteral("new/textures")), {});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err.constData();
    const QList<QByteArray> written = outcome.out.trimmed().split('\n');
    EXPECT_GE(written.size(), 3);
    for (const QByteArray &path : written) {
        const QImage image(QString::fromUtf8(path));
        EXPECT_EQ(image.size(), QSize(32, 32)) << path.constData();
        EXPECT_TRUE(path.endsWith(".1001.png"));
    }
    const QImage color(QString::fromUtf8(written.first()));
    EXPECT_NE(color.pixel(2, 2), color.pixel(16, 20)) << "bricks are not all of one colour";
}

TEST(BakeCommand, refusesInWordsAndWritesNothing)
{
    const QTemporaryDir folder;
    const ProgramRun unknown = bake(folder.path(),
                                    {QStringLiteral("--node"), QStringLiteral("No Such Node")});
    EXPECT_EQ(unknown.exitCode, ExitCode::Failure);
    EXPECT_TRUE(unknown.err.contains("No Such Node")) << unknown.err.constData();
    const ProgramRun nowhere = bake(folder.path(),
                                    {QStringLiteral("--patches"), QStringLiteral("1055")});
    EXPECT_EQ(nowhere.exitCode, ExitCode::Failure);
    EXPECT_TRUE(nowhere.err.contains("1055")) << nowhere.err.constData();
    const ProgramRun nonsense = bake(folder.path(),
                                     {QStringLiteral("--patches"), QStringLiteral("all of them")});
    EXPECT_EQ(nonsense.exitCode, ExitCode::Usage);
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
}

TEST(BakeCommand, saysSoWhenAProjectHasNothingToBake)
{
    const QTemporaryDir folder;
    needNodeTypes();
    const QString path = folder.filePath(QStringLiteral("empty.ossa"));
    OssProjectManager::instance()->newProject(QStringLiteral("empty"));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));
    OssProjectManager::instance()->closeProject();
    const ProgramRun outcome = ProgramRun::of({QStringLiteral("bake"), path, QStringLiteral("-o"),
                                               folder.filePath(QStringLiteral("out"))});
    EXPECT_EQ(outcome.exitCode, ExitCode::Failure);
    EXPECT_TRUE(outcome.err.contains("no shader that is fed")) << outcome.err.constData();
}

TEST(BakeCommand, namesFilesAfterShaderAndInputOrAfterTheNode)
{
    const QTemporaryDir folder;
    needNodeTypes();
    const QString path = folder.filePath(QStringLiteral("wall.ossa"));
    OssProject *project = OssProjectManager::instance()->newProject(QStringLiteral("wall"));
    OssShaderNetwork *network = project->shadingGroups().first()->network();
    network->geoEntity()->setGeometry(QStringLiteral("cube"));
    const auto add = [network](const char *key, const char *name) {
        return network->createNode(QString::fromUtf8(key), QString::fromUtf8(name));
    };
    OssSnBaseNode *rust = add("Procedural/Color", "Rust Red");
    OssSnBaseNode *soft = add("Filter/Blur", "Soft");
    OssSnBaseNode *shader = add("Shaders/Standard Surface", "Old Wall");
    const auto feed = [](OssSnBaseNode *source, OssSnBaseNode *target, const char *input) {
        return target->setInputNode(QString::fromUtf8(input), source,
                                    source->prefferedOutputPoint());
    };
    ASSERT_TRUE(feed(rust, soft, "Input") && feed(soft, shader, "Base Color")
                && feed(rust, shader, "Roughness"));
    OssSnBaseNode *note = add("Misc/Backdrop", "Note");
    ASSERT_TRUE(note && note->prefferedOutputPoint().isEmpty());
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));

    const struct
    {
        QStringList nodes;
        const char *patches;
        QStringList written;
        const char *error;
    } cases[] = {
        {{},
         "1001",
         {QStringLiteral("Old_Wall_Base_Color.1001.png"),
          QStringLiteral("Old_Wall_Roughness.1001.png")},
         nullptr},
        {{QStringLiteral("Rust Red"), QStringLiteral("Soft")},
         "1001-1002",
         {QStringLiteral("Rust_Red.1001.png"), QStringLiteral("Rust_Red.1002.png"),
          QStringLiteral("Soft.1001.png"), QStringLiteral("Soft.1002.png")},
         nullptr},
        {{QStringLiteral("Note")}, "1001", {}, "\"Note\" has no output to bake"},
        {{QStringLiteral("Soft"), QStringLiteral("Rust")}, "1001", {}, "no node \"Rust\""},
        {{QStringLiteral("Soft")}, "1001,1099", {}, "Soft: there is no patch 1099"},
    };

    for (const auto &c : cases) {
        const QTemporaryDir into;
        BakeOptions options;
        options.project = path;
        options.nodes = c.nodes;
        options.patches = QLatin1String(c.patches);
        options.resolution = 16;
        options.format = QStringLiteral("png");
        options.folder = into.path();
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int exitCode = runBakeCommand(options);
        std::fflush(stdout);
        const std::string told = testing::internal::GetCapturedStdout();
        const std::string errors = testing::internal::GetCapturedStderr();
        EXPECT_EQ(exitCode, c.error ? ExitCode::Failure : ExitCode::Success) << errors;
        EXPECT_EQ(QDir(into.path()).entryList(QDir::Files, QDir::Name), c.written)
            << c.nodes.size();
        QStringList paths;
        for (const QString &name : c.written)
            paths.append(into.filePath(name) + QLatin1Char('\n'));
        EXPECT_EQ(told, paths.join(QString()).toStdString());
        EXPECT_TRUE(c.error ? errors.find(c.error) != std::string::npos : errors.empty()) << errors;
    }
    OssProjectManager::instance()->closeProject();
}
