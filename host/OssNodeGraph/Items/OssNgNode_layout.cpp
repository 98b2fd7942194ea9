#include "OssNodeGraph/Items/OssNgNode.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Drawing/OssNgText.h"
#include "OssNodeGraph/Items/OssNgNodeExtras.h"
#include "OssNodeGraph/Items/OssNgSceneIndex.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr qreal ErrorLine = 14.0;
constexpr qreal ErrorFrame = 10.0;
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

QStringList OssNgNode::errorLines(qreal width) const
{
    if (!m_extras || m_extras->errorText.isEmpty() || m_extras->errorLines <= 0)
        return {};
    return OssNgText::wrapped(OssNgText::Role::Label, m_extras->errorText,
                              width - 2 * ThumbnailInset, m_extras->errorLines);
}

qreal OssNgNode::errorHeight(qreal width) const
{
    const int lines = errorLines(width).size();
    return lines > 0 ? lines * ErrorLine + ErrorFrame : 0.0;
}

void OssNgNode::fitErrorText()
{
    if (!m_index || errorText().isEmpty())
        return;
    constexpr qreal Most = MostErrorLines * ErrorLine + ErrorFrame;
    const qreal grown = errorHeight(bodyRect().width());
    const qreal room = m_index->roomBelow(this, grown, Most) - ErrorFrame;
    const int lines = std::clamp(int(room / ErrorLine), 0, MostErrorLines);
    if (lines == m_extras->errorLines)
        return;
    m_extras->errorLines = lines;
    refresh();
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
