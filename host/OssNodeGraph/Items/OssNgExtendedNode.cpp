#include "OssNodeGraph/Items/OssNgExtendedNode.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"

#include <QCoreApplication>
#include <QPainter>

#include <algorithm>

namespace {

constexpr qreal ButtonWidth = 16.0;
constexpr qreal IconWidth = 15.0;

/// A few strokes each, in a square of 10 units around the origin.
void paintIcon(QPainter *painter, const QString &name)
{
    const auto is = [&name](const char *known) {
        return name == QLatin1String(known);
    };
    const auto waves = [painter](bool outwards) {
        painter->drawEllipse(QPointF(-3.0, 0.0), 1.5, 1.5);
        const int start = outwards ? -45 : 135;
        const qreal shift = outwards ? 0.0 : 7.0;
        painter->drawArc(QRectF(-6.0 + shift, -3.0, 6.0, 6.0), start * 16, 90 * 16);
        painter->drawArc(QRectF(-8.5 + shift, -5.5, 11.0, 11.0), start * 16, 90 * 16);
    };
    if (is("GeoChannel")) {
        const QPointF points[] = {{0.0, -5.0}, {4.5, -2.0}, {4.5, 3.0},
                                  {0.0, 5.0},  {-4.5, 3.0}, {-4.5, -2.0}};
        painter->drawConvexPolygon(points, 6);
        painter->drawLine(QPointF(0.0, 0.5), QPointF(0.0, 5.0));
        painter->drawLine(QPointF(0.0, 0.5), QPointF(4.5, -2.0));
        painter->drawLine(QPointF(0.0, 0.5), QPointF(-4.5, -2.0));
    } else if (is("ActivePatchRange")) {
        painter->drawRect(QRectF(-4.5, -4.5, 9.0, 9.0));
        painter->drawLine(QPointF(0.0, -4.5), QPointF(0.0, 4.5));
        painter->drawLine(QPointF(-4.5, 0.0), QPointF(4.5, 0.0));
        painter->fillRect(QRectF(-4.0, 0.5, 4.0, 4.0), painter->pen().color());
    } else if (is("BakePointFiltered")) {
        const QPointF points[] = {{-5.0, -4.5}, {5.0, -4.5}, {1.2, 0.5},
                                  {1.2, 5.0},   {-1.2, 3.5}, {-1.2, 0.5}};
        painter->drawPolygon(points, 6);
    } else if (is("BroadcastNodeSignal") || is("BroadcastNodeSilent")) {
        waves(true);
    } else if (is("ReceiverNodeSignal") || is("ReceiverNodeSilent")) {
        waves(false);
    } else {
        painter->drawEllipse(QPointF(), 3.5, 3.5);
    }
    if (name.endsWith(QLatin1String("Silent")))
        painter->drawLine(QPointF(-5.0, 5.0), QPointF(5.0, -5.0));
}

} // namespace

OssNgExtendedNode::OssNgExtendedNode()
{
    qRegisterMetaType<OssNgExtendedNode::PortListMode>("OssNgExtendedNode::PortListMode");
}

OssNgExtendedNode::~OssNgExtendedNode() = default;

void OssNgExtendedNode::setPortListMode(PortListMode mode)
{
    if (m_mode == mode)
        return;
    m_mode = mode;
    refresh();
}

void OssNgExtendedNode::changeMode(PortListMode mode)
{
    if (m_mode == mode)
        return;
    setPortListMode(mode);
    Q_EMIT nodePortListModeChanged(mode);
}

void OssNgExtendedNode::cyclePortListMode()
{
    switch (m_mode) {
    case Expanded:
        changeMode(hasPortClusters() ? StreamCollapsed : ConnectedOnly);
        break;
    case StreamCollapsed:
        changeMode(ConnectedOnly);
        break;
    case ConnectedOnly:
        changeMode(Collapsed);
        break;
    case NoPortList:
    case Collapsed:
        changeMode(Expanded);
        break;
    }
}

void OssNgExtendedNode::togglePortVisibility()
{
    changeMode(m_mode == Collapsed ? Expanded : Collapsed);
}

QStringList OssNgExtendedNode::outputPortList() const
{
    QStringList listed;
    QStringList hidden;
    for (const OssNgPort &port : outputPorts())
        (port.listed ? listed : hidden).append(port.name);
    return listed + hidden;
}

