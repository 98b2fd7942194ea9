#include "OssModel/Nodes/OssSnBakePointNode.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Nodes/OssBakePointWatch.h"
#include "OssModel/Nodes/OssSnResultKey.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

const QString SyncAttribute = QStringLiteral("syncGeoChannel");
const QString GeoChannelAttribute = QStringLiteral("geoChannel");
const QString LimitAttribute = QStringLiteral("limitBake");
const QString RangeAttribute = QStringLiteral("limitBakeRange");
const QString BackgroundAttribute = QStringLiteral("limitBakeBackground");
const QString FilterAttribute = QStringLiteral("filterCollection");
const QString FilterTextAttribute = QStringLiteral("filterCollectionText");
const QString BakedElement = QStringLiteral("baked");

} // namespace

OssSnBakePointNode::OssSnBakePointNode(std::shared_ptr<const OssSnNodeType> type)
    : OssSnImageSetNodeBase(std::move(type))
{
    OssBakePointWatch::instance()->add(this);
}

OssSnBakePointNode::~OssSnBakePointNode()
{
    OssBakePointWatch::instance()->remove(this);
}

void OssSnBakePointNode::checkBakedState()
{
    const bool upToDate = isBakedResultUpToDate(false);
    if (upToDate == m_wasUpToDate)
        return;
    m_wasUpToDate = upToDate;
    Q_EMIT bakedStateChanged();
}

QString OssSnBakePointNode::preferredInputName() const
{
    return inputPorts().isEmpty() ? QString() : inputPorts().first().name;
}

void OssSnBakePointNode::setBakedKey(const QString &key)
{
    const QString settings = key.isEmpty() ? QString()
                             : limitBake() ? limitBakeRange()
                                           : QStringLiteral("*");
    if (m_bakedKey == key && m_bakedSettings == settings)
        return;
    const auto apply = [this](const QString &newKey, const QString &newSettings) {
        m_bakedKey = newKey;
        m_bakedSettings = newSettings;
        m_wasUpToDate = isBakedResultUpToDate(false);
        Q_EMIT bakedStateChanged();
    };
    const QString keyBefore = m_bakedKey;
    const QString settingsBefore = m_bakedSettings;
    apply(key, settings);
    OssUndoManager::instance()->record(
        tr("Bake %1").arg(name()), [=] { apply(keyBefore, settingsBefore); },
        [=] { apply(key, settings); });
}

bool OssSnBakePointNode::isBakedResultUpToDate(bool includeSettings) const
{
    if (!hasBakedResult())
        return false;
    const OssSnBaseNode *source = inputNode(preferredInputName());
    bool isKnown = true;
    const QString now = source ? OssSnResultKey::of(source, inputOutputPoint(preferredInputName()),
                                                    &isKnown)
                               : QString();
    const QString settings = limitBake() ? limitBakeRange() : QStringLiteral("*");
    return (m_bakedKey == now || !isKnown) && (!includeSettings || m_bakedSettings == settings);
}

bool OssSnBakePointNode::syncGeoChannel() const
{
    return attribute(SyncAttribute).toBool();
}

QString OssSnBakePointNode::geoChannelName() const
{
    return attribute(GeoChannelAttribute).toString();
}

bool OssSnBakePointNode::limitBake() const
{
    return attribute(LimitAttribute).toBool();
}

QString OssSnBakePointNode::limitBakeRange() const
{
    return attribute(RangeAttribute).toString();
}

OssColor OssSnBakePointNode::limitBakeBackground() const
{
    return attribute(BackgroundAttribute).value<OssColor>();
}

bool OssSnBakePointNode::filterCollectionEnabled() const
{
    return attribute(FilterAttribute).toBool();
}

QString OssSnBakePointNode::filterCollectionText() const
{
    return attribute(FilterTextAttribute).toString();
}

bool OssSnBakePointNode::isBakedFor(const OssGeoEntity *object) const
{
    const QStringList names = filterCollectionText().split(QLatin1Char(','), Qt::SkipEmptyParts);
    if (!object || !filterCollectionEnabled() || names.isEmpty())
        return true;
    return std::any_of(names.cbegin(), names.cend(), [object](const QString &name) {
        const QRegularExpression shape(
            QRegularExpression::wildcardToRegularExpression(name.trimmed()));
        return shape.match(object->name()).hasMatch();
    });
}

void OssSnBakePointNode::onUserAttributeSet(const OssCustomAttribute &attribute, bool added)
{
    OssSnImageSetNodeBase::onUserAttributeSet(attribute, added);
    const QString name = attribute.name();
    if (name == SyncAttribute)
        Q_EMIT syncGeoChannelChanged(syncGeoChannel());
    else if (name == GeoChannelAttribute)
        Q_EMIT geoChannelNameChanged(geoChannelName());
    else if (name == LimitAttribute || name == RangeAttribute)
        Q_EMIT limitBakeChanged(limitBake());
    else if (name == FilterAttribute)
        Q_EMIT filterCollectionEnabledChanged(filterCollectionEnabled());
    else if (name == FilterTextAttribute)
        Q_EMIT filterCollectionTextChanged(filterCollectionText());
}

bool OssSnBakePointNode::saveObjects(OssSerializer &serializer)
{
    if (hasBakedResult())
        serializer.writeElement(BakedElement, {{QStringLiteral("key"), m_bakedKey},
                                               {QStringLiteral("patches"), m_bakedSettings}});
    return OssSnImageSetNodeBase::saveObjects(serializer);
}

bool OssSnBakePointNode::onLoadElement(OssDeserializer &deserializer, const QString &name,
                                       const Attributes &attributes)
{
    if (name != BakedElement)
        return OssSnImageSetNodeBase::onLoadElement(deserializer, name, attributes);
    m_bakedKey = attributes.value(QStringLiteral("key"));
    m_bakedSettings = attributes.value(QStringLiteral("patches"));
    return true;
}
