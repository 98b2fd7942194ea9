#include "Ossa/Viewer/ViewerHint.h"

#include "OssInterface/Actions/OssActionTreeManager.h"
#include "OssModel/Evaluation/OssSnEvaluationGraph.h"
#include "OssModel/Evaluation/OssViewedNode.h"
#include "OssModel/Nodes/OssSnProducer.h"

#include <QAction>
#include <QCoreApplication>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("ViewerHint", text);
}

/// Of a command of the node graph, as people read it; empty when it has none.
QString keyOf(const char *command)
{
    const QAction *action = OssActionTreeManager::instance()->findAction(
        QStringLiteral("/Ossa/NodeGraph/") + QLatin1String(command));
    return action ? action->shortcut().toString(QKeySequence::NativeText) : QString();
}

/// Empty where no input is switched off.
QString whyOff()
{
    const QString off = OssSnEvaluationGraph::switchedOff(OssViewedNode::off());
    if (off.isEmpty())
        return off;
    const QString key = keyOf("Toggle Wire");
    return key.isEmpty()
               ? tr("%1. Click its wire and choose Toggle Wire in the menu Node Graph.").arg(off)
               : tr("%1. Point at its wire in the node graph and press %2.").arg(off, key);
}

} // namespace

QString ViewerHint::whyNothing()
{
    const QString off = whyOff();
    return off.isEmpty() ? tr("Nothing is connected to the viewer here") : off;
}

QString ViewerHint::whyBare()
{
    const QString off = whyOff();
    if (!off.isEmpty())
        return off;
    const QString key = keyOf("Connect Selected Node to Viewer");
    return key.isEmpty() ? tr("Nothing is connected to the viewer here. Wire a material to it.")
                         : tr("Nothing is connected to the viewer here. Select a material in the "
                              "node graph and press %1.")
                               .arg(key);
}
