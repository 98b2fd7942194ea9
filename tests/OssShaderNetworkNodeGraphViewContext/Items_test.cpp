#include "GraphFixture.h"
#include "Manager/NodeIcons.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Values/OssColor.h"
#include "OssModel/Evaluation/OssProblems.h"
#include "OssModel/Types/OssSnNodeType.h"
#include "OssNodeGraph/Items/OssNgUINode.h"
#include "OssSnUINodeGraphViewContext.h"

#include <QDir>
#include <QImage>
#include <QPainter>
#include <QtTest>

#include <functional>

namespace {

/// What items show of nodes, kind by kind, and what is asked of them.
class ItemsTest : public GraphFixture
{
protected:
    static QImage picture(OssNgNode *item)
    {
        QImage image(item->boundingRect().size().toSize(), QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        item->paintDetailed(&painter);
        return image;
    }

    /// Shows the network in the root view, when it is not there.
    void show(OssShaderNetwork *network)
    {
        OssShaderNetworkManager::instance()->setCurrentShaderNetwork(network);
    }

    QPointF middle() const { return m_manager->currentView()->viewportInSceneCoords().center(); }
};

TEST_F(ItemsTest, marksComeAndGoWithTheStateOfTheNode)
{
    OssSnBaseNode *node = addAt("Filter/Blur", {0, 0});
    const OssNgNode *item = itemOf(node);

    const struct
    {
        OssNgNode::Mark mark;
        std::function<void(bool)> set;
    } cases[] = {
        {OssNgNode::GuiActive,
         [&](bool on) {
             node->setGuiActive(on);
         }},
        {OssNgNode::Bypassed,
         [&](bool on) {
             node->setBypassed(on);
         }},
        {OssNgNode::Disabled,
         [&](bool on) {
             node->setEnabled(on ? 0 : 1);
         }},
        {OssNgNode::Cached,
         [&](bool on) {
             node->setCacheActive(on ? CacheActive : CacheOff);
         }},
    };

    for (const auto &c : cases) {
        EXPECT_FALSE(item->hasMark(c.mark)) << c.mark;
        for (const bool on : {true, false}) {
            c.set(on);
            EXPECT_EQ(item->hasMark(c.mark), on) << c.mark;
        }
    }
    EXPECT_FALSE(item->hasMark(OssNgNode::SystemShader));
    node->addTag(text("_systemShader"));
    EXPECT_TRUE(item->hasMark(OssNgNode::SystemShader));
    node->setDescription(text("softens"));
    EXPECT_EQ(item->toolTip(), text("softens"));
    node->setErrorText(text("no picture"));
    EXPECT_EQ(item->errorText(), text("no picture"));
}

TEST_F(ItemsTest, tipsSayWhatNodesAndPortsAreAndWhereWiresLead)
{
    OssSnBaseNode *brick = addAt("Procedural/Pattern/Brick", {0, 0}, "Brick");
    OssSnBaseNode *blur = addAt("Filter/Blur", {400, 0}, "Blur");
    const OssNgNode *from = itemOf(brick);
    const OssNgNode *to = itemOf(blur);
    const auto inputTip = [&] {
        return to->toolTipAt(to->mapFromScene(to->inputPortScenePos(text("Radius"))));
    };
    const auto outputTip = [&] {
        return from->toolTipAt(from->mapFromScene(from->outputPortScenePos(text("Height"))));
    };
    const QString described = text(
        "A map from 0 to 1 that the radius is multiplied by: 0 stays sharp");
    EXPECT_EQ(inputTip(), text("Radius\nInput, single value\n") + described);
    ASSERT_TRUE(blur->setInputNode(text("Radius"), brick, text("Height")));
    EXPECT_EQ(inputTip(), text("Radius\nInput, single value\nfrom Brick . Height\n") + described);
    EXPECT_TRUE(outputTip().startsWith(text("Height\nOutput, single value\nto Blur . Radius\n")))
        << qPrintable(outputTip());
    for (int i = 0; i < 5; ++i)
        add("Filter/Blur")->setInputNode(text("Radius"), brick, text("Height"));
    EXPECT_TRUE(outputTip().contains(text("\nand 2 more\n"))) << qPrintable(outputTip());
    const QPointF body = from->bodyRect().topLeft() + QPointF(40, 14);
    EXPECT_EQ(from->toolTipAt(body), brick->nodeType()->description);
    brick->setDescription(text("of the old wall"));
    EXPECT_EQ(from->toolTipAt(body), text("of the old wall\n") + brick->nodeType()->description);
}

TEST_F(ItemsTest, wiresShowWhetherTheirInputIsSharedAndOn)
{
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0});
    OssSnBaseNode *blur = addAt("Filter/Blur", {300, 0});
    blur->setInputShared(text("Input"), true); // there is no wire to show it yet
    wire(color, blur);
    const OssNgEdge *edge = itemOf(blur)->input(text("Input"));
    ASSERT_NE(edge, nullptr);
    EXPECT_TRUE(edge->hasMark(OssNgEdge::Shared));
    for (const bool on : {false, true}) {
        blur->setInputShared(text("Input"), on);
        EXPECT_EQ(edge->hasMark(OssNgEdge::Shared), on);
        blur->setInputEnabled(text("Input"), on);
        EXPECT_EQ(edge->hasMark(OssNgEdge::Bypassed), !on);
    }
    blur->setInputNode(text("Input"), nullptr, {});
    blur->setInputEnabled(text("Input"), false);
    EXPECT_EQ(itemOf(blur)->input(text("Input")), nullptr);
}

