#include "Ossa/Commands/MarkCommands.h"

#include "Ossa/Commands/Commands.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/OssDependencyMarks.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <algorithm>

MarkCommands::MarkCommands(QObject *parent)
    : QObject(parent)
{
    Commands::file(this, QStringLiteral("/Ossa/Edit/Go to Last Change"), [] { goToLastChange(); });
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Mark Dependencies"),
                   [] { markDependencies(); });
    Commands::file(this, QStringLiteral("/Ossa/NodeGraph/Clear Marks"), [] { clearMarks(); });
}

bool MarkCommands::goToStep(int step)
{
    const QList<QObject *> subjects = OssUndoManager::instance()->subjects(step);
    QList<OssSnBaseNode *> nodes;
    for (QObject *subject : subjects) {
        if (auto *node = qobject_cast<OssSnBaseNode *>(subject))
            nodes.append(node);
    }
    const QString title = OssUndoManager::instance()->text(step);
    const auto named = [&title](const OssSnBaseNode *node) {
        return title.contains(node->name()) ? node->name().size() : 0;
    };
    std::stable_sort(nodes.begin(), nodes.end(), [&named](const auto *one, const auto *other) {
        return named(one) > named(other);
    });
    return std::any_of(nodes.cbegin(), nodes.cend(), [](OssSnBaseNode *node) {
        return OssShaderNetworkManager::instance()->goToNode(node);
    });
}

void MarkCommands::goToLastChange()
{
    if (!goToStep(OssUndoManager::instance()->index() - 1))
        OssStatusManager::instance()->showMessage(
            tr("The last step changed no node that is in a graph"));
}

void MarkCommands::clearMarks()
{
    OssDependencyMarks::instance()->mark({});
    OssStatusManager::instance()->showMessage(tr("No dependencies are marked any more"));
}

void MarkCommands::markDependencies()
{
    const OssShaderNetwork *network = OssShaderNetworkManager::instance()->currentViewNetwork();
    const QList<OssSnBaseNode *> nodes = network ? network->selectedNodes()
                                                 : QList<OssSnBaseNode *>();
    if (nodes.isEmpty()) {
        OssStatusManager::instance()->showMessage(tr("Mark Dependencies: select nodes first"));
        return;
    }
    OssDependencyMarks *marks = OssDependencyMarks::instance();
    marks->mark(nodes);
    OssStatusManager::instance()->showMessage(marks->inWords());
}
