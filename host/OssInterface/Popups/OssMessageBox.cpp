#include "OssInterface/Popups/OssMessageBox.h"

#include "OssCore/Program/OssDebug.h"
#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Popups/OssPlainTexts.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QPainter>

#include <cstdio>

namespace {

struct Box
{
    QMessageBox::Icon icon = QMessageBox::NoIcon;
    OssMessageBox::Button defaultButton = QMessageBox::NoButton;
    QString checkBoxText;
    bool *checked = nullptr;
};

/// In the colours of the interface; what a style brings along is made for light windows.
QPixmap drawnIcon(QMessageBox::Icon icon, const QWidget &box)
{
    constexpr qreal Side = 40.0;
    const bool warns = icon == QMessageBox::Warning || icon == QMessageBox::Critical;
    const qreal scale = box.devicePixelRatioF();
    QPixmap pixmap(QSizeF(Side * scale, Side * scale).toSize());
    pixmap.setDevicePixelRatio(scale);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    const QColor color = warns ? QColor(0xe0, 0xb3, 0x41) : box.palette().color(QPalette::Link);
    painter.setPen(QPen(color, 2.5, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(QColor(color.red(), color.green(), color.blue(), 36));
    if (warns)
        painter.drawPolygon(QPolygonF({{20.0, 4.0}, {37.0, 34.5}, {3.0, 34.5}}));
    else
        painter.drawEllipse(QPointF(20.0, 20.0), 17.0, 17.0);
    QFont font = box.font();
    font.setPixelSize(20);
    font.setBold(true);
    painter.setFont(font);
    const QString sign = warns                           ? QStringLiteral("!")
                         : icon == QMessageBox::Question ? QStringLiteral("?")
                                                         : QStringLiteral("i");
    painter.drawText(QRectF(0.0, warns ? 4.0 : 0.0, Side, Side), Qt::AlignCenter, sign);
    return pixmap;
}

OssMessageBox::Button ask(const Box &look, QWidget *parent, const QString &title,
                          const QString &text, OssMessageBox::Buttons buttons)
{
    const OssMessageBox::Button safe = OssMessageBox::safeAnswer(buttons);
    if (!OssApplication::popupsAllowed()) {
        OssMessageBox::report(title, text);
        return safe;
    }
    QMessageBox box(look.icon, title, text, buttons,
                    parent ? parent : OssApplication::mainWindow());
    box.setTextFormat(OssPlainTexts::isMarkup(text) ? Qt::RichText : Qt::PlainText);
    box.setIconPixmap(drawnIcon(look.icon, box));
    const QList<QAbstractButton *> all = box.buttons();
    for (QAbstractButton *button : all) {
        if (!button->text().contains(QLatin1Char('&'))) // not all platforms' texts name a key
            button->setText(QLatin1Char('&') + button->text());
    }
    if (look.defaultButton != QMessageBox::NoButton)
        box.setDefaultButton(look.defaultButton);
    box.setEscapeButton(safe);
    if (look.checked) {
        auto *check = new QCheckBox(look.checkBoxText, &box);
        check->setChecked(*look.checked);
        box.setCheckBox(check);
    }
    const auto answer = OssMessageBox::Button(box.exec());
    if (look.checked)
        *look.checked = box.checkBox()->isChecked();
    return answer;
}

Box plain(QMessageBox::Icon icon, OssMessageBox::Button defaultButton = QMessageBox::NoButton)
{
    Box box;
    box.icon = icon;
    box.defaultButton = defaultButton;
    return box;
}

} // namespace

OssMessageBox::Button OssMessageBox::warning(QWidget *parent, const QString &title,
                                             const QString &text, Buttons buttons)
{
    return ask(plain(QMessageBox::Warning), parent, title, text, buttons);
}

OssMessageBox::Button OssMessageBox::information(QWidget *parent, const QString &title,
                                                 const QString &text, Buttons buttons)
{
    return ask(plain(QMessageBox::Information), parent, title, text, buttons);
}

OssMessageBox::Button OssMessageBox::question(QWidget *parent, const QString &title,
                                              const QString &text, Buttons buttons,
                                              Button defaultButton)
{
    return ask(plain(QMessageBox::Question, defaultButton), parent, title, text, buttons);
}

OssMessageBox::Button OssMessageBox::question(QWidget *parent, const QString &title,
                                              const QString &text, Buttons buttons,
                                              const QString &checkBoxText, bool *checked)
{
    Box box = plain(QMessageBox::Question);
    box.checkBoxText = checkBoxText;
    box.checked = checked;
    return ask(box, parent, title, text, buttons);
}

OssMessageBox::Button OssMessageBox::safeAnswer(Buttons buttons)
{
    for (const Button button :
         {QMessageBox::Cancel, QMessageBox::No, QMessageBox::Close, QMessageBox::Ok}) {
        if (buttons.testFlag(button))
            return button;
    }
    return QMessageBox::NoButton;
}

void OssMessageBox::report(const QString &title, const QString &text)
{
    const QString line = title + QStringLiteral(": ") + text;
    OssDebug(__FILE__, __LINE__, "[ !! ] %s", qPrintable(line));
    std::fprintf(stderr, "%s\n", qPrintable(line));
}
