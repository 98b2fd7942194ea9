#include "OssInterface/Properties/OssCurveEditor.h"

#include "OssCore/Values/OssNumberText.h"
#include "OssEvaluation/Values/OssEvParameter.h"

#include <QHBoxLayout>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <vector>

namespace {

constexpr double Grip = 7.0;
constexpr double KeyStep = 0.02;
constexpr double SmallestGap = 1e-4;

/// The function that nodes make of the points.
OssEvCurve curveThrough(const QVector<QPointF> &points)
{
    std::vector<OssEvVector2> ends;
    ends.reserve(std::size_t(points.size()));
    for (const QPointF &point : points)
        ends.push_back({point.x(), point.y()});
    return OssEvCurve(std::move(ends));
}

} // namespace

// --- editor

OssCurveEditor::OssCurveEditor(QWidget *parent)
    : OssPropertyEditor(parent)
    , m_field(new OssCurveField(this))
{
    makeRow()->addWidget(m_field);
    setFocusProxy(m_field);
    passOn(
        m_field, [this] { return textFromPoints(m_field->points()); },
        always(OssAttributeEdit::changedParts()));
}

void OssCurveEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    m_field->setAccessibleName(attribute.prettyName());
    m_field->setPoints(pointsFromText(attribute.value().toString()));
    m_field->setMixed(mixed.any);
}

QVector<QPointF> OssCurveEditor::pointsFromText(const QString &text)
{
    QVector<QPointF> points;
    const QStringList parts = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        const QStringList numbers = part.split(QLatin1Char(','));
        bool okX = false;
        bool okY = false;
        const QPointF point(numbers.value(0).toDouble(&okX), numbers.value(1).toDouble(&okY));
        if (numbers.size() == 2 && okX && okY && std::isfinite(point.x())
            && std::isfinite(point.y()))
            points.append(point);
    }
    std::stable_sort(points.begin(), points.end(),
                     [](const QPointF &a, const QPointF &b) { return a.x() < b.x(); });
    return points;
}

QString OssCurveEditor::textFromPoints(const QVector<QPointF> &points)
{
    QStringList parts;
    for (const QPointF &point : points)
        parts.append(OssNumberText::of({point.x(), point.y()}));
    return parts.join(QLatin1Char(' '));
}

// --- field

OssCurveField::OssCurveField(QWidget *parent)
    : OssHandleField(parent)
{
}

void OssCurveField::setPoints(const QVector<QPointF> &points)
{
    if (m_points == points)
        return;
    m_points = points;
    m_current = qBound(0, m_current, qMax(0, m_points.size() - 1));
    describe();
    update();
}

void OssCurveField::describe()
{
    const QPointF point = m_points.value(m_current);
    setAccessibleDescription(tr("point %1 of %2: %3, %4")
                                 .arg(m_current + 1)
                                 .arg(m_points.size())
                                 .arg(point.x())
                                 .arg(point.y()));
}

double OssCurveField::valueAt(double x) const
{
    return curveThrough(m_points).at(x);
}

QRectF OssCurveField::area() const
{
    return QRectF(rect()).adjusted(Grip, Grip, -Grip, -Grip);
}

QPointF OssCurveField::toWidget(const QPointF &point) const
{
    const QRectF box = area();
    return {box.left() + point.x() * box.width(), box.bottom() - point.y() * box.height()};
}

QPointF OssCurveField::fromWidget(const QPointF &position) const
{
    const QRectF box = area();
    return {(position.x() - box.left()) / box.width(),
            (box.bottom() - position.y()) / box.height()};
}

int OssCurveField::pointNear(const QPointF &position) const
{
    for (int i = 0; i < m_points.size(); ++i) {
        const QPointF way = toWidget(m_points.at(i)) - position;
        if (std::hypot(way.x(), way.y()) <= Grip)
            return i;
    }
    return -1;
}

