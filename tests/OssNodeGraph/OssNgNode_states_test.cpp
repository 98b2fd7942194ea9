#include "NodePicture.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgUINode.h"
#include "ViewFixture.h"

#include <QAccessible>
#include <QPainter>
#include <QSignalSpy>

#include <functional>

// States of nodes for the eye and the ear.

namespace {

using State = std::pair<const char *, std::function<void(bool)>>;

} // namespace

TEST(OssNgNodeStates, everyOneDiffersFromTheOthersNearAndFar)
{
    GraphScene scene;
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, {In},
                                        {Out, QStringLiteral("Second")});
    QPixmap thumbnail(64, 64);
    thumbnail.fill(Qt::magenta);
    node->setDebugColor(Qt::cyan);
    const auto shape = [node](int type) {
        return [node, type](bool on) {
            node->setShapeType(on ? type : 0);
            node->updateShape();
        };
    };
    const State states[] = {
        {"of an unknown type",
         [=](bool on) {
             node->setPlaceholder(on);
         }},
        {"a material", shape(3)},
        {"a group", shape(4)},
        {"of many channels", shape(7)},
        {"under the pointer",
         [=](bool on) {
             node->setHovered(on);
         }},
        {"without labels",
         [=](bool on) {
             node->setLabelsVisible(!on);
         }},
        {"lit",
         [=](bool on) {
             node->setHighlighted(on);
         }},
        {"debugged",
         [=](bool on) {
             node->setDebug(on);
         }},
        {"with a picture",
         [=](bool on) {
             node->setThumbnail(on ? thumbnail : QPixmap());
         }},
        {"a colour below",
         [=](bool on) {
             node->setNodeColor({}, on ? QColor(Qt::darkRed) : QColor());
         }},
        {"a colour above",
         [=](bool on) {
             node->setNodeColor(on ? QColor(Qt::darkRed) : QColor(), {});
         }},
    };
    const QImage plain = picture(&scene, node);
    QVector<QImage> seen{plain};
    for (const auto &[name, set] : states) {
        set(true);
        const QImage marked = picture(&scene, node);
        EXPECT_FALSE(seen.contains(marked)) << name;
        seen.append(marked);
        set(false);
        EXPECT_EQ(picture(&scene, node), plain) << name;
    }
    const QSize far(40, 26);
    const QImage small = picture(&scene, node, far);
    for (const int state : {4, 6, 7, 10}) {
        states[state].second(true);
        EXPECT_NE(picture(&scene, node, far), small) << states[state].first;
        states[state].second(false);
        EXPECT_EQ(picture(&scene, node, far), small) << states[state].first;
    }
}

namespace {

/// What the node paints by itself, twice as large.
QImage painted(const OssNgNode *node)
{
    QImage image((node->boundingRect().size() * 2).toSize(), QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.scale(2.0, 2.0);
    node->paintDetailed(&painter);
    return image;
}

int differingPixels(const QImage &a, const QImage &b)
{
    int count = 0;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x)
            count += a.pixel(x, y) != b.pixel(x, y);
    }
    return count;
}

} // namespace

TEST(OssNgNodeStates, whatIsUnknownHasGapsInItsOutlineAndWhatIsPassedByInItsStrike)
{
    GraphScene scene;
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, {In}, {Out});
    const QRectF body = node->bodyRect();
    const auto outlineColors = [&] {
        const QImage image = painted(node);
        QSet<QRgb> colors;
        for (int y = int(2 * body.top()) + 24; y < int(2 * body.bottom()) - 24; ++y)
            colors.insert(image.pixel(int(2 * body.right()), y));
        return colors.size();
    };
    const int unbroken = outlineColors();
    node->setPlaceholder(true);
    EXPECT_GT(outlineColors(), unbroken);
    node->setPlaceholder(false);
    const QImage plain = painted(node);
    node->setDisabled(true);
    const QImage off = painted(node);
    node->setBypassed(true);
    EXPECT_EQ(painted(node), off) << "both: off";
    node->setDisabled(false);
    EXPECT_LT(differingPixels(painted(node), plain), differingPixels(off, plain));
}

