#include "OssModel/Nodes/OssSnBakePointNode.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssUserEnum.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Images/OssImageManager.h"
#include "OssModel/Nodes/OssBakePointWatch.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

constexpr const char *DepthAttribute = "depth";
constexpr const char *ResolutionAttribute = "resolution";
const QString SyncAttribute = QStringLiteral("syncGeoChannel");
const QString GeoChannelAttribute = QStringLiteral("geoChannel");
const QString LimitAttribute = QStringLiteral("limitBake");
const QString RangeAttribute = QStringLiteral("limitBakeRange");
const QString BackgroundAttribute = QStringLiteral("limitBakeBackground");
const QString FilterAttribute = QStringLiteral("filterCollection");
const QString FilterTextAttribute = QStringLiteral("filterCollectionText");

// --- how the node's images are to be kept

void setResolution(OssImageSet *images, const QVariant &value)
{
    const int size = value.value<OssUserEnum>().currentName().toInt();
    if (size > 0)
        images->setResolution(size);
}

void setDepth(OssImageSet *images, const QVariant &value)
{
    const int depth = value.value<OssUserEnum>().currentValue();
    if (depth >= 0 && depth < int(OssEvDepthNames.size()))
        images->setDepth(OssImageSet::codeOf(OssEvDepth(depth)));
}

void setScalar(OssImageSet *images, const QVariant &value)
{
    images->setScalar(value.toBool());
}

void setBleed(OssImageSet *images, const QVariant &value)
{
    images->setBleed(value.toInt());
}

void setFileSpace(OssImageSet *images, const QVariant &value)
{
    images->setFileSpace(value.value<OssUserEnum>().currentName());
}

void setFillColor(OssImageSet *images, const QVariant &value)
{
    images->setFillColor(value.value<OssColor>());
}

struct Setting
{
    const char *attribute;
    void (*apply)(OssImageSet *images, const QVariant &value);
};

constexpr Setting Settings[] = {{ResolutionAttribute, setResolution},
                                {DepthAttribute, setDepth},
                                {"scalar", setScalar},
                                {"bleed", setBleed},
                                {"fileSpace", setFileSpace},
                                {"fillColor", setFillColor}};

const Setting *settingOf(const QString &attribute)
{
    const auto *found = std::find_if(
        std::begin(Settings), std::end(Settings),
        [&](const Setting &setting) { return attribute == QLatin1String(setting.attribute); });
    return found == std::end(Settings) ? nullptr : found;
}

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
    // Who has not been told yet takes what is baked for good.
    const bool wasUpToDate = m_wasUpToDate.value_or(hasBakedResult());
    m_wasUpToDate = upToDate;
    if (upToDate == wasUpToDate)
        return;
    Q_EMIT bakedStateChanged();
}

QString OssSnBakePointNode::preferredInputName() const
{
    return inputPorts().isEmpty() ? QString() : inputPorts().first().name;
}

void OssSnBakePointNode::setBakedKey(const QString &key, const QList<int> &patches, int size,
                                     const QString &form)
{
    QMap<int, Baked> baked;
    if (!patches.isEmpty())
        baked = m_baked;
    const QList<int> named = patches.isEmpty() ? QList<int>{OtherPatches} : patches;
    for (const int patch : named) {
        if (key.isEmpty())
            baked.remove(patch);
        else
            baked.insert(patch, {key, size, form});
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
        tr("Bake %1").arg(name()), [=] { apply(before); }, [=] { apply(baked); }, this);
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
        // An unfinished pattern, as "[a", is a name.
        return shape.isValid() ? shape.match(object->name()).hasMatch()
                               : name.trimmed() == object->name();
    });
}

bool OssSnBakePointNode::asksForSize() const
{
    const OssCustomAttribute own = userAttribute(QLatin1String(ResolutionAttribute));
    return !imageSet() && own.isValid() && own.isDefault();
}

OssImageSet *OssSnBakePointNode::needImageSet()
{
    if (asksForSize())
        setAttribute(QLatin1String(ResolutionAttribute),
                     QString::number(OssImageManager::instance()->newResolution()));
    return OssSnImageSetNodeBase::needImageSet();
}

std::unique_ptr<const OssImageSet> OssSnBakePointNode::imagesToBake() const
{
    auto images = std::make_unique<OssImageSet>(QString());
    if (const OssImageSet *own = imageSet()) {
        images->copySettings(*own);
        images->setResolution(own->resolution());
        return images;
    }
    images->setResolution(OssImageManager::instance()->newResolution());
    applySettings(images.get());
    if (asksForSize())
        images->setResolution(OssImageManager::instance()->newResolution());
    return images;
}

void OssSnBakePointNode::applySettings(OssImageSet *images) const
{
    for (const Setting &setting : Settings) {
        const OssCustomAttribute own = userAttribute(QLatin1String(setting.attribute));
        if (own.isValid())
            setting.apply(images, own.value());
    }
}

bool OssSnBakePointNode::choosesDepth() const
{
    return userAttribute(QLatin1String(DepthAttribute)).isValid();
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
    else if (const Setting *setting = imageSet() ? settingOf(name) : nullptr)
        setting->apply(imageSet(), attribute.value());
}