void OssCurveField::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(palette().color(hasFocus() ? QPalette::Link : QPalette::Light));
    painter.setBrush(palette().color(QPalette::Base));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 4, 4);
    painter.setPen(palette().color(QPalette::Mid));
    for (int i = 0; i <= 4; ++i) {
        painter.drawLine(toWidget({i / 4.0, 0.0}), toWidget({i / 4.0, 1.0}));
        painter.drawLine(toWidget({0.0, i / 4.0}), toWidget({1.0, i / 4.0}));
    }
    painter.setClipRect(rect().adjusted(1, 1, -1, -1));
    const OssEvCurve curve = curveThrough(m_points);
    const QRectF box = area();
    QPainterPath path;
    for (int i = 0; i <= int(box.width()); ++i) {
        const double x = i / box.width();
        const QPointF at = toWidget({x, curve.at(x)});
        if (i == 0)
            path.moveTo(at);
        else
            path.lineTo(at);
    }
    const QColor line = palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled,
                                        QPalette::Text);
    painter.setPen(QPen(line, 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawPath(path);
    painter.setPen(QPen(palette().color(QPalette::Base), 1.5));
    for (int i = 0; i < m_points.size(); ++i) {
        const bool current = i == m_current && hasFocus();
        painter.setBrush(current ? palette().color(QPalette::Link) : line);
        painter.drawEllipse(toWidget(m_points.at(i)), 4.5, 4.5);
    }
    QVector<QPointF> handles;
    for (const QPointF &point : m_points)
        handles.append(toWidget(point));
    paintMixed(&painter, rect(), handles);
}

// --- changes

bool OssCurveField::movePoint(int index, QPointF to)
{
    // Points keep their order: one does not pass another.
    const double low = index > 0 ? m_points.at(index - 1).x() + SmallestGap : 0.0;
    const double high = index + 1 < m_points.size() ? m_points.at(index + 1).x() - SmallestGap
                                                    : 1.0;
    to = {std::min(std::max(to.x(), low), std::max(low, high)), std::clamp(to.y(), 0.0, 1.0)};
    if (m_points.at(index) == to)
        return false;
    m_points[index] = to;
    describe();
    update();
    return true;
}

void OssCurveField::addPoint(const QPointF &point)
{
    const auto after = std::find_if(m_points.begin(), m_points.end(),
                                    [&point](const QPointF &p) { return p.x() > point.x(); });
    m_current = int(after - m_points.begin());
    m_points.insert(m_current, point);
    movePoint(m_current, point); // into its bounds
    describe();
    update();
    Q_EMIT edited();
}

void OssCurveField::removePoint(int index)
{
    // A curve is at least a line.
    if (index < 0 || index >= m_points.size() || m_points.size() <= 2)
        return;
    m_points.removeAt(index);
    m_current = qMin(index, m_points.size() - 1);
    describe();
    update();
    Q_EMIT edited();
}

// --- pointer and keys

void OssCurveField::mousePressEvent(QMouseEvent *event)
{
    const int index = event->button() == Qt::LeftButton ? pointNear(event->localPos()) : -1;
    if (index < 0) {
        event->setAccepted(event->button() == Qt::LeftButton);
        return;
    }
    m_current = index;
    takeHandle();
    describe();
    update();
}

void OssCurveField::mouseMoveEvent(QMouseEvent *event)
{
    if (isDragging() && movePoint(m_current, fromWidget(event->localPos())))
        Q_EMIT dragged();
}

void OssCurveField::mouseReleaseEvent(QMouseEvent *)
{
    if (endDrag())
        Q_EMIT dragEnded();
}

void OssCurveField::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int index = pointNear(event->localPos());
    letHandleGo();
    if (index >= 0)
        removePoint(index);
    else
        addPoint(fromWidget(event->localPos()));
}

void OssCurveField::keyPressEvent(QKeyEvent *event)
{
    const double step = event->modifiers() & Qt::ShiftModifier ? KeyStep / 10.0 : KeyStep;
    QPointF way;
    switch (event->key()) {
    case Qt::Key_Left:
        way = {-step, 0.0};
        break;
    case Qt::Key_Right:
        way = {step, 0.0};
        break;
    case Qt::Key_Up:
        way = {0.0, step};
        break;
    case Qt::Key_Down:
        way = {0.0, -step};
        break;
    case Qt::Key_Space:
        m_current = m_points.isEmpty() ? 0 : (m_current + 1) % m_points.size();
        describe();
        update();
        return;
    case Qt::Key_Plus: {
        const double x = m_points.value(m_current).x();
        const double next = m_current + 1 < m_points.size() ? m_points.at(m_current + 1).x() : 1.0;
        addPoint({(x + next) / 2.0, valueAt((x + next) / 2.0)});
        return;
    }
    case Qt::Key_Delete:
        removePoint(m_current);
        return;
    default:
        OssHandleField::keyPressEvent(event);
        return;
    }
    if (m_current < m_points.size() && movePoint(m_current, m_points.at(m_current) + way))
        Q_EMIT stepped();
}
