#include "OssCore/Program/OssPreferenceManager.h"

#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssGroupParameterObject.h"
#include "OssCore/Values/OssValueText.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QMetaProperty>
#include <QSet>

namespace {

QByteArray capitalised(const QString &key)
{
    QByteArray name = key.toLatin1();
    if (!name.isEmpty())
        name[0] = char(QChar::toUpper(uint(name.at(0))));
    return name;
}

QString sourceLabel(const OssPreferenceManager::Preference &preference)
{
    const auto *named = dynamic_cast<const OssGroupParameterObject *>(preference.object.data());
    return named ? named->prettyPropertyName(preference.key)
                 : OssGroupParameterObject().prettyPropertyName(preference.key);
}

bool hasMethod(const QObject *object, const QByteArray &name)
{
    return object && object->metaObject()->indexOfMethod(QByteArray(name + "()").constData()) >= 0;
}

/// What the object's slot of that name says.
template <class Answer>
Answer answer(const OssPreferenceManager::Preference &preference, const char *suffix)
{
    Answer found{};
    const QByteArray method = preference.key.toLatin1() + suffix;
    if (hasMethod(preference.object, method))
        QMetaObject::invokeMethod(
            preference.object, method.constData(), Qt::DirectConnection,
            QReturnArgument<Answer>(QMetaType::typeName(qMetaTypeId<Answer>()), found));
    return found;
}

QString translated(const OssPreferenceManager::Preference &preference, const QString &text)
{
    if (!preference.object || text.isEmpty())
        return text;
    return QCoreApplication::translate(preference.object->metaObject()->className(),
                                       text.toUtf8().constData());
}

} // namespace

void OssPreferenceManager::registerPreference(const QString &page, const QString &group,
                                              QObject *object, const QString &key)
{
    if (object && !key.isEmpty())
        m_preferences.append({page, group, object, key});
}

QVector<OssPreferenceManager::Preference> OssPreferenceManager::preferences() const
{
    QVector<Preference> living;
    for (const Preference &preference : m_preferences) {
        if (preference.object)
            living.append(preference);
    }
    return living;
}

QString OssPreferenceManager::path(const Preference &preference)
{
    return preference.page + QLatin1Char('/') + preference.group + QLatin1Char('/')
           + sourceLabel(preference);
}

QString OssPreferenceManager::pageTitle(const Preference &preference)
{
    return translated(preference, preference.page);
}

QString OssPreferenceManager::groupTitle(const Preference &preference)
{
    return translated(preference, preference.group);
}

QString OssPreferenceManager::label(const Preference &preference)
{
    return translated(preference, sourceLabel(preference));
}

QString OssPreferenceManager::toolTip(const Preference &preference)
{
    return answer<QString>(preference, "Tooltip");
}

QStringList OssPreferenceManager::allowedTexts(const Preference &preference)
{
    return answer<QStringList>(preference, "List");
}

QStringList OssPreferenceManager::names(const Preference &preference)
{
    if (!preference.object)
        return {};
    const QMetaObject *meta = preference.object->metaObject();
    const QMetaProperty property = meta->property(
        meta->indexOfProperty(preference.key.toLatin1().constData()));
    QStringList keys;
    for (int i = 0; property.isEnumType() && i < property.enumerator().keyCount(); ++i)
        keys.append(QString::fromLatin1(property.enumerator().key(i)));
    return keys;
}

QVariant OssPreferenceManager::value(const Preference &preference)
{
    return preference.object ? preference.object->property(preference.key.toLatin1().constData())
                             : QVariant();
}

bool OssPreferenceManager::setValue(const Preference &preference, const QVariant &value)
{
    return preference.object
           && preference.object->setProperty(preference.key.toLatin1().constData(), value);
}

QVariant OssPreferenceManager::fitting(const Preference &preference, const QVariant &value)
{
    if (!preference.object)
        return {};
    const QStringList allowed = allowedTexts(preference);
    const QString text = value.toString();
    if (!allowed.isEmpty())
        return allowed.contains(text) ? QVariant(text) : QVariant();
    const QMetaObject *meta = preference.object->metaObject();
    const QMetaProperty property = meta->property(
        meta->indexOfProperty(preference.key.toLatin1().constData()));
    const int type = property.isEnumType() ? int(QMetaType::Int) : property.userType();
    const bool isText = value.userType() == QMetaType::QString;
    if (property.isEnumType() && isText) {
        bool isName = false;
        const int number = property.enumerator().keyToValue(text.toLatin1().constData(), &isName);
        if (isName)
            return number;
    }
    if (isText || value.userType() == type)
        return OssValueText::fromText(text, type);
    // A whole number is no truth value, and 1.5 or 2^40 none of an int.
    if (type == QMetaType::Bool)
        return {};
    if (type == QMetaType::Int)
        return value.userType() == QMetaType::LongLong ? OssValueText::fromText(text, type)
                                                       : QVariant();
    return OssAttributeKind::like(QVariant(type, nullptr), value);
}

void OssPreferenceManager::reset(const Preference &preference)
{
    const QByteArray method = "reset" + capitalised(preference.key);
    if (hasMethod(preference.object, method))
        QMetaObject::invokeMethod(preference.object, method.constData(), Qt::DirectConnection);
}

void OssPreferenceManager::savePreferences()
{
    QSet<QObject *> saved;
    const QVector<Preference> living = preferences();
    for (const Preference &preference : living) {
        if (saved.contains(preference.object) || !hasMethod(preference.object, "savePreferences"))
            continue;
        saved.insert(preference.object);
        QMetaObject::invokeMethod(preference.object, "savePreferences", Qt::DirectConnection);
    }
}