TEST_F(ItemsTest, aPictureStandsInTheHeaderWhenThereIsSuchAFile)
{
    OssSnBaseNode *node = addAt("Filter/Blur", {0, 0});
    for (const char *file : {"NoSuch.png", "Images.png"}) {
        const QImage before = picture(itemOf(node));
        OssSnNodeGraphViewContext *context = contextOf(node);
        context->setPixmapPath(text(file));
        for (int time = 0; time < 2; ++time) { // from the disk, from the cache
            itemOf(node)->setPixmap({});
            context->copyGuiStateFrom(context);
            EXPECT_EQ(picture(itemOf(node)) != before, file[0] == 'I') << file << time;
        }
    }
}

TEST_F(ItemsTest, aCopiedLookIsThatOfTheOther)
{
    OssSnBaseNode *from = addAt("Filter/Blur", {120, 50});
    OssSnBaseNode *to = addAt("Filter/Blur", {500, 50});
    itemOf(from)->setHighlighted(true);
    contextOf(to)->copyGuiNodeStateFrom(contextOf(from));
    EXPECT_TRUE(itemOf(to)->hasMark(OssNgNode::Highlighted));
    EXPECT_EQ(itemOf(to)->pos(), QPointF(120, 50));
    contextOf(to)->copyGuiNodeStateFrom(nullptr);
    expectLogged("OtherView is NULL");
}

// --- notes and backdrops

TEST_F(ItemsTest, annotationsShowTheirAttributesAndOthersHaveNoSuchLooks)
{
    const ExpectedLog expected("Invalid attribute 'BackgroundColor' on node '/Dot'");
    OssSnBaseNode *area = addAt("Misc/Backdrop", {0, 0});
    auto *backdrop = backdropOf(area);
    area->setAttribute(text("TitleText"), text("Wall"));
    EXPECT_EQ(backdrop->titleText(), text("Wall"));
    area->setAttribute(text("BackgroundColor"), QVariant::fromValue(OssColor(1.0, 0.0, 0.0, 0.5)));
    EXPECT_EQ(backdrop->backgroundColor().rgba(), qRgba(255, 0, 0, 128));
    OssSnBaseNode *note = addAt("Misc/Sticky Note", {900, 0});
    note->setAttribute(text("Label"), text("look here"));
    EXPECT_EQ(qobject_cast<OssNgUINode *>(itemOf(note))->label(), text("look here"));

    // Of attributes with these names that an item cannot show, nothing is heard but of the colour.
    OssSnBaseNode *dot = addAt("Misc/Dot", {1500, 0}, "Dot");
    const QString shown = itemOf(dot)->text();
    auto *context = qobject_cast<OssSnUINodeGraphViewContext *>(contextOf(dot));
    for (const char *name : {"TitleText", "Label", "BackgroundColor", "ZOrder"})
        context->onUserAttributeChanged(OssCustomAttribute(text(name), text("x")), dot);
    EXPECT_EQ(itemOf(dot)->text(), shown);
    const QColor before = backdrop->backgroundColor();
    context = qobject_cast<OssSnUINodeGraphViewContext *>(contextOf(area));
    context->onUserAttributeChanged(OssCustomAttribute(text("BackgroundColor"), QVariantList()),
                                    area);
    context->onUserAttributeChanged(OssCustomAttribute(), area);
    EXPECT_EQ(backdrop->backgroundColor(), before) << "what is no colour";
}

