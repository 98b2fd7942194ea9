#include "OssCore/Program/OssStoredPreferences.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Program/OssPreferenceManager.h"
#include "OssCore/Program/OssSettings.h"

#include <QMetaProperty>

namespace {

QVector<QMetaProperty> propertiesOf(const QObject *object)
{
    QVector<QMetaProperty> properties;
    const QMetaObject *meta = object->metaObject();
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        if (meta->property(i).isWritable())
            properties.append(meta->property(i));
    }
    return properties;
}

/// Enumerations are kept and read as their number.
int plainType(const QMetaProperty &property)
{
    return property.isEnumType() ? int(QMetaType::Int) : property.userType();
}

QVariant defaultOf(QObject *object, const QMetaProperty &property)
{
    const QByteArray slot = QByteArray(property.name()) + "Default()";
    const int index = object->metaObject()->indexOfMethod(slot.constData());
    if (index < 0)
        return {};
    QVariant value(plainType(property), nullptr);
    const QGenericReturnArgument result(value.typeName(), value.data());
    return object->metaObject()->method(index).invoke(object, Qt::DirectConnection, result)
               ? value
               : QVariant();
}

} // namespace

void OssStoredPreferences::load(QObject *object, const QString &group, Unfit unfit)
{
    OssSettings settings;
    settings.beginGroup(group);
    const QVector<QMetaProperty> properties = propertiesOf(object);
    for (const QMetaProperty &property : properties) {
        const OssPreferenceManager::Preference preference{
            {}, group, object, QString::fromLatin1(property.name())};
        const QVariant stored = settings.value(preference.key);
        QVariant value = stored;
        if (!stored.isValid())
            value = defaultOf(object, property);
        else if (unfit == Unfit::Converted)
            value.convert(plainType(property)); // what cannot be becomes 0
        else
            value = OssPreferenceManager::fitting(preference, stored);
        if (value.isValid()) {
            property.write(object, value);
        } else if (stored.isValid()) {
            OssDebug("OssStoredPreferences", __LINE__,
                     "[ !! ] \"%s\" in the settings is no value for \"%s/%s\"",
                     qPrintable(stored.toString()), qPrintable(group), property.name());
            OssPreferenceManager::reset(preference);
        }
    }
}

void OssStoredPreferences::save(const QObject *object, const QString &group)
{
    OssSettings settings;
    settings.beginGroup(group);
    const QVector<QMetaProperty> properties = propertiesOf(object);
    for (const QMetaProperty &property : properties) {
        QVariant value = property.read(object);
        if (property.isEnumType())
            value.convert(QMetaType::Int);
        settings.setValue(QString::fromLatin1(property.name()), value);
    }
}
