#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Values/OssColor.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssBakeReport.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Nodes/OssSnGeoChannelNode.h"
#include "OssModel/Nodes/OssSnMultiChannelBakePointNode.h"
#include "OssModel/Nodes/OssSnResultKey.h"
#include "OssModel/Objects/OssImageSet.h"
#include "support/ModelFixture.h"

#include <QSignalSpy>
#include <QTemporaryDir>

namespace {

QString text(const char *latin)
{
    return QString::fromLatin1(latin);
}

/// What a bake point knows of its result: whether there is one, and whether it is what a bake now
/// would give.
class BakePoints : public ModelFixture
{
protected:
    void SetUp() override
    {
        ModelFixture::SetUp();
        m_color = add("Procedural/Color", "Color");
        m_node = bakePoint("Bake");
        ASSERT_TRUE(wire(m_color, m_node));
    }

    OssSnBakePointNode *bakePoint(const char *name)
    {
        auto *node = qobject_cast<OssSnBakePointNode *>(
            m_network->createPaintableNode({}, text("Misc/Bake Point")));
        EXPECT_NE(node, nullptr);
        node->setName(text(name));
        node->imageSet()->setResolution(8);
        return node;
    }

    static OssResult bake(OssSnBakePointNode *node)
    {
        return OssShaderNetworkUtils::bakeBakePoints({node}, true, true);
    }

    void paint(const QColor &color)
    {
        m_color->setAttribute(text("Color"), QVariant::fromValue(OssColor(color)));
    }

