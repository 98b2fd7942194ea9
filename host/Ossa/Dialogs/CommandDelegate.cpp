#include "Ossa/Dialogs/CommandDelegate.h"

#include "Ossa/Common/Theme.h"
#include "Ossa/Dialogs/CommandListModel.h"

#include <QApplication>
#include <QPainter>

namespace {

constexpr int margin = 8;

} // namespace

void CommandDelegate::paint(QPainter *painter, const QStyleOptionViewItem &option,
                            const QModelIndex &index) const
{
    QStyleOptionViewItem row = option;
    initStyleOption(&row, index);
    const QString name = row.text;
    row.text.clear();
    QApplication::style()->drawControl(QStyle::CE_ItemViewItem, &row, painter, row.widget);

    const bool enabled = row.state.testFlag(QStyle::State_Enabled);
    const QPalette::ColorGroup group = enabled ? QPalette::Active : QPalette::Disabled;
    const QRect room = option.rect.adjusted(margin, 0, -margin, 0);
    const QFontMetrics metrics(row.font);
    const QString key = index.data(CommandListModel::KeyRole).toString();
    const int keyWidth = key.isEmpty() ? 0 : metrics.horizontalAdvance(key) + margin;

    painter->save();
    painter->setFont(row.font);
    painter->setPen(Theme::mutedText());
    painter->drawText(room, Qt::AlignRight | Qt::AlignVCenter, key);
    painter->setPen(row.palette.color(group, QPalette::Text));
    const QRect nameRoom = room.adjusted(0, 0, -keyWidth, 0);
    const QString shown = metrics.elidedText(name, Qt::ElideRight, nameRoom.width());
    painter->drawText(nameRoom, Qt::AlignLeft | Qt::AlignVCenter, shown);
    const QRect rest = nameRoom.adjusted(metrics.horizontalAdvance(shown) + 2 * margin, 0, 0, 0);
    if (rest.width() > 0) {
        painter->setPen(Theme::mutedText());
        const QString folder = index.data(CommandListModel::FolderRole).toString();
        painter->drawText(rest, Qt::AlignLeft | Qt::AlignVCenter,
                          metrics.elidedText(folder, Qt::ElideRight, rest.width()));
    }
    painter->restore();
}

QSize CommandDelegate::sizeHint(const QStyleOptionViewItem &option, const QModelIndex &index) const
{
    const QSize size = QStyledItemDelegate::sizeHint(option, index);
    return {size.width(), QFontMetrics(option.font).height() + 12};
}
