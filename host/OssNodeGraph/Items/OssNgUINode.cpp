#include "OssNodeGraph/Items/OssNgUINode.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"
#include "OssNodeGraph/Drawing/OssNgText.h"

#include <QPainter>

#include <algorithm>

namespace {

constexpr qreal NoteWidth = 196.0;
constexpr qreal Padding = 14.0;
constexpr qreal LineHeight = 20.0;
constexpr qreal Corner = 6.0;
constexpr int MinimumLines = 2;
constexpr int MostLines = 60;

} // namespace

OssNgUINode::OssNgUINode()
{
    refresh();
}

QColor OssNgUINode::usualBackground() const
{
    return OssNgStyle::instance()->color(OssNgStyle::Role::Note);
}

QString OssNgUINode::shownText() const
{
    return label().isEmpty() ? text() : label();
}

QSizeF OssNgUINode::layoutBody()
{
    const QStringList lines = OssNgText::wrapped(OssNgText::Role::Note, shownText(),
                                                 NoteWidth - 2 * Padding, MostLines);
    const int shown = std::max(MinimumLines, int(lines.size()));
    return {NoteWidth, shown * LineHeight + 2 * Padding - 4.0};
}

void OssNgUINode::paintDetailed(QPainter *painter) const
{
    const OssNgStyle *style = OssNgStyle::instance();
    const QRectF body = bodyRect();
    const QColor background = backgroundColor();
    painter->setPen(QPen(
        hovered() ? style->color(OssNgStyle::Role::OutlineHovered) : background.lighter(145), 1.0));
    painter->setBrush(background);
    painter->drawRoundedRect(body, Corner, Corner);
    const bool dark = background.lightnessF() < 0.55;
    painter->setPen(dark ? style->color(OssNgStyle::Role::NoteText) : QColor(0x20, 0x20, 0x20));
    qreal y = body.top() + Padding + LineHeight / 2.0 - 2.0;
    const QStringList lines = OssNgText::wrapped(OssNgText::Role::Note, shownText(),
                                                 body.width() - 2 * Padding, MostLines);
    for (const QString &line : lines) {
        OssNgText::draw(painter, OssNgText::Role::Note, {body.left() + Padding, y}, line);
        y += LineHeight;
    }
    paintRing(painter, body, Corner);
}

void OssNgUINode::paintSimple(QPainter *painter) const
{
    painter->fillRect(bodyRect(), backgroundColor());
    paintSimpleSelection(painter, bodyRect());
}