TEST(OssNgNodeStates, labelsStandBesideInputsAndBesideSeveralOutputs)
{
    GraphScene scene;
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, {In}, {Out});
    const auto call = [node](const char *input, const char *output) {
        node->setConnectionPrettyNames({QString::fromLatin1(input)}, {QString::fromLatin1(output)});
        return painted(node);
    };
    const QImage named = call("Input", "Output");
    EXPECT_EQ(call("Input", "Outcome"), named) << "the only output needs no name";
    EXPECT_NE(call("Inlet", "Output"), named);
    node->setLabelsVisible(false);
    const QImage bare = call("Input", "Output");
    EXPECT_EQ(call("Inlet", "Outcome"), bare);
    node->setLabelsVisible(true);
    node->addOutputPort(QStringLiteral("Second"));
    EXPECT_NE(call("Input", "Outcome"), call("Input", "Output"));
    EXPECT_EQ(call("Input", "Output"), call("Input", "Output"));

    // A single output's name makes no node wider.
    OssNgExtendedNode *wide = scene.add(QStringLiteral("A"), {0, 300}, {}, {In}, {Out});
    const qreal width = wide->boundingRect().width();
    const QString longName(60, QLatin1Char('W'));
    wide->setConnectionPrettyNames({In}, {longName});
    wide->refresh();
    EXPECT_EQ(wide->boundingRect().width(), width);
    wide->addOutputPort(QStringLiteral("Second"));
    EXPECT_GT(wide->boundingRect().width(), width);
}

TEST(OssNgNodeStates, portsAlongEdgesStayOnTheNodeHoweverMany)
{
    GraphScene scene;
    for (const int count : {1, 2, 14}) {
        QStringList names;
        for (int i = 0; i < count; ++i)
            names.append(QStringLiteral("I%1").arg(i));
        OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, names, {Out});
        node->setPortListMode(OssNgExtendedNode::NoPortList);
        const QRectF body = node->sceneBoundingRect();
        qreal last = body.left();
        for (const QString &name : names) {
            const QPointF place = node->inputPortScenePos(name);
            EXPECT_GT(place.x(), last) << count;
            EXPECT_LT(place.x(), body.right()) << count;
            last = place.x();
        }
        const qreal middle = (node->inputPortScenePos(names.first()).x()
                              + node->inputPortScenePos(names.last()).x())
                             / 2.0;
        EXPECT_NEAR(middle, node->outputPortScenePos(Out).x(), 1e-6);
    }
}

TEST(OssNgNodeStates, fromAfarChosenNodesAreTheOnlyOnesWithARing)
{
    GraphScene scene;
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, {In}, {Out});
    auto *note = scene.add<OssNgUINode>(QString(), {500, 0});
    auto *area = scene.add<OssNgBackdropNode>(QString(), {1000, 0});
    const QRgb accent = OssNgStyle::instance()->color(OssNgStyle::Role::Accent).rgb();
    for (OssNgNode *one : {static_cast<OssNgNode *>(node), static_cast<OssNgNode *>(note),
                           static_cast<OssNgNode *>(area)}) {
        const auto accented = [&] {
            QImage image(one->boundingRect().size().toSize() * 2, QImage::Format_RGB32);
            image.fill(Qt::black);
            QPainter painter(&image);
            painter.scale(2.0, 2.0);
            one->paintSimple(&painter);
            painter.end();
            int count = 0;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x)
                    count += image.pixel(x, y) == accent;
            }
            return count;
        };
        EXPECT_EQ(accented(), 0);
        one->setSelected(true);
        EXPECT_GT(accented(), 20);
        one->setSelected(false);
    }
}

TEST(OssNgNodeStates, silentTeleportsAreStruckThrough)
{
    GraphScene scene;
    for (const char *kind : {"BroadcastNode", "ReceiverNode"}) {
        OssNgExtendedNode *node = scene.add(QStringLiteral("T"), {0, 0}, {}, {In}, {Out});
        const QImage plain = painted(node);
        const int silent = node->addIcon(QLatin1String(kind) + QStringLiteral("Silent"));
        const int signal = node->addIcon(QLatin1String(kind) + QStringLiteral("Signal"));
        node->setIconVisible(silent, true);
        const int struck = differingPixels(painted(node), plain);
        node->setIconVisible(silent, false);
        node->setIconVisible(signal, true);
        EXPECT_GT(struck, differingPixels(painted(node), plain)) << kind;
        EXPECT_EQ(node->addIcon({}), -1) << "an icon has a name";
    }
}

