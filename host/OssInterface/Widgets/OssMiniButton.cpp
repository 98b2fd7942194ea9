#include "OssInterface/Widgets/OssMiniButton.h"

OssMiniButton::OssMiniButton(const QString &text, QWidget *parent)
    : QPushButton(text, parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setFocusPolicy(Qt::TabFocus); // a click leaves the keyboard where it is
}

QSize OssMiniButton::sizeHint() const
{
    const QFontMetrics metrics = fontMetrics();
    const int height = metrics.height() + 4;
    const int iconWidth = icon().isNull() ? 0 : iconSize().width() + 4;
    return {qMax(height, metrics.horizontalAdvance(text()) + iconWidth + 10), height};
}
