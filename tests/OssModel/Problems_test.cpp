#include "../support/ModelFixture.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssProblems.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QFile>
#include <QImage>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

namespace {

/// What is wrong with nodes, as long as it is.
class Problems : public ModelFixture
{
protected:
    static OssProblems *problems() { return OssProblems::instance(); }

    static QString reason(const OssSnBaseNode *node) { return problems()->reason(node); }

    OssSnBaseNode *image(const QString &path)
    {
        OssSnBaseNode *node = add("Misc/Image");
        node->setAttribute(QStringLiteral("File"), path);
        return node;
    }

    OssResult bake(const OssSnBaseNode *node)
    {
        OssEvaluationService::BakeJob job;
        job.node = node;
        job.outputPoint = node->prefferedOutputPoint();
        job.entity = node->network()->geoEntity();
        job.patches = {1001};
        job.resolution = 16;
        return OssEvaluationService::instance()->bake(
            job, m_folder.filePath(QStringLiteral("made.<UDIM>.png")));
    }

    QTemporaryDir m_folder;
};

TEST_F(Problems, FileThatIsMissingIsToldUntilItIsThere)
{
    const QString path = m_folder.filePath(QStringLiteral("wood.<UDIM>.png"));
    const OssSnBaseNode *node = image(path);
    ASSERT_TRUE(QTest::qWaitFor([&] { return reason(node).contains(path); }));
    ASSERT_EQ(problems()->problems().size(), 1);
    EXPECT_EQ(problems()->problems().first().kind, OssProblems::File);
    QImage(4, 4, QImage::Format_RGB32).save(m_folder.filePath(QStringLiteral("wood.1002.png")));
    EXPECT_TRUE(QTest::qWaitFor([&] { return reason(node).isEmpty(); }));
    EXPECT_TRUE(problems()->problems().isEmpty());
}

TEST_F(Problems, WhatFailsForAMissingFileIsToldOnce)
{
    const QString path = m_folder.filePath(QStringLiteral("wood.png"));
    const OssSnBaseNode *node = image(path);
    ASSERT_TRUE(QTest::qWaitFor([&] { return reason(node).contains(path); }));
    EXPECT_FALSE(bake(node));
    EXPECT_EQ(reason(node).count(path), 1) << qPrintable(reason(node));
    EXPECT_EQ(problems()->problems().size(), 1);
}

TEST_F(Problems, NodeThatCannotBeComputedIsBlamedUntilItIsAnother)
{
    OssSnBaseNode *blur = add("Filter/Blur");
    OssSnBaseNode *levels = add("Adjust/Levels");
    wire(blur, levels);
    QSignalSpy told(problems(), &OssProblems::nodeChanged);
    EXPECT_FALSE(bake(levels));
    EXPECT_FALSE(reason(blur).isEmpty());
    EXPECT_FALSE(reason(blur).contains(blur->path())) << qPrintable(reason(blur));
    EXPECT_TRUE(reason(levels).isEmpty());
    EXPECT_EQ(told.size(), 1);
    problems()->look();
    EXPECT_FALSE(reason(blur).isEmpty());
    wire(add("Procedural/Color"), blur);
    problems()->look();
    EXPECT_TRUE(reason(blur).isEmpty());
    EXPECT_TRUE(bake(levels));
}

TEST_F(Problems, BakePointThatFailedIsToldUntilItIsBaked)
{
    auto *point = qobject_cast<OssSnBakePointNode *>(
        m_network->createPaintableNode({}, QStringLiteral("Misc/Bake Point")));
    point->imageSet()->setResolution(16);
    EXPECT_FALSE(OssShaderNetworkUtils::bakeAgain({point}));
    EXPECT_FALSE(reason(point).isEmpty());
    wire(add("Procedural/Color"), point);
    EXPECT_TRUE(OssShaderNetworkUtils::bakeAgain({point}));
    EXPECT_TRUE(reason(point).isEmpty());
}

TEST_F(Problems, NodesThatAreGoneHaveNone)
{
    OssSnBaseNode *blur = add("Filter/Blur");
    EXPECT_FALSE(bake(blur));
    ASSERT_EQ(problems()->problems().size(), 1);
    QSignalSpy told(problems(), &OssProblems::changed);
    m_network->removeNodes({blur});
    ASSERT_TRUE(QTest::qWaitFor([&] { return told.size() > 0; }));
    EXPECT_TRUE(problems()->problems().isEmpty());
    OssUndoManager::instance()->undo();
    problems()->look();
    EXPECT_EQ(problems()->problems().size(), 1);
    OssProjectManager::instance()->closeProject();
    problems()->look();
    EXPECT_TRUE(problems()->problems().isEmpty());
}

} // namespace
