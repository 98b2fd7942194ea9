#include "NodePicture.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgUINode.h"
#include "support/ExampleGraph.h"

#include <gtest/gtest.h>

#include <QPainter>

#include <functional>

namespace {

const QString In = QStringLiteral("Input");
const QString Out = QStringLiteral("Output");

} // namespace

TEST(OssNgNodeLooks, everyStateIsToBeSeenAndGoesAgain)
{
    GraphScene scene;
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, {In}, {Out});
    const QImage plain = picture(&scene, node);
    QVector<QImage> seen{plain};
    QPixmap icon(16, 16);
    icon.fill(Qt::magenta);
    const std::pair<const char *, std::function<void(bool)>> states[] = {
        {"error",
         [&](bool on) {
             node->setErrorText(on ? QStringLiteral("no file") : QString());
         }},
        {"stale",
         [&](bool on) {
             node->setStale(on);
         }},
        {"baked",
         [&](bool on) {
             node->setBaked(on);
         }},
        {"stored",
         [&](bool on) {
             node->setCached(on);
         }},
        {"system",
         [&](bool on) {
             node->setSystemShader(on);
         }},
        {"looked at",
         [&](bool on) {
             node->setGuiActive(on);
         }},
        {"off",
         [&](bool on) {
             node->setDisabled(on);
         }},
        {"passed by",
         [&](bool on) {
             node->setBypassed(on);
         }},
        {"icon",
         [&](bool on) {
             node->setPixmap(on ? icon : QPixmap(), {});
         }},
        {"chosen",
         [&](bool on) {
             node->setSelected(on);
         }},
    };
    for (const auto &[name, set] : states) {
        set(true);
        const QImage marked = picture(&scene, node);
        EXPECT_FALSE(seen.contains(marked)) << name;
        seen.append(marked);
        set(false);
        EXPECT_EQ(picture(&scene, node), plain) << name;
    }
}

TEST(OssNgNodeLooks, tipsSayWhatIsUnderThePointer)
{
    GraphScene scene;
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, {In}, {Out});
    const QPointF body = node->bodyRect().topLeft() + QPointF(40, 8);
    node->setToolTip(QStringLiteral("What it is"));
    EXPECT_EQ(node->toolTipAt(node->mapFromScene(node->inputPortScenePos(In))), In);
    EXPECT_EQ(node->toolTipAt(node->mapFromScene(node->outputPortScenePos(Out))), Out);
    EXPECT_EQ(node->toolTipAt(body), QStringLiteral("What it is"));
    node->setErrorText(QStringLiteral("no file"));
    EXPECT_EQ(node->toolTipAt(body), QStringLiteral("no file"));
    EXPECT_EQ(node->toolTipAt(node->mapFromScene(node->inputPortScenePos(In))), In);
    const QString longName(200, QLatin1Char('W'));
    OssNgExtendedNode *wide = scene.add(longName, {0, 300}, {}, {In}, {Out});
    EXPECT_EQ(wide->toolTipAt(wide->bodyRect().topLeft() + QPointF(40, 8)), longName)
        << "what is cut short";
}

TEST(OssNgNodeLooks, aStandInLooksLikeWhatItStandsFor)
{
    GraphScene scene;
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {20, 30}, {}, {In}, {Out});
    node->setErrorText(QStringLiteral("no file"));
    node->setStale(true);
    node->setNodeColor(Qt::darkRed, Qt::darkBlue);
    OssNgExtendedNode *copy = scene.add(QStringLiteral("Brick"), {500, 500}, {}, {In}, {Out});
    copy->copyStateFrom(nullptr);
    copy->copyStateFrom(copy);
    EXPECT_EQ(copy->pos(), QPointF(500, 500));
    const QImage wanted = picture(&scene, node);
    EXPECT_NE(picture(&scene, copy), wanted);
    copy->copyStateFrom(node);
    EXPECT_EQ(copy->pos(), node->pos());
    node->setPosition({900, 900});
    EXPECT_EQ(picture(&scene, copy), wanted);

    auto *area = scene.add<OssNgBackdropNode>(QString(), {2000, 0});
    area->setRect({0, 0, 333, 222});
    area->setTitleText(QStringLiteral("Walls"));
    area->setLabel(QStringLiteral("Old ones"));
    area->setNodeBackgroundColour(Qt::darkGreen);
    auto *other = scene.add<OssNgBackdropNode>(QString(), {3000, 0});
    const QImage area1 = picture(&scene, area);
    other->copyStateFrom(area);
    area->setPosition({5000, 0});
    EXPECT_EQ(other->rect(), area->rect());
    EXPECT_EQ(picture(&scene, other), area1);
}

