#include "OssNodeGraph/View/OssNgFlash.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssNodeGraph/View/OssNgView.h"

#include <QPainter>
#include <QtMath>

namespace {

constexpr int Duration = 1200; // milliseconds
constexpr int Interval = 30;
constexpr int Pulses = 2;
constexpr qreal Reach = 10.0; // pixels, from the body to where a pulse ends
constexpr qreal Width = 4.0;

} // namespace

OssNgFlash::OssNgFlash(OssNgView *view)
    : QObject(view)
    , m_view(view)
{
    m_timer.setInterval(Interval);
    connect(&m_timer, &QTimer::timeout, this, &OssNgFlash::step);
}

void OssNgFlash::start(OssNgNode *node)
{
    m_node = node;
    m_sinceStart.start();
    m_timer.start();
    step();
}

const OssNgNode *OssNgFlash::node() const
{
    return m_node;
}

QRectF OssNgFlash::ringRect() const
{
    if (!m_node || m_node->scene() != m_view->scene())
        return {};
    return m_view->viewportTransform()
        .mapRect(m_node->bodyRect().translated(m_node->pos()))
        .adjusted(-Reach, -Reach, Reach, Reach);
}

void OssNgFlash::step()
{
    if (m_sinceStart.elapsed() > Duration || !m_node) {
        m_node.clear();
        m_timer.stop();
    }
    const QRect now = ringRect().adjusted(-Width, -Width, Width, Width).toAlignedRect();
    m_view->viewport()->update(m_painted | now);
    m_painted = now;
}

void OssNgFlash::paint(QPainter *painter) const
{
    const QRectF ring = ringRect();
    if (ring.isEmpty())
        return;
    const qreal way = qreal(m_sinceStart.elapsed()) / Duration;
    // Grows and fades in each pulse.
    const qreal pulse = way * Pulses - qFloor(way * Pulses);
    QColor color = OssNgStyle::instance()->color(OssNgStyle::Role::Accent);
    color.setAlphaF(qBound(0.0, 1.0 - pulse, 1.0));
    const qreal inset = Reach * (1.0 - pulse);
    painter->setPen(QPen(color, Width));
    painter->setBrush(Qt::NoBrush);
    painter->drawRoundedRect(ring.adjusted(inset, inset, -inset, -inset), Reach, Reach);
}
