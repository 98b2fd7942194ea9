#include "NodeFixture.h"
#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgUINode.h"

#include <QCoreApplication>
#include <QSignalSpy>

// How nodes look, in files and close by.

namespace {

QPixmap magenta(int size)
{
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::magenta);
    return pixmap;
}

/// What an item paints by itself, twice as large.
QImage painted(const OssNgNode *node, void (OssNgNode::*paint)(QPainter *) const)
{
    QImage image((node->boundingRect().size() * 2).toSize(), QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.scale(2.0, 2.0);
    (node->*paint)(&painter);
    return image;
}

QImage painted(const OssNgNode *node)
{
    return painted(node, &OssNgNode::paintDetailed);
}

int pixelsThat(const QImage &image, const std::function<bool(int x, int y)> &count)
{
    int found = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            found += count(x, y) ? 1 : 0;
    }
    return found;
}

int differingPixels(const QImage &a, const QImage &b)
{
    return pixelsThat(a, [&](int x, int y) { return a.pixel(x, y) != b.pixel(x, y); });
}

class OssNgNodeLooks : public NodeFixture
{
protected:
    /// Sets the node's type and shows it.
    auto shape(int type) const
    {
        return [this, type](bool on) {
            node->setShapeType(on ? type : 0);
            node->updateShape();
        };
    }

    OssNgBackdropNode *addArea(const QPointF &position)
    {
        auto *area = scene.add<OssNgBackdropNode>(QString(), position);
        area->setRect({0, 0, 300, 200});
        return area;
    }
};

TEST_F(OssNgNodeLooks, everyStateIsToBeSeenAndGoesAgain)
{
    node->addOutputPort(text("Second"));
    node->setDebugColor(Qt::cyan);
    const QColor red(Qt::darkRed);
    States<QImage> states([this] { return picture(node); });
    states.expectOfItsOwn("error", [this](bool on) { node->setErrorText(text(on ? "no" : "")); });
    states.expectOfItsOwn("stale", [this](bool on) { node->setStale(on); });
    states.expectOfItsOwn("baked", [this](bool on) { node->setBaked(on); });
    states.expectOfItsOwn("stored", [this](bool on) { node->setCached(on); });
    states.expectOfItsOwn("system", [this](bool on) { node->setSystemShader(on); });
    states.expectOfItsOwn("looked at", [this](bool on) { node->setGuiActive(on); });
    states.expectOfItsOwn("off", [this](bool on) { node->setDisabled(on); });
    states.expectOfItsOwn("passed by", [this](bool on) { node->setBypassed(on); });
    states.expectOfItsOwn("chosen", [this](bool on) { node->setSelected(on); });
    states.expectOfItsOwn("unknown type", [this](bool on) { node->setPlaceholder(on); });
    states.expectOfItsOwn("a material", shape(3));
    states.expectOfItsOwn("a group", shape(4));
    states.expectOfItsOwn("of many channels", shape(7));
    states.expectOfItsOwn("under the pointer", [this](bool on) { node->setHovered(on); });
    states.expectOfItsOwn("without labels", [this](bool on) { node->setLabelsVisible(!on); });
    states.expectOfItsOwn("lit", [this](bool on) { node->setHighlighted(on); });
    states.expectOfItsOwn("debugged", [this](bool on) { node->setDebug(on); });
    states.expectOfItsOwn("icon",
                          [this](bool on) { node->setPixmap(on ? magenta(16) : QPixmap(), {}); });
    states.expectOfItsOwn("with a picture",
                          [this](bool on) { node->setThumbnail(on ? magenta(64) : QPixmap()); });
    states.expectOfItsOwn("a colour below",
                          [&](bool on) { node->setNodeColor({}, on ? red : QColor()); });
    states.expectOfItsOwn("a colour above",
                          [&](bool on) { node->setNodeColor(on ? red : QColor(), {}); });
}