TEST(OssNgNodeLooks, aBackdropShowsItsTextAsFarAsThereIsRoom)
{
    GraphScene scene;
    auto *area = scene.add<OssNgBackdropNode>(QString(), {0, 0});
    area->setRect({0, 0, 300, 200});
    const QImage empty = picture(&scene, area);
    area->setLabel(QStringLiteral("one"));
    const QImage one = picture(&scene, area);
    EXPECT_NE(one, empty);
    area->setLabel(QStringLiteral("one\ntwo"));
    EXPECT_NE(picture(&scene, area), one);
    area->setLabel(QString());
    EXPECT_EQ(picture(&scene, area), empty);
    // No line below the edge.
    QString lines;
    for (int i = 0; i < 40; ++i)
        lines += QStringLiteral("line\n");
    area->setLabel(lines);
    QImage image(300, 300, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    OssNgRenderer::paintSceneTo(&painter, &scene, {0, 0, 300, 300}, {0, 0, 300, 300});
    painter.end();
    for (int y = 205; y < 300; ++y) {
        for (int x = 0; x < 300; ++x)
            ASSERT_LT(image.pixelColor(x, y).lightness(), 80) << x << " " << y;
    }
}

TEST(OssNgNodeLooks, fromAfarWhatIsChosenMarkedOrOffIsStillToBeSeen)
{
    GraphScene scene;
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, {In}, {Out});
    auto *area = scene.add<OssNgBackdropNode>(QString(), {2000, 0});
    auto *note = scene.add<OssNgUINode>(QString(), {4000, 0});
    area->setRect({0, 0, 300, 200});
    note->setLabel(QStringLiteral("Note"));
    for (const QSize &size : {QSize(60, 40), QSize(30, 20)}) {
        for (OssNgNode *one : QList<OssNgNode *>{node, area, note}) {
            const QImage plain = picture(&scene, one, size);
            one->setSelected(true);
            EXPECT_NE(picture(&scene, one, size), plain) << size.width() << one->type();
            one->setSelected(false);
            EXPECT_EQ(picture(&scene, one, size), plain) << size.width() << one->type();
        }
        const QImage plain = picture(&scene, node, size);
        node->setErrorText(QStringLiteral("no file"));
        EXPECT_NE(picture(&scene, node, size), plain);
        node->setErrorText(QString());
        node->setDisabled(true);
        EXPECT_NE(picture(&scene, node, size), plain);
        node->setDisabled(false);
        EXPECT_EQ(picture(&scene, node, size), plain);
    }
}

TEST(OssNgNodeLooks, iconsOfTheHeaderDiffer)
{
    GraphScene scene;
    QVector<QImage> seen;
    for (const char *name : {"other", "GeoChannel", "ActivePatchRange", "BroadcastNodeSignal",
                             "BroadcastNodeSilent", "ReceiverNodeSignal", "ReceiverNodeSilent"}) {
        OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {seen.size() * 500.0, 0}, {},
                                            {In}, {Out});
        node->setIconVisible(node->addIcon(QLatin1String(name)), true);
        seen.append(picture(&scene, node));
        EXPECT_EQ(seen.indexOf(seen.last()), seen.size() - 1) << name;
    }
}

TEST(OssNgNodeLooks, portsShowTheirKindAndThatTheyAreMeant)
{
    GraphScene scene;
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, {In}, {Out});
    for (const auto mode : {OssNgExtendedNode::Expanded, OssNgExtendedNode::NoPortList}) {
        node->setPortListMode(mode);
        const QImage plain = picture(&scene, node);
        node->setPortKinds({{In, 1}}, {});
        EXPECT_NE(picture(&scene, node), plain) << mode;
        node->setPortKinds({}, {});
        node->setLitPort(In, true);
        EXPECT_NE(picture(&scene, node), plain) << mode;
        node->setLitPort({}, true);
        EXPECT_EQ(picture(&scene, node), plain) << mode;
    }
    for (const int unknown : {-1, 99}) {
        node->setPortKinds({{In, unknown}}, {});
        EXPECT_GE(int(node->inputPort(In)->kind), 0);
        EXPECT_LE(int(node->inputPort(In)->kind), int(OssNgPortKind::Data));
    }
}

