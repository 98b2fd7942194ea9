#include "GraphFixture.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssModel/Evaluation/OssBakeManager.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Nodes/OssLayerShaderModelManager.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssShadingContext.h"
#include "support/DialogAnswers.h"

#include <QComboBox>
#include <QDialog>
#include <QDir>
#include <QImage>
#include <QTemporaryDir>
#include <QtTest>

#include <functional>

namespace {

/// The commands that put pixels into images, without a user who could answer.
class BakingTest : public GraphFixture
{
protected:
    void SetUp() override
    {
        GraphFixture::SetUp();
        m_popups = OssApplication::popupsAllowed();
        OssApplication::setPopupsAllowed(false);
        m_color = addAt("Procedural/Color", {0, 0});
        m_bake = qobject_cast<OssSnBakePointNode *>(
            m_network->createPaintableNode({300, 0}, QStringLiteral("Misc/Bake Point")));
        m_bake->imageSet()->setResolution(16);
        m_blur = addAt("Filter/Blur", {600, 0});
        m_dot = addAt("Misc/Dot", {600, 300});
        wire(m_color, m_bake);
        wire(m_bake, m_blur);
        wire(m_color, m_dot);
        OssUndoManager::instance()->clear();
        OssDebugLog::instance()->clear();
    }

    void TearDown() override
    {
        OssApplication::setPopupsAllowed(m_popups);
        GraphFixture::TearDown();
    }

    static bool bakesEnd()
    {
        return QTest::qWaitFor([] { return !OssBakeManager::instance()->isRunning(); }, 30000);
    }

    bool m_popups = true;
    OssSnBaseNode *m_color = nullptr;
    OssSnBakePointNode *m_bake = nullptr;
    OssSnBaseNode *m_blur = nullptr;
    OssSnBaseNode *m_dot = nullptr;
};

} // namespace

TEST_F(BakingTest, commandsBakeWhatTheyAreNamedAfter)
{
    select({m_bake});
    m_view->updateSelectedBakePoints();
    EXPECT_FALSE(m_bake->hasBakedResult()) << "an update leaves empty ones alone";
    m_view->bakeSelectedBakePoints();
    EXPECT_TRUE(m_bake->isBakedResultUpToDate());
    EXPECT_EQ(undoCount(), 1);
    EXPECT_FALSE(itemOf(m_bake)->hasMark(OssNgNode::Stale));
    m_color->setAttribute(QStringLiteral("Color"), QVariant::fromValue(OssColor(1.0, 0.0, 0.0)));
    EXPECT_TRUE(QTest::qWaitFor([this] { return itemOf(m_bake)->hasMark(OssNgNode::Stale); }));
    select({m_color});
    m_view->updateUpstreamBakePoints();
    EXPECT_TRUE(logHas(QStringLiteral("[ !! ] No upstream Bake Point nodes found")));
    m_view->updateDownstreamBakePoints();
    EXPECT_TRUE(m_bake->isBakedResultUpToDate());
    EXPECT_FALSE(itemOf(m_bake)->hasMark(OssNgNode::Stale));
}

TEST_F(BakingTest, bakePointsInsideGroupsAreFoundAndBakedBeforeWhatTakesFromThem)
{
    auto *after = qobject_cast<OssSnBakePointNode *>(
        m_network->createPaintableNode({900, 0}, QStringLiteral("Misc/Bake Point")));
    after->imageSet()->setResolution(16);
    wire(m_blur, after);
    OssSnBaseNode *group = m_network->groupNodes({m_bake, m_blur});
    ASSERT_NE(group, nullptr);
    using Nodes = QList<OssSnBakePointNode *>;
    EXPECT_EQ(OssShaderNetworkUtils::getUpstreamBakePointNodes({after}), Nodes{m_bake});
    EXPECT_EQ(OssShaderNetworkUtils::getUpstreamBakePointNodes({group}), Nodes{m_bake});
    EXPECT_EQ(OssShaderNetworkUtils::getDownstreamBakePointNodes({m_color}),
              (Nodes{after, m_bake}));
    select({after});
    m_view->updateUpstreamBakePoints();
    EXPECT_TRUE(m_bake->isBakedResultUpToDate());
    EXPECT_FALSE(after->hasBakedResult());
    m_color->setAttribute(QStringLiteral("Color"), QVariant::fromValue(OssColor(1.0, 0.0, 0.0)));
    m_view->bakeEmptyAndUpdateOutOfDateBakePoints();
    EXPECT_TRUE(m_bake->isBakedResultUpToDate());
    EXPECT_TRUE(after->isBakedResultUpToDate());
}

