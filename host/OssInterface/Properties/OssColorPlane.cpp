#include "OssInterface/Properties/OssColorPlane.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace {

constexpr double HueHeight = 16.0;
constexpr double Gap = 6.0;
constexpr double Margin = 1.0;
constexpr double KeyStep = 0.01;
constexpr double Ring = 5.0;

double part(double at, double from, double length)
{
    return std::clamp((at - from) / std::max(length, 1.0), 0.0, 1.0);
}

} // namespace

OssColorPlane::OssColorPlane(QWidget *parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::CrossCursor);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setMinimumSize(160, 120);
    setAccessibleName(tr("Saturation, value and hue"));
}

void OssColorPlane::setColor(const Hsv &color)
{
    m_color = color;
    setAccessibleDescription(tr("hue %1, saturation %2, value %3")
                                 .arg(qRound(color.hue * 360.0))
                                 .arg(color.saturation, 0, 'f', 2)
                                 .arg(color.value, 0, 'f', 2));
    update();
}

QRectF OssColorPlane::square() const
{
    return {Margin, Margin, width() - 2.0 * Margin, height() - HueHeight - Gap - 2.0 * Margin};
}

QRectF OssColorPlane::hues() const
{
    return {Margin, height() - HueHeight - Margin, width() - 2.0 * Margin, HueHeight};
}

// --- painting

void OssColorPlane::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = square();
    QLinearGradient saturation(box.topLeft(), box.topRight());
    saturation.setColorAt(0.0, Qt::white);
    saturation.setColorAt(1.0, QColor::fromHsvF(std::min(m_color.hue, 0.9999), 1.0, 1.0));
    painter.fillRect(box, saturation);
    QLinearGradient value(box.topLeft(), box.bottomLeft());
    value.setColorAt(0.0, QColor(0, 0, 0, 0));
    value.setColorAt(1.0, Qt::black);
    painter.fillRect(box, value);
    const QRectF bar = hues();
    QLinearGradient hue(bar.topLeft(), bar.topRight());
    for (int i = 0; i <= 6; ++i)
        hue.setColorAt(i / 6.0, QColor::fromHsvF(i % 6 / 6.0, 1.0, 1.0));
    painter.fillRect(bar, hue);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(palette().color(hasFocus() ? QPalette::Link : QPalette::Light));
    painter.drawRect(box);
    painter.drawRect(bar);
    const QPointF at(box.left() + m_color.saturation * box.width(),
                     box.bottom() - m_color.value * box.height());
    const double x = bar.left() + m_color.hue * bar.width();
    for (const auto &[color, width] : {std::pair{Qt::black, 3.0}, std::pair{Qt::white, 1.5}}) {
        painter.setPen(QPen(color, width));
        painter.drawEllipse(at, Ring, Ring);
        painter.drawRect(QRectF(x - 2.0, bar.top(), 4.0, bar.height()));
    }
}

// --- pointer and keys

void OssColorPlane::take(const QPointF &at)
{
    Hsv color = m_color;
    if (m_held == Held::Square) {
        const QRectF box = square();
        color.saturation = part(at.x(), box.left(), box.width());
        color.value = 1.0 - part(at.y(), box.top(), box.height());
    } else {
        const QRectF bar = hues();
        color.hue = part(at.x(), bar.left(), bar.width());
    }
    setColor(color);
    Q_EMIT dragged();
}

void OssColorPlane::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    m_held = event->localPos().y() > square().bottom() + Gap / 2.0 ? Held::Hues : Held::Square;
    Q_EMIT dragBegun();
    take(event->localPos());
}

void OssColorPlane::mouseMoveEvent(QMouseEvent *event)
{
    if (m_held != Held::Nothing)
        take(event->localPos());
}

void OssColorPlane::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || m_held == Held::Nothing)
        return;
    m_held = Held::Nothing;
    Q_EMIT dragEnded();
}

bool OssColorPlane::event(QEvent *event)
{
    // A window that goes under the pointer sends no release.
    if (event->type() == QEvent::Hide && m_held != Held::Nothing) {
        m_held = Held::Nothing;
        Q_EMIT dragEnded();
    }
    return QWidget::event(event);
}

void OssColorPlane::keyPressEvent(QKeyEvent *event)
{
    Hsv color = m_color;
    const bool hue = event->modifiers() & Qt::ShiftModifier;
    const int key = event->key();
    const double way = key == Qt::Key_Right || key == Qt::Key_Up    ? KeyStep
                       : key == Qt::Key_Left || key == Qt::Key_Down ? -KeyStep
                                                                    : 0.0;
    if (way == 0.0) {
        QWidget::keyPressEvent(event);
        return;
    }
    double &changed = hue                                           ? color.hue
                      : key == Qt::Key_Right || key == Qt::Key_Left ? color.saturation
                                                                    : color.value;
    changed = std::clamp(changed + way, 0.0, 1.0);
    setColor(color);
    Q_EMIT stepped();
}