    OssSnBaseNode *m_color = nullptr;
    OssSnBakePointNode *m_node = nullptr;
};

TEST_F(BakePoints, aRangeThatNamesNoPatchesIsRefusedWithItsText)
{
    m_node->setAttribute(text("limitBake"), true);
    m_node->setAttribute(text("limitBakeRange"), text("1001-1002,zz"));
    const OssResult refused = bake(m_node);
    ASSERT_FALSE(refused);
    EXPECT_TRUE(refused.error().contains(text("\"1001-1002,zz\" names no patches")))
        << qPrintable(refused.error());
    EXPECT_FALSE(m_node->hasBakedResult());
    m_node->setAttribute(text("limitBakeRange"), text("1001"));
    EXPECT_TRUE(bake(m_node));
}

TEST_F(BakePoints, whatHasItsPixelsAndNoSourceIsLeftAlone)
{
    ASSERT_TRUE(bake(m_node));
    m_node->setInputNode(m_node->preferredInputName(), nullptr, {});
    OssBakeReport report;
    EXPECT_TRUE(OssShaderNetworkUtils::bakeBakePoints({m_node}, true, true, &report));
    EXPECT_EQ(report.upToDate, QStringList{text("Bake")});
    EXPECT_FALSE(OssShaderNetworkUtils::bakeAgain({m_node}, &report)) << "asked for by name";
    OssSnBakePointNode *empty = bakePoint("Empty");
    EXPECT_FALSE(bake(empty)) << "it has none";
}

TEST_F(BakePoints, stoppingWhatHasJustBeenDoneStopsNothing)
{
    OssStatusManager *status = OssStatusManager::instance();
    const auto stopper = QObject::connect(m_node, &OssSnBakePointNode::bakedStateChanged, status,
                                          [status] { status->cancel(); });
    OssBakeReport report;
    EXPECT_TRUE(OssShaderNetworkUtils::bakeBakePoints({m_node}, true, true, &report));
    EXPECT_FALSE(report.isStopped);
    EXPECT_EQ(report.baked, QStringList{text("Bake")});
    paint(Qt::green);
    OssSnBakePointNode *second = bakePoint("Second");
    ASSERT_TRUE(wire(m_color, second));
    EXPECT_FALSE(OssShaderNetworkUtils::bakeBakePoints({m_node, second}, true, true, &report));
    EXPECT_TRUE(report.isStopped);
    EXPECT_FALSE(second->hasBakedResult());
    QObject::disconnect(stopper);
}

TEST_F(BakePoints, theirStateFollowsTheNetworkAndIsToldWhenItIsAnother)
{
    QSignalSpy told(m_node, &OssSnBakePointNode::bakedStateChanged);
    EXPECT_FALSE(m_node->isBakedResultUpToDate());
    m_node->checkBakedState();
    EXPECT_EQ(told.count(), 0);
    ASSERT_TRUE(bake(m_node));
    EXPECT_EQ(told.count(), 1);
    m_node->checkBakedState();
    EXPECT_EQ(told.count(), 1) << "nothing has changed";
    paint(Qt::blue);
    m_node->checkBakedState();
    m_node->checkBakedState();
    EXPECT_EQ(told.count(), 2);
    OssUndoManager::instance()->undo();
    m_node->checkBakedState();
    EXPECT_EQ(told.count(), 3);
    EXPECT_TRUE(m_node->isBakedResultUpToDate());

    // Wires are as good as values, and nothing at all is something else too.
    m_node->setInputNode(text("Input"), nullptr, {});
    EXPECT_FALSE(m_node->isBakedResultUpToDate());
    OssSnBaseNode *invert = add("Adjust/Invert");
    ASSERT_TRUE(wire(m_color, invert));
    ASSERT_TRUE(wire(invert, m_node));
    EXPECT_FALSE(m_node->isBakedResultUpToDate());
    invert->setBypassed(true);
    EXPECT_TRUE(m_node->isBakedResultUpToDate());
}

TEST_F(BakePoints, eachPatchHasAResultOfItsOwn)
{
    m_network->geoEntity()->setGeometry(text("cube"));
    const QList<int> all = OssEvaluationService::instance()->patches(m_network->geoEntity());
    ASSERT_GT(all.size(), 2);
    ASSERT_TRUE(bake(m_node));
    EXPECT_EQ(m_node->patchesToBake(), all);
    m_node->setAttribute(text("limitBakeRange"), text("1001,1002,1999"));
    EXPECT_EQ(m_node->patchesToBake(), all) << "the range counts only while it is on";
    m_node->setAttribute(text("limitBake"), true);
    EXPECT_EQ(m_node->patchesToBake(), (QList<int>{1001, 1002}));
    EXPECT_TRUE(m_node->isBakedResultUpToDate()) << "they are as they were";
    paint(Qt::blue);
    EXPECT_FALSE(m_node->isBakedResultUpToDate());
    const QString others = m_node->imageSet()->pixels().value(all.last());
    ASSERT_TRUE(bake(m_node));
    EXPECT_TRUE(m_node->isBakedResultUpToDate());
    EXPECT_EQ(m_node->imageSet()->pixels().value(all.last()), others);

    const auto lookAt = [](OssSnBakePointNode *node) {
        for (const bool anySettings : {true, false}) {
            node->setAttribute(text("limitBake"), false);
            EXPECT_FALSE(node->isBakedResultUpToDate(anySettings)) << "the others are not";
            node->setAttribute(text("limitBake"), true);
            EXPECT_TRUE(node->isBakedResultUpToDate(anySettings));
        }
    };
    lookAt(m_node);
    const QTemporaryDir folder;
    const QString path = folder.filePath(text("Bake.ossa"));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));
    ASSERT_TRUE(OssProjectManager::instance()->openProject(path));
    m_network = OssProjectManager::instance()->currentProject()->shadingGroups().first()->network();
    m_node = qobject_cast<OssSnBakePointNode *>(m_network->node(text("Bake")));
    ASSERT_NE(m_node, nullptr);
    lookAt(m_node);
    m_node->setAttribute(text("limitBake"), false);
    ASSERT_TRUE(bake(m_node));
    EXPECT_TRUE(m_node->isBakedResultUpToDate());
    EXPECT_NE(m_node->imageSet()->pixels().value(all.last()), others);

    m_node->imageSet()->setResolution(16);
    EXPECT_FALSE(m_node->isBakedResultUpToDate()) << "another size is another result";
    EXPECT_TRUE(m_node->isBakedResultUpToDate(true));
    ASSERT_TRUE(bake(m_node));
    EXPECT_TRUE(m_node->isBakedResultUpToDate());
    m_node->setAttribute(text("limitBakeRange"), text("1999"));
    m_node->setAttribute(text("limitBake"), true);
    const OssResult none = bake(m_node);
    EXPECT_TRUE(none.error().contains(text("no patch"))) << qPrintable(none.error());
}