TEST_F(OssNgNodeLooks, fromAfarWhatIsChosenMarkedOrOffIsStillToBeSeen)
{
    auto *note = scene.add<OssNgUINode>(QString(), {4000, 0});
    note->setLabel(text("Note"));
    node->setDebugColor(Qt::cyan);
    const QRgb accent = OssNgStyle::instance()->color(OssNgStyle::Role::Accent).rgb();
    for (OssNgNode *one : QList<OssNgNode *>{node, addArea({2000, 0}), note}) {
        const auto ring = [&] {
            const QImage image = painted(one, &OssNgNode::paintSimple);
            return pixelsThat(image, [&](int x, int y) { return image.pixel(x, y) == accent; });
        };
        const auto choose = [one](bool on) {
            one->setSelected(on);
        };
        EXPECT_EQ(ring(), 0);
        choose(true);
        EXPECT_GT(ring(), 20);
        choose(false);
        for (const QSize &size : {QSize(60, 40), QSize(30, 20)})
            States<QImage>([&] { return picture(one, size); }).expectSeen("chosen", choose);
    }
    for (const QSize &size : {QSize(60, 40), QSize(40, 26), QSize(30, 20)}) {
        SCOPED_TRACE(size.width());
        States<QImage> far([&] { return picture(node, size); });
        far.expectSeen("error", [this](bool on) { node->setErrorText(text(on ? "no" : "")); });
        far.expectSeen("off", [this](bool on) { node->setDisabled(on); });
        far.expectSeen("under the pointer", [this](bool on) { node->setHovered(on); });
        far.expectSeen("lit", [this](bool on) { node->setHighlighted(on); });
        far.expectSeen("debugged", [this](bool on) { node->setDebug(on); });
        far.expectSeen("coloured",
                       [this](bool on) { node->setNodeColor(on ? Qt::darkRed : QColor(), {}); });
    }
}

TEST_F(OssNgNodeLooks, tipsSayWhatIsUnderThePointer)
{
    const QPointF body = node->bodyRect().topLeft() + QPointF(40, 8);
    node->setToolTip(text("What it is"));
    EXPECT_EQ(node->toolTipAt(node->mapFromScene(node->inputPortScenePos(In))), In);
    EXPECT_EQ(node->toolTipAt(node->mapFromScene(node->outputPortScenePos(Out))), Out);
    EXPECT_EQ(node->toolTipAt(body), text("What it is"));
    node->setErrorText(text("no file"));
    EXPECT_EQ(node->toolTipAt(body), text("no file\nWhat it is"));
    EXPECT_EQ(node->toolTipAt(node->mapFromScene(node->inputPortScenePos(In))), In);
    const QString longName(200, QLatin1Char('W'));
    node->setErrorText({});
    node->setToolTip({});
    node->setText(longName);
    EXPECT_EQ(node->toolTipAt(body), longName) << "what is cut short";
}

TEST_F(OssNgNodeLooks, aReasonTakesTheRoomThatThereIsAndNoMore)
{
    const qreal plain = node->bodyRect().height();
    const qreal below = node->pos().y() + node->boundingRect().height();
    OssNgExtendedNode *other = scene.add("Below", {node->x() + 20.0, below + 25.0});
    const auto height = [this] {
        QCoreApplication::processEvents();
        return node->bodyRect().height();
    };
    node->setErrorText(QString(300, QLatin1Char('W')).replace(20, 1, QLatin1Char(' ')));
    const qreal low = node->bodyRect().height();
    EXPECT_GT(low, plain) << "at once";
    EXPECT_FALSE(node->sceneBoundingRect().intersects(other->sceneBoundingRect()));
    other->setPosition({other->x(), below + 4.0});
    EXPECT_EQ(height(), plain);
    EXPECT_TRUE(node->toolTipAt(node->bodyRect().center()).startsWith(node->errorText()));
    other->setPosition({other->x(), below + 400.0});
    const qreal whole = height();
    EXPECT_GT(whole, low);
    OssNgExtendedNode *late = scene.add("Late", {node->x(), below + 25.0});
    EXPECT_EQ(height(), low);
    late->setVisible(false);
    EXPECT_EQ(height(), whole);
    node->setErrorText({});
    EXPECT_EQ(height(), plain);
}

