#include "GraphFixture.h"
#include "OssCore/Values/OssColor.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgUINode.h"
#include "OssSnUINodeGraphViewContext.h"

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

    OssSnGroupNode *addGroup(const char *name)
    {
        return qobject_cast<OssSnGroupNode *>(addAt("Misc/Group", {0, 0}, name));
    }
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
        c.set(true);
        EXPECT_TRUE(item->hasMark(c.mark)) << c.mark;
        c.set(false);
        EXPECT_FALSE(item->hasMark(c.mark)) << c.mark;
    }
    node->addTag(QStringLiteral("_systemShader"));
    EXPECT_FALSE(item->hasMark(OssNgNode::SystemShader));
    Q_EMIT node->systemShaderStatusSync();
    EXPECT_TRUE(item->hasMark(OssNgNode::SystemShader));
    node->setDescription(QStringLiteral("softens"));
    EXPECT_EQ(item->toolTip(), QStringLiteral("softens"));
    node->setErrorText(QStringLiteral("no picture"));
    EXPECT_EQ(item->errorText(), QStringLiteral("no picture"));
}

TEST_F(ItemsTest, wiresShowWhetherTheirInputIsSharedAndOn)
{
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0});
    OssSnBaseNode *blur = addAt("Filter/Blur", {300, 0});
    blur->setInputShared(QStringLiteral("Input"), true); // there is no wire to show it yet
    wire(color, blur);
    const OssNgEdge *edge = itemOf(blur)->input(QStringLiteral("Input"));
    ASSERT_NE(edge, nullptr);
    EXPECT_TRUE(edge->hasMark(OssNgEdge::Shared));
    blur->setInputShared(QStringLiteral("Input"), false);
    EXPECT_FALSE(edge->hasMark(OssNgEdge::Shared));
    blur->setInputShared(QStringLiteral("Input"), true);
    EXPECT_TRUE(edge->hasMark(OssNgEdge::Shared));
    blur->setInputEnabled(QStringLiteral("Input"), false);
    EXPECT_TRUE(edge->hasMark(OssNgEdge::Bypassed));
    blur->setInputEnabled(QStringLiteral("Input"), true);
    EXPECT_FALSE(edge->hasMark(OssNgEdge::Bypassed));
    blur->setInputNode(QStringLiteral("Input"), nullptr, {});
    blur->setInputEnabled(QStringLiteral("Input"), false);
    EXPECT_EQ(itemOf(blur)->input(QStringLiteral("Input")), nullptr);
}

