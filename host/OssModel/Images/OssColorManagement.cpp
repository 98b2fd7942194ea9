#include "OssModel/Images/OssColorManagement.h"

#include "OssModel/Images/OssFilePath.h"

#include <QFileInfo>

#include <atomic>

namespace {

/// The service, for other threads; null before and after it.
std::atomic<OssColorManagement *> service{nullptr};

QString told(const OssEvResult &result)
{
    return QString::fromStdString(result.error()).simplified();
}

OssEvResult readConfig(const QString &config, OssEvColorSpaces::Pointer *spaces)
{
    if (config.isEmpty())
        return {};
    if (config == OssColorSettings::Environment)
        return OssEvColorSpaces::readEnvironment(spaces);
    const QString path = OssFilePath::resolved(config);
    if (!QFileInfo::exists(path))
        return OssEvResult::failure(
            QStringLiteral("Cannot read \"%1\": there is no such file").arg(path).toStdString());
    return OssEvColorSpaces::read(path.toStdString(), spaces);
}

QString keyOf(const OssEvColorSpaces &spaces)
{
    const OssEvKey &key = spaces.key();
    return key.isNull() ? QString()
                        : QStringLiteral("%1%2").arg(key.high, 16, 16).arg(key.low, 16, 16);
}

} // namespace

const QString OssColorSettings::Environment = QStringLiteral("$OCIO");

QStringList OssColorSettings::usualFileRules()
{
    QStringList texts;
    for (const OssEvFileColors::Rule &rule : OssEvFileColors::usualRules())
        texts.append(QString::fromStdString(rule.pattern + '=' + rule.space));
    return texts;
}

OssEvFileColors::Rules OssColorSettings::rules() const
{
    OssEvFileColors::Rules made;
    for (const QString &text : fileRules) {
        const int at = text.lastIndexOf(QLatin1Char('='));
        if (at > 0)
            made.push_back(
                {text.left(at).trimmed().toStdString(), text.mid(at + 1).trimmed().toStdString()});
    }
    return made;
}

QString OssColorSettings::configTitle(const QString &config)
{
    if (config.isEmpty())
        return OssColorManagement::tr("Built-in");
    return config == Environment ? OssColorManagement::tr("Environment (%1)").arg(Environment)
                                 : config;
}

OssColorManagement::OssColorManagement()
    : m_spaces(OssEvColorSpaces::builtIn())
{
    service = this;
}

OssColorManagement::~OssColorManagement()
{
    service = nullptr;
}

OssEvColorSpaces::Pointer OssColorManagement::spaces()
{
    OssColorManagement *own = service;
    if (!own)
        return OssEvColorSpaces::builtIn();
    const std::lock_guard<std::mutex> lock(own->m_mutex);
    return own->m_spaces;
}

OssEvFileColors OssColorManagement::fileColors() const
{
    return OssEvFileColors(spaces(), m_settings.rules());
}

OssResult OssColorManagement::find(const OssColorSettings &settings,
                                   OssEvColorSpaces::Pointer *spaces)
{
    *spaces = OssEvColorSpaces::builtIn();
    const OssEvResult read = readConfig(settings.config, spaces);
    OssEvColorSpaces::Pointer chosen;
    OssEvResult found;
    if (!settings.working.isEmpty())
        found = (*spaces)->withWorking(settings.working.toStdString(), &chosen);
    if (chosen)
        *spaces = chosen;
    if (!read)
        return OssResult::failure(told(read));
    if (!found)
        return OssResult::failure(
            settings.config.isEmpty()
                ? told(found)
                : tr("%1: %2").arg(OssColorSettings::configTitle(settings.config), told(found)));
    return {};
}

void OssColorManagement::use(const OssColorSettings &settings)
{
    OssEvColorSpaces::Pointer spaces;
    const OssResult found = find(settings, &spaces);
    const QString key = keyOf(*spaces);
    const QString standIn = QString::fromStdString(spaces->working());
    const QString problem = found ? QString()
                            : spaces->isBuiltIn() && !settings.config.isEmpty()
                                ? tr("%1. The built-in color spaces stand in, with %2")
                                      .arg(found.error(), standIn)
                                : tr("%1. %2 stands in").arg(found.error(), standIn);
    if (key == m_key && problem == m_problem && settings == m_settings)
        return;
    m_settings = settings;
    m_key = key;
    m_problem = problem;
    {
        const std::lock_guard<std::mutex> lock(m_mutex);
        m_spaces = spaces;
    }
    Q_EMIT changed();
}