int OssNgExtendedNode::addIcon(const QString &name)
{
    if (name.isEmpty())
        return -1;
    m_icons.append({name, false});
    return m_icons.size() - 1;
}

void OssNgExtendedNode::setIconVisible(int index, bool visible)
{
    if (index < 0 || index >= m_icons.size() || m_icons[index].visible == visible)
        return;
    m_icons[index].visible = visible;
    refresh();
}

bool OssNgExtendedNode::isIconVisible(int index) const
{
    return index >= 0 && index < m_icons.size() && m_icons[index].visible;
}

void OssNgExtendedNode::setPortCluster(const QString &cluster, const QStringList &inputs,
                                       const QStringList &outputs)
{
    for (const QString &input : inputs)
        m_inputClusters.insert(input, cluster);
    for (const QString &output : outputs)
        m_outputClusters.insert(output, cluster);
    refresh();
}

void OssNgExtendedNode::clearPortClusters()
{
    if (!hasPortClusters())
        return;
    m_inputClusters.clear();
    m_outputClusters.clear();
    refresh();
}

void OssNgExtendedNode::refreshCluster(const QString &input)
{
    if (isInputInCluster(input))
        refresh();
}

void OssNgExtendedNode::copyStateFrom(const OssNgNode *other)
{
    if (const auto *extended = qobject_cast<const OssNgExtendedNode *>(other)) {
        m_mode = extended->m_mode;
        m_icons = extended->m_icons;
    }
    OssNgNode::copyStateFrom(other);
}

bool OssNgExtendedNode::isPortListed(const OssNgPort &port, Side side) const
{
    switch (m_mode) {
    case Collapsed:
        return false;
    case ConnectedOnly:
        return side == Side::Input ? input(port.name) != nullptr : port.used;
    case Expanded:
    case NoPortList:
    case StreamCollapsed:
        break;
    }
    return true;
}

QString OssNgExtendedNode::portRow(const OssNgPort &port, Side side) const
{
    if (m_mode != StreamCollapsed)
        return {};
    return (side == Side::Input ? m_inputClusters : m_outputClusters).value(port.name);
}

QRectF OssNgExtendedNode::modeButton() const
{
    const QRectF body = bodyRect();
    return {body.right() - 8.0 - statusWidth() - ButtonWidth, body.top() + 5.0, ButtonWidth,
            ButtonWidth};
}

qreal OssNgExtendedNode::headerExtra() const
{
    // The button shows under the pointer only, its room is always there: sizes do not flicker.
    qreal width = ButtonWidth;
    for (const Icon &icon : m_icons) {
        if (icon.visible)
            width += IconWidth;
    }
    return width;
}

void OssNgExtendedNode::paintHeaderExtra(QPainter *painter, const QRectF &area) const
{
    qreal x = area.right();
    QPen pen(QColor(255, 255, 255, 210), 1.3);
    pen.setCapStyle(Qt::RoundCap);
    pen.setJoinStyle(Qt::RoundJoin);
    painter->setPen(pen);
    painter->setBrush(Qt::NoBrush);
    if (hovered() || m_mode != Expanded) {
        // Bars stand for rows: as many as the mode shows.
        const QPointF center = modeButton().center();
        const int bars = m_mode == Expanded ? 3 : m_mode == Collapsed ? 1 : 2;
        for (int i = 0; i < bars; ++i) {
            const qreal y = center.y() + 3.5 * (i - (bars - 1) / 2.0);
            const qreal half = m_mode == ConnectedOnly && i == 1 ? 1.5 : 4.0;
            painter->drawLine(QPointF(center.x() - 4.0, y),
                              QPointF(center.x() - 4.0 + 2 * half, y));
        }
    }
    x -= ButtonWidth;
    for (const Icon &icon : m_icons) {
        if (!icon.visible)
            continue;
        const QTransform before = painter->worldTransform();
        painter->translate(x - IconWidth / 2.0, area.center().y());
        paintIcon(painter, icon.name);
        painter->setWorldTransform(before);
        x -= IconWidth;
    }
}

bool OssNgExtendedNode::clickAt(const QPointF &local)
{
    if (!modeButton().contains(local) || inputPorts().size() + outputPorts().size() == 0)
        return false;
    cyclePortListMode();
    return true;
}

QString OssNgExtendedNode::toolTipAt(const QPointF &local) const
{
    if (modeButton().contains(local))
        return QCoreApplication::translate("OssNgExtendedNode", "Change which ports are listed");
    return OssNgNode::toolTipAt(local);
}
