#include "OssInterface/Properties/OssColorEditor.h"

#include "OssInterface/Popups/OssApplication.h"
#include "OssInterface/Properties/OssNumberField.h"
#include "OssModel/Images/OssDisplayColor.h"

#include <QColorDialog>
#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>

#include <algorithm>

namespace {

constexpr QSize SwatchSize(26, 20);
constexpr int Square = 5;

double brightest(const OssColor &color)
{
    return std::max({color.red(), color.green(), color.blue(), 1.0});
}

} // namespace

OssColorEditor::OssColorEditor(QWidget *parent)
    : OssPropertyEditor(parent)
    , m_swatch(new QPushButton(this))
{
    QHBoxLayout *row = makeRow();
    row->setSpacing(2);
    m_swatch->setFlat(true);
    m_swatch->setIconSize(SwatchSize);
    m_swatch->setFixedSize(SwatchSize + QSize(6, 6));
    m_swatch->setStyleSheet(QStringLiteral("padding: 0; border-width: 1px;"));
    m_swatch->setToolTip(tr("Pick a colour"));
    row->addWidget(m_swatch);
    connect(m_swatch, &QPushButton::clicked, this, &OssColorEditor::openPicker);
    const char *const names[Channels] = {"R", "G", "B", "A"};
    for (int i = 0; i < Channels; ++i) {
        OssNumberField *field = m_fields[i] = new OssNumberField(this);
        field->setPrefix(QLatin1String(names[i]));
        OssNumberField::Range range;
        range.softMinimum = 0.0;
        range.softMaximum = 1.0;
        range.minimum = i == 3 ? std::optional<double>(0.0) : std::nullopt;
        range.maximum = i == 3 ? std::optional<double>(1.0) : std::nullopt;
        field->setRange(range);
        row->addWidget(field);
        passOn(field, [this](double) {
            paintSwatch();
            return QVariant::fromValue(color());
        });
    }
    setFocusProxy(m_swatch);
}

OssColorEditor::~OssColorEditor()
{
    // It would tell of its end when this is no editor any more.
    if (m_picker)
        m_picker->disconnect(this);
}

OssColor OssColorEditor::color() const
{
    return {m_fields[0]->value(), m_fields[1]->value(), m_fields[2]->value(), m_fields[3]->value()};
}

void OssColorEditor::showValue(const OssCustomAttribute &attribute, bool mixed)
{
    const auto value = attribute.value().value<OssColor>();
    const double channels[Channels] = {value.red(), value.green(), value.blue(), value.alpha()};
    m_display = attribute.definition().editor == QLatin1String("displaycolor");
    m_mixed = mixed;
    const char *const names[Channels] = {"red", "green", "blue", "alpha"};
    for (int i = 0; i < Channels; ++i) {
        m_fields[i]->setValue(channels[i]);
        m_fields[i]->setMixed(mixed);
        m_fields[i]->setAccessibleName(attribute.prettyName() + QLatin1Char(' ')
                                       + QLatin1String(names[i]));
    }
    m_swatch->setAccessibleName(attribute.prettyName());
    m_swatch->setAccessibleDescription(mixed ? tr("mixed") : value.toString());
    paintSwatch();
}

QColor OssColorEditor::shown(const OssColor &color) const
{
    return m_display ? color.toQColor() : OssDisplayColor::ofLinear(color);
}

void OssColorEditor::paintSwatch()
{
    const qreal ratio = devicePixelRatioF();
    QPixmap pixmap(SwatchSize * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    const QRect box({0, 0}, SwatchSize);
    const QRect right = box.adjusted(box.width() / 2, 0, 0, 0);
    // The left half without alpha, the right half over squares.
    for (int y = 0; y < box.height(); y += Square) {
        for (int x = right.left(); x < box.width(); x += Square)
            painter.fillRect(x, y, Square, Square,
                             ((x - right.left()) / Square + y / Square) % 2 ? QColor(150, 150, 150)
                                                                            : QColor(90, 90, 90));
    }
    QColor opaque = shown(color());
    if (m_mixed) {
        painter.fillRect(box, QBrush(palette().color(QPalette::PlaceholderText), Qt::BDiagPattern));
    } else {
        painter.fillRect(right, opaque);
        opaque.setAlphaF(1.0);
        painter.fillRect(box.adjusted(0, 0, -box.width() / 2, 0), opaque);
    }
    painter.end();
    m_swatch->setIcon(pixmap);
}

// --- picker

void OssColorEditor::openPicker()
{
    if (m_picker || !OssApplication::popupsAllowed())
        return;
    const OssColor start = color();
    m_brightness = m_display ? 1.0 : brightest(start);
    m_picker = new QColorDialog(this); // deletes itself
    m_picker->setAttribute(Qt::WA_DeleteOnClose);
    m_picker->setOptions(QColorDialog::ShowAlphaChannel | QColorDialog::DontUseNativeDialog);
    m_picker->setWindowTitle(m_swatch->accessibleName());
    m_picker->setWindowModality(Qt::ApplicationModal);
    m_picker->setCurrentColor(shown({start.red() / m_brightness, start.green() / m_brightness,
                                     start.blue() / m_brightness, start.alpha()}));
    Q_EMIT dragBegun();
    connect(m_picker, &QColorDialog::currentColorChanged, this, [this](const QColor &picked) {
        const OssColor linear = m_display ? OssColor(picked) : OssDisplayColor::toLinear(picked);
        Q_EMIT dragged(
            QVariant::fromValue(OssColor(linear.red() * m_brightness, linear.green() * m_brightness,
                                         linear.blue() * m_brightness, linear.alpha())));
    });
    connect(m_picker, &QDialog::finished, this, [this, start](int result) {
        if (result != QDialog::Accepted)
            Q_EMIT dragged(QVariant::fromValue(start));
        m_picker = nullptr;
        Q_EMIT dragEnded();
    });
    m_picker->show();
}