TEST_F(ItemsTest, theOrderOfBackdropsIsKeptAndUndoneWithTheNode)
{
    OssSnBaseNode *area = addAt("Misc/Backdrop", {0, 0});
    auto *backdrop = backdropOf(area);
    OssUndoManager::instance()->clear();
    const auto order = [&] {
        return area->attribute(text("ZOrder")).toInt();
    };
    backdrop->changeZOrder(3);
    EXPECT_EQ(order(), 3);
    EXPECT_EQ(undoCount(), 1);
    Q_EMIT area->zOrderChanged(3); // it is so
    EXPECT_EQ(undoCount(), 1);
    undo();
    EXPECT_EQ(order(), 0);
    EXPECT_EQ(backdrop->zOrder(), 0);
    OssSnBaseNode *blur = addAt("Filter/Blur", {900, 0});
    const int steps = undoCount();
    Q_EMIT blur->zOrderChanged(3); // has no such attribute
    auto *context = qobject_cast<OssSnUINodeGraphViewContext *>(contextOf(addAt("Misc/Dot", {})));
    const int made = undoCount();
    context->onZOrderChanged(5);
    EXPECT_EQ(undoCount(), made);
    EXPECT_LT(steps, made);
}

TEST_F(ItemsTest, aBackdropKnowsTheNodesThatLieOnIt)
{
    OssSnBaseNode *area = addAt("Misc/Backdrop", {0, 0});
    contextOf(m_network->viewerNode())->setNodePosition({3000, 0});
    contextOf(area)->setNodeSize({600, 400});
    OssSnBaseNode *on = addAt("Filter/Blur", {50, 60});
    addAt("Filter/Blur", {900, 60});
    const auto children = [](const OssSnBaseNode *node) {
        return qobject_cast<OssSnUINodeGraphViewContext *>(contextOf(node))->childrenNodes();
    };
    EXPECT_EQ(children(area), QList<OssSnBaseNode *>{on});
    EXPECT_TRUE(children(addAt("Misc/Dot", {100, 200})).isEmpty());
    contextOf(on)->setNodeSize({10, 10});
    EXPECT_FALSE(contextOf(on)->setNodeSizeUndo({10, 10}));
    EXPECT_NE(contextOf(on)->nodeSize(), QSizeF(10, 10)) << "nodes have the size they need";
}

// --- bake points

TEST_F(ItemsTest, aBakePointShowsWhatLimitsIt)
{
    OssSnBaseNode *bake = addAt("Misc/Bake Point", {0, 0});
    const auto *item = qobject_cast<OssNgExtendedNode *>(itemOf(bake));
    const auto set = [&](const char *name, const QVariant &value) {
        bake->setAttribute(text(name), value);
    };

    const struct
    {
        int icon;
        const char *flag;
        const char *text;
    } cases[] = {{0, "syncGeoChannel", "geoChannel"},
                 {1, "limitBake", "limitBakeRange"},
                 {2, "filterCollection", "filterCollectionText"}};

    for (const auto &c : cases) {
        EXPECT_FALSE(item->isIconVisible(c.icon)) << c.flag;
        set(c.flag, true);
        EXPECT_FALSE(item->isIconVisible(c.icon)) << c.flag << " to nothing";
        set(c.text, text("1001"));
        EXPECT_TRUE(item->isIconVisible(c.icon)) << c.flag;
        set(c.flag, false);
        EXPECT_FALSE(item->isIconVisible(c.icon)) << c.flag;
    }
    const OssSnNodeGraphViewContext *context = contextOf(bake);
    EXPECT_FALSE(context->attributeIsStub(text("limitBakeBackground"), false));
    EXPECT_TRUE(context->attributeIsStub(text("limitBakeBackground"), true));
    EXPECT_TRUE(context->attributeIsStub(text("limitBake"), true));
    EXPECT_FALSE(context->attributeIsStub(text("limitBake"), false));
}

