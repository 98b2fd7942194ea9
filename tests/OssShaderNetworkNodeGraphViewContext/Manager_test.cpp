#include "GraphFixture.h"
#include "GraphUser.h"
#include "OssCore/Program/OssPreferenceManager.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssInterface/Palettes/OssPalette.h"
#include "OssInterface/Palettes/OssPaletteManager.h"
#include "OssModel/Nodes/OssSnChannelInputNode.h"
#include "OssModel/Objects/OssChannel.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QAction>
#include <QMetaProperty>
#include <QPointer>
#include <QSignalSpy>
#include <QTabBar>
#include <QtTest>

namespace {

using ManagerTest = GraphFixture;

TEST_F(ManagerTest, scenesLiveAsLongAsTheirNetwork)
{
    auto network = std::make_unique<OssShaderNetwork>();
    OssSnBaseNode *node = network->createNode(text("Filter/Blur"));
    const QPointer<QGraphicsScene> scene = m_manager->sceneForNetwork(network.get());
    EXPECT_EQ(itemOf(node)->scene(), scene);
    OssUndoManager::instance()->clear();
    network.reset();
    EXPECT_TRUE(scene.isNull());
    QObject unknown;
    m_manager->onShaderNetworkDestroyed(&unknown);
    expectLogged("Failed to find scene for network");
    const QPointer<QGraphicsScene> open = m_view->scene();
    OssProjectManager::instance()->closeProject();
    EXPECT_TRUE(open.isNull());
    OssDebugLog::instance()->clear();
    m_manager->onShaderNetworkDestroyed(&unknown);
    EXPECT_TRUE(OssDebugLog::instance()->lines().isEmpty());
    replaceProject();
}

TEST_F(ManagerTest, aNetworkThatOutlivesAProjectIsFollowedOnce)
{
    auto network = std::make_unique<OssShaderNetwork>();
    m_manager->sceneForNetwork(network.get());
    OssProjectManager::instance()->closeProject();
    const QPointer<QGraphicsScene> scene = m_manager->sceneForNetwork(network.get());
    replaceProject();
    m_manager->sceneForNetwork(m_network);
    network.reset();
    EXPECT_TRUE(scene.isNull());
    EXPECT_FALSE(logHas(text("Failed to find scene for network")));
}

TEST_F(ManagerTest, theRootViewForgetsANetworkThatDies)
{
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    auto shown = std::make_unique<OssShaderNetwork>();
    networks->setCurrentShaderNetwork(shown.get());
    ASSERT_EQ(m_view->network(), shown.get());
    shown.reset();
    EXPECT_EQ(m_view->network(), nullptr);
    networks->setCurrentShaderNetwork(m_network);
    EXPECT_EQ(m_view->network(), m_network);
}

TEST_F(ManagerTest, eachNetworkIsShownWhereItWasLeft)
{
    addAt("Filter/Blur", {0, 0});
    addAt("Filter/Blur", {3000, 2000});
    OssShaderNetwork other;
    m_view->fitInView({100, 200, 450, 300}, Qt::KeepAspectRatio);
    const QRectF left = m_view->viewportInSceneCoords();
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    networks->setCurrentShaderNetwork(&other);
    EXPECT_EQ(m_view->network(), &other);
    networks->setCurrentShaderNetwork(m_network);
    const QRectF back = m_view->viewportInSceneCoords();
    EXPECT_LT(QLineF(back.topLeft(), left.topLeft()).length(), 0.01);
    EXPECT_LT(QLineF(back.bottomRight(), left.bottomRight()).length(), 0.01);
}

TEST_F(ManagerTest, missingThingsAreALineAndNoEffect)
{
    m_manager->onNodeRegistered(nullptr, nullptr);
    m_manager->onNodeRegistered(m_network, nullptr);
    m_manager->onAfterShaderNetworkEndCollection(nullptr);
    expectLogged("Network is NULL");
    expectLogged("Node is NULL");
    m_manager->onNodeCollapsedModeChanged();
    expectLogged("sender() is NULL");
    m_manager->matchNodePosition(nullptr, nullptr);
    m_manager->focusOnNode(nullptr);
    m_manager->onNodePropertiesHoverChanged(nullptr, nullptr);
}

TEST_F(ManagerTest, focusSelectsAndFramesTheNode)
{
    OssSnBaseNode *near = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *far = addAt("Filter/Blur", {20000, 15000});
    near->setSelected(true);
    OssShaderNetworkManager::instance()->requestFocus(far);
    EXPECT_EQ(m_network->selectedNodes(), QList<OssSnBaseNode *>{far});
    EXPECT_TRUE(m_view->viewportInSceneCoords().contains(rectOf(far)));
    OssShaderNetwork other; // another root
    OssSnBaseNode *elsewhere = other.createNode(text("Filter/Blur"));
    m_manager->focusOnNode(elsewhere);
    EXPECT_TRUE(far->selected());
    EXPECT_FALSE(elsewhere->selected());
    OssUndoManager::instance()->clear();
}

TEST_F(ManagerTest, matchingAPositionIsOneStep)
{
    OssSnBaseNode *a = addAt("Filter/Blur", {10, 20});
    OssSnBaseNode *b = addAt("Filter/Blur", {300, 20});
    begin();
    Q_EMIT OssShaderNetworkManager::instance()->matchNodePositionRequest(a, b);
    EXPECT_EQ(itemOf(b)->pos(), QPointF(10, 20));
    EXPECT_EQ(undoCount(), 1);
    undo();
    EXPECT_EQ(itemOf(b)->pos(), QPointF(300, 20));
}

TEST_F(ManagerTest, debugMarksFollowTheRequest)
{
    OssSnBaseNode *a = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *b = addAt("Filter/Blur", {300, 0});
    wire(a, b);
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    networks->setDebugNodes(
        {{a->uuidString(), Qt::red}, {text("nobody"), Qt::red}},
        {{b->uuidString(), {{text("Input"), Qt::green}, {text("Nothing"), Qt::green}}}});
    EXPECT_TRUE(itemOf(a)->hasMark(OssNgNode::Debug));
    const OssNgEdge *edge = itemOf(b)->input(text("Input"));
    EXPECT_TRUE(edge->hasMark(OssNgEdge::Debug));
    EXPECT_EQ(edge->debugColor(), QColor(Qt::green));
    networks->setDebugNodes({}, {});
    EXPECT_FALSE(itemOf(a)->hasMark(OssNgNode::Debug));
    EXPECT_FALSE(edge->hasMark(OssNgEdge::Debug));
}

TEST_F(ManagerTest, paintNodesOfTheCurrentChannelAreHighlighted)
{
    auto *mine = qobject_cast<OssSnChannelInputNode *>(addAt("Misc/Channel Input", {0, 0}));
    auto *other = qobject_cast<OssSnChannelInputNode *>(addAt("Misc/Channel Input", {300, 0}));
    OssShadingGroup *group = m_project->shadingGroups().first();
    auto *channel = new OssChannel(text("Color"), group); // the group owns it
    auto *set = new OssImageSet(text("Color"), group);
    set->setChannel(channel);
    mine->setImageSet(set, true);
    OssProjectManager::instance()->setCurrentChannel(channel);
    EXPECT_TRUE(itemOf(mine)->hasMark(OssNgNode::Highlighted));
    EXPECT_FALSE(itemOf(other)->hasMark(OssNgNode::Highlighted));
}

TEST_F(ManagerTest, selectedImagesBecomeNodesInOneStep)
{
    QList<OssImage *> images;
    for (const char *name : {"a.png", "b.png", "c.png"})
        images.append(openPicture(file(name)));
    const auto trigger = [this](const char *name) {
        const auto actions = m_manager->findChildren<QAction *>();
        for (QAction *action : actions) {
            if (action->text() == QLatin1String(name))
                action->trigger();
        }
    };
    OssUndoManager::instance()->clear();
    const QByteArray before = m_project->stateHash();
    trigger("As Tiled"); // none is selected
    EXPECT_EQ(undoCount(), 0);
    images.at(0)->setSelected(true);
    images.at(2)->setSelected(true);
    trigger("As Tiled");
    expectStep("Add to Nodegraph as Tiled");
    int tiled = 0;
    for (const OssSnBaseNode *node : m_network->nodes())
        tiled += node->pathKey() == QLatin1String("Procedural/Pattern/Tiled");
    EXPECT_EQ(tiled, 2);
    expectUndoIsExact(before);
    images.at(0)->setSelected(false);
    trigger("As TriPlanar");
    EXPECT_EQ(m_network->nodes().last()->pathKey(), text("Environment/Tri Planar Projection"));
}

TEST_F(ManagerTest, aNetworkBehindAGroupsTabBecomesNobodysView)
{
    auto *group = addGroup();
    m_manager->nodeGraphWidget()->showGroupNodeSubgraph(group);
    OssShaderNetworkManager *networks = OssShaderNetworkManager::instance();
    OssShaderNetwork other;
    networks->setCurrentShaderNetwork(&other);
    EXPECT_EQ(m_view->network(), &other);
    EXPECT_EQ(networks->currentViewNetwork(), group->groupNetwork()) << "which is looked at";
    networks->setCurrentShaderNetwork(m_network);
    m_manager->nodeGraphWidget()->setCurrentIndex(0);
    EXPECT_EQ(networks->currentViewNetwork(), m_network);
    m_manager->nodeGraphWidget()->hideTab(1);
}

TEST_F(ManagerTest, modesAreTakenByTheSelectionInAViewAndTheStreamsOnlyByNodesThatHaveThem)
{
    OssSnBaseNode *plain = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *shader = addAt("Shaders/Standard Surface", {300, 0});
    select({plain, shader});
    const auto switchTo = [](const char *mode) {
        graphAction(text("Switch to %1 mode").arg(text(mode)))->trigger();
    };
    const auto expectModes = [&](int plains, int shaders) {
        EXPECT_EQ(contextOf(plain)->portListModeAsInt(), plains);
        EXPECT_EQ(contextOf(shader)->portListModeAsInt(), shaders);
    };
    m_manager->showNetworkInView(nullptr, m_view);
    switchTo("Collapsed");
    expectLogged("Network is NULL");
    m_manager->showNetworkInView(m_network, m_view);
    {
        const OtherPage other;
        switchTo("Collapsed");
        m_manager->beautifyNodesLayout();
        expectLogged("GraphView is NULL");
    }
    expectModes(0, 0);
    switchTo("Stream Collapsed");
    expectModes(0, 2);
    switchTo("Collapsed");
    expectModes(4, 4);
}

// --- preferences

TEST_F(ManagerTest, preferencesTakeGoodValuesAndTellOnce)
{
    QSignalSpy control(m_manager, &OssSnNodeGraphViewContextManager::controlTypeChanged);
    m_manager->setControlType(text("kova"));
    m_manager->setControlType(text("Ossa"));
    EXPECT_EQ(control.count(), 1);
    m_manager->resetControlType();
    EXPECT_EQ(m_manager->controlType(), text("Kova"));

    m_manager->setDefaultNodePortDisplayMode(text("No Port List (Vertical)"));
    EXPECT_EQ(m_manager->defaultNodePortDisplayModeAsEnum(), 1);
    EXPECT_EQ(contextOf(add("Filter/Blur"))->portListMode(), OssNgExtendedNode::NoPortList);
    EXPECT_EQ(contextOf(add("Filter/Blur"))->portListModeAsInt(), 1);
    m_manager->setDefaultNodePortDisplayMode(text("nonsense"));
    EXPECT_EQ(m_manager->defaultNodePortDisplayModeAsEnum(), 0);

    QSignalSpy zoom(m_manager, &OssSnNodeGraphViewContextManager::zoomToChangedAsInt);
    QSignalSpy zoomByName(m_manager, SIGNAL(zoomToChanged(ZoomTo)));
    QSignalSpy collapsedByName(m_manager,
                               SIGNAL(defaultMCMCollapsedStateChanged(DefaultMCMCollapsedState)));
    m_manager->setDefaultMCMCollapsedState(OssSnNodeGraphViewContextManager::Collapsed);
    m_manager->resetDefaultMCMCollapsedState();
    EXPECT_EQ(collapsedByName.count(), 2);
    m_manager->setZoomTo(7);
    EXPECT_EQ(zoomByName.count(), 1);
    ASSERT_EQ(zoom.count(), 1);
    EXPECT_EQ(zoom.first().first().toInt(), 7);
    m_manager->resetZoomTo();
    EXPECT_EQ(m_manager->prettyPropertyName(text("zoomTo")), text("Zoom To"));
    EXPECT_EQ(m_manager->prettyPropertyName(text("somethingElse")), text("Something Else"));
}

TEST_F(ManagerTest, preferencesAreSavedAndFoundByTheDialog)
{
    m_manager->setShakeToExtractShakes(9);
    m_manager->setAutoUpdateUpstreamMergeNodeColorspaceEnabled(text("Leave"));
    OssPreferenceManager::instance()->savePreferences();
    OssSettings settings;
    settings.beginGroup(text("Node Graph"));
    EXPECT_EQ(settings.value(text("shakeToExtractShakes")).toInt(), 9);
    settings.setValue(text("shakeToExtractShakes"), text("many"));
    settings.setValue(text("controlType"), text("Other"));
    settings.sync();
    m_manager->loadPreferences();
    EXPECT_EQ(m_manager->shakeToExtractShakes(), 0);
    EXPECT_EQ(m_manager->controlType(), text("Kova"));
    m_manager->resetShakeToExtractShakes();
    m_manager->resetAutoUpdateUpstreamMergeNodeColorspaceEnabled();
    m_manager->savePreferences();

    int found = 0;
    const auto preferences = OssPreferenceManager::instance()->preferences();
    for (const OssPreferenceManager::Preference &preference : preferences) {
        if (preference.object != m_manager)
            continue;
        ++found;
        EXPECT_EQ(preference.page, text("Node Graph"));
        EXPECT_FALSE(OssPreferenceManager::toolTip(preference).isEmpty())
            << qPrintable(preference.key);
        EXPECT_TRUE(OssPreferenceManager::value(preference).isValid())
            << qPrintable(preference.key);
        const QVariant before = OssPreferenceManager::value(preference);
        OssPreferenceManager::reset(preference);
        EXPECT_EQ(OssPreferenceManager::value(preference), before) << qPrintable(preference.key);
    }
    EXPECT_EQ(found, 10);
}

TEST_F(ManagerTest, everyPreferenceTellsOfAnotherValueOnceAndOfItsOwnNever)
{
    const QMetaObject &type = OssSnNodeGraphViewContextManager::staticMetaObject;
    int told = 0;
    for (int i = type.propertyOffset(); i < type.propertyCount(); ++i) {
        const QMetaProperty property = type.property(i);
        const QVariant own = property.read(m_manager);
        QVariant other = own;
        if (own.userType() == QMetaType::Bool) {
            other = !own.toBool();
        } else if (own.userType() == QMetaType::QString) {
            QStringList texts;
            QMetaObject::invokeMethod(m_manager, (QByteArray(property.name()) + "List").constData(),
                                      Q_RETURN_ARG(QStringList, texts));
            texts.removeAll(own.toString());
            other = texts.value(0);
        } else {
            other = own.toInt() == 0 ? 1 : 0;
        }
        const QSignalSpy spy(m_manager, property.notifySignal());
        EXPECT_TRUE(property.write(m_manager, own)) << property.name();
        EXPECT_EQ(spy.count(), 0) << property.name();
        EXPECT_TRUE(property.write(m_manager, other)) << property.name();
        EXPECT_EQ(spy.count(), 1) << property.name();
        const QVariant now = property.read(m_manager);
        EXPECT_TRUE(own.userType() == QMetaType::QString ? now == other
                                                         : now.toInt() == other.toInt())
            << property.name();
        EXPECT_TRUE(property.write(m_manager, own));
        told += spy.count();
    }
    EXPECT_EQ(told, 20);
    m_manager->toggleShakeToExtractEnabled();
    EXPECT_FALSE(m_manager->shakeToExtractEnabled());
    m_manager->toggleShakeToExtractEnabled();
    EXPECT_TRUE(m_manager->shakeToExtractEnabled());
}

TEST_F(ManagerTest, anOpenedProjectsNodesListTheirPortsAsTheyDidAndOldBackdropsGetTheirType)
{
    OssSnBaseNode *bare = addAt("Filter/Blur", {0, 0}, "Bare");
    addAt("Filter/Blur", {300, 0}, "Full");
    contextOf(bare)->setPortListMode(OssNgExtendedNode::NoPortList);
    OssSnBaseNode *old = addAt("Misc/Backdrop", {600, 0});
    OssSnBaseNode *note = addAt("Misc/Sticky Note", {900, 0});
    for (OssSnBaseNode *node : {old, note}) {
        node->setPathKey({});
        node->setVersionUUID({});
    }
    m_manager->onProjectMadeCurrentUpgradeOldBadBackdrops(m_project);
    EXPECT_EQ(old->pathKey(), text("Misc/Backdrop"));
    EXPECT_FALSE(old->versionUUID().isEmpty());
    EXPECT_EQ(note->pathKey(), QString());
    note->setPathKey(text("Misc/Sticky Note"));
    m_manager->onProjectMadeCurrentUpgradeOldBadBackdrops(m_project); // that have one keep it
    EXPECT_EQ(old->pathKey(), text("Misc/Backdrop"));
    reopen();
    EXPECT_FALSE(itemOf(m_network->node(text("Bare")))->labelsVisible());
    EXPECT_TRUE(itemOf(m_network->node(text("Full")))->labelsVisible());
}

TEST_F(ManagerTest, palettesComeToTheFrontAndCommandsAreFiled)
{
    OssPalette *palette = OssPaletteManager::instance()->find(text("Node Properties"), false);
    ASSERT_NE(palette, nullptr);
    palette->setVisible(false);
    m_manager->showPropertiesPalette();
    EXPECT_TRUE(palette->isVisible());
    m_manager->showPropertiesPalette();
    EXPECT_TRUE(palette->isVisible());
    palette->setVisible(false);
    for (const char *path :
         {"Autoplace", "Delete All Properties", "Shake To Extract", "Switch to Expanded mode"})
        EXPECT_NE(graphAction(path), nullptr) << path;
    QAction *shake = graphAction("Shake To Extract");
    QSignalSpy told(OssStatusManager::instance(), &OssStatusManager::messageShown);
    for (int turn = 0; turn < 2; ++turn) {
        EXPECT_EQ(shake->isChecked(), m_manager->shakeToExtractEnabled());
        const bool before = shake->isChecked();
        shake->trigger();
        EXPECT_NE(m_manager->shakeToExtractEnabled(), before);
        EXPECT_EQ(told.size(), turn + 1);
    }
    m_manager->setShakeToExtractEnabled(false);
    EXPECT_FALSE(shake->isChecked()) << "whoever changed it";
    m_manager->resetShakeToExtractEnabled();
    m_manager->onGroupPortNodeMoved(m_network, true); // of no group
    m_manager->onGroupPortNodeMoved(m_network, false);
    EXPECT_FALSE(logHas(text("GroupNode is NULL")));
}

// --- tab widget

TEST_F(ManagerTest, rootTabIsNamedAfterItsObject)
{
    OssSnNodeGraphWidget *widget = m_manager->nodeGraphWidget();
    OssGeoEntity *entity = m_project->entities().first();
    entity->setName(QString(40, QLatin1Char('a')));
    widget->updateRootLevelText(m_network);
    EXPECT_EQ(widget->tabText(0), QString(40, QLatin1Char('a')) + text(" - Root"));
    const QString longName = QString(20, QLatin1Char('a')) + QLatin1Char('x')
                             + QString(20, QLatin1Char('b'));
    entity->setName(longName);
    widget->updateRootLevelText(m_network);
    EXPECT_EQ(widget->tabText(0), QString(20, QLatin1Char('a')) + text("...")
                                      + QString(20, QLatin1Char('b')) + text(" - Root"));
    EXPECT_EQ(widget->tabToolTip(0), longName);
    entity->setName(text("Wood"));
    EXPECT_EQ(widget->tabText(0), text("Wood - Root")) << "renamed while it is shown";
    OssShaderNetwork alone;
    widget->updateRootLevelText(&alone);
    EXPECT_EQ(widget->tabText(0), text("Root"));
    entity->setName(text("Metal"));
    EXPECT_EQ(widget->tabText(0), text("Root")) << "another network is shown";
    widget->updateRootLevelText(nullptr);
    EXPECT_EQ(widget->tabText(0), text("Root"));
    for (const auto side : {QTabBar::LeftSide, QTabBar::RightSide}) {
        const QWidget *button = widget->tabBar()->tabButton(0, side);
        EXPECT_TRUE(!button || button->isHidden());
    }
}

TEST_F(ManagerTest, onlyTheLeftButtonChoosesATabAndOneBesideThemNone)
{
    OssSnNodeGraphWidget *widget = m_manager->nodeGraphWidget();
    const QPoint beside(widget->width() - 3, 3);
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::LeftButton}) {
        QTest::mouseClick(widget, button, {}, beside);
        // A tab bar with one tab always has a current one; the widget asked for none.
        if (button == Qt::LeftButton)
            widget->setCurrentIndex(0);
        EXPECT_EQ(widget->currentView(), m_view);
    }
    widget->showGroupNodeSubgraph(addGroup());
    ASSERT_EQ(widget->currentIndex(), 1);
    const QPoint root = widget->tabBar()->tabRect(0).center();
    QTest::mousePress(widget, Qt::RightButton, {}, root);
    EXPECT_EQ(widget->currentIndex(), 1);
    QTest::mousePress(widget, Qt::LeftButton, {}, root);
    EXPECT_EQ(widget->currentIndex(), 0);
    widget->hideTab(1);
}

} // namespace
