#include "../support/ModelFixture.h"
#include "OssCore/Values/OssColor.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetworkIO.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Images/OssPixelStore.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssPixelCleanup.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QTemporaryDir>

namespace {

/// Pixels in image sets: baked, shared, saved and found again.
class Baking : public ModelFixture
{
protected:
    OssSnBaseNode *color(const QColor &color)
    {
        OssSnBaseNode *node = add("Procedural/Color");
        paint(node, color);
        return node;
    }

    static void paint(OssSnBaseNode *node, const QColor &color)
    {
        node->setAttribute(QStringLiteral("Color"), QVariant::fromValue(OssColor(color)));
    }

    OssSnBakePointNode *bakePoint(OssSnBaseNode *source)
    {
        auto *node = qobject_cast<OssSnBakePointNode *>(
            m_network->createPaintableNode({}, QStringLiteral("Misc/Bake Point")));
        EXPECT_TRUE(node && wire(source, node));
        node->imageSet()->setResolution(16);
        return node;
    }

    QColor pixel(const OssSnBaseNode *node)
    {
        OssEvaluationService::BakeJob job;
        job.node = node;
        job.outputPoint = node->prefferedOutputPoint();
        job.entity = node->network()->geoEntity();
        job.patches = {1001};
        job.resolution = 16;
        const OssResult baked = OssEvaluationService::instance()->bake(
            job, m_folder.filePath(QStringLiteral("seen.<UDIM>.png")));
        EXPECT_TRUE(baked) << qPrintable(baked.error());
        return QImage(m_folder.filePath(QStringLiteral("seen.1001.png"))).pixelColor(8, 8);
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Baking, aBakePointKeepsItsPixelsUntilItIsUpdated)
{
    OssSnBaseNode *source = color(Qt::red);
    OssSnBakePointNode *node = bakePoint(source);
    EXPECT_FALSE(node->hasBakedResult());
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({node}, true, true));
    EXPECT_TRUE(node->isBakedResultUpToDate());

    paint(source, Qt::green);
    EXPECT_FALSE(node->isBakedResultUpToDate());
    EXPECT_EQ(pixel(node), QColor(Qt::red));
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({node}, false, true));
    EXPECT_EQ(pixel(node), QColor(Qt::red)) << "only empty ones were asked for";
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({node}, true, false));
    EXPECT_EQ(pixel(node), QColor(Qt::green));
    EXPECT_TRUE(node->isBakedResultUpToDate());

    paint(source, Qt::red);
    EXPECT_FALSE(node->isBakedResultUpToDate());
}

TEST_F(Baking, patchesBeyondTheLimitShowTheBackground)
{
    OssSnBakePointNode *node = bakePoint(color(Qt::red));
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({node}, true, true));
    node->setAttribute(QStringLiteral("limitBake"), true);
    node->setAttribute(QStringLiteral("limitBakeRange"), QStringLiteral("1002-1004"));
    EXPECT_EQ(pixel(node).alpha(), 0);
    node->setAttribute(QStringLiteral("limitBakeBackground"),
                       QVariant::fromValue(OssColor(0.0, 1.0, 0.0)));
    EXPECT_EQ(pixel(node), QColor(Qt::green));
    node->setAttribute(QStringLiteral("limitBakeRange"), QStringLiteral("1001-1004"));
    EXPECT_EQ(pixel(node), QColor(Qt::red)) << "what was baked is still there";
}

TEST_F(Baking, aFilterOfObjectsLetsOnlyTheNamedOnesThrough)
{
    OssSnBakePointNode *node = bakePoint(color(Qt::red));
    m_project->entities().first()->setName(QStringLiteral("Wall Left"));
    node->setAttribute(QStringLiteral("filterCollection"), true);
    node->setAttribute(QStringLiteral("filterCollectionText"), QStringLiteral("Floor, Wall"));
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({node}, true, true));
    EXPECT_FALSE(node->hasBakedResult());
    node->setAttribute(QStringLiteral("filterCollectionText"), QStringLiteral("Floor, Wall*"));
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({node}, true, true));
    EXPECT_TRUE(node->hasBakedResult());
}

