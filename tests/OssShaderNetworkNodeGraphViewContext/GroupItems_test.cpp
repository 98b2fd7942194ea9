#include "GraphFixture.h"
#include "OssSnGroupNodeGraphViewContext.h"
#include "support/DialogAnswers.h"
#include "support/OssaFiles.h"

#include <QApplication>
#include <QTimer>
#include <QTreeWidget>

namespace {

/// Items of groups: their tabs, their ports, and what stands for these inside.
using GroupItems = GraphFixture;

TEST_F(GroupItems, aTabBehindLeavesTheCurrentOneAndFramesItsOwn)
{
    OssSnGroupNode *group = addGroup("Behind");
    OssSnBaseNode *inside = addInside(group, "Filter/Blur");
    contextOf(inside)->setNodePosition({8000, 6000});
    QTabWidget *widget = m_manager->nodeGraphWidget();
    auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(contextOf(group));
    context->makeGroupNodeTabCurrent(group); // there is none yet
    EXPECT_EQ(widget->count(), 1);
    context->addTabToWidget(inside); // all contexts hear of every group
    EXPECT_EQ(widget->count(), 1);
    context->showGroupNodeTabBehind();
    ASSERT_EQ(widget->count(), 2);
    EXPECT_EQ(widget->currentIndex(), 0);
    const OssShaderNetworkView *view = context->groupView();
    EXPECT_TRUE(view->viewportInSceneCoords().contains(rectOf(inside)));
    context->showGroupNodeTab();
    EXPECT_EQ(widget->currentIndex(), 1);
    context->showGroupNodeTabBehind();
    EXPECT_EQ(widget->currentIndex(), 1);
    EXPECT_EQ(widget->count(), 2);
    context->makeGroupNodeTabCurrent(inside);
    widget->setCurrentIndex(0);
    context->makeGroupNodeTabCurrent(inside);
    EXPECT_EQ(widget->currentIndex(), 0);
    context->makeGroupNodeTabCurrent(group);
    EXPECT_EQ(widget->currentIndex(), 1);
}

TEST_F(GroupItems, keysGoToTheViewThatComesForwardWhenATabGoes)
{
    QTabWidget *widget = m_manager->nodeGraphWidget();
    widget->window()->show();
    QApplication::setActiveWindow(widget->window());
    OssSnGroupNode *group = addGroup("Gone");
    auto *context = qobject_cast<OssSnGroupNodeGraphViewContext *>(contextOf(group));
    context->showGroupNodeTab();
    ASSERT_TRUE(context->groupView()->hasFocus());
    Q_EMIT widget->tabCloseRequested(1);
    EXPECT_TRUE(m_view->hasFocus());
    context->showGroupNodeTab();
    undo();
    ASSERT_EQ(widget->count(), 1);
    EXPECT_TRUE(m_view->hasFocus());
}

TEST_F(GroupItems, whoeverLookedIntoAGroupThatGoesSeesWhatItWasIn)
{
    const auto *widget = m_manager->nodeGraphWidget();
    const auto showInside = [](OssSnGroupNode *group) {
        qobject_cast<OssSnGroupNodeGraphViewContext *>(contextOf(group))->showGroupNodeTab();
    };
    OssSnGroupNode *neighbour = addGroup("Neighbour");
    OssSnGroupNode *outer = addGroup("Outer");
    auto *inner = qobject_cast<OssSnGroupNode *>(addInside(outer, "Misc/Group", "Inner"));
    for (OssSnGroupNode *group : {neighbour, outer, inner})
        showInside(group);
    outer->groupNetwork()->removeNodes({inner});
    EXPECT_EQ(widget->currentView()->network(), outer->groupNetwork());
    m_network->removeNodes({outer});
    EXPECT_EQ(widget->currentView(), m_view) << "and not the neighbour";
    undo();
    undo();
    showInside(inner);
    m_network->removeNodes({outer});
    EXPECT_EQ(widget->currentView(), m_view) << "both at once";
    EXPECT_EQ(widget->count(), 2);
}

TEST_F(GroupItems, aGroupIsExportedToTheChosenFileOrTheReasonIsTold)
{
    OssSnGroupNode *group = addGroup("Dirt");
    const QString path = file("dirt.ong");
    {
        const DialogAnswers cancelled;
        EXPECT_TRUE(contextOf(group)->exportNode().isCancelled());
        EXPECT_EQ(cancelled.questions, 1);
    }
    EXPECT_FALSE(QFile::exists(path));
    {
        const DialogAnswers answers(path, QMessageBox::Ok);
        EXPECT_TRUE(contextOf(group)->exportNode());
        EXPECT_TRUE(QFile::exists(path));
    }
    const ExpectedLog possible("", ExpectedLog::Possible);
    ASSERT_NO_FATAL_FAILURE(writeFile(file("plain.ong")));
    const DialogAnswers answers(file("plain.ong/x.ong"), QMessageBox::Ok);
    EXPECT_TRUE(contextOf(group)->exportNode().error().contains(text("plain.ong")));
}

TEST_F(GroupItems, portsOfAGroupFollowTheHeightOfTheNodesThatStandForThem)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    for (const bool inputs : {true, false}) {
        SCOPED_TRACE(inputs ? "inputs" : "outputs");
        OssSnGroupNode *group = addGroup();
        const auto names = [&] {
            return inputs ? group->inputNames() : group->outputPointNames();
        };
        QList<OssSnBaseNode *> inside;
        for (const char *name : {"A", "B", "C"}) {
            inside.append(inputs ? group->createInput(text(name), OssSnDataKind::Color)
                                 : group->createOutput(text(name), OssSnDataKind::Color));
            contextOf(inside.last())->setNodePosition({0.0, 100.0 * inside.size()});
        }
        OssSnBaseNode *apart = addInside(group, "Filter/Blur");
        OssUndoManager::instance()->clear();
        Q_EMIT itemOf(apart)->posChanged({0, 900}); // stands for no port
        EXPECT_EQ(undoCount(), 0);
        itemOf(inside.first())->setPosition({0, 500});
        Q_EMIT itemOf(inside.first())->posChanged({0, 500});
        const QStringList order = texts({"B", "C", "A"});
        EXPECT_EQ(names(), order);
        EXPECT_EQ(inputs ? itemOf(group)->inputPortNames() : itemOf(group)->outputPortNames(),
                  order);
        undo();
        EXPECT_EQ(names(), texts({"A", "B", "C"}));
        if (inputs) {
            Q_EMIT networks->arrangeGroupInputNodesByOrderRequested(group->groupNetwork(),
                                                                    texts({"C", "A", "B"}));
            EXPECT_LT(itemOf(inside.at(2))->y(), itemOf(inside.at(0))->y());
            EXPECT_LT(itemOf(inside.at(0))->y(), itemOf(inside.at(1))->y());
        } else {
            Q_EMIT networks->reorderGroupOutputsByPosRequested(group);
            EXPECT_EQ(names(), order);
        }
    }
    m_manager->reorderGroupInputsByPos(nullptr);
    expectLogged("GroupNode is NULL");
    OssDebugLog::instance()->clear();
    m_manager->reorderGroupOutputsByPos(nullptr);
    expectLogged("GroupNode is NULL");
}

