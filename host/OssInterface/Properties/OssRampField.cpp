#include "OssInterface/Properties/OssRampEditor.h"
#include "OssModel/Images/OssDisplayColor.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPolygonF>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr double Margin = 8.0;
constexpr double BarHeight = 24.0;
constexpr double GripSize = 6.0;
constexpr double KeyStep = 0.01;
constexpr double OffDistance = 28.0; ///< by which a stop is dragged off
constexpr int Square = 6;

QColor shownColor(const std::array<double, 4> &premultiplied)
{
    const double alpha = premultiplied[3] > 0.0 ? premultiplied[3] : 1.0;
    QColor color = OssDisplayColor::ofLinear(
        {premultiplied[0] / alpha, premultiplied[1] / alpha, premultiplied[2] / alpha, 1.0});
    color.setAlphaF(std::clamp(premultiplied[3], 0.0, 1.0));
    return color;
}

} // namespace

OssRampField::OssRampField(QWidget *parent)
    : OssHandleField(parent)
{
    setToolTip(tr("Double-click to add a stop or to change its colour; drag a stop off to remove "
                  "it"));
}

void OssRampField::setStops(const QVector<Stop> &stops)
{
    if (m_stops == stops)
        return;
    m_stops = stops;
    m_current = qBound(0, m_current, qMax(0, m_stops.size() - 1));
    describe();
    update();
    Q_EMIT currentChanged();
}

const OssRampField::Stop *OssRampField::currentStop() const
{
    return m_current < m_stops.size() ? &m_stops.at(m_current) : nullptr;
}

void OssRampField::setCurrent(int stop)
{
    m_current = stop;
    describe();
    update();
    Q_EMIT currentChanged();
}

void OssRampField::setCurrentColor(const std::array<float, 4> &color)
{
    if (m_current >= m_stops.size())
        return;
    m_stops[m_current].color = color;
    describe();
    update();
}

void OssRampField::setCurrentPlace(double place)
{
    if (m_current >= m_stops.size())
        return;
    // Stops keep their order: one does not pass another.
    const double low = m_current > 0 ? m_stops.at(m_current - 1).place : 0.0;
    const double high = m_current + 1 < m_stops.size() ? m_stops.at(m_current + 1).place : 1.0;
    m_stops[m_current].place = std::clamp(place, low, std::max(low, high));
    describe();
    update();
    Q_EMIT currentChanged();
}

void OssRampField::describe()
{
    const Stop *stop = currentStop();
    if (!stop)
        return;
    setAccessibleDescription(
        tr("stop %1 of %2 at %3").arg(m_current + 1).arg(m_stops.size()).arg(stop->place));
}

OssEvRamp OssRampField::ramp() const
{
    std::vector<Stop> stops;
    for (int i = 0; i < m_stops.size(); ++i) {
        if (!(m_isOff && i == m_current))
            stops.push_back(m_stops.at(i));
    }
    return OssEvRamp(std::move(stops));
}

// --- places

QRectF OssRampField::bar() const
{
    return {Margin, 2.0, width() - 2.0 * Margin, BarHeight};
}

QPointF OssRampField::gripOf(int stop) const
{
    const QRectF box = bar();
    return {box.left() + m_stops.at(stop).place * box.width(), box.bottom() + GripSize + 3.0};
}

double OssRampField::placeAt(const QPointF &position) const
{
    const QRectF box = bar();
    return std::clamp((position.x() - box.left()) / std::max(box.width(), 1.0), 0.0, 1.0);
}

int OssRampField::stopNear(const QPointF &position) const
{
    const auto isNear = [&](int stop) {
        const QPointF way = gripOf(stop) - position;
        return std::abs(way.x()) <= GripSize + 2.0 && std::abs(way.y()) <= GripSize + 4.0;
    };
    // As they are drawn: the current one on top, then the later ones.
    if (m_current < m_stops.size() && isNear(m_current))
        return m_current;
    for (int i = m_stops.size() - 1; i >= 0; --i) {
        if (isNear(i))
            return i;
    }
    return -1;
}

// --- painting

void OssRampField::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBar(&painter);
    for (int i = 0; i < m_stops.size(); ++i) {
        if (i != m_current)
            paintGrip(&painter, i);
    }
    if (m_current < m_stops.size() && !m_isOff)
        paintGrip(&painter, m_current);
    paintMixed(&painter, bar());
}

