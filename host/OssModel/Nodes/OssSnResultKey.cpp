#include "OssModel/Nodes/OssSnResultKey.h"

#include "OssCore/Values/OssValueText.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Nodes/OssSnUpstream.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QCryptographicHash>

namespace {

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

private:
    using Place = QPair<const OssSnBaseNode *, QString>;

    QByteArray hash(const Place &place, const QVector<Place> &sources) const
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
        for (const OssCustomAttribute &attribute : attributes)
            add(attribute.name() + QLatin1Char('=') + OssValueText::toText(attribute.value()));
        const OssImageSet *images = OssShaderNetworkUtils::imageSetOf(node);
        if (images) {
            const QMap<int, QString> pixels = images->pixels();
            for (auto at = pixels.cbegin(); at != pixels.cend(); ++at)
                add(QString::number(at.key()) + at.value());
        }
        for (const Place &source : sources)
            hash.addData(source.first ? m_keys.value(source) : QByteArray("-"));
        return hash.result();
    }

    QHash<const OssSnBaseNode *, QVector<Place>> m_sources;
    QHash<Place, QByteArray> m_keys;
};

} // namespace

QString OssSnResultKey::of(const OssSnBaseNode *node, const QString &outputPoint)
{
    const OssSnProducer producer = OssSnProducer::of(node, outputPoint);
    if (!producer.node)
        return {};
    KeyMaker maker;
    OssSnUpstream::walk(producer.node, [&maker](const auto *visited, const auto &inputs) {
        maker.visit(visited, inputs);
    });
    return QString::fromLatin1(maker.keyOf(producer.node, producer.outputPoint).toHex());
}
