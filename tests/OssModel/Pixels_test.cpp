#include "OssCore/Program/OssSettings.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Objects/OssCanvasManager.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssPixelCleanup.h"
#include "OssModel/Project/OssRecovery.h"
#include "support/ModelFixture.h"
#include "support/SystemCallFaults.h"

#include <QDir>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <cerrno>

namespace {

/// Paint that cannot be baked, or can.
class Canvas : public OssCanvasWidget
{
public:
    void handleBakeBehavior(OssImageSet *) override {}

    OssResult bakePaint() override
    {
        ++bakes;
        return result;
    }

    OssResult result;
    int bakes = 0;
};

void writeFile(const QString &path, const QByteArray &content, int daysAgo = 0)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(content);
    file.flush();
    ASSERT_TRUE(file.setFileTime(QDateTime::currentDateTimeUtc().addDays(-daysAgo),
                                 QFileDevice::FileModificationTime));
}

QByteArray readFile(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString pixelName(char digit)
{
    return QString(64, QLatin1Char(digit)) + QLatin1String(".exr");
}

/// Pixel files on their way from a bake into a project, and out of the way again.
class Pixels : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_set = m_network->createImageSet(QStringLiteral("Wall"), nullptr, 16);
    }

    void TearDown() override
    {
        ModelFixture::TearDown();
        QDir(newPixels()).removeRecursively();
        QDir(OssRecovery::standardFolder()).removeRecursively();
    }

    static QString newPixels()
    {
        return QDir(OssSettings::folderPath()).filePath(QStringLiteral("pixels"));
    }

    static QString newFile(char digit) { return newPixels() + QLatin1Char('/') + pixelName(digit); }

    QString image(char digit) const
    {
        return m_path + QStringLiteral("/images/") + pixelName(digit);
    }

    QTemporaryDir m_folder;
    QString m_path = m_folder.filePath(QStringLiteral("Wall.ossa"));
    OssImageSet *m_set = nullptr;
};

TEST_F(Pixels, aProjectIsSavedWithItsPixelsOrNotAtAll)
{
    const ExpectedLog expected("history", ExpectedLog::Possible);
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(m_path));
    writeFile(newFile('a'), "the pixels");
    m_set->setPixels({{1001, pixelName('a')}});
    bool happened = true;
    int failed = 0;
    for (int number = 1; happened; ++number) {
        OssResult result;
        {
            const SystemCallFaults fault(number, ENOSPC);
            result = projects->saveProject();
            happened = SystemCallFaults::happened();
        }
        const bool named = readFile(m_path + QStringLiteral("/project.xml"))
                               .contains(pixelName('a').toUtf8());
        EXPECT_TRUE(!named || readFile(image('a')) == "the pixels")
            << number << " " << SystemCallFaults::failedCall();
        EXPECT_TRUE(result || result.error().contains(m_path)) << qPrintable(result.error());
        EXPECT_EQ(projects->isModified(), !result.ok()) << number;
        failed += result ? 0 : 1;
        if (!result && !named)
            continue;
        // From the start again: what lies there already is not written once more.
        QFile::remove(image('a'));
        m_set->setPixels({});
        ASSERT_TRUE(projects->saveProject());
        m_set->setPixels({{1001, pixelName('a')}});
    }
    EXPECT_GT(failed, 10);
    QDir(m_path + QStringLiteral("/images")).removeRecursively();
    writeFile(m_path + QStringLiteral("/images"), "in the way");
    const OssResult refused = projects->saveProject();
    EXPECT_FALSE(refused);
    EXPECT_TRUE(refused.error().contains(QStringLiteral("/images"))) << qPrintable(refused.error());
    EXPECT_TRUE(projects->isModified());
}

TEST_F(Pixels, aBakeThatFailsLeavesNothingHalfMade)
{
    OssEvaluationService::BakeJob job;
    job.node = add("Procedural/Color");
    job.outputPoint = job.node->prefferedOutputPoint();
    job.patches = {1001, 1002};
    job.resolution = 16;
    const QByteArray before = m_project->stateHash();
    int failed = 0;
    bool happened = true;
    for (int number = 1; happened; ++number) {
        OssResult result;
        {
            const SystemCallFaults fault(number, EIO);
            result = OssEvaluationService::instance()->bakeInto(m_set, job);
            happened = SystemCallFaults::happened();
        }
        EXPECT_TRUE(QDir(newPixels()).entryList({QStringLiteral("new-*")}).isEmpty())
            << number << SystemCallFaults::failedCall();
        EXPECT_EQ(m_set->pixels().size(), result ? 2 : 0) << number;
        EXPECT_EQ(m_project->stateHash() != before, result.ok()) << number;
        failed += result ? 0 : 1;
        m_set->setPixels({});
    }
    EXPECT_GT(failed, 2);
}

TEST_F(Pixels, areFoundInTheProjectFirstAndUnderTheirNamesOnly)
{
    EXPECT_EQ(OssPixelStore::find(pixelName('a'), m_path), QString());
    writeFile(newFile('a'), "new");
    EXPECT_EQ(OssPixelStore::find(pixelName('a'), m_path), newFile('a'));
    EXPECT_EQ(OssPixelStore::find(pixelName('a'), {}), newFile('a'));
    writeFile(image('a'), "kept");
    EXPECT_EQ(OssPixelStore::find(pixelName('a'), m_path), image('a'));
    writeFile(m_path + QStringLiteral("/images/mine.exr"), "the user's");
    EXPECT_EQ(OssPixelStore::find(QStringLiteral("mine.exr"), m_path), QString());
    QString name;
    const OssResult adopted = OssPixelStore::adopt(OssPixelStore::newPath(), &name);
    EXPECT_FALSE(adopted);
    EXPECT_TRUE(adopted.error().contains(QStringLiteral("new-")));
    EXPECT_EQ(name, QString());
    writeFile(OssPixelStore::newPath().section(QLatin1Char('/'), 0, -2) + QStringLiteral("/new-x"),
              "hello");
    ASSERT_TRUE(OssPixelStore::adopt(newPixels() + QStringLiteral("/new-x"), &name));
    EXPECT_TRUE(OssPixelStore::isName(name));
    EXPECT_EQ(readFile(OssPixelStore::find(name, {})), "hello");
}