TEST_F(Baking, bakePointsAreBakedInTheOrderInWhichPixelsFlow)
{
    OssSnBaseNode *source = color(Qt::red);
    OssSnBakePointNode *first = bakePoint(source);
    OssSnBaseNode *invert = add("Adjust/Invert");
    ASSERT_TRUE(wire(first, invert));
    OssSnBakePointNode *second = bakePoint(invert);
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({second, first}, true, true));
    EXPECT_TRUE(second->isBakedResultUpToDate());
    paint(source, Qt::blue);
    EXPECT_TRUE(second->isBakedResultUpToDate()) << "what it takes from has not changed yet";
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({second, first}, true, true));
    EXPECT_EQ(pixel(second), QColor(Qt::yellow));
    EXPECT_EQ(OssShaderNetworkUtils::getUpstreamBakePointNodes({second}),
              QList<OssSnBakePointNode *>{first});
    EXPECT_EQ(OssShaderNetworkUtils::getDownstreamBakePointNodes({source}).size(), 2);
}

TEST_F(Baking, aBakeIsOneStepAndAFailedOneIsNone)
{
    OssSnBaseNode *source = color(Qt::red);
    OssSnBakePointNode *node = bakePoint(source);
    OssSnBakePointNode *loose = bakePoint(add("Misc/Dot"));
    const QByteArray before = m_project->stateHash();
    const int steps = undoCount();
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({node}, true, true));
    EXPECT_EQ(undoCount(), steps + 1);
    OssUndoManager::instance()->undo();
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(pixel(node), QColor(Qt::red)) << "an empty bake point passes its input on";
    const OssResult failed = OssShaderNetworkUtils::bakeBakePoints({loose}, true, true);
    EXPECT_FALSE(failed);
    EXPECT_TRUE(failed.error().contains(loose->name())) << qPrintable(failed.error());
    EXPECT_EQ(m_project->stateHash(), before);
}

TEST_F(Baking, pixelsAreSavedWithTheProjectAndComeBack)
{
    OssSnBaseNode *source = color(Qt::red);
    OssSnBakePointNode *node = bakePoint(source);
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({node}, true, true));
    const QString name = node->name();
    const QString file = node->imageSet()->pixels().value(1001);
    const QString folder = m_folder.filePath(QStringLiteral("Wall.ossa"));
    OssProjectManager *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(folder));
    const QDir images(folder + QStringLiteral("/images"));
    EXPECT_EQ(images.entryList(QDir::Files), QStringList{file});

    QFile::remove(OssPixelStore::find(file, {}));
    ASSERT_TRUE(projects->openProject(folder));
    m_project = projects->currentProject();
    m_network = m_project->shadingGroups().first()->network();
    const OssSnBaseNode *again = m_network->nodeByPath(name);
    ASSERT_TRUE(again);
    paint(m_network->nodeByPath(QStringLiteral("Color")), Qt::blue);
    EXPECT_EQ(pixel(again), QColor(Qt::red)) << "from the project's folder";

    const QString other = m_folder.filePath(QStringLiteral("Other.ossa"));
    ASSERT_TRUE(projects->saveProjectAs(other));
    EXPECT_TRUE(QFile::exists(other + QStringLiteral("/images/") + file));
}

TEST_F(Baking, aGeoChannelTakesANodesPixelsAlong)
{
    OssSnBaseNode *source = color(Qt::red);
    auto *entity = m_network->geoEntity();
    OssGeoImageSet *channel = entity->addGeoImageSet(QStringLiteral("Mask"));
    EXPECT_FALSE(source->exportToGeoChannel(channel, source->prefferedOutputPoint()));
    channel->setImageSet(m_network->createImageSet(QStringLiteral("Mask"), nullptr, 16));
    ASSERT_TRUE(source->exportToGeoChannel(channel, source->prefferedOutputPoint()));
    OssSnBaseNode *reader = add("Misc/Geo-Channel");
    reader->setAttribute(QStringLiteral("geoChannel"), QStringLiteral("Mask"));
    EXPECT_EQ(pixel(reader), QColor(Qt::red));
}

