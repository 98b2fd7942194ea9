#include "OssCoreModules/Network/OssSnResultKey.h"

#include "OssCore/OssValueText.h"
#include "OssCoreModules/Network/OssShaderNetwork.h"
#include "OssCoreModules/Network/OssSnBaseTeleportNode.h"
#include "OssCoreModules/Network/OssSnGroupNode.h"
#include "OssCoreModules/Network/OssSnTeleportNodeManager.h"

#include <QCryptographicHash>

namespace {

/// Each node once, however many ways lead to it; deep graphs do not use the stack of the process.
class KeyMaker
{
public:
    QByteArray keyOf(const OssSnBaseNode *node, const QString &outputPoint)
    {
        const Place wanted{node, outputPoint};
        QVector<Place> open{wanted};
        while (!open.isEmpty()) {
            const Place place = open.last();
            if (m_keys.contains(place)) {
                open.removeLast();
                continue;
            }
            const QVector<Place> sources = sourcesOf(place);
            const int before = open.size();
            for (const Place &source : sources) {
                if (source.first && !m_keys.contains(source))
                    open.append(source);
            }
            if (open.size() > before)
                continue;
            m_keys.insert(place, hash(place, sources));
            open.removeLast();
        }
        return m_keys.value(wanted);
    }

private:
    using Place = QPair<const OssSnBaseNode *, QString>;

    /// What the output is made from. A group leads inside, a port inside leads out again.
    static QVector<Place> sourcesOf(const Place &place)
    {
        const OssSnBaseNode *node = place.first;
        if (const auto *group = qobject_cast<const OssSnGroupNode *>(node)) {
            const OssSnBaseNode *inside = group->outputNodeInside(place.second);
            return {{inside, {}}};
        }
        const OssSnGroupNode *around = node->hasTag(QStringLiteral("_input")) && node->network()
                                           ? node->network()->parentGroupNode()
                                           : nullptr;
        if (around)
            return {{around->inputNode(node->name()), around->inputOutputPoint(node->name())}};
        const auto *teleport = qobject_cast<const OssSnBaseTeleportNode *>(node);
        if (teleport && !teleport->isBroadcast())
            return {{OssSnTeleportNodeManager::instance()->broadcastNode(node->network(),
                                                                         teleport->channelName()),
                     {}}};
        QVector<Place> sources;
        for (const OssSnBaseNode::InputPort &port : node->inputPorts())
            sources.append({port.enabled ? port.source : nullptr, port.sourceOutput});
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
        const bool passes = qobject_cast<const OssSnGroupNode *>(node)
                            || node->hasTag(QStringLiteral("_input"))
                            || node->hasTag(QStringLiteral("_output"))
                            || node->hasTag(QStringLiteral("_dot"))
                            || qobject_cast<const OssSnBaseTeleportNode *>(node);
        if (passes && sources.size() == 1)
            return sources.first().first ? m_keys.value(sources.first()) : QByteArray("-");
        if (!passes) {
            add(node->pathKey());
            add(place.second);
            add(QString::number(int(node->enabledAsBool()))
                + QString::number(int(node->isBypassed())));
            const QVector<OssCustomAttribute> attributes = node->userAttributes();
            for (const OssCustomAttribute &attribute : attributes)
                add(attribute.name() + QLatin1Char('=') + OssValueText::toText(attribute.value()));
        }
        for (const Place &source : sources)
            hash.addData(source.first ? m_keys.value(source) : QByteArray("-"));
        return hash.result();
    }

    QHash<Place, QByteArray> m_keys;
};

} // namespace

QString OssSnResultKey::of(const OssSnBaseNode *node, const QString &outputPoint)
{
    if (!node)
        return {};
    return QString::fromLatin1(KeyMaker().keyOf(node, outputPoint).toHex());
}