TEST_F(ItemsTest, aPictureStandsInTheHeaderWhenThereIsSuchAFile)
{
    OssSnBaseNode *node = addAt("Filter/Blur", {0, 0});
    for (const char *file : {"NoSuch.png", "Images.png"}) {
        const QImage before = picture(itemOf(node));
        OssSnNodeGraphViewContext *context = contextOf(node);
        context->setPixmapPath(QString::fromLatin1(file));
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
    EXPECT_TRUE(logHas(QStringLiteral("OtherView is NULL")));
}

// --- notes and backdrops

TEST_F(ItemsTest, annotationsShowTheirAttributesAndOthersHaveNoSuchLooks)
{
    const ExpectedLog expected("Invalid attribute 'BackgroundColor' on node '/Dot'");
    OssSnBaseNode *area = addAt("Misc/Backdrop", {0, 0});
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(itemOf(area));
    area->setAttribute(QStringLiteral("TitleText"), QStringLiteral("Wall"));
    EXPECT_EQ(backdrop->titleText(), QStringLiteral("Wall"));
    area->setAttribute(QStringLiteral("BackgroundColor"),
                       QVariant::fromValue(OssColor(1.0, 0.0, 0.0, 0.5)));
    EXPECT_EQ(backdrop->backgroundColor().rgba(), qRgba(255, 0, 0, 128));
    OssSnBaseNode *note = addAt("Misc/Sticky Note", {900, 0});
    note->setAttribute(QStringLiteral("Label"), QStringLiteral("look here"));
    EXPECT_EQ(qobject_cast<OssNgUINode *>(itemOf(note))->label(), QStringLiteral("look here"));

    // Of attributes with these names that an item cannot show, nothing is heard but of the colour.
    OssSnBaseNode *dot = addAt("Misc/Dot", {1500, 0}, "Dot");
    const QString text = itemOf(dot)->text();
    auto *context = qobject_cast<OssSnUINodeGraphViewContext *>(contextOf(dot));
    for (const char *name : {"TitleText", "Label", "BackgroundColor", "ZOrder"})
        context->onUserAttributeChanged(
            OssCustomAttribute(QString::fromLatin1(name), QStringLiteral("x")), dot);
    EXPECT_EQ(itemOf(dot)->text(), text);
    const QColor before = backdrop->backgroundColor();
    context = qobject_cast<OssSnUINodeGraphViewContext *>(contextOf(area));
    context->onUserAttributeChanged(
        OssCustomAttribute(QStringLiteral("BackgroundColor"), QVariantList()), area);
    context->onUserAttributeChanged(OssCustomAttribute(), area);
    EXPECT_EQ(backdrop->backgroundColor(), before) << "what is no colour";
}

TEST_F(ItemsTest, theOrderOfBackdropsIsKeptAndUndoneWithTheNode)
{
    OssSnBaseNode *area = addAt("Misc/Backdrop", {0, 0});
    auto *backdrop = qobject_cast<OssNgBackdropNode *>(itemOf(area));
    OssUndoManager::instance()->clear();
    const auto order = [&] {
        return area->attribute(QStringLiteral("ZOrder")).toInt();
    };
    backdrop->changeZOrder(3);
    EXPECT_EQ(order(), 3);
    EXPECT_EQ(undoCount(), 1);
    Q_EMIT area->zOrderChanged(3); // it is so
    EXPECT_EQ(undoCount(), 1);
    OssUndoManager::instance()->undo();
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
    contextOf(on)->setNodeSizeUndo({10, 10});
    EXPECT_NE(contextOf(on)->nodeSize(), QSizeF(10, 10)) << "nodes have the size they need";
}

// --- bake points

TEST_F(ItemsTest, aBakePointShowsWhatLimitsIt)
{
    OssSnBaseNode *bake = addAt("Misc/Bake Point", {0, 0});
    const auto *item = qobject_cast<OssNgExtendedNode *>(itemOf(bake));
    const auto set = [&](const char *name, const QVariant &value) {
        bake->setAttribute(QString::fromLatin1(name), value);
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
        set(c.text, QStringLiteral("1001"));
        EXPECT_TRUE(item->isIconVisible(c.icon)) << c.flag;
        set(c.flag, false);
        EXPECT_FALSE(item->isIconVisible(c.icon)) << c.flag;
    }
    const OssSnNodeGraphViewContext *context = contextOf(bake);
    EXPECT_FALSE(context->attributeIsStub(QStringLiteral("limitBakeBackground"), false));
    EXPECT_TRUE(context->attributeIsStub(QStringLiteral("limitBakeBackground"), true));
    EXPECT_TRUE(context->attributeIsStub(QStringLiteral("limitBake"), true));
    EXPECT_FALSE(context->attributeIsStub(QStringLiteral("limitBake"), false));
}

// --- ports

TEST_F(ItemsTest, onlyAViewersFirstInputBearsTheNameOfItsSource)
{
    OssSnBaseNode *color = addAt("Procedural/Color", {0, 0}, "Red");
    OssSnBaseNode *blur = addAt("Filter/Blur", {300, 0});
    for (const char *name : {"0", "2"}) {
        OssSnBaseNode::InputPort port;
        port.name = QString::fromLatin1(name);
        blur->addInput(port);
    }
    for (OssSnBaseNode *node : {blur, m_network->viewerNode()}) {
        wire(color, node, "0");
        wire(color, node, "2");
        contextOf(node)->updateGuiEdges();
    }
    const OssNgNode *viewer = itemOf(m_network->viewerNode());
    EXPECT_EQ(viewer->inputPortText(QStringLiteral("0")), QStringLiteral("0:Red"));
    EXPECT_EQ(viewer->inputPortText(QStringLiteral("2")), QStringLiteral("2"));
    EXPECT_EQ(itemOf(blur)->inputPortText(QStringLiteral("0")), QStringLiteral("0"));
    m_network->setViewerNodeCurrentEdge(2, true);
    contextOf(blur)->updateGuiEdges();
    EXPECT_FALSE(itemOf(blur)->input(QStringLiteral("2"))->hasMark(OssNgEdge::Activated));
    Q_EMIT blur->viewerNodeRequestUpdateVirtualEdge();
    Q_EMIT blur->viewerNodeCurrentEdgeChanged(2);
    EXPECT_FALSE(itemOf(blur)->isVirtualInput(QStringLiteral("0")));
    EXPECT_TRUE(viewer->isVirtualInput(QStringLiteral("0")));
    EXPECT_FALSE(itemOf(blur)->input(QStringLiteral("2"))->hasMark(OssNgEdge::Activated));

    // So does selecting one.
    OssNgEdge *looked = viewer->input(QStringLiteral("2"));
    looked->setActivated(false);
    blur->setSelected(true);
    EXPECT_FALSE(itemOf(blur)->input(QStringLiteral("2"))->hasMark(OssNgEdge::Activated));
    EXPECT_FALSE(looked->hasMark(OssNgEdge::Activated));
    m_network->viewerNode()->setSelected(true);
    EXPECT_TRUE(looked->hasMark(OssNgEdge::Activated));
}

TEST_F(ItemsTest, coloursOfATypeReachItsItems)
{
    OssSnBaseNode *node = addAt("Filter/Blur", {0, 0});
    OssSnNodeGraphViewContext *context = contextOf(node);
    const QColor usual = itemOf(node)->mainColor();
    context->setNodeColorTop(QStringLiteral("1,0,0,1"));
    context->setNodeColorBottom(QStringLiteral("0,0,1,1"));
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
    OssSnBaseNode *inside = group->groupNetwork()->createNode(QStringLiteral("Filter/Blur"));
    contextOf(inside)->setNodePosition({-5000, 3000});
    const auto expectShown = [this](const OssSnBaseNode *node) {
        EXPECT_EQ(m_manager->currentView()->network(), node->network());
        const QPointF center = itemOf(node)->sceneBoundingRect().center();
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
    OssSnBaseNode *other = alone.createNode(QStringLiteral("Filter/Blur"));
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
    EXPECT_EQ(viewer->inputNode(QStringLiteral("2")), blur);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 2);
    EXPECT_EQ(undoCount(), 1);
    EXPECT_EQ(OssUndoManager::instance()->undoText(), QStringLiteral("Attach viewer to node"));
    m_network->setViewerNodeCurrentEdge(1, true);
    Q_EMIT m_network->viewerNode()->attachViewerToNode(3); // looks at no viewer, itself least
    EXPECT_EQ(viewer->inputNode(QStringLiteral("3")), nullptr);
    EXPECT_EQ(m_network->viewerNodeCurrentEdge(), 1);
}

} // namespace