TEST_F(Baking, aBakePointBehindATeleportIsBakedBeforeTheOneThatReadsIt)
{
    OssSnBaseNode *source = color(Qt::red);
    OssSnBakePointNode *first = bakePoint(source);
    OssSnBaseNode *sent = add("Teleport Broadcast/Broadcast");
    OssSnBaseNode *heard = add("Teleport Receiver/Receiver");
    for (OssSnBaseNode *end : {sent, heard})
        ASSERT_TRUE(end->setAttribute(QStringLiteral("channel"), QStringLiteral("Far")));
    ASSERT_TRUE(wire(first, sent));
    OssSnBakePointNode *second = bakePoint(heard);
    first->imageSet()->setResolution(32);
    using Nodes = QList<OssSnBakePointNode *>;
    EXPECT_EQ(OssShaderNetworkUtils::getUpstreamBakePointNodes({second}), Nodes{first});
    EXPECT_EQ(OssShaderNetworkUtils::getDownstreamBakePointNodes({source}), (Nodes{first, second}));
    EXPECT_EQ(heard->queryMaximumRequiredTextureResolutions(), 32);
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({second, first}, true, true));
    paint(source, Qt::green);
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({second, first}, true, true));
    EXPECT_TRUE(second->isBakedResultUpToDate());
    EXPECT_EQ(pixel(second), QColor(Qt::green));
}

TEST_F(Baking, copiesHavePixelsOfTheirOwn)
{
    OssSnBaseNode *source = color(Qt::red);
    OssSnBakePointNode *node = bakePoint(source);
    auto *paintNode = qobject_cast<OssSnImageSetNodeBase *>(m_network->createPaintableNode({}));
    paintNode->setImageSet(node->imageSet(), true);
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({node}, true, true));
    const QByteArray before = m_project->stateHash();
    OssUndoManager::instance()->clear();
    const auto copies = OssShaderNetworkIO::duplicateNodes(m_network, {source, node, paintNode},
                                                           true);
    ASSERT_EQ(copies.size(), 3);
    auto *copy = qobject_cast<OssSnBakePointNode *>(copies.at(1));
    EXPECT_NE(copy->imageSet(), node->imageSet());
    EXPECT_EQ(copy->imageSet()->resolution(), 16);
    EXPECT_EQ(OssShaderNetworkUtils::imageSetOf(copies.at(2)), copy->imageSet())
        << "what was shared is shared among the copies";
    EXPECT_TRUE(copy->isBakedResultUpToDate());
    EXPECT_EQ(undoCount(), 1);
    expectUndoIsExact(before);
    paint(copies.first(), Qt::green);
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({copy}, true, true));
    EXPECT_EQ(pixel(copy), QColor(Qt::green));
    EXPECT_EQ(pixel(node), QColor(Qt::red));

    // Inside a group it is the same.
    const OssSnBaseNode *group = m_network->groupNodes({node});
    ASSERT_NE(group, nullptr);
    const auto groups = OssShaderNetworkIO::duplicateNodes(
        m_network, {const_cast<OssSnBaseNode *>(group)}, true);
    const auto *inside =
        qobject_cast<const OssSnGroupNode *>(groups.first())->groupNetwork()->node(node->name());
    EXPECT_NE(OssShaderNetworkUtils::imageSetOf(inside), node->imageSet());
    EXPECT_EQ(pixel(inside), QColor(Qt::red));
}