TEST_F(OssNgNodeLooks, aStandInLooksLikeWhatItStandsFor)
{
    node->setPosition({20, 30});
    node->setErrorText(text("no file"));
    node->setStale(true);
    node->setNodeColor(Qt::darkRed, Qt::darkBlue);
    OssNgExtendedNode *copy = scene.add("Brick", {500, 500});
    copy->copyStateFrom(nullptr);
    copy->copyStateFrom(copy);
    EXPECT_EQ(copy->pos(), QPointF(500, 500));
    const QImage wanted = picture(node);
    EXPECT_NE(picture(copy), wanted);
    copy->copyStateFrom(node);
    EXPECT_EQ(copy->pos(), node->pos());
    node->setPosition({900, 900});
    EXPECT_EQ(picture(copy), wanted);

    auto *area = addArea({2000, 0});
    area->setRect({0, 0, 333, 222});
    area->setTitleText(text("Walls"));
    area->setLabel(text("Old ones"));
    area->setNodeBackgroundColour(Qt::darkGreen);
    auto *other = scene.add<OssNgBackdropNode>(QString(), {3000, 0});
    const QImage wantedArea = picture(area);
    other->copyStateFrom(area);
    area->setPosition({5000, 0});
    EXPECT_EQ(other->rect(), area->rect());
    EXPECT_EQ(picture(other), wantedArea);
}

TEST_F(OssNgNodeLooks, aBackdropShowsItsTextAsFarAsThereIsRoom)
{
    auto *area = addArea({2000, 0});
    States<QImage> labels([area] { return picture(area); });
    labels.expectOfItsOwn("one", [area](bool on) { area->setLabel(text(on ? "one" : "")); });
    labels.expectOfItsOwn("two", [area](bool on) { area->setLabel(text(on ? "one\ntwo" : "")); });
    area->setLabel(text("line\n").repeated(40));
    const QImage image = picture(&scene, {2000, 0, 300, 300}, {300, 300});
    const auto isLight = [&image](int x, int y) {
        return y >= 205 && image.pixelColor(x, y).lightness() >= 80;
    };
    EXPECT_EQ(pixelsThat(image, isLight), 0) << "no line below the edge";

    area->setLabel({});
    area->setRect({QPointF(), OssNgBackdropNode::minimumSize()});
    const QImage small = picture(area);
    area->setLabel(text("one\ntwo"));
    EXPECT_EQ(picture(area), small) << "text has no place in the smallest one";
}

TEST_F(OssNgNodeLooks, iconsOfTheHeaderDiffer)
{
    States<QImage> icons([this] { return picture(node); });
    for (const char *name : {"other", "GeoChannel", "ActivePatchRange", "BroadcastNodeSignal",
                             "BroadcastNodeSilent", "ReceiverNodeSignal", "ReceiverNodeSilent"}) {
        const int icon = node->addIcon(text(name));
        icons.expectOfItsOwn(name, [this, icon](bool on) { node->setIconVisible(icon, on); });
    }
    EXPECT_EQ(node->addIcon({}), -1) << "an icon has a name";
    node->setIconVisible(99, true);
    EXPECT_FALSE(node->isIconVisible(99));
}

TEST_F(OssNgNodeLooks, silentTeleportsAreStruckThrough)
{
    for (const char *kind : {"BroadcastNode", "ReceiverNode"}) {
        OssNgExtendedNode *teleport = scene.add("T", {0, 0});
        const QImage plain = painted(teleport);
        const auto inked = [&](const char *state) {
            const int icon = teleport->addIcon(text(kind) + text(state));
            teleport->setIconVisible(icon, true);
            const int count = differingPixels(painted(teleport), plain);
            teleport->setIconVisible(icon, false);
            return count;
        };
        EXPECT_GT(inked("Silent"), inked("Signal")) << kind;
    }
}

TEST_F(OssNgNodeLooks, portsShowTheirKindAndThatTheyAreMeant)
{
    for (const auto mode : {OssNgExtendedNode::Expanded, OssNgExtendedNode::NoPortList}) {
        SCOPED_TRACE(mode);
        node->setPortListMode(mode);
        States<QImage> ports([this] { return picture(node); });
        const QHash<QString, int> scalar{{In, 1}};
        ports.expectSeen(
            "kind", [&](bool on) { node->setPortKinds(on ? scalar : QHash<QString, int>(), {}); });
        ports.expectSeen("meant", [this](bool on) { node->setLitPort(on ? In : QString(), true); });
    }
    for (const int unknown : {-1, 99}) {
        node->setPortKinds({{In, unknown}}, {});
        EXPECT_GE(int(node->inputPort(In)->kind), 0);
        EXPECT_LE(int(node->inputPort(In)->kind), int(OssNgPortKind::Data));
    }
}

