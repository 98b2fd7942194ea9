#include "Ossa/Dialogs/PreferenceEditor.h"

#include "OssCore/Values/OssGroupParameterObject.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLineEdit>
#include <QMetaEnum>
#include <QMetaProperty>
#include <QSpinBox>

#include <limits>

namespace {

QMetaProperty propertyOf(const OssPreferenceManager::Preference &preference)
{
    if (!preference.object)
        return {};
    const QMetaObject *type = preference.object->metaObject();
    return type->property(type->indexOfProperty(preference.key.toLatin1().constData()));
}

} // namespace

PreferenceEditor::PreferenceEditor(const OssPreferenceManager::Preference &preference,
                                   QObject *parent)
    : QObject(parent)
    , m_preference(preference)
    , m_original(OssPreferenceManager::value(preference))
{
}

QWidget *PreferenceEditor::createWidget()
{
    const QStringList texts = OssPreferenceManager::allowedTexts(m_preference);
    const QMetaProperty property = propertyOf(m_preference);
    QWidget *widget = nullptr;
    if (!texts.isEmpty())
        widget = createTextList(texts);
    else if (property.isEnumType())
        widget = createEnumerationList(property.enumerator());
    else if (m_original.type() == QVariant::Bool)
        widget = createCheckBox();
    else if (m_original.type() == QVariant::Int)
        widget = createIntegerField();
    else if (m_original.type() == QVariant::Double)
        widget = createNumberField();
    else
        widget = createTextField();
    widget->setObjectName(m_preference.key);
    widget->setAccessibleName(OssPreferenceManager::label(m_preference));
    widget->setToolTip(OssPreferenceManager::toolTip(m_preference));
    m_showValue();
    return widget;
}

void PreferenceEditor::restore()
{
    apply(m_original);
    m_showValue();
}

void PreferenceEditor::reset()
{
    OssPreferenceManager::reset(m_preference);
    m_showValue();
}

QWidget *PreferenceEditor::createCheckBox()
{
    auto *box = new QCheckBox;
    m_showValue = [this, box] {
        box->setChecked(value().toBool());
    };
    connect(box, &QCheckBox::toggled, this, &PreferenceEditor::apply);
    return box;
}

QWidget *PreferenceEditor::createIntegerField()
{
    auto *field = new QSpinBox;
    field->setRange(std::numeric_limits<int>::min(), std::numeric_limits<int>::max());
    field->setMaximumWidth(120);
    m_showValue = [this, field] {
        field->setValue(value().toInt());
    };
    connect(field, qOverload<int>(&QSpinBox::valueChanged), this, &PreferenceEditor::apply);
    return field;
}

QWidget *PreferenceEditor::createNumberField()
{
    auto *field = new QDoubleSpinBox;
    field->setRange(std::numeric_limits<double>::lowest(), std::numeric_limits<double>::max());
    field->setMaximumWidth(120);
    m_showValue = [this, field] {
        field->setValue(value().toDouble());
    };
    connect(field, qOverload<double>(&QDoubleSpinBox::valueChanged), this,
            &PreferenceEditor::apply);
    return field;
}

QWidget *PreferenceEditor::createTextField()
{
    auto *field = new QLineEdit;
    m_showValue = [this, field] {
        field->setText(value().toString());
    };
    connect(field, &QLineEdit::textEdited, this, &PreferenceEditor::apply);
    return field;
}

QWidget *PreferenceEditor::createTextList(const QStringList &texts)
{
    auto *list = new QComboBox;
    list->addItems(texts);
    m_showValue = [this, list] {
        list->setCurrentIndex(list->findText(value().toString()));
    };
    connect(list, qOverload<int>(&QComboBox::activated), this,
            [this, list](int index) { apply(list->itemText(index)); });
    return list;
}

QWidget *PreferenceEditor::createEnumerationList(const QMetaEnum &enumeration)
{
    auto *list = new QComboBox;
    for (int i = 0; i < enumeration.keyCount(); ++i) {
        const QString key = QString::fromLatin1(enumeration.key(i));
        list->addItem(OssGroupParameterObject().prettyPropertyName(key), enumeration.value(i));
    }
    // A value that is none of the keys is kept until the user chooses one.
    m_showValue = [this, list] {
        list->setCurrentIndex(list->findData(value().toInt()));
    };
    connect(list, qOverload<int>(&QComboBox::activated), this,
            [this, list](int index) { apply(list->itemData(index)); });
    return list;
}

void PreferenceEditor::apply(const QVariant &value)
{
    OssPreferenceManager::setValue(m_preference, value);
}

QVariant PreferenceEditor::value() const
{
    return OssPreferenceManager::value(m_preference);
}