TEST_F(Baking, whatIsPastedIntoAnotherProjectHasItsPixelsOrSaysThatItHasNone)
{
    OssSnBakePointNode *node = bakePoint(color(Qt::red));
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({node}, true, true));
    const QString file = node->imageSet()->pixels().value(1001);
    auto *projects = OssProjectManager::instance();
    ASSERT_TRUE(projects->saveProjectAs(m_folder.filePath(QStringLiteral("First.ossa"))));
    const QString saved = OssPixelStore::find(file, OssPixelStore::projectFolder());
    const QByteArray text = OssShaderNetworkIO::nodesToText({node});
    const QByteArray without = QByteArray(text).replace("name=\"images\"", "name=\"none\"");
    ASSERT_NE(text, without);

    enum { Kept, Damaged, Gone, NotWritten };

    for (const int state : {Kept, Damaged, Gone, NotWritten}) {
        m_network =
            projects->newProject(QStringLiteral("Other"))->shadingGroups().first()->network();
        const ExpectedLog lost("has no pixels", ExpectedLog::Possible);
        OssDebugLog::instance()->clear();
        const QString here = OssPixelStore::find(file, {}); // as if in another user's program
        if (!here.isEmpty())
            QFile::remove(here);
        if (state == Damaged) {
            QFile damaged(saved);
            ASSERT_TRUE(damaged.open(QIODevice::WriteOnly));
        } else if (state == Gone) {
            QFile::remove(saved);
        }
        QList<OssSnBaseNode *> pasted;
        ASSERT_TRUE(OssShaderNetworkIO::nodesFromText(
            m_network, state == NotWritten ? without : text, QStringLiteral("test"), &pasted));
        const auto *copy = qobject_cast<OssSnBakePointNode *>(pasted.value(0));
        ASSERT_NE(copy, nullptr);
        EXPECT_EQ(copy->hasBakedResult(), state == Kept) << state;
        EXPECT_EQ(logHas(QStringLiteral("has no pixels")), state != Kept) << state;
        EXPECT_EQ(copy->imageSet() != nullptr, state != NotWritten);
        if (state == Kept)
            EXPECT_EQ(pixel(copy), QColor(Qt::red));
        else if (copy->imageSet())
            EXPECT_TRUE(copy->imageSet()->pixels().isEmpty()) << state;
    }
}

TEST(PixelStore, namesThatADocumentMayGive)
{
    const QString good = QString(64, QLatin1Char('a')) + QStringLiteral(".exr");
    EXPECT_TRUE(OssPixelStore::isName(good));
    for (const QString &bad : {QStringLiteral("../../secret.exr"), good.toUpper(), good + good,
                               QStringLiteral("/") + good, good + QLatin1Char('\n')})
        EXPECT_FALSE(OssPixelStore::isName(bad)) << qPrintable(bad);
}

// A file goes only when no document names it and it has been left alone for long.
TEST(PixelCleanup, removesOldFilesOfOursThatNobodyNames)
{
    const QTemporaryDir project;
    const QDir folder(project.path());
    folder.mkpath(QStringLiteral("images"));
    folder.mkpath(QStringLiteral("history"));
    const auto name = [](char digit) {
        return QString(64, QLatin1Char(digit)) + QLatin1String(".exr");
    };
    const auto write = [&](const QString &path, const QByteArray &content, int days) {
        QFile file(folder.filePath(path));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.flush();
        EXPECT_TRUE(file.setFileTime(QDateTime::currentDateTimeUtc().addDays(-days),
                                     QFileDevice::FileModificationTime));
    };
    for (const char digit : {'a', 'b', 'c'})
        write(QStringLiteral("images/") + name(digit), "old", 30);
    write(QStringLiteral("images/") + name('d'), "young", 3);
    write(QStringLiteral("images/mine.exr"), "the user's", 300);
    write(QStringLiteral("images/new-0123456789abcdef0123456789abcdef.exr"), "half", 30);
    write(QStringLiteral("project.xml"), "<p f=\"" + name('a').toLatin1() + "\"/>", 1);
    write(QStringLiteral("history/project.2.xml"), name('b').toLatin1(), 1);

    EXPECT_EQ(OssPixelCleanup::cleanProject(project.path()), 2);
    EXPECT_EQ(QDir(folder.filePath(QStringLiteral("images"))).entryList(QDir::Files),
              QStringList({name('a'), name('b'), name('d'), QStringLiteral("mine.exr")}));

    write(QStringLiteral("images/") + name('c'), "old", 30);
    EXPECT_EQ(OssPixelCleanup::removeForgotten(folder.filePath(QStringLiteral("images")),
                                               {folder.filePath(QStringLiteral("gone.xml"))},
                                               QDateTime::currentDateTimeUtc()),
              0)
        << "what cannot be read might name everything";
}