TEST_F(BakingTest, commandsSayWhenThereIsNothingToBake)
{
    select({});
    m_view->updateDownstreamBakePoints();
    EXPECT_TRUE(logHas(QStringLiteral("[ !! ] No nodes are selected")));
    m_view->updateSelectedBakePoints();
    EXPECT_TRUE(logHas(QStringLiteral("[ !! ] No Bake Point nodes are selected")));
    m_network->removeNode(m_bake, true, true);
    OssUndoManager::instance()->clear();
    m_view->bakeEmptyAndUpdateOutOfDateBakePoints();
    EXPECT_TRUE(logHas(QStringLiteral("[ !! ] No Bake Point nodes found")));
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(BakingTest, aPaintNodeTakesThePlaceOfWhatWasBaked)
{
    const ExpectedLog expected("Only one node must be selected for baking to a paintable node");
    select({m_color, m_dot});
    m_view->bakeToPaintableNode();
    EXPECT_EQ(undoCount(), 0) << "a refusal leaves no step";
    const QByteArray before = m_project->stateHash();
    select({m_color});
    m_view->bakeToPaintableNode();
    const auto *paint = qobject_cast<OssSnImageSetNodeBase *>(
        m_dot->inputNode(QStringLiteral("Input")));
    ASSERT_TRUE(paint);
    EXPECT_EQ(m_bake->inputNode(QStringLiteral("Input")), paint);
    EXPECT_EQ(m_network->selectedNodes(),
              QList<OssSnBaseNode *>{m_dot->inputNode(QStringLiteral("Input"))});
    EXPECT_TRUE(paint->imageSet()->name().startsWith(QStringLiteral("Node_Bake_")));
    EXPECT_EQ(paint->imageSet()->pixels().keys(), QList<int>{1001});
    const QList<OssImageSet *> kept{m_bake->imageSet(), paint->imageSet()};
    EXPECT_EQ(m_network->shadingContext()->imageSets(), kept) << "no empty ones are left";
    EXPECT_EQ(undoCount(), 1);
    expectWhole();
    expectUndoIsExact(before);
}

TEST_F(BakingTest, exportGoesToAGeoChannelOfTheSameObject)
{
    const ExpectedLog expected("Node and geo-channel must belong to the same object.");
    OssGeoImageSet *channel = m_network->geoEntity()->addGeoImageSet(QStringLiteral("Rust"));
    OssGeoImageSet *foreign = m_project->addEntity(QStringLiteral("Other"))
                                  ->addGeoImageSet(QStringLiteral("Rust"));
    select({m_color});
    m_view->exportToGeoChannel();
    EXPECT_TRUE(logHas(QStringLiteral("[ !! ] Unable to request geo-channel from user")));
    m_view->exportToGeoChannel(foreign);
    EXPECT_FALSE(foreign->isValid());
    QSignalSpy said(OssStatusManager::instance(), &OssStatusManager::messageShown);
    m_view->exportToGeoChannel(channel);
    ASSERT_TRUE(channel->isValid());
    EXPECT_EQ(said.count(), 1) << "nothing in the graph shows it";
    EXPECT_EQ(channel->imageSet()->name(), QStringLiteral("Node_To_GeoChannel_Rust"));
    EXPECT_EQ(channel->imageSet()->pixels().size(), 1);

    // A bake point that is up to date is not computed again.
    select({m_bake});
    m_view->bakeSelectedBakePoints();
    m_view->exportToGeoChannel(channel);
    EXPECT_EQ(channel->imageSet()->pixels(), m_bake->imageSet()->pixels());
    EXPECT_NE(channel->imageSet(), m_bake->imageSet());
}

TEST_F(BakingTest, aNodeThatReadsTheChannelItGoesIntoIsExportedAsItWas)
{
    OssGeoImageSet *channel = m_network->geoEntity()->addGeoImageSet(QStringLiteral("Rust"));
    m_color->setAttribute(QStringLiteral("Color"), QVariant::fromValue(OssColor(1.0, 0.0, 0.0)));
    select({m_color});
    m_view->exportToGeoChannel(channel);
    const QMap<int, QString> red = channel->imageSet()->pixels();
    OssSnBaseNode *reader = addAt("Misc/Geo-Channel", {0, 300});
    reader->setAttribute(QStringLiteral("geoChannel"), QStringLiteral("Rust"));
    OssSnBaseNode *invert = addAt("Adjust/Invert", {300, 300});
    wire(reader, invert);
    select({invert});
    m_view->exportToGeoChannel(channel);
    const QMap<int, QString> once = channel->imageSet()->pixels();
    EXPECT_NE(once, red);
    m_view->exportToGeoChannel(channel);
    EXPECT_NE(channel->imageSet()->pixels(), once);
    EXPECT_EQ(channel->imageSet()->pixels(), red) << "inverted twice";
}

TEST_F(BakingTest, whatTheUserStopsOpensNoBoxAndLeavesNothing)
{
    OssGeoImageSet *channel = m_network->geoEntity()->addGeoImageSet(QStringLiteral("Rust"));
    m_bake->setImageSet(nullptr, true);
    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    auto *status = OssStatusManager::instance();
    const QObject listener;
    QObject::connect(status, &OssStatusManager::partChanged, &listener,
                     [status] { status->cancel(); });
    const std::function<void()> commands[] = {
        [&] { m_view->bakeToPaintableNode(); },
        [&] { m_view->exportToGeoChannel(channel); },
        [&] {
            select({m_bake});
            m_view->bakeSelectedBakePoints();
        },
    };
    select({m_color});
    for (const auto &command : commands) {
        const DialogAnswers answers(QString(), QMessageBox::Ok);
        OssApplication::setPopupsAllowed(false); // it waits for a script alone
        QSignalSpy said(status, &OssStatusManager::messageShown);
        command();
        EXPECT_EQ(answers.boxes.join(QLatin1Char('|')).toStdString(), "") << &command - commands;
        ASSERT_GE(said.count(), 1) << &command - commands;
        EXPECT_TRUE(said.last().first().toString().contains(QStringLiteral("topped")))
            << qPrintable(said.last().first().toString());
        EXPECT_EQ(m_project->stateHash(), before) << &command - commands;
        EXPECT_EQ(undoCount(), 0) << &command - commands;
    }
}

TEST_F(BakingTest, aMaterialsPreviewIsALitBallOfItsColor)
{
    const QTemporaryDir folder;
    const QString before = QDir::currentPath();
    ASSERT_TRUE(QDir::setCurrent(folder.path()));
    select({m_color});
    m_view->generateMaterialPreview();
    EXPECT_TRUE(QDir(folder.path()).isEmpty());
    const QString model = OssLayerShaderModelManager::instance()->modelIds().first();
    OssSnBaseNode *material = m_network->createNode(QStringLiteral("_System/Material"), {}, model);
    ASSERT_TRUE(material);
    select({material});
    m_view->generateMaterialPreview();
    const QImage picture(folder.filePath(QStringLiteral("MaterialPreview.png")));
    QDir::setCurrent(before);
    ASSERT_EQ(picture.size(), QSize(256, 256));
    EXPECT_EQ(qAlpha(picture.pixel(1, 1)), 0);
    EXPECT_EQ(qAlpha(picture.pixel(128, 128)), 255);
    EXPECT_GT(qGray(picture.pixel(80, 60)), qGray(picture.pixel(200, 220)));
}

TEST_F(BakingTest, aPortOrAChannelIsChosenOrNothingHappens)
{
    OssSnBaseNode *several = addAt("Procedural/Noise/Cellular", {900, 0});
    ASSERT_GT(several->outputPointNames().size(), 1);
    OssGeoImageSet *rust = m_network->geoEntity()->addGeoImageSet(QStringLiteral("Rust"));
    OssGeoImageSet *wood = m_network->geoEntity()->addGeoImageSet(QStringLiteral("Wood"));
    OssUndoManager::instance()->clear();
    select({several});
    {
        const int nodes = m_network->nodes().size();
        const DialogAnswers cancelled;
        m_view->bakeToPaintableNode();
        EXPECT_EQ(cancelled.questions, 1);
        EXPECT_EQ(undoCount(), 0);
        EXPECT_EQ(m_network->nodes().size(), nodes);
    }
    select({m_color});
    {
        const DialogAnswers cancelled;
        m_view->exportToGeoChannel();
        EXPECT_EQ(cancelled.questions, 1);
    }
    {
        const DialogAnswers chosen(QString(), QMessageBox::Ok, QStringLiteral("Wood"));
        m_view->exportToGeoChannel();
        EXPECT_EQ(chosen.boxes.join(QLatin1Char('|')).toStdString(), "");
        EXPECT_EQ(chosen.questions, 1);
        EXPECT_EQ(chosen.offered, (QStringList{QStringLiteral("Rust"), QStringLiteral("Wood")}));
        EXPECT_TRUE(bakesEnd());
    }
    EXPECT_FALSE(rust->isValid());
    EXPECT_TRUE(wood->isValid());
}

TEST_F(BakingTest, withoutChannelsTheExportSaysSo)
{
    select({m_color});
    const DialogAnswers answers(QString(), QMessageBox::Ok);
    m_view->exportToGeoChannel();
    EXPECT_EQ(answers.questions, 0);
    ASSERT_EQ(answers.boxes.size(), 1);
    EXPECT_TRUE(answers.boxes.first().startsWith(QStringLiteral("No geo-channels")));
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(BakingTest, imagesAreSetByTheirName)
{
    const OssImageSet *set = m_bake->imageSet();
    auto *other = qobject_cast<OssSnImageSetNodeBase *>(m_network->createPaintableNode({}));
    ASSERT_NE(other->imageSet(), set);
    const OssImageSet *own = other->imageSet();
    select({m_color, other});
    OssUndoManager::instance()->clear();
    {
        const DialogAnswers cancelled;
        m_view->setImageSetByNameAction();
    }
    {
        const DialogAnswers unknown(QString(), QMessageBox::Ok, QStringLiteral("No Such"));
        m_view->setImageSetByNameAction();
        EXPECT_TRUE(logHas(QStringLiteral("There are no images 'No Such'")));
    }
    EXPECT_EQ(undoCount(), 0);
    EXPECT_EQ(other->imageSet(), own);
    const DialogAnswers known(QString(), QMessageBox::Ok, set->name());
    m_view->setImageSetByNameAction();
    EXPECT_EQ(other->imageSet(), set);
    EXPECT_EQ(undoCount(), 1);
}

TEST_F(BakingTest, thePaintNodeTakesOverTheChosenOutputAlone)
{
    OssSnBaseNode *several = addAt("Procedural/Noise/Cellular", {900, 0});
    const QString first = several->outputPointNames().first();
    const QString last = several->outputPointNames().last();
    OssSnBaseNode *other = addAt("Misc/Dot", {1200, 300});
    ASSERT_TRUE(m_dot->setInputNode(QStringLiteral("Input"), several, last));
    ASSERT_TRUE(other->setInputNode(QStringLiteral("Input"), several, first));
    select({several});
    const DialogAnswers chosen(QString(), QMessageBox::Ok, last);
    m_view->bakeToPaintableNode();
    EXPECT_EQ(chosen.offered, several->outputPointNames());
    EXPECT_TRUE(bakesEnd());
    EXPECT_NE(qobject_cast<OssSnImageSetNodeBase *>(m_dot->inputNode(QStringLiteral("Input"))),
              nullptr);
    EXPECT_EQ(other->inputNode(QStringLiteral("Input")), several);
}

TEST_F(BakingTest, withoutAnObjectNothingIsExportedAndWhatFailsIsTakenBack)
{
    OssShaderNetwork alone;
    OssSnBaseNode *color = alone.createNode(QStringLiteral("Procedural/Color"));
    color->setSelected(true);
    OssGeoImageSet *channel = m_network->geoEntity()->addGeoImageSet(QStringLiteral("Rust"));
    OssUndoManager::instance()->clear();
    OssShaderNetworkView view(nullptr);
    view.setNetwork(&alone);
    view.exportToGeoChannel(channel);
    EXPECT_TRUE(logHas(QStringLiteral("pGeoEntity is NULL")));
    EXPECT_FALSE(channel->isValid());

    const ExpectedLog refused("it computes no pixels");
    const QByteArray before = m_project->stateHash();
    select({m_network->viewerNode()});
    m_view->exportToGeoChannel(channel);
    EXPECT_FALSE(channel->isValid());
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(undoCount(), 0);
}

TEST_F(BakingTest, withAUserBakesGoOnBesideOtherWorkAndAskForSizesThatNothingSays)
{
    auto *fresh = qobject_cast<OssSnBakePointNode *>(addAt("Misc/Bake Point", {900, 600}));
    ASSERT_EQ(fresh->imageSet(), nullptr);
    wire(m_color, fresh);
    OssApplication::setPopupsAllowed(true);
    select({fresh, m_bake});
    const QByteArray before = m_project->stateHash();
    whenOpen<QDialog>([](QDialog *dialog) { dialog->reject(); });
    m_view->bakeSelectedBakePoints();
    EXPECT_FALSE(OssBakeManager::instance()->isRunning());
    EXPECT_EQ(m_project->stateHash(), before);
    whenOpen<QDialog>([](QDialog *dialog) {
        auto *size = dialog->findChild<QComboBox *>(QStringLiteral("resolution"));
        auto *depth = dialog->findChild<QComboBox *>(QStringLiteral("depth"));
        EXPECT_EQ(size->currentText(), QStringLiteral("2048")) << "the project's";
        size->setCurrentText(QStringLiteral("256"));
        depth->setCurrentText(QStringLiteral("8 bit"));
        dialog->accept();
    });
    m_view->bakeSelectedBakePoints();
    EXPECT_TRUE(OssBakeManager::instance()->isRunning());
    EXPECT_TRUE(bakesEnd());
    EXPECT_TRUE(fresh->isBakedResultUpToDate());
    EXPECT_TRUE(m_bake->isBakedResultUpToDate());
    EXPECT_EQ(fresh->imageSet()->resolution(), 256);
    EXPECT_EQ(fresh->imageSet()->engineDepth(), OssEvDepth::Byte);
    EXPECT_FALSE(fresh->asksForSize());
    m_view->bakeSelectedBakePointsAgain(); // which asks nothing any more
    EXPECT_TRUE(bakesEnd());
    EXPECT_EQ(OssBakeManager::instance()->report().baked.size(), 2);
}

TEST_F(BakingTest, withAUserAPaintNodeAppearsWholeOnceItIsBakedAndSpoilsNoOtherSelection)
{
    OssApplication::setPopupsAllowed(true);
    m_project->setNewResolution(256);
    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    const int nodes = m_network->nodes().size();
    select({m_color});
    m_view->bakeToPaintableNode();
    EXPECT_TRUE(OssBakeManager::instance()->isRunning());
    EXPECT_FALSE(OssStatusManager::instance()->isBlocking());
    EXPECT_EQ(m_network->nodes().size(), nodes);
    EXPECT_EQ(m_project->stateHash(), before);
    select({m_blur}); // the user goes on
    ASSERT_TRUE(bakesEnd());
    const auto *paint = qobject_cast<OssSnImageSetNodeBase *>(
        m_dot->inputNode(QStringLiteral("Input")));
    ASSERT_NE(paint, nullptr);
    EXPECT_EQ(paint->imageSet()->pixels().keys(), QList<int>{1001});
    EXPECT_EQ(paint->imageSet()->resolution(), 256);
    EXPECT_EQ(m_network->selectedNodes(), QList<OssSnBaseNode *>{m_blur});
    EXPECT_EQ(undoCount(), 1);
    expectWhole();
    expectUndoIsExact(before);
}

TEST_F(BakingTest, withAUserGeoChannelsAreFilledBesideOtherWorkUnlessThatIsStopped)
{
    OssApplication::setPopupsAllowed(true);
    OssGeoImageSet *channel = m_network->geoEntity()->addGeoImageSet(QStringLiteral("Rust"));
    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    select({m_color});
    m_view->exportToGeoChannel(channel);
    EXPECT_FALSE(OssStatusManager::instance()->isBlocking());
    OssBakeManager::instance()->cancel();
    ASSERT_TRUE(bakesEnd());
    EXPECT_EQ(m_project->stateHash(), before);
    EXPECT_EQ(undoCount(), 0);
    QSignalSpy said(OssStatusManager::instance(), &OssStatusManager::messageShown);
    m_view->exportToGeoChannel(channel);
    m_color->setAttribute(QStringLiteral("Color"), QVariant::fromValue(OssColor(1.0, 0.0, 0.0)));
    ASSERT_TRUE(bakesEnd());
    ASSERT_TRUE(channel->isValid());
    EXPECT_EQ(said.last().first().toString(),
              m_color->name() + QStringLiteral(" is in the geo-channel Rust"));
    EXPECT_EQ(undoCount(), 2) << "the edit and the bake";
}
