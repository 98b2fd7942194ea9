#include "OssInterface/Properties/OssRampEditor.h"

#include "OssCore/Values/OssColor.h"
#include "OssInterface/Properties/OssColorEditor.h"
#include "OssInterface/Properties/OssNumberField.h"

#include <QVBoxLayout>

#include <vector>

namespace {

constexpr int PartsOfStop = 5; ///< its place and its channels

} // namespace

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
    passOn(
        m_field, [this] { return value(); }, always(OssAttributeEdit::changedParts()));
    passOn(
        m_color,
        [this](const QVariant &color, const QVector<int> &) {
            takeColor(color);
            return value();
        },
        [this](const QVariant &, const QVector<int> &channels) { return partsOf(channels); });
    passOn(
        m_place,
        [this](double place) {
            m_field->setCurrentPlace(place);
            return value();
        },
        [this](double) { return QVector<int>{firstPart()}; });
}

int OssRampEditor::firstPart() const
{
    return m_field->current() * PartsOfStop;
}

QVector<int> OssRampEditor::partsOf(const QVector<int> &channels) const
{
    const QVector<int> all{0, 1, 2, 3};
    QVector<int> parts;
    for (const int channel : channels.isEmpty() ? all : channels)
        parts.append(firstPart() + 1 + channel);
    return parts;
}

QString OssRampEditor::joinKey() const
{
    return m_color->joinKey();
}

void OssRampEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    m_name = attribute.prettyName();
    m_mixed = mixed;
    m_field->setAccessibleName(m_name);
    m_field->setMixed(mixed.any);
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
    m_place->setMixed(m_mixed.at(firstPart()));
    OssMixed channels(m_mixed.any);
    for (int i = 0; i < PartsOfStop - 1 && !m_mixed.parts.isEmpty(); ++i)
        channels.parts.append(m_mixed.at(firstPart() + 1 + i));
    channels.any = channels.parts.isEmpty() ? m_mixed.any : channels.parts.contains(true);
    const OssColor color(double(stop->color[0]), double(stop->color[1]), double(stop->color[2]),
                         double(stop->color[3]));
    OssCustomAttribute shown(m_name, QVariant::fromValue(color));
    shown.setPrettyName(tr("%1 colour").arg(m_name));
    m_color->showValue(shown, channels);
}

void OssRampEditor::takeColor(const QVariant &color)
{
    const auto value = color.value<OssColor>();
    m_field->setCurrentColor(
        {float(value.red()), float(value.green()), float(value.blue()), float(value.alpha())});
}
