#include "OssModel/Nodes/OssSnBakePointNode.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Nodes/OssBakePointWatch.h"

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

void OssSnBakePointNode::setBakedKey(const QString &key, const QList<int> &patches, int size)
{
    QMap<int, Baked> baked;
    if (!patches.isEmpty())
        baked = m_baked;
    const QList<int> named = patches.isEmpty() ? QList<int>{OtherPatches} : patches;
    for (const int patch : named) {
        if (key.isEmpty())
            baked.remove(patch);
        else
            baked.insert(patch, {key, size});
    }
    if (m_baked == baked)
        return;
    const auto apply = [this](const QMap<int, Baked> &value) {
        m_baked = value;
        m_wasUpToDate = isBakedResultUpToDate(false);
        Q_EMIT bakedStateChanged();
    };
    const QMap<int, Baked> before = m_baked;
    apply(baked);
    OssUndoManager::instance()->record(
        tr("Bake %1").arg(name()), [=] { apply(before); }, [=] { apply(baked); });
}

bool OssSnBakePointNode::syncGeoChannel() const
{
    return attribute(SyncAttribute).toBool();
}

QString OssSnBakePointNode::geoChannelName() const
{
    return attribute(GeoChannelAttribute).toString();
}

OssGeoImageSet *OssSnBakePointNode::syncedGeoChannel() const
{
    const OssGeoEntity *entity = network() ? network()->geoEntity() : nullptr;
    return entity && syncGeoChannel() ? entity->geoImageSet(geoChannelName()) : nullptr;
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