void OssRampField::paintBar(QPainter *painter) const
{
    const QRectF box = bar();
    const OssEvRamp shown = ramp();
    painter->setRenderHint(QPainter::Antialiasing, false);
    for (int x = 0; x < int(box.width()); ++x) {
        for (int y = 0; y < int(box.height()); y += Square) {
            const bool dark = (x / Square + y / Square) % 2 == 0;
            painter->fillRect(QRectF(box.left() + x, box.top() + y, 1.0,
                                     std::min<double>(Square, box.height() - y)),
                              dark ? QColor(90, 90, 90) : QColor(150, 150, 150));
        }
        const QColor color = shownColor(shown.at(x / box.width(), OssEvRamp::Mix::Linear));
        painter->fillRect(QRectF(box.left() + x, box.top(), 1.0, box.height()), color);
    }
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(palette().color(hasFocus() ? QPalette::Link : QPalette::Light));
    painter->setBrush(Qt::NoBrush);
    painter->drawRect(box.adjusted(-0.5, -0.5, 0.5, 0.5));
}

void OssRampField::paintGrip(QPainter *painter, int stop) const
{
    const QPointF middle = gripOf(stop);
    const bool current = stop == m_current;
    const std::array<float, 4> &color = m_stops.at(stop).color;
    const QVector<QPointF> corners{
        middle + QPointF(0.0, -GripSize - 2.0), middle + QPointF(GripSize, -1.0),
        middle + QPointF(GripSize, GripSize), middle + QPointF(-GripSize, GripSize),
        middle + QPointF(-GripSize, -1.0)};
    const QColor line = palette().color(current ? QPalette::Link : QPalette::Text);
    painter->setPen(QPen(line, current ? 2.0 : 1.0));
    painter->setBrush(
        OssDisplayColor::ofLinear({double(color[0]), double(color[1]), double(color[2]), 1.0}));
    painter->drawPolygon(QPolygonF(corners));
}

// --- changes

void OssRampField::addStop(double place)
{
    if (m_stops.size() >= 64)
        return;
    const std::array<double, 4> there = ramp().at(place, OssEvRamp::Mix::Linear);
    const double alpha = there[3] > 0.0 ? there[3] : 1.0;
    const Stop stop{place,
                    {float(there[0] / alpha), float(there[1] / alpha), float(there[2] / alpha),
                     float(there[3])}};
    const auto after = std::find_if(m_stops.begin(), m_stops.end(),
                                    [place](const Stop &other) { return other.place > place; });
    const int index = int(after - m_stops.begin());
    m_stops.insert(index, stop);
    setCurrent(index);
    Q_EMIT edited();
}

void OssRampField::removeStop(int stop)
{
    if (stop < 0 || stop >= m_stops.size() || m_stops.size() <= 1)
        return;
    m_stops.removeAt(stop);
    setCurrent(qMin(stop, m_stops.size() - 1));
    Q_EMIT edited();
}

// --- pointer and keys

void OssRampField::mousePressEvent(QMouseEvent *event)
{
    const int stop = event->button() == Qt::LeftButton ? stopNear(event->localPos()) : -1;
    if (stop < 0) {
        event->setAccepted(event->button() == Qt::LeftButton);
        return;
    }
    takeHandle();
    setCurrent(stop);
}

void OssRampField::mouseMoveEvent(QMouseEvent *event)
{
    if (!isDragging())
        return;
    m_isOff = m_stops.size() > 1
              && (event->localPos().y() < -OffDistance
                  || event->localPos().y() > height() + OffDistance);
    if (!m_isOff)
        setCurrentPlace(placeAt(event->localPos()));
    update();
    Q_EMIT dragged();
}

void OssRampField::mouseReleaseEvent(QMouseEvent *)
{
    if (!endDrag())
        return;
    const bool goes = m_isOff;
    m_isOff = false;
    if (goes) {
        m_stops.removeAt(m_current);
        setCurrent(qMin(m_current, m_stops.size() - 1));
        Q_EMIT dragged();
    }
    Q_EMIT dragEnded();
}

void OssRampField::mouseDoubleClickEvent(QMouseEvent *event)
{
    letHandleGo();
    const int stop = stopNear(event->localPos());
    if (stop >= 0) {
        setCurrent(stop);
        Q_EMIT colorWanted();
    } else {
        addStop(placeAt(event->localPos()));
    }
}

void OssRampField::keyPressEvent(QKeyEvent *event)
{
    const double step = event->modifiers() & Qt::ShiftModifier ? KeyStep / 10.0 : KeyStep;
    const Stop *stop = currentStop();
    const double place = stop ? stop->place : 0.0;
    switch (event->key()) {
    case Qt::Key_Left:
        setCurrentPlace(place - step);
        Q_EMIT stepped();
        return;
    case Qt::Key_Right:
        setCurrentPlace(place + step);
        Q_EMIT stepped();
        return;
    case Qt::Key_Space:
        setCurrent(m_stops.isEmpty() ? 0 : (m_current + 1) % m_stops.size());
        return;
    case Qt::Key_Plus: {
        const double next = m_current + 1 < m_stops.size() ? m_stops.at(m_current + 1).place : 1.0;
        addStop((place + next) / 2.0);
        return;
    }
    case Qt::Key_Delete:
        removeStop(m_current);
        return;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT colorWanted();
        return;
    default:
        OssHandleField::keyPressEvent(event);
    }
}
