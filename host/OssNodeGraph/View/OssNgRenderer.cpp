#include "OssNodeGraph/View/OssNgRenderer.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Drawing/OssNgText.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <QGraphicsScene>
#include <QPainter>

#include <algorithm>
#include <cmath>

using Role = OssNgStyle::Role;

namespace {

constexpr qreal SmoothWires = 0.4; ///< zoom from which wires are antialiased
constexpr qreal NamedWidth = 64.0; ///< pixels of a backdrop that has room for its name
constexpr qreal NamedHeight = 20.0;
constexpr qreal SmallestBox = 2.0; ///< pixels of a node in overview

/// What lies in any of the rectangles, each once and in an order that does not depend on them: what
/// crosses must lie the same way in every part that is painted.
template <typename Find>
std::vector<int> collect(const QVector<QRectF> &exposed, const Find &find)
{
    std::vector<int> found;
    for (const QRectF &rect : exposed)
        find(rect, &found);
    std::sort(found.begin(), found.end());
    found.erase(std::unique(found.begin(), found.end()), found.end());
    return found;
}

void paintName(QPainter *painter, const OssNgNode &node, const QRectF &place)
{
    constexpr qreal Inset = 4.0;
    constexpr qreal Line = 8.0; // middle of the text, from the top
    const auto *backdrop = qobject_cast<const OssNgBackdropNode *>(&node);
    const QString name = backdrop && !backdrop->titleText().isEmpty() ? backdrop->titleText()
                                                                      : node.text();
    OssNgText::draw(painter, OssNgText::Role::Label, place.topLeft() + QPointF(Inset, Line),
                    OssNgText::elided(OssNgText::Role::Label, name, place.width() - 2.0 * Inset));
}

QPen wirePen(const OssNgEdge &edge, qreal zoom)
{
    const OssNgStyle *style = OssNgStyle::instance();
    QColor color = edge.color();
    qreal width = OssNgStyle::WireWidth;
    if (edge.isSelected() || edge.hasMark(OssNgEdge::Activated) || edge.hasMark(OssNgEdge::Debug)
        || edge.hovered())
        width = 3.2;
    qreal opacity = edge.hasMark(OssNgEdge::Bypassed) ? 0.35 : 0.95;
    QPen pen;
    if (edge.isVirtual()) {
        width = 1.6;
        opacity = 0.7;
        pen.setDashPattern({6.0 / width, 5.0 / width});
    } else if (edge.hasMark(OssNgEdge::Shared)) {
        pen.setDashPattern({9.0, 2.5});
    } else if (edge.hasMark(OssNgEdge::Bypassed)) {
        pen.setDashPattern({3.0, 3.0});
    }
    if (edge.hasMark(OssNgEdge::Doomed)) {
        color = style->color(Role::Error);
        width = 3.0;
        pen.setDashPattern({2.5, 2.5});
    } else if (edge.hasMark(OssNgEdge::Inviting)) {
        color = style->color(Role::Inviting);
        width = 4.4;
        opacity = 1.0;
    } else if (edge.hovered() && !edge.isSelected()) {
        color = color.lighter(125);
    }
    color.setAlphaF(opacity);
    pen.setColor(color);
    pen.setWidthF(std::max(width, 1.0 / zoom));
    pen.setCapStyle(edge.isVirtual() ? Qt::FlatCap : Qt::RoundCap);
    return pen;
}

void paintMarker(QPainter *painter, const OssNgEdge &edge)
{
    painter->setPen(QPen(Qt::white, edge.hovered() ? 2.0 : 1.0));
    painter->setBrush(edge.color());
    painter->drawEllipse(edge.markerPosition(), 6.0, 6.0);
}

QColor mixed(QRgb color, const QColor &ground, qreal share)
{
    const auto channel = [share](int a, int b) {
        return int(a * share + b * (1.0 - share));
    };
    return {channel(qRed(color), ground.red()), channel(qGreen(color), ground.green()),
            channel(qBlue(color), ground.blue())};
}

/// Lines of one colour; there are only a handful of colours.
struct Bundle
{
    QRgb color;
    QVector<QLineF> lines;
};

/// The grid's dots in the rectangles, each once.
QVector<QRectF> gridDots(const QVector<QRectF> &exposed, qreal step, qreal size)
{
    QVector<QRectF> dots;
    QVector<QRect> covered; // in rows and columns: rectangles overlap, and dots shine through
    for (const QRectF &rect : exposed) {
        // Counted from the scene's origin, so that a dot rounds to the same pixel in every part.
        const auto index = [step](qreal place) {
            return int(std::floor(place / step));
        };
        const QRect here(QPoint(index(rect.left()), index(rect.top())),
                         QPoint(index(rect.right() + size), index(rect.bottom() + size)));
        for (int row = here.top(); row <= here.bottom(); ++row) {
            for (int column = here.left(); column <= here.right(); ++column) {
                const bool done = std::any_of(
                    covered.cbegin(), covered.cend(),
                    [=](const QRect &other) { return other.contains(column, row); });
                if (!done)
                    dots.append({column * step - size / 2.0, row * step - size / 2.0, size, size});
            }
        }
        covered.append(here);
    }
    return dots;
}

} // namespace