TEST_F(BakePoints, theStateIsSavedAndGoesWithUndo)
{
    const QByteArray start = m_project->stateHash();
    OssUndoManager::instance()->clear();
    EXPECT_FALSE(m_node->hasBakedResult());
    ASSERT_TRUE(bake(m_node));
    const QString input = m_node->preferredInputName();
    const QString key = OssSnResultKey::of(m_node->inputNode(input),
                                           m_node->inputOutputPoint(input));
    const int steps = undoCount();
    m_node->setBakedKey(key, m_node->patchesToBake(), 8, m_node->imageSet()->form());
    EXPECT_EQ(undoCount(), steps) << "it was so";
    m_node->setBakedKey({});
    EXPECT_FALSE(m_node->hasBakedResult());
    EXPECT_FALSE(m_node->isBakedResultUpToDate());
    OssUndoManager::instance()->undo();
    EXPECT_TRUE(m_node->isBakedResultUpToDate());
    expectUndoIsExact(start);

    OssUndoManager::instance()->setIndex(1);
    m_node->setBakedKey(key); // as documents had it that told no patches apart
    add("Misc/Bake Point", "Never");
    const QTemporaryDir folder;
    const QString path = folder.filePath(text("Bake.ossa"));
    ASSERT_TRUE(OssProjectManager::instance()->saveProjectAs(path));
    ASSERT_TRUE(OssProjectManager::instance()->openProject(path));
    m_network = OssProjectManager::instance()->currentProject()->shadingGroups().first()->network();
    const auto *read = qobject_cast<OssSnBakePointNode *>(m_network->node(text("Bake")));
    ASSERT_NE(read, nullptr);
    EXPECT_TRUE(read->isBakedResultUpToDate());
    const auto *never = qobject_cast<OssSnBakePointNode *>(m_network->node(text("Never")));
    ASSERT_NE(never, nullptr);
    EXPECT_FALSE(never->hasBakedResult());
}

TEST_F(BakePoints, oneWithoutImagesGetsThemAndFillsItsGeoChannel)
{
    auto *node = qobject_cast<OssSnBakePointNode *>(add("Misc/Bake Point", "Fresh"));
    ASSERT_TRUE(wire(m_color, node));
    EXPECT_EQ(node->imageSet(), nullptr);
    OssGeoImageSet *channel = m_network->geoEntity()->addGeoImageSet(text("Mask"));
    auto *reader = qobject_cast<OssSnGeoChannelNode *>(add("Misc/Geo-Channel"));
    reader->setAttribute(text("geoChannel"), text("Mask"));
    QSignalSpy valid(reader, &OssSnGeoChannelNode::geoChannelImageSetValidChanged);
    node->setAttribute(text("geoChannel"), text("Mask"));
    OssGeoImageSet *other = m_network->geoEntity()->addGeoImageSet(text("Other"));
    const ExpectedLog wide("is not baked for", ExpectedLog::Possible);
    OssImageSet *images = m_network->createImageSet(text("Small"), nullptr, 8);
    node->setImageSet(images, true);
    ASSERT_TRUE(bake(node));
    EXPECT_EQ(channel->imageSet(), nullptr) << "it was not asked to";
    paint(Qt::blue);
    node->setAttribute(text("syncGeoChannel"), true);
    ASSERT_TRUE(bake(node));
    EXPECT_EQ(channel->imageSet(), images);
    EXPECT_EQ(other->imageSet(), nullptr);
    EXPECT_EQ(valid.count(), 1);
    EXPECT_EQ(OssShaderNetworkUtils::imageSetOf(reader), images);
    EXPECT_TRUE(OssShaderNetworkUtils::readsPixels(reader));
    channel->setImageSet(nullptr);
    EXPECT_FALSE(node->isBakedResultUpToDate()) << "the channel has something else";
    images->setPixels({{1001, QString(64, QLatin1Char('a')) + text(".exr")}});
    ASSERT_TRUE(bake(node));
    EXPECT_EQ(channel->imageSet(), images);
    EXPECT_TRUE(images->pixels().value(1001).startsWith(text("aaa"))) << "nothing is computed anew";
    EXPECT_TRUE(node->isBakedResultUpToDate());
    valid.clear();
    node->setAttribute(text("geoChannel"), text("None"));
    paint(Qt::green);
    const QMap<int, QString> inStep = channel->imageSet()->pixels();
    EXPECT_TRUE(bake(node)) << "a channel that is not there keeps nobody from baking";
    EXPECT_NE(images->pixels(), inStep);
    EXPECT_EQ(channel->imageSet()->pixels(), inStep)
        << "what is not kept in step keeps what it has";
    m_project->entities().first()->addGeoImageSet(text("Third"));
    EXPECT_EQ(valid.count(), 0) << "it is as valid as it was";
    OssSnBakePointNode *bare = bakePoint("Bare");
    bare->setImageSet(nullptr, true);
    ASSERT_TRUE(wire(m_color, bare));
    bare->setAttribute(text("limitBake"), true);
    bare->setAttribute(text("limitBakeRange"), text("1999"));
    EXPECT_FALSE(bake(bare));
    EXPECT_EQ(bare->imageSet(), nullptr) << "what fails leaves nothing behind";
}