TEST(OssNgNodeStates, settingWhatIsSetRepaintsNothing)
{
    GraphScene scene;
    OssNgExtendedNode *node = scene.add(QStringLiteral("Brick"), {0, 0}, {}, {In}, {Out});
    OssNgExtendedNode *other = scene.add(QStringLiteral("Wall"), {300, 0}, {}, {In}, {Out});
    auto *area = scene.add<OssNgBackdropNode>(QString(), {1000, 0});
    scene.connectNodes(node, Out, other, In);
    OssNgEdge *wire = other->input(In);
    QObject::connect(&scene, &QGraphicsScene::changed, &scene, [] {}); // or it is not worked out
    const State setters[] = {
        {"text",
         [=](bool on) {
             node->setText(on ? QStringLiteral("B") : QStringLiteral("A"));
         }},
        {"error",
         [=](bool on) {
             node->setErrorText(on ? QStringLiteral("no file") : QString());
         }},
        {"mark",
         [=](bool on) {
             node->setStale(on);
         }},
        {"shape",
         [=](bool on) {
             node->setShapeType(on ? 4 : 0);
             node->updateShape();
         }},
        {"labels",
         [=](bool on) {
             node->setLabelsVisible(!on);
         }},
        {"hover",
         [=](bool on) {
             node->setHovered(on);
         }},
        {"mode",
         [=](bool on) {
             node->setPortListMode(on ? OssNgExtendedNode::Collapsed : OssNgExtendedNode::Expanded);
         }},
        {"mark of a wire",
         [=](bool on) {
             wire->setBypassed(on);
         }},
        {"hover of a wire",
         [=](bool on) {
             wire->setHovered(on);
         }},
        {"title",
         [=](bool on) {
             area->setTitleText(on ? QStringLiteral("T") : QString());
         }},
        {"label",
         [=](bool on) {
             area->setLabel(on ? QStringLiteral("L") : QString());
         }},
        {"order",
         [=](bool on) {
             area->setZOrder(on ? 3 : 0);
         }},
        {"area",
         [=](bool on) {
             area->setRect({0, 0, on ? 500.0 : 300.0, 200.0});
         }},
    };
    for (const auto &[name, set] : setters) {
        set(false);
        QCoreApplication::processEvents(); // what is new announces its change in two rounds
        for (const bool on : {true, false}) {
            QCoreApplication::processEvents();
            const QSignalSpy repainted(&scene, &QGraphicsScene::changed);
            set(!on);
            QCoreApplication::processEvents();
            EXPECT_EQ(repainted.count(), 0) << name << on;
            set(on);
            QCoreApplication::processEvents();
            EXPECT_GT(repainted.count(), 0) << name << on;
        }
    }
    node->setErrorText(QStringLiteral("no file"));
    EXPECT_EQ(node->mainColor(), OssNgStyle::instance()->color(OssNgStyle::Role::Error));
    auto *note = scene.add<OssNgUINode>(QString(), {2000, 0});
    note->setLabel(QStringLiteral("one\ntwo"));
    const qreal height = note->boundingRect().height();
    note->setLabel(QStringLiteral("one\n\ntwo"));
    EXPECT_GT(note->boundingRect().height(), height) << "an empty line is one";
}

TEST_F(OssNgViewTest, screenReadersHearStates)
{
    QAccessibleInterface *graph = QAccessible::queryAccessibleInterface(&view);
    ASSERT_NE(graph, nullptr);
    const auto heard = [graph] {
        QAccessibleInterface *node = graph->child(0);
        return QStringList{node->text(QAccessible::Name), node->text(QAccessible::Description)};
    };
    const State states[] = {
        {"off",
         [this](bool on) {
             a->setDisabled(on);
         }},
        {"passed by",
         [this](bool on) {
             a->setBypassed(on);
         }},
        {"stale",
         [this](bool on) {
             a->setStale(on);
         }},
        {"wrong",
         [this](bool on) {
             a->setErrorText(on ? QStringLiteral("no") : QString());
         }},
        {"category",
         [this](bool on) {
             a->setCategory(on ? QStringLiteral("Filter") : QString());
         }},
    };
    const QStringList plain = heard();
    QList<QStringList> all{plain};
    for (const auto &[name, set] : states) {
        set(true);
        EXPECT_FALSE(all.contains(heard())) << name;
        all.append(heard());
        set(false);
        EXPECT_EQ(heard(), plain) << name;
    }
    EXPECT_FALSE(graph->child(0)->state().offscreen);
    EXPECT_FALSE(graph->child(0)->state().selected);
    a->setSelected(true);
    EXPECT_TRUE(graph->child(0)->state().selected);
    view.centerViewOn({9000, 9000}, false);
    EXPECT_TRUE(graph->child(0)->state().offscreen);
    // Each end tells of the wire.
    scene.connectNodes(a, Out, b, In);
    EXPECT_TRUE(heard()[1].contains(QStringLiteral("B")));
    EXPECT_FALSE(heard()[1].contains(QStringLiteral("from")));
}

TEST_F(OssNgViewTest, aVirtualWireIsNoUsersToTake)
{
    b->setVirtualInput(In, true);
    OssNgEdge *wire = b->attachInput(In, a, Out);
    ASSERT_TRUE(wire->isVirtual());
    const QPointF place = wire->path().pointAtPercent(0.5);
    drag(place, place + QPointF(0, 150));
    EXPECT_EQ(b->input(In), wire) << "it stays";
    EXPECT_TRUE(b->isVirtualInput(In));
    b->setVirtualInput(In, false);
    EXPECT_FALSE(b->isVirtualInput(In));
    b->attachInput(In, nullptr, Out);
    EXPECT_EQ(b->input(In), nullptr);
    EXPECT_FALSE(b->attachInput(In, a, Out)->isVirtual());
}