void OssNgRenderer::paintCanvas(QPainter *painter, const QVector<QRectF> &exposed, qreal zoom)
{
    const OssNgStyle *style = OssNgStyle::instance();
    for (const QRectF &rect : exposed)
        painter->fillRect(rect, style->color(Role::Canvas));
    qreal step = OssNgStyle::GridStep;
    // Dots never come closer than 12 pixels; every second one goes as the zoom falls.
    while (step * zoom < 12.0 && step < 100.0)
        step *= 2.0;
    const qreal strength = std::clamp((step * zoom - 8.0) / 12.0, 0.0, 1.0)
                           * std::clamp((zoom - 0.1) / 0.3, 0.0, 1.0);
    if (strength <= 0.02)
        return;
    QColor color = style->color(Role::GridDot);
    color.setAlphaF(strength);
    const qreal size = std::max(1.8, 1.4 / zoom);
    const bool smooth = painter->testRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::Antialiasing, false);
    painter->setPen(Qt::NoPen);
    painter->setBrush(color);
    painter->drawRects(gridDots(exposed, step, size));
    painter->setRenderHint(QPainter::Antialiasing, smooth);
}

void OssNgRenderer::paintBackdrops(QPainter *painter, const OssNgSceneIndex &index,
                                   const QVector<QRectF> &exposed, qreal zoom)
{
    std::vector<int> found = collect(
        exposed, [&](const QRectF &rect, std::vector<int> *to) { index.findNodes(rect, to); });
    found.erase(std::remove_if(found.begin(), found.end(),
                               [&](int slot) { return !index.nodeEntry(slot).background; }),
                found.end());
    std::sort(found.begin(), found.end(), [&](int a, int b) {
        const auto &left = index.nodeEntry(a);
        const auto &right = index.nodeEntry(b);
        return left.z != right.z ? left.z < right.z : left.serial < right.serial;
    });
    const QTransform world = painter->worldTransform();
    for (const int slot : found) {
        const OssNgNode *node = index.nodeEntry(slot).node;
        painter->translate(node->pos());
        if (zoom < OssNgStyle::FullDetail)
            node->paintSimple(painter);
        else
            node->paintDetailed(painter);
        painter->setWorldTransform(world);
    }
}

void OssNgRenderer::paintWire(QPainter *painter, const OssNgEdge &edge, qreal zoom)
{
    painter->setBrush(Qt::NoBrush);
    painter->setPen(wirePen(edge, zoom));
    painter->drawPath(edge.path());
    if (edge.isDotable() && zoom >= OssNgStyle::Overview)
        paintMarker(painter, edge);
}

void OssNgRenderer::paintWire(QPainter *painter, const OssNgEdge &edge, qreal zoom,
                              const QPointF &sourceShift, const QPointF &destinationShift)
{
    QPointF points[4];
    edge.controlPoints(points);
    QPainterPath path(points[0] + sourceShift);
    path.cubicTo(points[1] + sourceShift, points[2] + destinationShift,
                 points[3] + destinationShift);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(wirePen(edge, zoom));
    painter->drawPath(path);
}

void OssNgRenderer::paintWires(QPainter *painter, const OssNgSceneIndex &index,
                               const QVector<QRectF> &exposed, qreal zoom)
{
    const std::vector<int> found = collect(
        exposed, [&](const QRectF &rect, std::vector<int> *to) { index.findWires(rect, to); });
    const bool smooth = painter->testRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::Antialiasing, zoom >= SmoothWires);
    std::vector<const OssNgEdge *> raised; // what is lit must not be hidden by its neighbours
    for (const int slot : found) {
        const OssNgEdge *edge = index.wireEntry(slot).edge;
        if (edge->hovered() || edge->isSelected() || edge->isDotable()
            || edge->hasMark(OssNgEdge::Inviting) || edge->dragEnd() != OssNgEdge::DragEnd::None)
            raised.push_back(edge);
        else
            paintWire(painter, *edge, zoom);
    }
    painter->setRenderHint(QPainter::Antialiasing, true);
    for (const OssNgEdge *edge : raised)
        paintWire(painter, *edge, zoom);
    painter->setRenderHint(QPainter::Antialiasing, smooth);
}

