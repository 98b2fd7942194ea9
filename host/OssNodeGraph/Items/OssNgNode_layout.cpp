#include "OssNodeGraph/Items/OssNgNode.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Drawing/OssNgText.h"
#include "OssNodeGraph/Items/OssNgNodeExtras.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal LabelGap = 18.0; ///< between the label of an input and that of an output
constexpr qreal ErrorLine = 14.0;
constexpr qreal ThumbnailInset = 10.0;
constexpr int MostErrorLines = 3;

/// How many rows the listed ports reach down to.
int rowCount(const QVector<OssNgPort> &ports)
{
    const qreal first = OssNgStyle::Margin + OssNgStyle::HeaderHeight + OssNgStyle::FirstRow;
    int rows = 0;
    for (const OssNgPort &port : ports) {
        if (port.listed)
            rows = std::max(rows, 1 + qRound((port.position.y() - first) / OssNgStyle::RowHeight));
    }
    return rows;
}

} // namespace

bool OssNgNode::isPortListed(const OssNgPort &, Side) const
{
    return true;
}

QString OssNgNode::portRow(const OssNgPort &, Side) const
{
    return {};
}

QSizeF OssNgNode::layoutBody()
{
    if (portsAlongEdges())
        placePortsAlongEdges();
    else
        placePortsInRows();
    const int rows = portsAlongEdges()
                         ? 0
                         : std::max(rowCount(ports(Side::Input)), rowCount(ports(Side::Output)));
    const qreal title = OssNgText::width(OssNgText::Role::Title, m_text)
                        + 2 * OssNgStyle::TitleInset + headerExtra() + statusWidth();
    const qreal width = std::ceil(std::clamp(std::max(title, rowsWidth()), OssNgStyle::MinimumWidth,
                                             OssNgStyle::MaximumWidth));
    qreal height = OssNgStyle::HeaderHeight;
    if (rows > 0)
        height += rows * OssNgStyle::RowHeight + 8.0;
    else if (portsAlongEdges())
        height += 10.0;
    height += thumbnailHeight(width) + errorHeight(width);
    // Ports of the far side are only known to stand there now.
    for (OssNgPort &port : m_outputPorts) {
        if (!portsAlongEdges())
            port.position.setX(OssNgStyle::Margin + width);
        else if (port.listed)
            port.position.setY(OssNgStyle::Margin + height);
    }
    if (portsAlongEdges()) {
        const qreal shift = OssNgStyle::Margin + width / 2.0;
        for (const Side side : {Side::Input, Side::Output}) {
            for (OssNgPort &port : ports(side)) {
                const qreal x = shift + port.position.x();
                port.position.setX(
                    std::clamp(x, OssNgStyle::Margin + 10.0, OssNgStyle::Margin + width - 10.0));
            }
        }
    }
    return {width, height};
}

void OssNgNode::placePortsInRows()
{
    const qreal header = OssNgStyle::Margin + OssNgStyle::HeaderHeight;
    for (const Side side : {Side::Input, Side::Output}) {
        QHash<QString, qreal> shared;
        int row = 0;
        for (OssNgPort &port : ports(side)) {
            port.listed = isPortListed(port, side);
            port.labelled = true;
            port.position = {OssNgStyle::Margin,
                             OssNgStyle::Margin + OssNgStyle::HeaderHeight / 2.0};
            if (!port.listed)
                continue;
            const QString key = portRow(port, side);
            const qreal y = header + OssNgStyle::FirstRow + row * OssNgStyle::RowHeight;
            if (!key.isEmpty() && shared.contains(key)) {
                port.position.setY(shared.value(key));
                port.labelled = false;
                continue;
            }
            port.position.setY(y);
            if (!key.isEmpty())
                shared.insert(key, y);
            ++row;
        }
    }
}

