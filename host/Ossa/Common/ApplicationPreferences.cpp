#include "Ossa/Common/ApplicationPreferences.h"

#include "OssCore/Program/OssPreferenceManager.h"
#include "OssCore/Program/OssSettings.h"
#include "OssCore/Program/OssStoredPreferences.h"

#include <QStringList>

namespace {

const QString settingsGroup = QStringLiteral("Application");
const QString reopenKey = QStringLiteral("reopenLastProject");
const QString scaleKey = QStringLiteral("interfaceScale");
const QString glideKey = QStringLiteral("nodesGlide");
const QString autosaveKey = QStringLiteral("autosaveInterval");

struct Interval
{
    const char *text;
    int seconds;
};

// The texts are what is stored.
constexpr Interval intervals[] = {{"Off", 0},          {"30 seconds", 30}, {"1 minute", 60},
                                  {"2 minutes", 120},  {"5 minutes", 300}, {"10 minutes", 600},
                                  {"30 minutes", 1800}};
constexpr int usualInterval = 3;

int percentOf(const QString &scale)
{
    return scale.section(QLatin1Char(' '), 0, 0).toInt();
}

} // namespace

ApplicationPreferences::ApplicationPreferences()
{
    resetInterfaceScale();
    resetAutosaveInterval();
    OssStoredPreferences::load(this, settingsGroup);
    auto *manager = OssPreferenceManager::instance();
    const QString page = QStringLiteral(QT_TR_NOOP("Application"));
    manager->registerPreference(page, QStringLiteral(QT_TR_NOOP("Start")), this, reopenKey);
    manager->registerPreference(page, QStringLiteral(QT_TR_NOOP("Display")), this, scaleKey);
    manager->registerPreference(page, QStringLiteral(QT_TR_NOOP("Display")), this, glideKey);
    manager->registerPreference(page, QStringLiteral(QT_TR_NOOP("Saving")), this, autosaveKey);
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
        return QStringLiteral(QT_TR_NOOP("Open Last Project"));
    if (Name == scaleKey)
        return QStringLiteral(QT_TR_NOOP("Size of Texts and Icons"));
    if (Name == glideKey)
        return QStringLiteral(QT_TR_NOOP("Nodes Glide When Arranged"));
    if (Name == autosaveKey)
        return QStringLiteral(QT_TR_NOOP("Copy Unsaved Work Every"));
    return OssGroupParameterObject::prettyPropertyName(Name);
}

QString ApplicationPreferences::reopenLastProjectTooltip() const
{
    return tr("Open the project of the last session when the program starts without one.");
}

void ApplicationPreferences::setNodesGlide(bool glide)
{
    if (glide == m_nodesGlide)
        return;
    m_nodesGlide = glide;
    Q_EMIT nodesGlideChanged(glide);
}

QString ApplicationPreferences::nodesGlideTooltip() const
{
    return tr("Show nodes that are arranged on the way to their new places.");
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

int ApplicationPreferences::autosaveSeconds() const
{
    for (const Interval &interval : intervals) {
        if (m_autosaveInterval == QLatin1String(interval.text))
            return interval.seconds;
    }
    return 0;
}

void ApplicationPreferences::setAutosaveInterval(const QString &interval)
{
    if (interval == m_autosaveInterval || !autosaveIntervalList().contains(interval))
        return;
    m_autosaveInterval = interval;
    Q_EMIT autosaveIntervalChanged();
}

void ApplicationPreferences::resetAutosaveInterval()
{
    setAutosaveInterval(QString::fromLatin1(intervals[usualInterval].text));
}

QString ApplicationPreferences::autosaveIntervalTooltip() const
{
    return tr("How often what is not saved is copied to a place of the program's own, from which "
              "it can be restored after a crash. Your own files are never touched.");
}

QStringList ApplicationPreferences::autosaveIntervalList() const
{
    QStringList texts;
    for (const Interval &interval : intervals)
        texts.append(QString::fromLatin1(interval.text));
    return texts;
}

void ApplicationPreferences::savePreferences()
{
    OssStoredPreferences::save(this, settingsGroup);
}
