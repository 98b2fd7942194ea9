#include "Ossa/Painting/PaintPreferences.h"

#include "OssCore/Program/OssPreferenceManager.h"
#include "OssCore/Program/OssStoredPreferences.h"

#include <QStringList>

namespace {

const QString behaviorKey = QStringLiteral("bakeBehavior");
const QString settingsGroup = QStringLiteral("Painting");

// The texts are what is stored.
const QString bake = QStringLiteral("Bake");
const QString ask = QStringLiteral("Ask");

} // namespace

PaintPreferences::PaintPreferences()
    : m_bakeBehavior(bake)
{
    OssStoredPreferences::load(this, settingsGroup);
    OssPreferenceManager::instance()->registerPreference(QStringLiteral(QT_TR_NOOP("Painting")),
                                                         QStringLiteral(QT_TR_NOOP("Paint Buffer")),
                                                         this, behaviorKey);
}

bool PaintPreferences::asksBeforeBaking() const
{
    return m_bakeBehavior == ask;
}

QString PaintPreferences::prettyPropertyName(const QString &Name) const
{
    return Name == behaviorKey ? QStringLiteral(QT_TR_NOOP("Paint That Is Not Baked Yet"))
                               : OssGroupParameterObject::prettyPropertyName(Name);
}

void PaintPreferences::setBakeBehavior(const QString &behavior)
{
    if (bakeBehaviorList().contains(behavior))
        m_bakeBehavior = behavior;
}

void PaintPreferences::resetBakeBehavior()
{
    m_bakeBehavior = bake;
}

QString PaintPreferences::bakeBehaviorTooltip() const
{
    return tr(
        "What happens to fresh paint before a node is baked, before you paint on another node "
        "and when you go on to another object: it is baked into the images of its node, or "
        "you are asked. Saving always bakes it.");
}

QStringList PaintPreferences::bakeBehaviorList() const
{
    return {bake, ask};
}

void PaintPreferences::savePreferences()
{
    OssStoredPreferences::save(this, settingsGroup);
}
