#include "Ossa/ApplicationPreferences.h"

#include "OssCore/OssPreferenceManager.h"
#include "OssCore/OssSettings.h"

#include <QStringList>

namespace {

const QString settingsGroup = QStringLiteral("Application");
const QString reopenKey = QStringLiteral("reopenLastProject");
const QString scaleKey = QStringLiteral("interfaceScale");

int percentOf(const QString &scale)
{
    return scale.section(QLatin1Char(' '), 0, 0).toInt();
}

} // namespace

ApplicationPreferences *ApplicationPreferences::instance()
{
    static ApplicationPreferences preferences;
    return &preferences;
}

ApplicationPreferences::ApplicationPreferences()
{
    resetInterfaceScale();
    OssSettings settings;
    settings.beginGroup(settingsGroup);
    m_reopenLastProject = settings.value(reopenKey, false).toBool();
    setInterfaceScale(settings.value(scaleKey).toString());
    auto *manager = OssPreferenceManager::instance();
    const QString page = tr("Application");
    manager->registerPreference(page, tr("Start"), this, reopenKey);
    manager->registerPreference(page, tr("Display"), this, scaleKey);
}

int ApplicationPreferences::storedInterfaceScale()
{
    const int percent = percentOf(
        OssSettings().value(settingsGroup + QLatin1Char('/') + scaleKey).toString());
    return percent >= 100 && percent <= 300 ? percent : 100;
}

QString ApplicationPreferences::prettyPropertyName(const QString &Name) const
{
    if (Name == reopenKey)
        return tr("Open Last Project");
    if (Name == scaleKey)
        return tr("Size of Texts and Icons");
    return OssGroupParameterObject::prettyPropertyName(Name);
}

QString ApplicationPreferences::reopenLastProjectTooltip() const
{
    return tr("Open the project of the last session when the program starts without one.");
}

void ApplicationPreferences::setInterfaceScale(const QString &scale)
{
    if (interfaceScaleList().contains(scale))
        m_interfaceScale = scale;
}

void ApplicationPreferences::resetInterfaceScale()
{
    m_interfaceScale = interfaceScaleList().first();
}

QString ApplicationPreferences::interfaceScaleTooltip() const
{
    return tr("Takes effect when the program is started again.");
}

QStringList ApplicationPreferences::interfaceScaleList() const
{
    return {QStringLiteral("100 %"), QStringLiteral("125 %"), QStringLiteral("150 %"),
            QStringLiteral("200 %"), QStringLiteral("250 %"), QStringLiteral("300 %")};
}

void ApplicationPreferences::savePreferences()
{
    OssSettings settings;
    settings.beginGroup(settingsGroup);
    settings.setValue(reopenKey, m_reopenLastProject);
    settings.setValue(scaleKey, m_interfaceScale);
}
