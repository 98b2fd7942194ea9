#include "OssModel/Nodes/OssSnResultKey.h"

#include "OssCore/OssValueText.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Nodes/OssSnProducer.h"
#include "OssModel/Objects/OssImageSet.h"

#include <QCryptographicHash>

namespace {

/// Each node once, however many ways lead to it; deep graphs do not use the stack of the process.
class KeyMaker
{
public:
    QByteArray keyOf(const OssSnProducer &wanted)
    {
        const Place place{wanted.node, wanted.outputPoint};
        QVector<Place> open{place};
        while (!open.isEmpty()) {
            const Place next = open.last();
            if (m_keys.contains(next)) {
                open.removeLast();
                continue;
            }
            const QVector<Place> sources = sourcesOf(next.first);
            const bool loops = m_open.contains(next);
            m_open.insert(next);
            const int before = open.size();
            for (const Place &source : sources) {
                if (source.first && !m_keys.contains(source) && !loops)
                    open.append(source);
            }
            if (open.size() > before)
                continue;
            m_keys.insert(next, hash(next, sources));
            open.removeLast();
        }
        return m_keys.value(place);
    }

private:
    using Place = QPair<const OssSnBaseNode *, QString>;

    static QVector<Place> sourcesOf(const OssSnBaseNode *node)
    {
        QVector<Place> sources;
        // What has pixels of its own does not look at what feeds it.
        if (OssShaderNetworkUtils::readsPixels(node))
            return sources;
        for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
            const OssSnProducer source = OssSnProducer::ofInput(node, port.name);
            sources.append({source.node, source.outputPoint});
        }
        return sources;
    }

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

    QHash<Place, QByteArray> m_keys;
    QSet<Place> m_open;
};

} // namespace

QString OssSnResultKey::of(const OssSnBaseNode *node, const QString &outputPoint)
{
    const OssSnProducer producer = OssSnProducer::of(node, outputPoint);
    if (!producer.node)
        return {};
    return QString::fromLatin1(KeyMaker().keyOf(producer).toHex());
}
