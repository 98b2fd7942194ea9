#include "Ossa/Painting/PaintJournal.h"

#include "OssModel/Project/OssProjectManager.h"
#include "OssModel/Project/OssProjectSnapshot.h"
#include "OssModel/Project/OssRecovery.h"
#include "PaintFixture.h"
#include "support/ExpectedLog.h"

#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

using Place = OssEvPaintBuffer::Place;

std::shared_ptr<OssEvPaintTile> tileWith(float value)
{
    auto tile = std::make_shared<OssEvPaintTile>();
    for (int i = 0; i < OssEvPaintTile::Texels; ++i)
        tile->setTexel(i, {value, value, value, 1.0F, 0.0F});
    return tile;
}

QString folderOf(const QString &name)
{
    return QDir(OssSettings::folderPath()).filePath(text("paint/") + name);
}

TEST(PaintJournals, giveBackWhatWasWrittenLastAndRefuseWhatIsDamaged)
{
    PaintJournal journal;
    journal.begin(300);
    journal.write({{{1001, 0, 0}, tileWith(0.25F)}, {{1012, 2, 1}, tileWith(0.5F)}});
    journal.write({{{1001, 0, 0}, tileWith(0.75F)}, {{1012, 2, 1}, nullptr}});
    journal.waitForDisk();
    OssEvPaintBuffer paint;
    ASSERT_TRUE(PaintJournal::read(journal.name(), &paint).ok());
    EXPECT_EQ(paint.resolution(), 300);
    ASSERT_EQ(paint.tiles().size(), 1U);
    EXPECT_EQ(paint.tile({1001, 0, 0})->texel(77)[0], 0.75F);

    const QDir folder(folderOf(journal.name()));
    QFile file(folder.filePath(folder.entryList(QDir::Files).first()));
    ASSERT_TRUE(file.resize(file.size() - 1));
    const OssResult torn = PaintJournal::read(journal.name(), &paint);
    EXPECT_TRUE(torn.error().contains(file.fileName())) << qPrintable(torn.error());
    EXPECT_EQ(paint.tiles().size(), 1U) << "as it was";
    for (const char *name : {"", "..", "../pixels", "0a0a0a0a-0a0a-0a0a-0a0a-0a0a0a0a0a0a/.."})
        EXPECT_FALSE(PaintJournal::read(text(name), &paint).ok()) << name;
    journal.end();
    EXPECT_TRUE(journal.name().isEmpty());
    EXPECT_TRUE(folder.exists()) << "a copy may name it";
}

class PaintAfterACrash : public PaintFixture
{
protected:
    /// A copy of unsaved work as it is now, opened again after the session has ended.
    void crash()
    {
        OssProject *project = OssProjectManager::instance()->currentProject();
        OssProjectSnapshot snapshot(
            project, OssRecovery::describe(*project, QDateTime::currentDateTimeUtc()));
        ASSERT_TRUE(snapshot.advance(-1));
        QDir(recovery()).removeRecursively();
        {
            OssRecovery::Session dead(recovery());
            ASSERT_TRUE(dead.write(OssProjectSnapshot::joined(snapshot.takeParts())));
        }
        const QVector<OssRecovery::Entry> entries = OssRecovery::entries(recovery());
        ASSERT_EQ(entries.size(), 1);
        m_canvas.reset();
        m_session = std::make_unique<PaintSession>();
        m_canvas = std::make_unique<UvView>(&m_pictures, m_session.get());
        const OssResult opened = OssProjectManager::instance()->restoreProject(
            entries.first().copy, m_folder.filePath(text("wall.ossa")), false);
        ASSERT_TRUE(opened) << qPrintable(opened.error());
        m_project = OssProjectManager::instance()->currentProject();
        m_network = nullptr;
    }

    QString recovery() const { return m_folder.filePath(text("recovery")); }

    OssEvPaintBuffer paint() const { return m_session->buffer(); }

    const QTemporaryDir m_folder;
};

TEST_F(PaintAfterACrash, theLastStrokeIsThereAndIsBaked)
{
    QSignalSpy wanted(OssProjectManager::instance(), &OssProjectManager::copyWanted);
    dab({0.2, 0.2});
    EXPECT_EQ(wanted.count(), 1);
    dab({0.8, 0.8});
    dab({1.5, 0.5});
    history()->undo();
    EXPECT_EQ(wanted.count(), 1) << "the copy says where all that follows is";
    const OssEvPaintBuffer before = paint();
    EXPECT_EQ(before.patches(), std::vector<int>{1001});
    crash();
    ASSERT_EQ(paint().tiles().size(), before.tiles().size());
    for (const auto &[place, tile] : before.tiles()) {
        ASSERT_NE(paint().tile(place), nullptr);
        for (int i = 0; i < OssEvPaintTile::Texels; ++i)
            ASSERT_EQ(paint().tile(place)->texel(i), tile->texel(i)) << i;
    }
    EXPECT_TRUE(m_session->bake().ok());
    EXPECT_FALSE(hasPaint());
    crash();
    EXPECT_FALSE(hasPaint()) << "it is in the images now";
}

TEST_F(PaintAfterACrash, paintOnSeveralNodesIsThereOnEachOfThem)
{
    OssSnImageSetNodeBase *rough = paintNode();
    rough->setName(text("Rough"));
    ASSERT_TRUE(m_session->setAlong({rough}));
    dab();
    crash();
    EXPECT_TRUE(m_session->hasPaint());
    ASSERT_NE(m_session->node(), nullptr);
    EXPECT_EQ(m_session->along().size(), 1) << "they are painted on as before";
    ASSERT_TRUE(m_session->bake().ok());
    int painted = 0;
    const auto groups = m_project->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        const auto sets = group->network()->shadingContext()->imageSets();
        painted += int(std::count_if(sets.cbegin(), sets.cend(), [](const OssImageSet *set) {
            return set->pixels().contains(1001);
        }));
    }
    EXPECT_EQ(painted, 2);
    EXPECT_FALSE(m_session->hasPaint());
}

TEST_F(PaintAfterACrash, anUndoneBakeIsPaintAgain)
{
    dab();
    ASSERT_TRUE(m_session->bake().ok());
    EXPECT_TRUE(images()->unbakedPaint().isEmpty());
    history()->undo();
    EXPECT_FALSE(images()->unbakedPaint().isEmpty());
    crash();
    EXPECT_TRUE(hasPaint());
}

TEST_F(PaintAfterACrash, paintThatIsGoneIsSaid)
{
    dab();
    m_session.reset();
    QDir(folderOf(images()->unbakedPaint())).removeRecursively();
    m_session = std::make_unique<PaintSession>();
    const ExpectedLog expected("Cannot read the paint");
    crash();
    EXPECT_FALSE(hasPaint());
}

} // namespace
