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
