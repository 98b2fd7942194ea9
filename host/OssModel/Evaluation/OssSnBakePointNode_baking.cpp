// What a bake point knows of the patches that were baked.
#include "OssModel/Nodes/OssSnBakePointNode.h"

#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Evaluation/OssPatchList.h"
#include "OssModel/Graph/OssGeoImageSet.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Nodes/OssSnResultKey.h"

#include <algorithm>

namespace {

const QString BakedElement = QStringLiteral("baked");
const QString KeyAttribute = QStringLiteral("key");
const QString PatchesAttribute = QStringLiteral("patches");
const QString SizeAttribute = QStringLiteral("size");
const QString FormAttribute = QStringLiteral("form");
/// Instead of a list of patches.
const QString AllPatches = QStringLiteral("*");

} // namespace

QList<int> OssSnBakePointNode::patchesToBake() const
{
    const OssGeoEntity *entity = network() ? network()->geoEntity() : nullptr;
    QList<int> patches = OssEvaluationService::instance()->patches(entity);
    if (!limitBake())
        return patches;
    const QList<int> wanted = OssPatchList::fromText(limitBakeRange());
    patches.erase(std::remove_if(patches.begin(), patches.end(),
                                 [&](int patch) { return !wanted.contains(patch); }),
                  patches.end());
    return patches;
}

bool OssSnBakePointNode::isBakedResultUpToDate(bool anySettings) const
{
    const OssGeoImageSet *channel = syncedGeoChannel();
    return (!channel || channel->imageSet() == imageSet()) && arePixelsUpToDate(anySettings);
}

bool OssSnBakePointNode::arePixelsUpToDate(bool anySettings) const
{
    const QString input = preferredInputName();
    const OssSnBaseNode *source = hasBakedResult() ? inputNode(input) : nullptr;
    if (!source)
        return false;
    bool isKnown = true;
    const QString now = OssSnResultKey::of(source, inputOutputPoint(input), &isKnown);
    const int size = imageSet() ? imageSet()->resolution() : 0;
    const QString form = imageSet() ? imageSet()->form() : QString();
    const Baked others = m_baked.value(OtherPatches);
    const QList<int> patches = patchesToBake();
    return !patches.isEmpty() && std::all_of(patches.cbegin(), patches.cend(), [&](int patch) {
        const Baked baked = m_baked.value(patch, others);
        const bool isSame = baked.key == now || (!isKnown && !baked.key.isEmpty());
        return isSame
               && (anySettings
                   || ((baked.size == 0 || baked.size == size)
                       && (baked.form.isEmpty() || baked.form == form)));
    });
}

// --- files

bool OssSnBakePointNode::saveObjects(OssSerializer &serializer)
{
    QVector<QPair<Baked, QList<int>>> results;
    for (auto at = m_baked.cbegin(); at != m_baked.cend(); ++at) {
        const auto known = std::find_if(results.begin(), results.end(), [&](const auto &result) {
            return result.first == at.value();
        });
        if (known == results.end())
            results.append({at.value(), {at.key()}});
        else
            known->second.append(at.key());
    }
    for (const auto &[baked, patches] : qAsConst(results)) {
        Attributes attributes{{KeyAttribute, baked.key},
                              {PatchesAttribute, patches.contains(OtherPatches)
                                                     ? AllPatches
                                                     : OssPatchList::toText(patches)}};
        if (baked.size > 0)
            attributes.insert(SizeAttribute, QString::number(baked.size));
        if (!baked.form.isEmpty())
            attributes.insert(FormAttribute, baked.form);
        serializer.writeElement(BakedElement, attributes);
    }
    return OssSnImageSetNodeBase::saveObjects(serializer);
}

bool OssSnBakePointNode::onLoadElement(OssDeserializer &deserializer, const QString &name,
                                       const Attributes &attributes)
{
    if (name != BakedElement)
        return OssSnImageSetNodeBase::onLoadElement(deserializer, name, attributes);
    const Baked baked{attributes.value(KeyAttribute), attributes.value(SizeAttribute).toInt(),
                      attributes.value(FormAttribute)};
    QList<int> patches = OssPatchList::fromText(attributes.value(PatchesAttribute));
    if (patches.isEmpty())
        patches.append(OtherPatches);
    for (const int patch : qAsConst(patches)) {
        if (!baked.key.isEmpty())
            m_baked.insert(patch, baked);
    }
    return true;
}
