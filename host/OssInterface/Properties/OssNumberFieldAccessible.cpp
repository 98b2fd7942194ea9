#include "OssInterface/Properties/OssNumberField.h"

#include <QAccessibleWidget>

// What screen readers are told of a number field.

namespace {

class Interface final
    : public QAccessibleWidget
    , public QAccessibleValueInterface
{
public:
    explicit Interface(OssNumberField *field)
        : QAccessibleWidget(field, QAccessible::Slider, field->accessibleName())
    {
    }

    void *interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::ValueInterface)
            return static_cast<QAccessibleValueInterface *>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    QString text(QAccessible::Text type) const override
    {
        return type == QAccessible::Value ? field()->text() : QAccessibleWidget::text(type);
    }

    QVariant currentValue() const override { return field()->value(); }

    void setCurrentValue(const QVariant &value) override
    {
        Q_EMIT field()->edited(value.toDouble());
    }

    QVariant maximumValue() const override
    {
        const auto bound = field()->range().maximum;
        return bound ? QVariant(*bound) : QVariant();
    }

    QVariant minimumValue() const override
    {
        const auto bound = field()->range().minimum;
        return bound ? QVariant(*bound) : QVariant();
    }

    QVariant minimumStepSize() const override { return field()->singleStep(); }

private:
    OssNumberField *field() const { return static_cast<OssNumberField *>(widget()); }
};

QAccessibleInterface *make(const QString &className, QObject *object)
{
    if (className != QLatin1String("OssNumberField"))
        return nullptr;
    return new Interface(static_cast<OssNumberField *>(object)); // QAccessible takes it
}

const bool Installed = [] {
    QAccessible::installFactory(&make);
    return true;
}();

} // namespace
