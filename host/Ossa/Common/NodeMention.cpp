#include "Ossa/Common/NodeMention.h"

#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

/// Root networks, the one that is shown first.
QList<OssShaderNetwork *> roots()
{
    QList<OssShaderNetwork *> networks;
    const OssProject *project = OssProjectManager::instance()->currentProject();
    const QList<OssShadingGroup *> groups = project ? project->shadingGroups()
                                                    : QList<OssShadingGroup *>();
    const OssShaderNetwork *shown = OssShaderNetworkManager::instance()->currentShaderNetwork();
    for (const OssShadingGroup *group : groups) {
        if (group->network() == shown)
            networks.prepend(group->network());
        else
            networks.append(group->network());
    }
    return networks;
}

OssSnBaseNode *named(const QString &name)
{
    const QList<OssShaderNetwork *> networks = roots();
    for (const OssShaderNetwork *network : networks) {
        if (name.startsWith(QLatin1Char('/'))) {
            if (OssSnBaseNode *node = network->nodeByPath(name))
                return node;
            continue;
        }
        const QList<OssSnBaseNode *> nodes = network->getAllNodes();
        const auto found = std::find_if(nodes.cbegin(), nodes.cend(),
                                        [&name](const auto *node) { return node->name() == name; });
        if (found != nodes.cend())
            return *found;
    }
    return nullptr;
}

} // namespace

OssSnBaseNode *NodeMention::find(const QString &text)
{
    // Names may hold blanks: quotes tell where one ends, and the colon behind a path that a line
    // begins with. Other paths end at the next blank.
    static const QRegularExpression places[] = {
        QRegularExpression(QStringLiteral("\"([^\"\\n]+)\"|'([^'\\n]+)'|^(/[^:\\n]+):"),
                           QRegularExpression::MultilineOption),
        QRegularExpression(QStringLiteral("(?<![\\w/])(/[^\\s'\":,;]+)"))};
    for (const QRegularExpression &place : places) {
        QRegularExpressionMatchIterator matches = place.globalMatch(text);
        while (matches.hasNext()) {
            const QRegularExpressionMatch match = matches.next();
            if (OssSnBaseNode *node = named(match.captured(match.lastCapturedIndex())))
                return node;
        }
    }
    return nullptr;
}