TEST_F(GroupItems, streamsAreGatheredAndWhatBelongsToAllOfThemIsNot)
{
    const auto isGathered = [](const OssSnBaseNode *node, const char *input) {
        return qobject_cast<OssNgExtendedNode *>(itemOf(node))->isInputInCluster(text(input));
    };
    OssSnBaseNode *merge = addAt("_System/MultiChannelMerge", {0, 0});
    ASSERT_TRUE(merge->hasInput(text("Roughness Base")));
    for (const char *input : {"Roughness Base", "Roughness Over", "Normal Base"})
        EXPECT_TRUE(isGathered(merge, input)) << input;
    EXPECT_FALSE(isGathered(merge, "Mask"));
    const auto *item = qobject_cast<OssNgExtendedNode *>(itemOf(merge));
    contextOf(merge)->setPortListMode(int(OssNgExtendedNode::StreamCollapsed));
    const QStringList outputs = merge->outputPointNames();
    ASSERT_GT(outputs.size(), 1);
    EXPECT_EQ(item->outputPortScenePos(outputs.first()), item->outputPortScenePos(outputs.last()));
    EXPECT_EQ(item->inputPortScenePos(text("Roughness Base")),
              item->inputPortScenePos(text("Normal Base")));
    EXPECT_NE(item->inputPortScenePos(text("Roughness Base")),
              item->inputPortScenePos(text("Roughness Over")));
    OssSnGroupNode *group = addGroup("Plain");
    for (const char *name : {"A Base", "B Base", "C"})
        group->createInput(text(name), OssSnDataKind::Color);
    Q_EMIT group->updatePortClusters();
    EXPECT_FALSE(isGathered(group, "A Base"));
    EXPECT_FALSE(isGathered(group, "C"));
    Q_EMIT qobject_cast<OssSnGroupNode *>(merge)->clearPortClusters();
    EXPECT_FALSE(isGathered(merge, "Roughness Base"));
    Q_EMIT qobject_cast<OssSnGroupNode *>(merge)->updatePortClusters();
    EXPECT_TRUE(isGathered(merge, "Roughness Base"));

    // What such a group is, its model decides; a plain one is what it looks like.
    EXPECT_TRUE(contextOf(merge)->versionHashSource().isEmpty());
    EXPECT_FALSE(contextOf(group)->versionHashSource().isEmpty());
}