TEST_F(BakePoints, aStoppedBakeKeepsWhatWasDoneAndIsNoFailure)
{
    OssSnBaseNode *second = add("Procedural/Color", "Second");
    OssSnBakePointNode *last = bakePoint("Last");
    ASSERT_TRUE(wire(second, last));
    auto *status = OssStatusManager::instance();
    const QObject listener;
    QObject::connect(status, &OssStatusManager::partChanged, &listener,
                     [status](const QString &part) {
                         if (part == text("Last"))
                             status->cancel();
                     });
    const OssResult stopped = OssShaderNetworkUtils::bakeBakePoints({m_node, last}, true, true);
    EXPECT_TRUE(stopped.isCancelled()) << qPrintable(stopped.error());
    EXPECT_TRUE(m_node->hasBakedResult());
    EXPECT_FALSE(last->hasBakedResult());
    EXPECT_TRUE(last->imageSet()->pixels().isEmpty());
}

TEST_F(BakePoints, whatCannotBeBakedSaysWhatIsMissing)
{
    OssSnBakePointNode *loose = bakePoint("Loose");
    EXPECT_FALSE(loose->isBakedResultUpToDate(false)) << "nothing was baked from nothing";
    const OssResult nothing = bake(loose);
    EXPECT_TRUE(nothing.error().contains(text("Loose: nothing is connected")))
        << qPrintable(nothing.error());
    EXPECT_FALSE(m_color->exportToGeoChannel(nullptr, text("Output")));
    EXPECT_FALSE(m_color->bake(nullptr, text("Output")));
    EXPECT_EQ(m_color->queryMaximumRequiredTextureResolutions(), 2048) << "where nothing says more";
    EXPECT_EQ(m_node->queryMaximumRequiredTextureResolutions(), 8);
    OssSnBakePointNode *large = bakePoint("Large");
    large->imageSet()->setResolution(64);
    OssSnBaseNode *merge = add("Layer/Merge");
    ASSERT_TRUE(wire(large, merge, "Base"));
    ASSERT_TRUE(wire(m_node, merge, "Over"));
    EXPECT_EQ(merge->queryMaximumRequiredTextureResolutions(), 64);
}

TEST_F(BakePoints, oneThatCannotBeBakedIsToldAtTheEndAndKeepsNoOtherFromIt)
{
    OssSnBakePointNode *loose = bakePoint("Loose");
    auto *blind = qobject_cast<OssSnBakePointNode *>(add("Misc/Bake Point", "Blind"));
    ASSERT_TRUE(wire(add("Misc/Dot"), blind)); // a dot that nothing feeds
    OssSnBakePointNode *filtered = bakePoint("Filtered");
    ASSERT_TRUE(wire(m_color, filtered));
    filtered->setAttribute(text("filterCollection"), true);
    filtered->setAttribute(text("filterCollectionText"), text("Elsewhere"));
    OssSnBakePointNode *last = bakePoint("Last");
    ASSERT_TRUE(wire(m_color, last));
    ASSERT_TRUE(bake(last));
    const int sets = m_network->shadingContext()->imageSets().size();
    OssBakeReport report;
    const OssResult result = OssShaderNetworkUtils::bakeBakePoints(
        {loose, blind, filtered, m_node, last}, true, true, &report);
    ASSERT_EQ(report.failures.size(), 2);
    EXPECT_EQ(result.error(), report.failures.join(QLatin1Char('\n')));
    EXPECT_TRUE(result.error().contains(text("Loose: nothing"))) << qPrintable(result.error());
    EXPECT_TRUE(result.error().contains(text("Blind: Nothing"))) << qPrintable(result.error());
    EXPECT_EQ(report.baked, QStringList{text("Bake")});
    EXPECT_EQ(report.filtered, QStringList{text("Filtered")});
    EXPECT_EQ(report.upToDate, QStringList{text("Last")});
    EXPECT_TRUE(m_node->isBakedResultUpToDate());
    EXPECT_EQ(m_network->shadingContext()->imageSets().size(), sets) << "Blind gets none";
    EXPECT_TRUE(report.inWords().startsWith(text("Baked Bake. Not baked")))
        << qPrintable(report.inWords());

    report = {};
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({loose}, true, false, &report));
    EXPECT_TRUE(report.inWords().startsWith(text("Never baked"))) << qPrintable(report.inWords());
    report = {};
    ASSERT_TRUE(OssShaderNetworkUtils::bakeBakePoints({last, m_node}, true, true, &report));
    EXPECT_EQ(report.inWords(), text("All baked results are up to date"));
}

