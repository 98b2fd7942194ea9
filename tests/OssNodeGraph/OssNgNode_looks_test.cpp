#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgUINode.h"
#include "OssNodeGraph/View/OssNgRenderer.h"
#include "support/ExampleGraph.h"

#include <gtest/gtest.h>

#include <QPainter>

#include <functional>

namespace {

QImage picture(GraphScene *scene, const OssNgNode *node)
{
    QImage image(400, 200, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    OssNgRenderer::paintSceneTo(&painter, scene, node->sceneBoundingRect(), {0, 0, 400, 200});
    painter.end();
    return image;
}

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