TEST_F(Pixels, thoseThatACopyOfUnsavedWorkNamesAreKept)
{
    for (const char digit : {'a', 'b'}) {
        writeFile(newFile(digit), "old", 30);
        writeFile(image(digit), "old", 30);
    }
    writeFile(OssRecovery::standardFolder() + QStringLiteral("/x.ossa/project.xml"),
              "<p f=\"" + pixelName('a').toUtf8() + "\"/>");
    EXPECT_EQ(OssPixelCleanup::cleanNewPixels(), 1);
    EXPECT_EQ(OssPixelCleanup::cleanProject(m_path), 1);
    for (const QString &kept : {newFile('a'), image('a')})
        EXPECT_TRUE(QFile::exists(kept)) << qPrintable(kept);
    for (const QString &gone : {newFile('b'), image('b')})
        EXPECT_FALSE(QFile::exists(gone)) << qPrintable(gone);
    EXPECT_EQ(OssPixelCleanup::cleanProject(m_folder.filePath(QStringLiteral("None.ossa"))), 0);
}

TEST_F(Pixels, noneIsRemovedWhenADocumentCannotBeReadAndNoneWithoutAProject)
{
    writeFile(image('a'), "old", 30);
    const QString document = m_path + QStringLiteral("/project.xml");
    writeFile(document, "<p f=\"" + pixelName('a').toUtf8() + "\"/>");
    const QString images = m_path + QStringLiteral("/images");
    bool happened = true;
    int number = 1;
    for (; happened; ++number) {
        const SystemCallFaults fault(number, EIO);
        EXPECT_EQ(
            OssPixelCleanup::removeForgotten(images, {document}, QDateTime::currentDateTimeUtc()),
            0)
            << number << SystemCallFaults::failedCall();
        happened = SystemCallFaults::happened();
    }
    EXPECT_GT(number, 2);
    EXPECT_TRUE(QFile::exists(image('a')));
    // A project that has no place has no images: those that lie where the program runs are others'.
    const QString before = QDir::currentPath();
    QFile::remove(document);
    ASSERT_TRUE(QDir::setCurrent(m_path));
    EXPECT_EQ(OssPixelCleanup::cleanProject({}), 0);
    ASSERT_TRUE(QDir::setCurrent(before));
    EXPECT_TRUE(QFile::exists(image('a')));
}

// --- what is refused before anything is written

TEST_F(Pixels, nothingIsSavedWherePaintCannotBeBakedOrThereIsNoPlace)
{
    OssProjectManager *projects = OssProjectManager::instance();
    EXPECT_FALSE(projects->saveProjectAs({}));
    EXPECT_FALSE(projects->saveProject());
    {
        Canvas canvas;
        OssCanvasManager::instance()->setCurrentCanvas(&canvas);
        canvas.result = OssResult::failure(QStringLiteral("the paint is wet"));
        const OssResult refused = projects->saveProjectAs(m_path);
        EXPECT_EQ(refused.error(), QStringLiteral("the paint is wet"));
        EXPECT_FALSE(QFile::exists(m_path));
        EXPECT_TRUE(m_project->path().isEmpty());
        canvas.result = {};
        EXPECT_TRUE(projects->saveProjectAs(m_path));
        EXPECT_EQ(canvas.bakes, 2);
    }
    EXPECT_EQ(OssCanvasManager::instance()->currentCanvas(), nullptr);
    EXPECT_TRUE(projects->saveProject());
    projects->closeProject();
    EXPECT_FALSE(projects->saveProject());
    EXPECT_FALSE(projects->saveProjectAs(m_path));
    QSignalSpy closed(projects, &OssProjectManager::projectClosed);
    projects->closeProject();
    EXPECT_EQ(closed.count(), 0) << "none was open";
    EXPECT_EQ(OssPixelStore::projectFolder(), QString());
}

TEST_F(Pixels, onlyTheCurrentCanvasTakesItselfAway)
{
    Canvas current;
    OssCanvasManager::instance()->setCurrentCanvas(&current);
    {
        Canvas other;
        EXPECT_EQ(other.bakes, 0);
    }
    EXPECT_EQ(OssCanvasManager::instance()->currentCanvas(), &current);
}

TEST_F(Pixels, theCurrentChannelIsToldOnceAndGoesWithTheProject)
{
    OssProjectManager *projects = OssProjectManager::instance();
    int changes = 0;
    const QObject listener;
    QObject::connect(projects, &OssProjectManager::currentChannelChanged, &listener,
                     [&changes] { ++changes; });
    m_project->shadingGroups().first()->setCurrentImageSet(m_set);
    projects->setCurrentChannel(m_set->channel());
    projects->setCurrentChannel(m_set->channel());
    EXPECT_EQ(changes, 1);
    projects->closeProject();
    EXPECT_EQ(changes, 2);
    EXPECT_EQ(projects->currentChannel(), nullptr);
}

} // namespace
