#include "../support/ModelFixture.h"
#include "OssCore/Values/OssColor.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "OssModel/Nodes/OssSnUpstream.h"

#include <QDir>
#include <QImage>
#include <QTemporaryDir>

namespace {

/// Documents as pictures: what a wire carries, written to a file and read back.
class Evaluation : public ModelFixture
{
protected:
    OssSnBaseNode *color(double red, double green, double blue)
    {
        OssSnBaseNode *node = add("Procedural/Color");
        node->setAttribute(QStringLiteral("Color"),
                           QVariant::fromValue(OssColor(red, green, blue, 1.0)));
        return node;
    }

    OssResult bake(const OssSnBaseNode *node)
    {
        OssEvaluationService::BakeJob job;
        job.node = node;
        job.outputPoint = node->prefferedOutputPoint();
        job.entity = m_project->shadingGroups().first()->geoEntity();
        job.patches = {1001};
        job.resolution = 16;
        return OssEvaluationService::instance()->bake(
            job, m_folder.filePath(QStringLiteral("made.<UDIM>.png")));
    }

    /// The middle of the picture, or an invalid colour with the failure.
    QColor pixel(const OssSnBaseNode *node)
    {
        const OssResult baked = bake(node);
        EXPECT_TRUE(baked) << qPrintable(baked.error());
        const QImage image(m_folder.filePath(QStringLiteral("made.1001.png")));
        return baked && image.width() == 16 ? image.pixelColor(8, 8) : QColor();
    }

    QTemporaryDir m_folder;
};

} // namespace

TEST_F(Evaluation, whatOnlyPassesPixelsOnDoesNotChangeThem)
{
    OssSnBaseNode *red = color(1.0, 0.0, 0.0);
    OssSnBaseNode *dot = add("Misc/Dot");
    OssSnBaseNode *invert = add("Adjust/Invert");
    ASSERT_TRUE(wire(red, dot));
    ASSERT_TRUE(wire(dot, invert));
    EXPECT_EQ(pixel(dot), QColor(255, 0, 0));
    EXPECT_EQ(pixel(invert), QColor(0, 255, 255));
    invert->setBypassed(true);
    EXPECT_EQ(pixel(invert), QColor(255, 0, 0));
    invert->setBypassed(false);
    invert->setEnabled(0);
    EXPECT_EQ(pixel(invert), QColor(255, 0, 0));
}

TEST_F(Evaluation, aGroupMakesTheSamePictureAsItsNodes)
{
    OssSnBaseNode *red = color(1.0, 0.0, 0.0);
    OssSnBaseNode *invert = add("Adjust/Invert");
    OssSnBaseNode *after = add("Misc/Dot");
    ASSERT_TRUE(wire(red, invert));
    ASSERT_TRUE(wire(invert, after));
    ASSERT_TRUE(m_network->groupNodes({invert}));
    EXPECT_EQ(pixel(after), QColor(0, 255, 255));
}

TEST_F(Evaluation, aSharedSourceReachesEveryNodeThatAsksForIt)
{
    OssSnBaseNode *red = color(1.0, 0.0, 0.0);
    OssSnBaseNode *invert = add("Adjust/Invert");
    OssSnBaseNode *merge = add("Layer/Merge");
    ASSERT_TRUE(wire(red, invert));
    ASSERT_TRUE(wire(red, merge, "Base"));
    ASSERT_TRUE(wire(invert, merge, "Over"));
    EXPECT_EQ(pixel(merge), QColor(0, 255, 255));
    merge->setAttribute(QStringLiteral("Amount"), 0.0);
    EXPECT_EQ(pixel(merge), QColor(255, 0, 0));
}

TEST_F(Evaluation, everythingUpstreamIsVisitedOnceSourcesFirst)
{
    OssSnBaseNode *red = color(1.0, 0.0, 0.0);
    OssSnBaseNode *invert = add("Adjust/Invert");
    OssSnBaseNode *dot = add("Misc/Dot");
    OssSnBaseNode *merge = add("Layer/Merge");
    ASSERT_TRUE(wire(red, invert));
    ASSERT_TRUE(wire(red, dot));
    ASSERT_TRUE(wire(dot, merge, "Base"));
    ASSERT_TRUE(wire(invert, merge, "Over"));
    QVector<const OssSnBaseNode *> visited;
    OssSnUpstream::walk(merge, [&](const OssSnBaseNode *node, const auto &inputs) {
        for (const OssSnUpstream::Input &input : inputs) {
            EXPECT_TRUE(!input.source.node || visited.contains(input.source.node));
            EXPECT_TRUE(input.source.node == red || input.name != QLatin1String("Base"))
                << "through the dot";
        }
        visited.append(node);
    });
    EXPECT_EQ(visited.size(), 3);
    EXPECT_EQ(visited.last(), merge);
}

TEST_F(Evaluation, aLoopThroughTeleportsEndsWithAReason)
{
    OssSnBaseNode *invert = add("Adjust/Invert");
    OssSnBaseNode *broadcast = add("Teleport Broadcast/Broadcast");
    OssSnBaseNode *receiver = add("Teleport Receiver/Receiver");
    for (OssSnBaseNode *end : {broadcast, receiver})
        ASSERT_TRUE(end->setAttribute(QStringLiteral("channel"), QStringLiteral("Round")));
    ASSERT_TRUE(wire(invert, broadcast));
    ASSERT_TRUE(wire(receiver, invert));
    const OssResult baked = bake(invert);
    EXPECT_TRUE(baked.error().contains(invert->name())) << qPrintable(baked.error());
    EXPECT_FALSE(OssSnResultKey::of(invert, QStringLiteral("Output")).isEmpty());
}

TEST_F(Evaluation, whatCannotBeComputedIsSaidInWordsAndLeavesNoFile)
{
    OssSnBaseNode *dot = add("Misc/Dot", "Loose End");
    const OssResult baked = bake(dot);
    EXPECT_FALSE(baked);
    EXPECT_FALSE(baked.error().isEmpty());
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}

TEST_F(Evaluation, aBakeThatIsStoppedLeavesNoFile)
{
    OssSnBaseNode *red = color(1.0, 0.0, 0.0);
    OssEvaluationService::BakeJob job;
    job.node = red;
    job.outputPoint = red->prefferedOutputPoint();
    job.patches = {1001};
    job.resolution = 512;
    job.onProgress = [](int, int) {
        return false;
    };
    EXPECT_FALSE(OssEvaluationService::instance()->bake(
        job, m_folder.filePath(QStringLiteral("made.<UDIM>.exr"))));
    EXPECT_TRUE(QDir(m_folder.path()).isEmpty());
}
