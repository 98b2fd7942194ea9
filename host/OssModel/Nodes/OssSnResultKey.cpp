#include "OssModel/Nodes/OssSnResultKey.h"

#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssValueText.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Images/OssLivePaint.h"
#include "OssModel/Nodes/OssNodeFiles.h"
#include "OssModel/Nodes/OssSnUpstream.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Objects/OssMeshes.h"

#include <QCryptographicHash>

namespace {

/// What the object's shape adds; nothing for the usual one, null while it is being read.
QString shapeOf(const OssSnBaseNode *node)
{
    const OssGeoEntity *entity = node->network() ? node->network()->geoEntity() : nullptr;
    return entity ? OssMeshes::instance()->contentOf(entity->source()) : QLatin1String("");
}

class KeyMaker
{
public:
    /// A visitor of OssSnUpstream.
    void visit(const OssSnBaseNode *node, const QVector<OssSnUpstream::Input> &inputs)
    {
        QVector<Place> sources;
        for (const OssSnUpstream::Input &input : inputs)
            sources.append({input.source.node, input.source.outputPoint});
        m_sources.insert(node, sources);
        // The sources' own sources have keys already.
        for (const Place &source : qAsConst(sources))
            keyOf(source.first, source.second);
    }

    QByteArray keyOf(const OssSnBaseNode *node, const QString &outputPoint)
    {
        const Place place{node, outputPoint};
        if (node && !m_keys.contains(place))
            m_keys.insert(place, hash(place, m_sources.value(node)));
        return m_keys.value(place);
    }

    /// What all nodes of the object depend on: its shape, and in which colours is reckoned.
    QByteArray withSurroundings(const QByteArray &key, const OssSnBaseNode *node)
    {
        const QString shape = shapeOf(node);
        m_isKnown = m_isKnown && !shape.isNull();
        const QString surroundings = shape + OssColorManagement::instance()->key();
        if (surroundings.isEmpty())
            return key;
        QCryptographicHash hash(QCryptographicHash::Sha1);
        hash.addData(key + surroundings.toUtf8());
        return hash.result();
    }

    bool isKnown() const { return m_isKnown; }

private:
    using Place = QPair<const OssSnBaseNode *, QString>;

    void addFiles(QCryptographicHash *hash, const QStringList &files)
    {
        if (!files.isEmpty())
            hash->addData(OssColorManagement::instance()
                              ->settings()
                              .fileRules.join(QLatin1Char('\n'))
                              .toUtf8());
        for (const QString &file : files) {
            const QString content = OssFileWatch::instance()->contentOf(file);
            m_isKnown = m_isKnown && !content.isNull();
            hash->addData(content.toUtf8() + '\n');
        }
    }

    QByteArray hash(const Place &place, const QVector<Place> &sources)
    {
        const OssSnBaseNode *node = place.first;
        QCryptographicHash hash(QCryptographicHash::Sha1);
        const auto add = [&hash](const QString &text) {
            hash.addData(text.toUtf8());
            hash.addData("\n", 1);
        };
        add(node->pathKey());
        add(place.second);
        const QVector<OssCustomAttribute> attributes = node->userAttributes();
        for (const OssCustomAttribute &attribute : attributes) {
            add(attribute.name() + QLatin1Char('=') + OssValueText::toText(attribute.value()));
            addFiles(&hash, OssNodeFiles::of(attribute));
        }
        if (OssSnUpstream::readsAttributeAround(node))
            add(OssValueText::toText(OssSnUpstream::attributeAround(node).value()));
        const OssImageSet *images = OssShaderNetworkUtils::imageSetOf(node);
        if (images) {
            const QMap<int, QString> pixels = images->pixels();
            for (auto at = pixels.cbegin(); at != pixels.cend(); ++at)
                add(QString::number(at.key()) + at.value());
            if (images->livePaint())
                hash.addData("live paint "
                             + QByteArray::number(qulonglong(images->livePaint()->id())));
        }
        for (const Place &source : sources)
            hash.addData(source.first ? m_keys.value(source) : QByteArray("-"));
        return hash.result();
    }

    QHash<const OssSnBaseNode *, QVector<Place>> m_sources;
    QHash<Place, QByteArray> m_keys;
    bool m_isKnown = true;
};

} // namespace

QString OssSnResultKey::of(const OssSnBaseNode *node, const QString &outputPoint, bool *isKnown)
{
    const OssSnProducer producer = OssSnProducer::of(node, outputPoint);
    if (!producer.node)
        return {};
    KeyMaker maker;
    OssSnUpstream::walk(producer.node, [&maker](const auto *visited, const auto &inputs) {
        maker.visit(visited, inputs);
    });
    const QByteArray key = maker.keyOf(producer.node, producer.outputPoint);
    const QByteArray whole = maker.withSurroundings(key, node);
    if (isKnown)
        *isKnown = maker.isKnown();
    return QString::fromLatin1(whole.toHex());
}