TEST_F(BakePoints, allOfTheirSettingsAreTold)
{
    QSignalSpy sync(m_node, &OssSnBakePointNode::syncGeoChannelChanged);
    QSignalSpy channel(m_node, &OssSnBakePointNode::geoChannelNameChanged);
    QSignalSpy limit(m_node, &OssSnBakePointNode::limitBakeChanged);
    QSignalSpy filter(m_node, &OssSnBakePointNode::filterCollectionEnabledChanged);
    QSignalSpy names(m_node, &OssSnBakePointNode::filterCollectionTextChanged);

    const struct
    {
        const char *attribute;
        QVariant value;
        QSignalSpy *told;
    } cases[] = {
        {"syncGeoChannel", true, &sync},     {"geoChannel", text("Mask"), &channel},
        {"limitBake", true, &limit},         {"limitBakeRange", text("1001"), &limit},
        {"filterCollection", true, &filter}, {"filterCollectionText", text("Wall*"), &names},
    };

    for (const auto &test : cases) {
        for (QSignalSpy *spy : {&sync, &channel, &limit, &filter, &names})
            spy->clear();
        EXPECT_TRUE(m_node->setAttribute(text(test.attribute), test.value));
        for (const QSignalSpy *spy : {&sync, &channel, &limit, &filter, &names})
            EXPECT_EQ(spy->count(), spy == test.told ? 1 : 0) << test.attribute;
    }
    EXPECT_FALSE(m_node->isBakedFor(m_network->geoEntity()));
    EXPECT_TRUE(m_node->isBakedFor(nullptr));
    m_node->setAttribute(text("filterCollectionText"), text(" , "));
    EXPECT_FALSE(m_node->isBakedFor(m_network->geoEntity()));
    m_node->setAttribute(text("filterCollectionText"), QString());
    EXPECT_TRUE(m_node->isBakedFor(m_network->geoEntity())) << "no name lets all through";
}

TEST_F(BakePoints, aMultiChannelOneHasOneForEachStreamThatIsFed)
{
    auto *multi = qobject_cast<OssSnMultiChannelBakePointNode *>(
        add("_System/MultiChannelBakePoint"));
    ASSERT_NE(multi, nullptr);
    EXPECT_TRUE(multi->activeBakePointNodes().isEmpty());
    const QByteArray before = m_project->stateHash();
    multi->configureBakepoints();
    EXPECT_EQ(m_project->stateHash(), before) << "it has its streams";
    auto *bare = qobject_cast<OssSnMultiChannelBakePointNode *>(
        add("_System/MultiChannelBakePoint"));
    const QStringList inputs = bare->inputNames();
    for (const QString &input : inputs)
        bare->removeInput(input);
    bare->configureBakepoints();
    EXPECT_EQ(bare->inputNames(), inputs) << "it had lost them all";
    ASSERT_TRUE(wire(m_color, multi, "Roughness Input"));
    const QList<OssSnBakePointNode *> active = multi->activeBakePointNodes();
    ASSERT_EQ(active.size(), 1);
    EXPECT_EQ(active.first()->outputNodes().first()->name(), text("Roughness"));
    for (const QList<OssSnBaseNode *> &chosen :
         {QList<OssSnBaseNode *>{multi, active.first()}, multi->groupNetwork()->nodes()})
        EXPECT_EQ(OssShaderNetworkUtils::bakePointsAmong(chosen), active);
    const OssResult baked = OssShaderNetworkUtils::bakeBakePoints(
        OssShaderNetworkUtils::bakePointsAmong(multi->groupNetwork()->nodes()), true, true);
    EXPECT_TRUE(baked) << qPrintable(baked.error());
    EXPECT_TRUE(active.first()->isBakedResultUpToDate());
    QSignalSpy told(multi, &OssSnMultiChannelBakePointNode::bakedStateChanged);
    active.first()->setBakedKey(text("key"));
    EXPECT_EQ(told.count(), 1);
}

} // namespace