TEST(OssNgNodeLooks, portsThatAreNotListedLeaveNoTrace)
{
    GraphScene scene;
    const QString wide(60, QLatin1Char('W'));
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, {In}, {Out});
    node->setPortListMode(OssNgExtendedNode::ConnectedOnly);
    const QRectF body = node->bodyRect();
    const QImage plain = picture(&scene, node);
    node->addInputPort(wide);
    node->addOutputPort(wide + Out);
    node->addOutputPort(wide + In);
    EXPECT_EQ(node->bodyRect(), body);
    EXPECT_EQ(picture(&scene, node), plain);
    node->setPortListMode(OssNgExtendedNode::Expanded);
    EXPECT_GT(node->bodyRect().width(), body.width());
}

TEST(OssNgNodeLooks, rowsAndSidesArePortsOwn)
{
    GraphScene scene;
    const QStringList three{QStringLiteral("A"), QStringLiteral("B"), QStringLiteral("C")};
    OssNgExtendedNode *one = scene.add(QStringLiteral("One"), {0, 0}, {}, {In}, {Out});
    OssNgExtendedNode *ins = scene.add(QStringLiteral("Ins"), {500, 0}, {}, three, {Out});
    OssNgExtendedNode *outs = scene.add(QStringLiteral("Outs"), {1000, 0}, {}, {In}, three);
    EXPECT_GT(ins->bodyRect().height(), one->bodyRect().height());
    EXPECT_EQ(outs->bodyRect().height(), ins->bodyRect().height());
    const QRectF body = one->mapRectToScene(one->bodyRect());
    EXPECT_NEAR(one->outputPortScenePos(Out).x(), body.right(), 1.0);
    EXPECT_NEAR(one->inputPortScenePos(In).x(), body.left(), 1.0);
    EXPECT_EQ(one->inputPortDirection(In), QPointF(-1, 0));

    one->setPortListMode(OssNgExtendedNode::NoPortList);
    const QRectF bare = one->mapRectToScene(one->bodyRect());
    EXPECT_NEAR(one->outputPortScenePos(Out).y(), bare.bottom(), 1.0);
    EXPECT_NEAR(one->inputPortScenePos(In).y(), bare.top(), 1.0);
    EXPECT_EQ(one->inputPortDirection(In), QPointF(0, -1));
    one->setConnectionPositions({{In, {{5, 5}, {9, 2}}}}, {{Out, {{5, 5}, {5, 5}}}});
    EXPECT_EQ(one->inputPortDirection(In), QPointF(4, -3));
    EXPECT_EQ(one->outputPortDirection(Out), QPointF(0, 1)) << "no way leads nowhere";

    one->setInputPortText(QStringLiteral("None"), QStringLiteral("text"));
    ins->renameInputPort(three[0], three[1]);
    EXPECT_EQ(ins->inputPortNames(), three) << "a name is one port's";
    ins->renameInputPort(QStringLiteral("None"), QStringLiteral("D"));
    EXPECT_EQ(ins->inputPortNames(), three);
}

TEST(OssNgNodeLooks, areasAndNotesKeepTheirMeasure)
{
    GraphScene scene;
    auto *area = scene.add<OssNgBackdropNode>(QString(), {0, 0});
    area->setRect({0, 0, 300, 200});
    for (const QPointF outside : {QPointF(-1, 100), QPointF(301, 100), QPointF(100, -1),
                                  QPointF(100, 201), QPointF(-50, -50)})
        EXPECT_EQ(area->resizeEdgesAt(outside), Qt::Edges()) << outside.x() << " " << outside.y();
    EXPECT_EQ(area->resizeEdgesAt({1, 100}), Qt::Edges(Qt::LeftEdge));
    EXPECT_EQ(area->resizeEdgesAt({299, 199}), Qt::RightEdge | Qt::BottomEdge);
    area->wrapAroundSelection({});
    EXPECT_EQ(area->rect(), QRectF(0, 0, 300, 200)) << "nothing to go around";
    EXPECT_EQ(area->pos(), QPointF(0, 0));

    // Text has no place in the smallest one.
    area->setRect({QPointF(), OssNgBackdropNode::minimumSize()});
    const QImage small = picture(&scene, area);
    area->setLabel(QStringLiteral("one\ntwo"));
    EXPECT_EQ(picture(&scene, area), small);

    auto *note = scene.add<OssNgUINode>(QString(), {0, 500});
    const QSizeF empty = note->bodyRect().size();
    note->setLabel(QStringLiteral("one"));
    EXPECT_EQ(note->bodyRect().size(), empty) << "there is always a line";
    note->setNodeColor(Qt::red, Qt::blue);
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {500, 0}, {}, {In}, {Out});
    node->setNodeColor(Qt::red, Qt::blue);
    EXPECT_EQ(node->mainColor(), QColor(Qt::red));
}
