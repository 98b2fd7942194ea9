#include "OssInterface/Properties/OssRampEditor.h"

#include "OssCore/Values/OssColor.h"
#include "OssInterface/Properties/OssColorEditor.h"
#include "OssInterface/Properties/OssNumberField.h"

#include <QVBoxLayout>

#include <vector>

OssRampEditor::OssRampEditor(QWidget *parent)
    : OssPropertyEditor(parent)
    , m_field(new OssRampField(this))
    , m_place(new OssNumberField(this))
    , m_color(new OssColorEditor(this))
{
    OssNumberField::Range range;
    range.minimum = range.softMinimum = 0.0;
    range.maximum = range.softMaximum = 1.0;
    m_place->setRange(range);
    m_place->setPrefix(tr("At"));
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(2);
    column->addWidget(m_field);
    column->addWidget(m_place);
    column->addWidget(m_color);
    setFocusProxy(m_field);

    connect(m_field, &OssRampField::currentChanged, this, &OssRampEditor::showCurrent);
    connect(m_field, &OssRampField::colorWanted, m_color, &OssColorEditor::openPicker);
    passOn(m_field, [this] { return value(); });
    passOn(m_color, [this](const QVariant &color) {
        takeColor(color);
        return value();
    });
    passOn(m_place, [this](double place) {
        m_field->setCurrentPlace(place);
        return value();
    });
}

void OssRampEditor::showValue(const OssCustomAttribute &attribute, bool)
{
    m_name = attribute.prettyName();
    m_field->setAccessibleName(m_name);
    m_place->setAccessibleName(tr("%1 place").arg(m_name));
    OssEvRamp ramp;
    if (!OssEvRamp::fromText(attribute.value().toString().toStdString(), &ramp))
        ramp = OssEvRamp();
    m_field->setStops(QVector<OssEvRamp::Stop>(ramp.stops().cbegin(), ramp.stops().cend()));
    showCurrent();
}

QVariant OssRampEditor::value() const
{
    const QVector<OssEvRamp::Stop> &stops = m_field->stops();
    const OssEvRamp ramp(std::vector<OssEvRamp::Stop>(stops.cbegin(), stops.cend()));
    return QString::fromStdString(ramp.toText());
}

void OssRampEditor::showCurrent()
{
    const OssEvRamp::Stop *stop = m_field->currentStop();
    m_place->setEnabled(stop != nullptr);
    m_color->setEnabled(stop != nullptr);
    if (!stop)
        return;
    m_place->setValue(stop->place);
    const OssColor color(double(stop->color[0]), double(stop->color[1]), double(stop->color[2]),
                         double(stop->color[3]));
    OssCustomAttribute shown(m_name, QVariant::fromValue(color));
    shown.setPrettyName(tr("%1 colour").arg(m_name));
    m_color->showValue(shown, false);
}

void OssRampEditor::takeColor(const QVariant &color)
{
    const auto value = color.value<OssColor>();
    m_field->setCurrentColor(
        {float(value.red()), float(value.green()), float(value.blue()), float(value.alpha())});
}