TEST_F(OssNgNodeLooks, portsThatAreNotListedLeaveNoTrace)
{
    const QString wide(60, QLatin1Char('W'));
    node->setPortListMode(OssNgExtendedNode::ConnectedOnly);
    const QRectF body = node->bodyRect();
    const QImage plain = picture(node);
    node->addInputPort(wide);
    node->addOutputPort(wide + Out);
    node->addOutputPort(wide + In);
    EXPECT_EQ(node->bodyRect(), body);
    EXPECT_EQ(picture(node), plain);
    node->setPortListMode(OssNgExtendedNode::Expanded);
    EXPECT_GT(node->bodyRect().width(), body.width());
}

TEST_F(OssNgNodeLooks, rowsAndSidesArePortsOwn)
{
    const QStringList three = texts({"A", "B", "C"});
    OssNgExtendedNode *ins = scene.add("Ins", {500, 0}, three);
    OssNgExtendedNode *outs = scene.add("Outs", {1000, 0}, {In}, three);
    EXPECT_GT(ins->bodyRect().height(), node->bodyRect().height());
    EXPECT_EQ(outs->bodyRect().height(), ins->bodyRect().height());
    const QRectF body = node->mapRectToScene(node->bodyRect());
    EXPECT_NEAR(node->outputPortScenePos(Out).x(), body.right(), 1.0);
    EXPECT_NEAR(node->inputPortScenePos(In).x(), body.left(), 1.0);
    EXPECT_EQ(node->inputPortDirection(In), QPointF(-1, 0));

    node->setPortListMode(OssNgExtendedNode::NoPortList);
    const QRectF bare = node->mapRectToScene(node->bodyRect());
    EXPECT_NEAR(node->outputPortScenePos(Out).y(), bare.bottom(), 1.0);
    EXPECT_NEAR(node->inputPortScenePos(In).y(), bare.top(), 1.0);
    EXPECT_EQ(node->inputPortDirection(In), QPointF(0, -1));
    node->setConnectionPositions({{In, {{5, 5}, {9, 2}}}}, {{Out, {{5, 5}, {5, 5}}}});
    EXPECT_EQ(node->inputPortDirection(In), QPointF(4, -3));
    EXPECT_EQ(node->outputPortDirection(Out), QPointF(0, 1)) << "no way leads nowhere";
}

TEST_F(OssNgNodeLooks, portsAlongEdgesStayOnTheNodeHoweverMany)
{
    for (const int count : {1, 2, 14}) {
        QStringList names;
        for (int i = 0; i < count; ++i)
            names.append(QStringLiteral("I%1").arg(i));
        OssNgExtendedNode *wide = scene.add("Brick", {0, 0}, names);
        wide->setPortListMode(OssNgExtendedNode::NoPortList);
        const QRectF body = wide->sceneBoundingRect();
        qreal last = body.left();
        for (const QString &name : names) {
            const QPointF place = wide->inputPortScenePos(name);
            EXPECT_GT(place.x(), last) << count;
            EXPECT_LT(place.x(), body.right()) << count;
            last = place.x();
        }
        const qreal middle = (wide->inputPortScenePos(names.first()).x() + last) / 2.0;
        EXPECT_NEAR(middle, wide->outputPortScenePos(Out).x(), 1e-6);
    }
}