TEST_F(GroupItems, nodesForNewPortsStandBesideWhatTheyFeedWhateverLiesBehind)
{
    QList<QPointF> places;
    for (const bool backdrop : {false, true}) {
        OssSnGroupNode *group = addGroup(backdrop ? "With" : "Without");
        OssShaderNetwork *inside = group->groupNetwork();
        if (backdrop) {
            OssSnBaseNode *area = inside->createNode(text("Misc/Backdrop"));
            contextOf(area)->setNodePosition({-900, -900});
            contextOf(area)->setNodeSize({3000, 3000});
        }
        OssSnBaseNode *blur = inside->createNode(text("Filter/Blur"));
        contextOf(blur)->setNodePosition({500, 100});
        OssSnBaseNode *input = group->createInput(text("In"), OssSnDataKind::Color);
        wire(input, blur, "Input");
        OssSnBaseNode *output = group->createOutput(text("Out"), OssSnDataKind::Color);
        output->setInputNode(output->inputNames().first(), blur, blur->prefferedOutputPoint());
        Q_EMIT group->newGroupNodeInputOutputCreated();
        EXPECT_LT(rectOf(input).right(), 500.0);
        EXPECT_GT(itemOf(output)->x(), rectOf(blur).right());
        places += {itemOf(input)->pos(), itemOf(output)->pos()};
    }
    EXPECT_EQ(places.at(0), places.at(2));
    EXPECT_EQ(places.at(1), places.at(3));
}

TEST_F(GroupItems, theLogSaysWhichOutputNothingFeeds)
{
    OssSnGroupNode *group = addGroup("Big Group");
    group->createOutput(text("Lone"), OssSnDataKind::Color);
    const OssDebugLog::Line line = OssDebugLog::instance()->lines().last();
    EXPECT_EQ(line.text, text("Output node should have only one input into the node"));
    EXPECT_TRUE(line.shown.endsWith(text("\"/Big Group/Lone\""))) << qPrintable(line.shown);
}

TEST_F(GroupItems, anOutputThatNothingFeedsStandsBelowTheOthersOrRightOfEverything)
{
    OssSnGroupNode *group = addGroup("Far");
    OssSnBaseNode *blur = addInside(group, "Filter/Blur");
    contextOf(blur)->setNodePosition({5000, 3000});
    OssSnBaseNode *lone = group->createOutput(text("Lone"), OssSnDataKind::Color);
    OssSnBaseNode *fed = group->createOutput(text("Fed"), OssSnDataKind::Color);
    Q_EMIT group->newGroupNodeInputOutputCreated();
    const QPointF beside = itemOf(lone)->pos();
    EXPECT_GT(beside.x(), rectOf(blur).right());
    EXPECT_EQ(beside.y(), 3000.0);
    EXPECT_EQ(itemOf(fed)->x(), beside.x());
    EXPECT_GT(itemOf(fed)->y(), rectOf(lone).bottom());
    fed->setInputNode(fed->inputNames().first(), blur, blur->prefferedOutputPoint());
    Q_EMIT group->newGroupNodeInputOutputCreated();
    EXPECT_EQ(itemOf(fed)->pos(), beside);
    EXPECT_GT(itemOf(lone)->y(), rectOf(fed).bottom());
}

TEST_F(GroupItems, theCommandOpensTheFirstSelectedGroupAndManagesKnobsFromInside)
{
    OssSnGroupNode *lower = addGroup("Lower");
    OssSnGroupNode *upper = addGroup("Upper");
    contextOf(lower)->setNodePosition({0, 300});
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, -300});
    select({});
    m_view->openGroupNodeSubgraph();
    select({blur});
    m_view->openGroupNodeSubgraph();
    QTabWidget *widget = m_manager->nodeGraphWidget();
    EXPECT_EQ(widget->count(), 1);
    select({blur, lower, upper});
    m_view->openGroupNodeSubgraph();
    ASSERT_EQ(widget->count(), 2);
    EXPECT_EQ(widget->tabText(1), text("Upper"));

    // Of the selected group, or of the one around.
    const auto managed = [](OssShaderNetworkView *view) {
        int knobs = -1;
        QTimer::singleShot(0, [&knobs] {
            QWidget *dialog = QApplication::activeModalWidget();
            if (!dialog)
                return;
            knobs = dialog->findChild<QTreeWidget *>()->topLevelItemCount();
            dialog->close();
        });
        view->manageUserKnobs();
        QCoreApplication::processEvents();
        return knobs;
    };
    OssSnBaseNode *inner = addInside(upper, "Filter/Blur");
    upper->createKnob(inner, text("Radius"));
    EXPECT_EQ(managed(m_manager->currentView()), 1);
    widget->setCurrentIndex(0);
    select({blur, lower});
    EXPECT_EQ(managed(m_view), 0);
    select({blur});
    EXPECT_EQ(managed(m_view), -1);
}

} // namespace
