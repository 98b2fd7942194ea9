#include "OssNodeGraph/Drawing/OssNgText.h"

#include "OssNodeGraph/Drawing/OssNgStyle.h"

#include <QCache>
#include <QFontMetricsF>
#include <QPainter>
#include <QStaticText>
#include <QTextLayout>
#include <QTextOption>

namespace {

struct Shelf
{
    explicit Shelf(const QFont &own)
        : font(own)
        , metrics(own)
        , texts(4096)
    {
    }

    QFont font;
    QFontMetricsF metrics;
    QHash<QString, qreal> widths;
    QCache<QString, QStaticText> texts;
};

constexpr int MaximumWidths = 50000;

Shelf &shelf(OssNgText::Role role)
{
    const OssNgStyle *style = OssNgStyle::instance();
    // Never destroyed: fonts must not be taken apart after QApplication.
    static Shelf *const shelves[] = {new Shelf(style->titleFont()), new Shelf(style->labelFont()),
                                     new Shelf(style->noteFont()),
                                     new Shelf(style->backdropFont())};
    return *shelves[std::size_t(role)];
}

} // namespace

const QFont &OssNgText::font(Role role)
{
    return shelf(role).font;
}

qreal OssNgText::width(Role role, const QString &text)
{
    Shelf &own = shelf(role);
    const auto found = own.widths.constFind(text);
    if (found != own.widths.constEnd())
        return *found;
    if (own.widths.size() > MaximumWidths)
        own.widths.clear();
    const qreal width = own.metrics.horizontalAdvance(text);
    own.widths.insert(text, width);
    return width;
}

qreal OssNgText::lineHeight(Role role)
{
    return shelf(role).metrics.height();
}

QString OssNgText::elided(Role role, const QString &text, qreal width)
{
    if (OssNgText::width(role, text) <= width)
        return text;
    return shelf(role).metrics.elidedText(text, Qt::ElideRight, width);
}

QStringList OssNgText::wrapped(Role role, const QString &text, qreal width, int most)
{
    QStringList lines;
    const QStringList paragraphs = text.split(QLatin1Char('\n'));
    for (const QString &paragraph : paragraphs) {
        QTextLayout layout(paragraph, shelf(role).font);
        QTextOption option;
        option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere); // paths have no gaps
        layout.setTextOption(option);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(width);
            lines.append(paragraph.mid(line.textStart(), line.textLength()).trimmed());
        }
        layout.endLayout();
        if (paragraph.isEmpty())
            lines.append(QString());
    }
    if (lines.size() > most) {
        lines = lines.mid(0, most);
        if (most > 0)
            lines.last() = elided(role, lines.last() + QStringLiteral("\u2026"), width);
    }
    return lines;
}

void OssNgText::draw(QPainter *painter, Role role, const QPointF &centerLeft, const QString &text)
{
    if (text.isEmpty())
        return;
    Shelf &own = shelf(role);
    QStaticText *prepared = own.texts.object(text);
    if (!prepared) {
        prepared = new QStaticText(text);
        prepared->setTextFormat(Qt::PlainText);
        prepared->setPerformanceHint(QStaticText::AggressiveCaching);
        own.texts.insert(text, prepared);
    }
    painter->setFont(own.font);
    painter->drawStaticText(QPointF(centerLeft.x(), centerLeft.y() - own.metrics.height() / 2.0),
                            *prepared);
}

void OssNgText::drawSmall(QPainter *painter, Role role, const QRectF &strip, const QString &text)
{
    constexpr qreal SmallestScale = 0.3;
    constexpr qreal Height = 12.0; // of a line, in pixels of the screen
    constexpr qreal Inset = 4.0;
    const qreal scale = painter->worldTransform().m11();
    if (scale < SmallestScale || text.isEmpty())
        return;
    const qreal factor = Height / (lineHeight(role) * scale);
    const qreal room = (strip.width() - 2.0 * Inset / scale) / factor;
    painter->save();
    painter->translate(strip.left() + Inset / scale, strip.center().y());
    painter->scale(factor, factor);
    draw(painter, role, {}, elided(role, text, room));
    painter->restore();
}
