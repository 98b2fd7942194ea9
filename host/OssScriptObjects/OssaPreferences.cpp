#include "OssScriptObjects/OssaPreferences.h"

namespace Ossa {

Preferences::Preferences(QObject *manager)
{
    initAs<OssPreferenceManager>(manager);
}

Preferences::~Preferences() = default;

QStringList Preferences::names() const
{
    QStringList names;
    if (const auto *manager = wrapped<OssPreferenceManager>()) {
        const auto preferences = manager->preferences();
        for (const OssPreferenceManager::Preference &preference : preferences)
            names.append(OssPreferenceManager::path(preference));
    }
    return names;
}

bool Preferences::find(const QString &name, OssPreferenceManager::Preference *preference) const
{
    const auto *manager = wrapped<OssPreferenceManager>();
    if (!manager)
        return false;
    const auto preferences = manager->preferences();
    for (const OssPreferenceManager::Preference &candidate : preferences) {
        if (OssPreferenceManager::path(candidate) == name) {
            *preference = candidate;
            return true;
        }
    }
    fail(OssScriptException::UnknownName,
         QStringLiteral("There is no preference \"%1\"").arg(name));
    return false;
}

QVariant Preferences::value(const QString &name) const
{
    OssPreferenceManager::Preference preference;
    return find(name, &preference) ? OssPreferenceManager::value(preference) : QVariant();
}

void Preferences::setValue(const QString &name, const QVariant &value)
{
    OssPreferenceManager::Preference preference;
    if (!find(name, &preference))
        return;
    const QVariant fitting = OssPreferenceManager::fitting(preference, value);
    const QStringList names = OssPreferenceManager::names(preference);
    const bool isNamed = names.isEmpty()
                         || (fitting.toInt() >= 0 && fitting.toInt() < names.size());
    if (!fitting.isValid() || !isNamed || !OssPreferenceManager::setValue(preference, fitting))
        fail(OssScriptException::WrongType,
             QStringLiteral("\"%1\" is no value for the preference \"%2\"")
                 .arg(value.toString(), name));
}

void Preferences::reset(const QString &name)
{
    OssPreferenceManager::Preference preference;
    if (find(name, &preference))
        OssPreferenceManager::reset(preference);
}

QStringList Preferences::choices(const QString &name) const
{
    OssPreferenceManager::Preference preference;
    if (!find(name, &preference))
        return {};
    const QStringList texts = OssPreferenceManager::allowedTexts(preference);
    return texts.isEmpty() ? OssPreferenceManager::names(preference) : texts;
}

} // namespace Ossa
