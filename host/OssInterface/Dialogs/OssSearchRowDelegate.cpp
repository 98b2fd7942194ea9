#include "OssInterface/Dialogs/OssSearchRowDelegate.h"

#include <QApplication>
#include <QPainter>

namespace {

constexpr int Margin = 10;
constexpr int Line = 18;
constexpr int StarWidth = 24;
constexpr int HeadingHeight = 24;

QColor muted(const QPalette &palette)
{
    QColor color = palette.color(QPalette::Text);
    color.setAlphaF(0.55);
    return color;
}

} // namespace

OssSearchRowDelegate::OssSearchRowDelegate(const Roles &roles, QObject *parent)
    : QStyledItemDelegate(parent)
    , m_roles(roles)
{
}

QRect OssSearchRowDelegate::starRect(const QRect &row)
{
    return {row.right() - StarWidth - Margin / 2, row.top(), StarWidth, row.height()};
}

void OssSearchRowDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                                 const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QString name = row.text;
    row.text.clear();
    painter->save();
    const QString section = index.data(m_roles.section).toString();
    if (!section.isEmpty()) {
        const QRect heading(row.rect.left() + Margin, row.rect.top(), row.rect.width(),
                            HeadingHeight);
        painter->setPen(muted(row.palette));
        painter->drawText(heading, Qt::AlignLeft | Qt::AlignBottom, section);
        row.rect.setTop(row.rect.top() + HeadingHeight);
    }
    QApplication::style()->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);
    QRect room = row.rect.adjusted(Margin, 3, -Margin, -3);
    const QFontMetrics metrics(row.font);
    if (m_roles.favourite >= 0) {
        const bool favourite = index.data(m_roles.favourite).toBool();
        painter->setPen(favourite ? QColor(0xe0, 0xb3, 0x41) : muted(row.palette));
        if (favourite || row.state.testFlag(QStyle::State_Selected))
            painter->drawText(starRect(row.rect), Qt::AlignCenter,
                              favourite ? QStringLiteral("\u2605") : QStringLiteral("\u2606"));
        room.setRight(room.right() - StarWidth);
    }
    const auto color = index.data(m_roles.color).value<QColor>();
    if (color.isValid()) {
        painter->setRenderHint(QPainter::Antialiasing);
        painter->setPen(Qt::NoPen);
        painter->setBrush(color);
        painter->drawRoundedRect(QRect(room.left(), room.top() + 3, 10, 10), 3, 3);
        room.setLeft(room.left() + 18);
    }
    const QRect upper(room.left(), room.top(), room.width(), Line);
    painter->setPen(row.palette.color(QPalette::Text));
    const QString shown = metrics.elidedText(name, Qt::ElideRight, upper.width());
    painter->drawText(upper, Qt::AlignLeft | Qt::AlignVCenter, shown);
    painter->setPen(muted(row.palette));
    const QRect rest = upper.adjusted(metrics.horizontalAdvance(shown) + Margin, 0, 0, 0);
    if (rest.width() > 0)
        painter->drawText(
            rest, Qt::AlignLeft | Qt::AlignVCenter,
            metrics.elidedText(index.data(m_roles.place).toString(), Qt::ElideRight, rest.width()));
    const QString explanation = index.data(m_roles.explanation).toString();
    if (!explanation.isEmpty())
        painter->drawText(upper.translated(0, Line), Qt::AlignLeft | Qt::AlignVCenter,
                          metrics.elidedText(explanation, Qt::ElideRight, upper.width()));
    painter->restore();
}

QSize OssSearchRowDelegate::sizeHint(const QStyleOptionViewItem &option,
                                     const QModelIndex &index) const
{
    int height = Line + 8;
    if (!index.data(m_roles.explanation).toString().isEmpty())
        height += Line;
    if (!index.data(m_roles.section).toString().isEmpty())
        height += HeadingHeight;
    return {option.rect.width(), height};
}