// --- ports

TEST_F(ItemsTest, onlyAViewersFirstInputBearsTheNameOfItsSource)
{
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0}, "Red");
    OssSnBaseNode *blur = addAt("Filter/Blur", {300, 0});
    for (const char *name : {"0", "2"}) {
        OssSnBaseNode::InputPort port;
        port.name = text(name);
        blur->addInput(port);
    }
    for (OssSnBaseNode *node : {blur, m_network->viewerNode()}) {
        wire(color, node, "0");
        wire(color, node, "2");
        contextOf(node)->updateGuiEdges();
    }
    const OssNgNode *viewer = itemOf(m_network->viewerNode());
    EXPECT_EQ(viewer->inputPortText(text("0")), text("0:Red"));
    EXPECT_EQ(viewer->inputPortText(text("2")), text("2"));
    EXPECT_EQ(itemOf(blur)->inputPortText(text("0")), text("0"));
    m_network->setViewerNodeCurrentEdge(2, true);
    contextOf(blur)->updateGuiEdges();
    EXPECT_FALSE(itemOf(blur)->input(text("2"))->hasMark(OssNgEdge::Activated));
    Q_EMIT blur->viewerNodeRequestUpdateVirtualEdge();
    Q_EMIT blur->viewerNodeCurrentEdgeChanged(2);
    EXPECT_FALSE(itemOf(blur)->isVirtualInput(text("0")));
    EXPECT_TRUE(viewer->isVirtualInput(text("0")));
    EXPECT_FALSE(itemOf(blur)->input(text("2"))->hasMark(OssNgEdge::Activated));

    // So does selecting one.
    OssNgEdge *looked = viewer->input(text("2"));
    looked->setActivated(false);
    blur->setSelected(true);
    EXPECT_FALSE(itemOf(blur)->input(text("2"))->hasMark(OssNgEdge::Activated));
    EXPECT_FALSE(looked->hasMark(OssNgEdge::Activated));
    m_network->viewerNode()->setSelected(true);
    EXPECT_TRUE(looked->hasMark(OssNgEdge::Activated));
}

TEST_F(ItemsTest, coloursOfATypeReachItsItems)
{
    OssSnBaseNode *node = addAt("Filter/Blur", {0, 0});
    OssSnNodeGraphViewContext *context = contextOf(node);
    const QColor usual = itemOf(node)->mainColor();
    context->setNodeColorTop(text("1,0,0,1"));
    context->setNodeColorBottom(text("0,0,1,1"));
    context->copyGuiStateFrom(context);
    EXPECT_EQ(itemOf(node)->fillBrush().gradient()->stops().first().second, QColor(Qt::red));
    EXPECT_EQ(itemOf(node)->fillBrush().gradient()->stops().last().second, QColor(Qt::blue));
    context->setNodeColorTop({});
    context->setNodeColorBottom({});
    context->copyGuiStateFrom(context);
    EXPECT_EQ(itemOf(node)->mainColor(), usual);
}

// --- going to nodes, looking at them

