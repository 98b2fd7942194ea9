#include "OssModel/Graph/OssSnNodeState.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssAttributeKind.h"

void OssSnNodeState::setDescription(const QString &description)
{
    if (m_description == description)
        return;
    const QString before = m_description;
    const auto apply = [this](const QString &text) {
        m_description = text;
        Q_EMIT descriptionChanged(m_description);
    };
    apply(description);
    OssUndoManager::instance()->record(
        tr("Describe %1").arg(m_name), [apply, before] { apply(before); },
        [apply, description] { apply(description); }, this);
}

void OssSnNodeState::setEnabled(int enabled)
{
    if (m_enabled == enabled)
        return;
    const int before = m_enabled;
    const auto apply = [this](int value) {
        m_enabled = value;
        Q_EMIT enabledChanged(m_enabled);
    };
    apply(enabled);
    OssUndoManager::instance()->record(
        enabled ? tr("Enable %1").arg(m_name) : tr("Disable %1").arg(m_name),
        [apply, before] { apply(before); }, [apply, enabled] { apply(enabled); }, this);
}

void OssSnNodeState::toggleDisable()
{
    setEnabled(enabledAsBool() ? 0 : 1);
}

void OssSnNodeState::setBypassed(bool bypassed)
{
    if (m_bypassed == bypassed || !canBeBypassed())
        return;
    const auto apply = [this](bool value) {
        m_bypassed = value;
        Q_EMIT bypassedChanged(m_bypassed);
        Q_EMIT nodeStateRefreshed();
    };
    apply(bypassed);
    OssUndoManager::instance()->record(
        tr("Bypass %1").arg(m_name), [apply, bypassed] { apply(!bypassed); },
        [apply, bypassed] { apply(bypassed); }, this);
}

void OssSnNodeState::toggleBypass()
{
    setBypassed(!m_bypassed);
}

void OssSnNodeState::setLocked(bool locked)
{
    if (m_locked == locked)
        return;
    const auto apply = [this](bool value) {
        m_locked = value;
        Q_EMIT lockedChanged(m_locked);
    };
    apply(locked);
    OssUndoManager::instance()->record(
        locked ? tr("Lock %1").arg(m_name) : tr("Unlock %1").arg(m_name),
        [apply, locked] { apply(!locked); }, [apply, locked] { apply(locked); }, this);
}

void OssSnNodeState::setCacheActive(int state)
{
    if (m_cacheActive == state || state < CacheOff || state > CacheActive)
        return;
    const int before = m_cacheActive;
    const auto apply = [this](int value) {
        m_cacheActive = value;
        Q_EMIT cacheActiveChanged(OssSnBaseNodeCacheActiveState(m_cacheActive));
    };
    apply(state);
    OssUndoManager::instance()->record(
        tr("Cache %1").arg(m_name), [apply, before] { apply(before); },
        [apply, state] { apply(state); }, this);
}

void OssSnNodeState::setGuiActive(bool active)
{
    if (m_guiActive == active)
        return;
    m_guiActive = active;
    Q_EMIT guiActiveChanged(active);
}

void OssSnNodeState::setErrorText(const QString &text)
{
    if (m_errorText == text)
        return;
    m_errorText = text;
    Q_EMIT errorTextChanged(text);
}

// --- attributes

QStringList OssSnNodeState::nodeAttributes() const
{
    QStringList names;
    names.reserve(userAttributes().size());
    for (const OssCustomAttribute &attribute : userAttributes()) {
        names.append(attribute.group().isEmpty()
                         ? attribute.name()
                         : attribute.group() + QLatin1Char('/') + attribute.name());
    }
    return names;
}

QString OssSnNodeState::nodeAttributeNameAsUserAttributeName(const QString &nodeAttribute) const
{
    return nodeAttribute.mid(nodeAttribute.lastIndexOf(QLatin1Char('/')) + 1);
}

bool OssSnNodeState::setAttribute(const QString &name, const QVariant &value, bool notify)
{
    const QString lock = lockOf(name);
    if (!lock.isEmpty()) {
        OssDebug("OssSnNodeState", __LINE__, "[ !! ] '%s' of node '%s' was not changed: %s",
                 qPrintable(name), qPrintable(path()), qPrintable(lock));
        return false;
    }
    return assignAttribute(name, value, notify);
}

bool OssSnNodeState::assignAttribute(const QString &name, const QVariant &value, bool notify)
{
    OssCustomAttribute attribute = userAttribute(name);
    if (!attribute.isValid()) {
        OssDebug("OssSnNodeState", __LINE__, "[ !! ] Node '%s' has no attribute '%s'",
                 qPrintable(path()), qPrintable(name));
        return false;
    }
    const QVariant converted = OssAttributeKind::like(attribute.value(), value);
    if (!converted.isValid()) {
        OssDebug("OssSnNodeState", __LINE__, "[ !! ] '%s' is no value for '%s' of node '%s'",
                 qPrintable(value.toString()), qPrintable(name), qPrintable(path()));
        return false;
    }
    attribute.setValue(converted);
    setUserAttribute(attribute, notify);
    return true;
}

void OssSnNodeState::setNodeAttributesUndo(const QStringList &nodeAttributes)
{
    QStringList after;
    for (const QString &attribute : nodeAttributes)
        after.append(nodeAttributeNameAsUserAttributeName(attribute));
    const QStringList before = userAttributeNames();
    if (after == before || !orderUserAttributes(after))
        return;
    const auto apply = [this](const QStringList &order) {
        orderUserAttributes(order);
        Q_EMIT nodeAttributesSet();
    };
    Q_EMIT nodeAttributesSet();
    OssUndoManager::instance()->record(
        tr("Order Attributes of %1").arg(m_name), [apply, before] { apply(before); },
        [apply, after] { apply(after); }, this);
}
