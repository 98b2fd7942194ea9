#include "OssNodeGraph/Items/OssNgNode.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Drawing/OssNgText.h"
#include "OssNodeGraph/Items/OssNgNodeExtras.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal ErrorLine = 14.0;
constexpr qreal ThumbnailInset = 10.0;
constexpr int MostErrorLines = 3;

} // namespace

QSizeF OssNgNode::layoutBody()
{
    if (portsAlongEdges())
        placePortsAlongEdges();
    else
        placePortsInRows();
    const int rows = rowCount();
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
    for (OssNgPort &port : ports(Side::Output)) {
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
    const int index = list(side).indexOf(name, hint ? *hint : -1);
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