TEST_F(ItemsTest, goingToANodeShowsTheTabOfItsNetworkAroundIt)
{
    m_view->window()->show();
    OssSnBaseNode *far = addAt("Filter/Blur", {9000, 7000});
    OssSnGroupNode *group = addGroup("Around");
    OssSnBaseNode *inside = addInside(group, "Filter/Blur");
    contextOf(inside)->setNodePosition({-5000, 3000});
    const auto expectShown = [this](const OssSnBaseNode *node) {
        EXPECT_EQ(m_manager->currentView()->network(), node->network());
        const QPointF center = rectOf(node).center();
        EXPECT_TRUE(QTest::qWaitFor([&] { return QLineF(middle(), center).length() < 5.0; }));
    };
    Q_EMIT inside->gotoNode();
    expectShown(inside);
    Q_EMIT far->gotoNode();
    expectShown(far);

    // Nothing when the node graph shows another root, or the node's has no object.
    OssSnBaseNode *near = addAt("Filter/Blur", {0, 0});
    const QPointF there = middle();
    OssShaderNetwork alone;
    OssSnBaseNode *other = alone.createNode(text("Filter/Blur"));
    Q_EMIT other->gotoNode();
    show(&alone);
    Q_EMIT near->gotoNode();
    Q_EMIT inside->gotoNode();
    EXPECT_EQ(m_manager->currentView(), m_view);
    EXPECT_EQ(m_view->network(), &alone);
    show(m_network);
    QTest::qWait(1);
    EXPECT_LT(QLineF(middle(), there).length(), 5.0);
    itemOf(near)->setVisible(false);
    Q_EMIT near->gotoNode();
    EXPECT_LT(QLineF(middle(), there).length(), 5.0);
    itemOf(near)->setVisible(true);
    OssUndoManager::instance()->clear();
}

TEST_F(ItemsTest, aViewerThatANodeAsksForLooksAtIt)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0});
    OssSnBaseNode *area = addAt("Misc/Backdrop", {600, 0});
    const OssSnBaseNode *viewer = m_network->viewerNode();
    OssUndoManager::instance()->clear();
    Q_EMIT area->attachViewerToNode(2); // has nothing to look at
    EXPECT_EQ(undoCount(), 0);
    Q_EMIT blur->attachViewerToNode(2);
    EXPECT_EQ(viewer->inputNode(text("2")), blur);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 2);
    expectStep("Attach viewer to node");
    m_network->setViewerNodeCurrentEdge(1, true);
    Q_EMIT m_network->viewerNode()->attachViewerToNode(3); // looks at no viewer, itself least
    EXPECT_EQ(viewer->inputNode(text("3")), nullptr);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 1);
}

TEST_F(ItemsTest, whatFailedIsReadOnTheNodeUntilItIsMended)
{
    OssSnBaseNode *blur = addAt("Filter/Blur", {0, 0});
    OssProblems *problems = OssProblems::instance();
    problems->report(blur, OssProblems::Evaluation, text("no memory"));
    EXPECT_TRUE(itemOf(blur)->errorText().contains(text("no memory")));
    blur->setErrorText(text("no picture"));
    problems->look();
    EXPECT_TRUE(itemOf(blur)->errorText().contains(text("no picture")));
    blur->setErrorText({});
    problems->report(blur, OssProblems::Evaluation, {});
    problems->look();
    EXPECT_TRUE(itemOf(blur)->errorText().isEmpty());
}

TEST_F(ItemsTest, iconsOfTypesAreThereAndBelongToNoNode)
{
    const QDir icons(OssResourceInfo::instance()->iconPath());
    const QStringList keys = OssShaderNetworkManager::instance()->nodeGraphPathKeys();
    int shown = 0;
    for (const QString &key : keys) {
        const QString file = NodeIcons::fileOf(key);
        shown += file.isEmpty() ? 0 : 1;
        EXPECT_TRUE(file.isEmpty() || icons.exists(file)) << qPrintable(key);
    }
    EXPECT_GE(shown, 7);
    OssSnBaseNode *bake = addAt("Misc/Bake Point", {0, 0});
    const QImage with = picture(itemOf(bake));
    EXPECT_TRUE(contextOf(bake)->pixmapPath().isEmpty()) << "it would be saved and be another node";
    itemOf(bake)->setPixmap({});
    EXPECT_NE(picture(itemOf(bake)), with);
}

} // namespace
