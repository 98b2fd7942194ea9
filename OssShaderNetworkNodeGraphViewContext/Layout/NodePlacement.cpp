#include "Layout/NodePlacement.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace {

constexpr qreal UnitsPerFactor = 100.0;
constexpr qreal Clearance = 10.0;    // of a free place from what is around
constexpr int MostPlacesAcross = 80; // that are looked at

QPointF inSinglePrecision(qreal x, qreal y)
{
    return {qreal(float(x)), qreal(float(y))};
}

int sign(int value)
{
    return (value > 0) - (value < 0);
}

} // namespace

QPoint NodePlacement::gridStep(int layoutType, bool flipped)
{
    struct Step
    {
        QPoint normal;
        QPoint flipped;
    };

    static const Step steps[] = {
        {{0, 0}, {0, 0}},   {{0, 1}, {1, 0}}, {{2, 0}, {0, 2}}, {{-1, 1}, {1, -1}},
        {{1, -1}, {-1, 1}}, {{0, 2}, {2, 0}}, {{3, 0}, {0, 3}}, {{2, 0}, {0, 2}},
        {{-1, 0}, {0, -1}}, {{0, 0}, {0, 0}}, {{0, 0}, {0, 0}}, {{1, -1}, {-1, 0}},
    };
    if (layoutType < 0 || layoutType >= int(std::size(steps)))
        return {};
    return flipped ? steps[layoutType].flipped : steps[layoutType].normal;
}

QPointF NodePlacement::beside(const QRectF &other)
{
    return inSinglePrecision(other.x() + other.width() + Gap, other.y() + other.height() + Gap);
}

std::optional<QPointF> NodePlacement::nearestFree(const QPointF &wanted, const QSizeF &own,
                                                  const QVector<QRectF> &obstacles,
                                                  const QRectF &area)
{
    const QRectF room(area.topLeft(), area.bottomRight() - QPointF(own.width(), own.height()));
    if (!room.isValid())
        return std::nullopt;
    const QPointF start(std::clamp(wanted.x(), room.left(), room.right()),
                        std::clamp(wanted.y(), room.top(), room.bottom()));
    const qreal step = std::max(Clearance,
                                std::max(room.width(), room.height()) / MostPlacesAcross);
    const auto first = [step](qreal from, qreal to) {
        return int(std::ceil((to - from) / step));
    };
    const auto last = [step](qreal from, qreal to) {
        return int(std::floor((to - from) / step));
    };
    std::optional<QPointF> best;
    qreal nearest = 0.0;
    for (int row = first(start.y(), room.top()); row <= last(start.y(), room.bottom()); ++row) {
        for (int column = first(start.x(), room.left()); column <= last(start.x(), room.right());
             ++column) {
            const QPointF place = start + QPointF(column, row) * step;
            const QPointF way = place - wanted;
            const qreal distance = QPointF::dotProduct(way, way);
            if (best && distance >= nearest)
                continue;
            const QRectF kept = QRectF(place, own)
                                    .adjusted(-Clearance, -Clearance, Clearance, Clearance);
            if (std::any_of(obstacles.cbegin(), obstacles.cend(),
                            [&kept](const QRectF &other) { return other.intersects(kept); }))
                continue;
            best = place;
            nearest = distance;
        }
    }
    return best;
}

QPointF NodePlacement::underneath(const QRectF &reference, const QPointF &ownCenter, int factor)
{
    const QPointF center = reference.center();
    return inSinglePrecision(center.x(), center.y() + UnitsPerFactor * factor) - ownCenter;
}

QPointF NodePlacement::freeSpot(const QRectF &everything, int spacing, qreal extraSpacing)
{
    return {everything.right() + Gap, everything.top() + Gap + spacing + extraSpacing};
}

QPointF NodePlacement::onGrid(const QRectF &reference, const QSizeF &own, const QPoint &step,
                              const Spacing &spacing)
{
    const QPointF half(own.width() / 2.0, own.height() / 2.0);
    const QPointF center = reference.center()
                           + QPointF(step.x() * reference.width() / 2.0
                                         + sign(step.x()) * (Gap + spacing.horizontal + half.x()),
                                     step.y() * reference.height() / 2.0
                                         + sign(step.y()) * (Gap + spacing.vertical + half.y()));
    return center - half;
}

QPointF NodePlacement::nextInStream(const QRectF &reference, const QSizeF &own, bool flipped)
{
    if (flipped)
        return {reference.center().x() - own.width() / 2.0, reference.bottom() + Gap};
    return {reference.x() + reference.width() + Gap, reference.center().y() - own.height() / 2.0};
}

qreal NodePlacement::besideForContainer(const QRectF &reference, qreal horizontalSpacing)
{
    const auto right = float(reference.center().x() + reference.width() / 2.0);
    const auto gap = float(Gap);
    const auto spacing = float(horizontalSpacing);
    return qreal(right + gap + spacing + spacing + gap - float(reference.width() / 2.0));
}
