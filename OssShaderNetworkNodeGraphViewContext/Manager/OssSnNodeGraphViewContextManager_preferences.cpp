#include "OssSnNodeGraphViewContextManager.h"

#include "OssCore/Program/OssPreferenceManager.h"
#include "OssCore/Program/OssStoredPreferences.h"
#include "OssShaderNetworkWidget.h"

namespace {

const char *const SettingsGroup = QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager",
                                                    "Node Graph");

const QStringList PortDisplays{QStringLiteral("Show Port List (Horizontal)"),
                               QStringLiteral("No Port List (Vertical)")};

struct Preference
{
    const char *key;
    const char *group;
    const char *label;
};

// In the order of the preferences dialog.
constexpr Preference Preferences[] = {
    {"controlType", QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "General"),
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Control Type")},
    {"defaultNodePortDisplayMode", "General",
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Default Port Display")},
    {"isAutoInsertOn", "General",
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Auto Insert Node")},
    {"zoomTo", "General", QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Zoom To")},
    {"autoUpdateUpstreamMergeNodeColorspaceEnabled", "General",
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Update Blending Colorspace")},
    {"defaultMCMCollapsedState",
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Multi-Channel"),
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Default Collapsed State")},
    {"shakeToExtractEnabled",
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Shake to Extract"),
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Shake to Extract Selected Nodes")},
    {"shakeToExtractShakes", "Shake to Extract",
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Shakes to Trigger")},
    {"shakeToExtractTime", "Shake to Extract",
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Shakes in Time (ms)")},
    {"numberOfLastUsedNodePathsToStore",
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Quick Node Create Menu"),
     QT_TRANSLATE_NOOP("OssSnNodeGraphViewContextManager", "Number of Most Recent Nodes")},
};

} // namespace

void OssSnNodeGraphViewContextManager::registerPreferences()
{
    for (const Preference &preference : Preferences)
        OssPreferenceManager::instance()->registerPreference(
            QString::fromLatin1(SettingsGroup), QString::fromLatin1(preference.group), this,
            QString::fromLatin1(preference.key));
}

QString OssSnNodeGraphViewContextManager::prettyPropertyName(const QString &Name) const
{
    for (const Preference &preference : Preferences) {
        if (Name == QLatin1String(preference.key))
            return QString::fromLatin1(preference.label);
    }
    return OssSerializableObject::prettyPropertyName(Name);
}

// --- control type

QString OssSnNodeGraphViewContextManager::controlTypeDefault() const
{
    return QStringLiteral("Kova");
}

QStringList OssSnNodeGraphViewContextManager::controlTypeList() const
{
    return {QStringLiteral("Kova"), QStringLiteral("Ossa")};
}

QString OssSnNodeGraphViewContextManager::controlTypeTooltip() const
{
    return tr("Setup the nodegraph navigation to match another software application.\n * Kova "
              "(default)\n * Ossa");
}

void OssSnNodeGraphViewContextManager::setControlType(const QString &Value)
{
    if (Value == m_controlType || !controlTypeList().contains(Value))
        return;
    m_controlType = Value;
    Q_EMIT controlTypeChanged(Value);
    if (m_nodeGraphWidget)
        m_nodeGraphWidget->setNavigationControlType(Value);
}

// --- port display

QStringList OssSnNodeGraphViewContextManager::defaultNodePortDisplayModeList() const
{
    return PortDisplays;
}

QString OssSnNodeGraphViewContextManager::defaultNodePortDisplayMode() const
{
    return PortDisplays.value(m_portDisplayIndex);
}

QString OssSnNodeGraphViewContextManager::defaultNodePortDisplayModeTooltip() const
{
    return tr("Configures whether each node shows port list by default upon creation.\n * No Port "
              "List (Vertical): Nodes will not show port list upon creation\n * Show Port List "
              "(Horizontal): Nodes will show port list upon creation");
}

void OssSnNodeGraphViewContextManager::setDefaultNodePortDisplayMode(const QString &Mode)
{
    const int index = PortDisplays.indexOf(Mode);
    if (index < 0) {
        setDefaultNodePortDisplayMode(PortDisplays.first());
        return;
    }
    if (index == m_portDisplayIndex)
        return;
    m_portDisplayIndex = index;
    updatePortVisibility();
    Q_EMIT defaultNodePortDisplayModeChanged(Mode);
}

void OssSnNodeGraphViewContextManager::resetDefaultNodePortDisplayMode()
{
    setDefaultNodePortDisplayMode(PortDisplays.first());
}

// --- auto insert, zoom

void OssSnNodeGraphViewContextManager::setIsAutoInsertOn(bool Value)
{
    if (m_isAutoInsertOn == Value)
        return;
    m_isAutoInsertOn = Value;
    Q_EMIT isAutoInsertOnChanged(Value);
}

QString OssSnNodeGraphViewContextManager::isAutoInsertOnTooltip() const
{
    return tr("Nodes will be inserted automatically into the tree when moved over an existing "
              "pipe. This is indicated by the pipe turning yellow when hovering.");
}

void OssSnNodeGraphViewContextManager::setZoomTo(int Value)
{
    if (m_zoomTo == Value)
        return;
    m_zoomTo = Value;
    Q_EMIT zoomToChanged(ZoomTo(Value));
    Q_EMIT zoomToChangedAsInt(Value);
}

QString OssSnNodeGraphViewContextManager::zoomToTooltip() const
{
    return tr("Which point to anchor when zooming in the Node Graph\n");
}

// --- blending colour space

QString OssSnNodeGraphViewContextManager::autoUpdateUpstreamMergeNodeColorspaceEnabledDefault()
    const
{
    return QStringLiteral("Prompt");
}

QStringList OssSnNodeGraphViewContextManager::autoUpdateUpstreamMergeNodeColorspaceEnabledList()
    const
{
    return {QStringLiteral("Prompt"), QStringLiteral("Change"), QStringLiteral("Leave")};
}

QString OssSnNodeGraphViewContextManager::autoUpdateUpstreamMergeNodeColorspaceEnabledTooltip()
    const
{
    return tr(
        "<html>Control whether to automatically change the 'Use Blending Colorspace' attribute to "
        "'Enable' for Merge nodes upstream of newly connected 8bit (byte) Channels or Bake Points "
        "configured for color paint data. When Merge nodes have this attribute set to 'Disable' "
        "for an 8-bit (byte) color paint data channel, precision issues in the blending math could "
        "occur, which could result in visual banding artefacts in your paint.</html>");
}

void OssSnNodeGraphViewContextManager::setAutoUpdateUpstreamMergeNodeColorspaceEnabled(
    const QString &Value)
{
    if (Value == m_colorspaceUpdate
        || !autoUpdateUpstreamMergeNodeColorspaceEnabledList().contains(Value))
        return;
    m_colorspaceUpdate = Value;
    Q_EMIT autoUpdateUpstreamMergeNodeColorspaceEnabledChanged(Value);
}

void OssSnNodeGraphViewContextManager::resetAutoUpdateUpstreamMergeNodeColorspaceEnabled()
{
    setAutoUpdateUpstreamMergeNodeColorspaceEnabled(
        autoUpdateUpstreamMergeNodeColorspaceEnabledDefault());
}

// --- collapsed state

void OssSnNodeGraphViewContextManager::setDefaultMCMCollapsedState(int Value)
{
    if (m_collapsedState == Value)
        return;
    m_collapsedState = Value;
    Q_EMIT defaultMCMCollapsedStateChanged(DefaultMCMCollapsedState(Value));
    Q_EMIT defaultMCMCollapsedStateChangedAsInt(Value);
}

QString OssSnNodeGraphViewContextManager::defaultMCMCollapsedStateTooltip() const
{
    return tr("Default collapsed state of Multi-Channel nodes when created");
}

// --- shake to extract

void OssSnNodeGraphViewContextManager::setShakeToExtractEnabled(bool Value)
{
    if (m_shakeEnabled == Value)
        return;
    m_shakeEnabled = Value;
    Q_EMIT shakeToExtractEnabledChanged(Value);
}

void OssSnNodeGraphViewContextManager::toggleShakeToExtractEnabled()
{
    setShakeToExtractEnabled(!m_shakeEnabled);
}

QString OssSnNodeGraphViewContextManager::shakeToExtractEnabledTooltip() const
{
    return QStringLiteral("Shake selected nodes in the node graph to extract them.");
}

void OssSnNodeGraphViewContextManager::setShakeToExtractShakes(int Value)
{
    if (m_shakes == Value)
        return;
    m_shakes = Value;
    Q_EMIT shakeToExtractShakesChanged(Value);
}

QString OssSnNodeGraphViewContextManager::shakeToExtractShakesTooltip() const
{
    return QStringLiteral(
        "Perform this many shakes in the required time to trigger Shake to Extract.\nA \"shake\" "
        "is moving the nodes in one direction then moving them in the opposite direction.");
}

void OssSnNodeGraphViewContextManager::setShakeToExtractTime(int Value)
{
    if (m_shakeTime == Value)
        return;
    m_shakeTime = Value;
    Q_EMIT shakeToExtractTimeChanged(Value);
}

QString OssSnNodeGraphViewContextManager::shakeToExtractTimeTooltip() const
{
    return QStringLiteral("Perform the required number of shakes in this amount of time (in "
                          "milliseconds) to trigger Shake to Extract.");
}

// --- recent nodes

void OssSnNodeGraphViewContextManager::setNumberOfLastUsedNodePathsToStore(int Value)
{
    if (m_recentCount == Value)
        return;
    m_recentCount = Value;
    Q_EMIT numberOfLastUsedNodePathsToStoreChanged(Value);
}

void OssSnNodeGraphViewContextManager::resetNumberOfLastUsedNodePathsToStore()
{
    setNumberOfLastUsedNodePathsToStore(numberOfLastUsedNodePathsToStoreDefault());
}

QString OssSnNodeGraphViewContextManager::numberOfLastUsedNodePathsToStoreTooltip() const
{
    return QStringLiteral(
        "The number of most recent nodes to be shown in the Node graph's Quick Create Menu");
}

// --- settings

void OssSnNodeGraphViewContextManager::loadPreferences()
{
    OssStoredPreferences::load(this, QString::fromLatin1(SettingsGroup),
                               OssStoredPreferences::Unfit::Converted);
    if (m_colorspaceUpdate.isEmpty()) // what is stored is none of the answers
        resetAutoUpdateUpstreamMergeNodeColorspaceEnabled();
}

void OssSnNodeGraphViewContextManager::savePreferences()
{
    OssStoredPreferences::save(this, QString::fromLatin1(SettingsGroup));
}

void OssSnNodeGraphViewContextManager::resetShakeToExtractEnabled()
{
    setShakeToExtractEnabled(shakeToExtractEnabledDefault());
}

void OssSnNodeGraphViewContextManager::resetShakeToExtractShakes()
{
    setShakeToExtractShakes(shakeToExtractShakesDefault());
}

void OssSnNodeGraphViewContextManager::resetShakeToExtractTime()
{
    setShakeToExtractTime(shakeToExtractTimeDefault());
}