TEST_F(OssNgNodeLooks, whatIsUnknownHasGapsInItsOutlineAndWhatIsPassedByInItsStrike)
{
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

TEST_F(OssNgNodeLooks, labelsStandBesideInputsAndBesideSeveralOutputs)
{
    const auto call = [this](const char *input, const char *output) {
        node->setConnectionPrettyNames({text(input)}, {text(output)});
        return painted(node);
    };
    const QImage named = call("Input", "Output");
    EXPECT_EQ(call("Input", "Outcome"), named) << "the only output needs no name";
    EXPECT_NE(call("Inlet", "Output"), named);
    node->setLabelsVisible(false);
    const QImage bare = call("Input", "Output");
    EXPECT_EQ(call("Inlet", "Outcome"), bare);
    node->setLabelsVisible(true);
    node->addOutputPort(text("Second"));
    EXPECT_NE(call("Input", "Outcome"), call("Input", "Output"));

    // A single output's name makes no node wider.
    OssNgExtendedNode *wide = scene.add("A", {0, 300});
    const qreal width = wide->boundingRect().width();
    wide->setConnectionPrettyNames({In}, {QString(60, QLatin1Char('W'))});
    wide->refresh();
    EXPECT_EQ(wide->boundingRect().width(), width);
    wide->addOutputPort(text("Second"));
    EXPECT_GT(wide->boundingRect().width(), width);
}

TEST_F(OssNgNodeLooks, notesGrowWithTheirText)
{
    auto *note = scene.add<OssNgUINode>(QString(), {0, 500});
    const auto heightOf = [note](const QString &label) {
        note->setLabel(label);
        return note->bodyRect().height();
    };
    const qreal line = heightOf({});
    EXPECT_EQ(heightOf(text("one")), line) << "there is always a line";
    EXPECT_GT(heightOf(text("one\n\ntwo")), heightOf(text("one\ntwo"))) << "an empty line is one";
    EXPECT_GT(heightOf(text("word ").repeated(60)), line) << "long ones are wrapped";
    EXPECT_GT(heightOf(text("path/").repeated(60)), line) << "also what has no gaps";
}

TEST_F(OssNgNodeLooks, settingWhatIsSetRepaintsNothing)
{
    OssNgExtendedNode *other = scene.add("Wall", {300, 0});
    auto *area = scene.add<OssNgBackdropNode>(QString(), {1000, 0});
    scene.connectNodes(node, Out, other, In);
    OssNgEdge *wire = other->input(In);
    QObject::connect(&scene, &QGraphicsScene::changed, &scene, [] {}); // or it is not worked out
    const auto expectRepainted = [this](const char *name, const auto &set) {
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
    };
    using Node = OssNgExtendedNode;
    expectRepainted("text", [this](bool on) { node->setText(text(on ? "B" : "A")); });
    expectRepainted("error", [this](bool on) { node->setErrorText(text(on ? "no file" : "")); });
    expectRepainted("mark", [this](bool on) { node->setStale(on); });
    expectRepainted("shape", shape(4));
    expectRepainted("labels", [this](bool on) { node->setLabelsVisible(!on); });
    expectRepainted("hover", [this](bool on) { node->setHovered(on); });
    expectRepainted(
        "mode", [this](bool on) { node->setPortListMode(on ? Node::Collapsed : Node::Expanded); });
    expectRepainted("mark of a wire", [wire](bool on) { wire->setBypassed(on); });
    expectRepainted("hover of a wire", [wire](bool on) { wire->setHovered(on); });
    expectRepainted("title", [area](bool on) { area->setTitleText(text(on ? "T" : "")); });
    expectRepainted("label", [area](bool on) { area->setLabel(text(on ? "L" : "")); });
    expectRepainted("order", [area](bool on) { area->setZOrder(on ? 3 : 0); });
    expectRepainted("area", [area](bool on) { area->setRect({0, 0, on ? 500.0 : 300.0, 200}); });
}

TEST_F(OssNgNodeLooks, theMainColourIsTheUsersUnlessThereIsAnError)
{
    node->setCategory(text("Layer"));
    const QColor ofStyle = node->mainColor();
    node->setNodeColor(Qt::red, Qt::blue);
    EXPECT_EQ(node->mainColor(), QColor(Qt::red));
    node->setNodeColor(Qt::magenta, QColor());
    EXPECT_EQ(node->fillBrush().gradient()->stops().first().second, QColor(Qt::magenta));
    node->setNodeColor({}, {});
    EXPECT_EQ(node->mainColor(), ofStyle);
    node->setErrorText(text("no file"));
    EXPECT_EQ(node->mainColor(), OssNgStyle::instance()->color(OssNgStyle::Role::Error));
}

// --- style

TEST(OssNgStyle, unknownCategoriesShareOneColourAndAreNotInvalid)
{
    const OssNgStyle *style = OssNgStyle::instance();
    const QColor unknown = style->categoryColor(text("Never heard of"));
    EXPECT_TRUE(unknown.isValid());
    EXPECT_EQ(unknown, style->categoryColor(QString()));
    EXPECT_NE(unknown, style->categoryColor(text("Paint")));
}

TEST(OssNgStyle, colorsUpdatedOnlyWhenAColourChanges)
{
    OssNgStyle *style = OssNgStyle::instance();
    const QSignalSpy told(style, &OssNgStyle::colorsUpdated);
    const QColor old = style->color(OssNgStyle::Role::Accent);
    style->setColor(OssNgStyle::Role::Accent, old);
    EXPECT_EQ(told.count(), 0);
    style->setColor(OssNgStyle::Role::Accent, Qt::red);
    style->setColor(OssNgStyle::Role::Accent, old);
    EXPECT_EQ(told.count(), 2);
}

} // namespace
