#include "OssInterface/Properties/OssNumberEditors.h"

#include "OssInterface/Properties/OssNumberField.h"

#include <QHBoxLayout>
#include <QPointF>

namespace {

OssNumberField::Range rangeOf(const OssCustomAttribute &attribute)
{
    const OssCustomAttribute::Definition &definition = attribute.definition();
    const auto bound = [](const QVariant &value) {
        return value.isValid() ? std::optional<double>(value.toDouble()) : std::nullopt;
    };
    return {bound(definition.minimum), bound(definition.maximum), bound(definition.softMinimum),
            bound(definition.softMaximum), attribute.value().userType() == QMetaType::Int};
}

} // namespace

OssNumberEditor::OssNumberEditor(QWidget *parent)
    : OssPropertyEditor(parent)
    , m_field(new OssNumberField(this))
{
    makeRow()->addWidget(m_field);
    setFocusProxy(m_field);
    passOn(m_field, [this](double number) { return asValue(number); });
}

QVariant OssNumberEditor::asValue(double number) const
{
    return m_type == QMetaType::Int ? QVariant(int(number)) : QVariant(number);
}

void OssNumberEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    m_type = attribute.value().userType();
    m_field->setRange(rangeOf(attribute));
    m_field->setValue(attribute.value().toDouble());
    m_field->setMixed(mixed.any);
    m_field->setAccessibleName(attribute.prettyName());
}

OssVectorEditor::OssVectorEditor(QWidget *parent)
    : OssPropertyEditor(parent)
{
    QHBoxLayout *row = makeRow();
    const QString names[] = {QStringLiteral("X"), QStringLiteral("Y")};
    for (int i = 0; i < 2; ++i) {
        OssNumberField *field = m_fields[i] = new OssNumberField(this);
        field->setPrefix(names[i]);
        row->addWidget(field);
        passOn(
            field, [this](double) { return value(); }, always({i}));
    }
    setFocusProxy(m_fields[0]);
}

QVariant OssVectorEditor::value() const
{
    return QPointF(m_fields[0]->value(), m_fields[1]->value());
}

void OssVectorEditor::showValue(const OssCustomAttribute &attribute, const OssMixed &mixed)
{
    const QPointF point = attribute.value().toPointF();
    for (int i = 0; i < 2; ++i) {
        m_fields[i]->setRange(rangeOf(attribute));
        m_fields[i]->setValue(i == 0 ? point.x() : point.y());
        m_fields[i]->setMixed(mixed.at(i));
        m_fields[i]->setAccessibleName(attribute.prettyName()
                                       + (i == 0 ? QStringLiteral(" X") : QStringLiteral(" Y")));
    }
}