void OssNgNode::placePortsAlongEdges()
{
    for (const Side side : {Side::Input, Side::Output}) {
        QVector<OssNgPort> &all = ports(side);
        const qreal spread = std::min(18.0, (OssNgStyle::MinimumWidth - 24.0)
                                                / std::max(1, all.size() - 1));
        for (int i = 0; i < all.size(); ++i) {
            OssNgPort &port = all[i];
            port.listed = true;
            port.labelled = false;
            // From the centre line; made absolute when the width is known.
            qreal x = spread * (i - (all.size() - 1) / 2.0);
            if (m_extras) {
                const StubPositions &stubs = side == Side::Input ? m_extras->inputStubs
                                                                 : m_extras->outputStubs;
                const auto stub = stubs.constFind(port.name);
                if (stub != stubs.constEnd())
                    x = stub->first.x();
            }
            port.position = {x, OssNgStyle::Margin};
        }
    }
}

qreal OssNgNode::rowsWidth() const
{
    if (!m_labelsVisible || portsAlongEdges())
        return 0.0;
    QVector<qreal> inputs;
    for (int i = 0; i < m_inputPorts.size(); ++i) {
        const OssNgPort &port = m_inputPorts[i];
        if (!port.listed || !port.labelled)
            continue;
        const qreal extra = m_extras ? qreal(m_extras->inputTextPositions.value(port.name)) : 0.0;
        inputs.append(OssNgText::width(OssNgText::Role::Label, portLabel(i, Side::Input))
                      + std::max(0.0, extra));
    }
    qreal widest = 0.0;
    for (const qreal width : qAsConst(inputs))
        widest = std::max(widest, width + 2 * OssNgStyle::LabelInset);
    if (m_outputPorts.size() < 2)
        return widest;
    int row = 0;
    for (int i = 0; i < m_outputPorts.size(); ++i) {
        const OssNgPort &port = m_outputPorts[i];
        if (!port.listed || !port.labelled)
            continue;
        const qreal width = OssNgText::width(OssNgText::Role::Label, portLabel(i, Side::Output));
        const qreal beside = inputs.value(row++, -LabelGap);
        widest = std::max(widest, width + beside + LabelGap + 2 * OssNgStyle::LabelInset);
    }
    return widest;
}

qreal OssNgNode::thumbnailHeight(qreal width) const
{
    if (!m_extras || m_extras->thumbnail.isNull())
        return 0.0;
    const QSizeF size = m_extras->thumbnail.size();
    return std::clamp((width - 2 * ThumbnailInset) * size.height() / size.width(), 24.0, 160.0)
           + 6.0;
}

qreal OssNgNode::errorHeight(qreal width) const
{
    if (!m_extras || m_extras->errorText.isEmpty())
        return 0.0;
    const int lines = OssNgText::wrapped(OssNgText::Role::Label, m_extras->errorText,
                                         width - 2 * ThumbnailInset, MostErrorLines)
                          .size();
    return lines * ErrorLine + 10.0;
}

QPointF OssNgNode::portPosition(Side side, const QString &name, int *hint) const
{
    const int index = portIndex(side, name, hint ? *hint : -1);
    if (hint)
        *hint = index;
    if (index >= 0)
        return ports(side)[index].position;
    const qreal x = side == Side::Input ? OssNgStyle::Margin : m_size.width() - OssNgStyle::Margin;
    return {x, OssNgStyle::Margin + OssNgStyle::HeaderHeight / 2.0};
}

QPointF OssNgNode::inputPortScenePos(const QString &name) const
{
    return pos() + portPosition(Side::Input, name);
}

QPointF OssNgNode::outputPortScenePos(const QString &name) const
{
    return pos() + portPosition(Side::Output, name);
}

QPointF OssNgNode::portDirection(Side side, const QString &name) const
{
    const bool input = side == Side::Input;
    if (m_extras) {
        const StubPositions &stubs = input ? m_extras->inputStubs : m_extras->outputStubs;
        const auto stub = stubs.constFind(name);
        if (portsAlongEdges() && stub != stubs.constEnd() && stub->first != stub->second)
            return stub->second - stub->first;
    }
    const qreal sign = input ? -1.0 : 1.0;
    return portsAlongEdges() ? QPointF(0.0, sign) : QPointF(sign, 0.0);
}

QPointF OssNgNode::inputPortDirection(const QString &name) const
{
    return portDirection(Side::Input, name);
}

QPointF OssNgNode::outputPortDirection(const QString &name) const
{
    return portDirection(Side::Output, name);
}