void OssNgRenderer::paintOverview(QPainter *painter, const OssNgSceneIndex &index,
                                  const QTransform &toDevice, const QRectF &exposedScene)
{
    const OssNgStyle *style = OssNgStyle::instance();
    painter->setRenderHint(QPainter::Antialiasing, false);
    std::vector<int> found;
    index.findNodes(exposedScene, &found);
    const auto box = [&](const OssNgSceneIndex::NodeEntry &entry) {
        const QRectF rect = toDevice.mapRect(entry.bounds);
        return QRectF(rect.topLeft(), rect.size().expandedTo({SmallestBox, SmallestBox}));
    };
    for (const int slot : found) {
        const OssNgSceneIndex::NodeEntry &entry = index.nodeEntry(slot);
        if (!entry.background)
            continue;
        QColor color = QColor::fromRgba(entry.color);
        color.setAlphaF(entry.selected ? 0.5 : 0.2);
        painter->fillRect(box(entry), color);
    }
    std::vector<int> wires;
    index.findWires(exposedScene, &wires);
    std::vector<Bundle> bundles;
    for (const int slot : wires) {
        const OssNgSceneIndex::WireEntry &entry = index.wireEntry(slot);
        auto bundle = std::find_if(bundles.begin(), bundles.end(),
                                   [&](const Bundle &b) { return b.color == entry.color; });
        if (bundle == bundles.end())
            bundle = bundles.insert(bundles.end(), Bundle{entry.color, {}});
        bundle->lines.append({toDevice.map(entry.start), toDevice.map(entry.end)});
    }
    for (const Bundle &bundle : bundles) {
        const QColor color = mixed(bundle.color, style->color(Role::Canvas), 0.75);
        painter->setPen(QPen(color, 0.0));
        painter->drawLines(bundle.lines);
    }
    const QColor accent = style->color(Role::Accent);
    for (const int slot : found) {
        const OssNgSceneIndex::NodeEntry &entry = index.nodeEntry(slot);
        if (!entry.background)
            painter->fillRect(box(entry).toRect(),
                              entry.selected ? accent
                                             : mixed(entry.color, style->color(Role::Body), 0.8));
    }
}

void OssNgRenderer::paintNames(QPainter *painter, const OssNgSceneIndex &index,
                               const QTransform &toDevice, const QRectF &exposedScene)
{
    painter->setPen(OssNgStyle::instance()->color(Role::Label));
    std::vector<int> found;
    index.findNodes(exposedScene, &found);
    for (const int slot : found) {
        const OssNgSceneIndex::NodeEntry &entry = index.nodeEntry(slot);
        const QRectF place = entry.background ? toDevice.mapRect(entry.bounds) : QRectF();
        if (place.width() >= NamedWidth && place.height() >= NamedHeight)
            paintName(painter, *entry.node, place);
    }
}

void OssNgRenderer::paintSceneTo(QPainter *painter, QGraphicsScene *scene, const QRectF &source,
                                 const QRectF &target)
{
    if (!scene || source.isEmpty() || target.isEmpty())
        return;
    OssNgSceneIndex::of(scene)->settleRoom();
    const OssNgSceneIndex &index = *OssNgSceneIndex::of(scene);
    painter->save();
    painter->setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform
                            | QPainter::TextAntialiasing);
    painter->setClipRect(target);
    painter->translate(target.topLeft());
    painter->scale(target.width() / source.width(), target.height() / source.height());
    painter->translate(-source.topLeft());
    const QVector<QRectF> exposed{source};
    paintCanvas(painter, exposed, 1.0);
    paintBackdrops(painter, index, exposed, 1.0);
    paintWires(painter, index, exposed, 1.0);
    const QTransform world = painter->worldTransform();
    const QVector<OssNgNode *> nodes = index.nodesIn(source);
    for (const OssNgNode *node : nodes) {
        if (node->isBackground())
            continue;
        painter->translate(node->pos());
        node->paintDetailed(painter);
        painter->setWorldTransform(world);
    }
    painter->restore();
}

void paintSceneTo(QPainter *painter, QGraphicsScene *scene, const QRectF &source,
                  const QRectF &target)
{
    OssNgRenderer::paintSceneTo(painter, scene, source, target);
}
