#include "DocumentInvariants.h"

#include "OssCore/Documents/OssSerializer.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssNodeGraph/Items/OssNgEdge.h"
#include "OssNodeGraph/Items/OssNgNode.h"
#include "OssSnNodeGraphViewContextManager.h"

#include <QBuffer>
#include <QGraphicsScene>
#include <QImage>
#include <QMap>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdlib>

namespace {

constexpr int LargestCompared = 64;
const QString Viewer = QStringLiteral("_viewer");

OssNgNode *itemOf(const OssSnBaseNode *node)
{
    return OssSnNodeGraphViewContextManager::guiNodeOf(node);
}

/// All that a save would write, but for ids: asking for one is no edit.
QByteArray contents(OssProject *project)
{
    QBuffer buffer;
    buffer.open(QIODevice::WriteOnly);
    OssSerializer serializer(&buffer);
    project->save(serializer, project->name(), {});
    // The mesh that is kept follows its file, whoever wrote that.
    static const QRegularExpression other(QStringLiteral(" uuid=\"[^\"]*\"|<keptMesh [^>]*>"));
    return QString::fromUtf8(buffer.data()).remove(other).toUtf8();
}

bool hasWire(const OssSnBaseNode *source, const QString &output, const OssSnBaseNode *target,
             const QString &input)
{
    const auto &wires = source->outgoingConnections();
    return std::any_of(wires.cbegin(), wires.cend(), [&](const auto &wire) {
        return wire.outputPoint == output && wire.target == target && wire.input == input;
    });
}

/// What an output gives now.
QMap<int, QImage> pictures(const OssSnBaseNode *node, const QString &output,
                           const QList<int> &patches, int resolution)
{
    const QTemporaryDir folder;
    OssEvaluationService::BakeJob job;
    job.node = node;
    job.outputPoint = output;
    job.entity = node->network()->geoEntity();
    job.patches = patches;
    job.resolution = resolution;
    QMap<int, QImage> made;
    if (OssEvaluationService::instance()->bake(job,
                                               folder.filePath(QStringLiteral("<UDIM>.png")))) {
        for (const int patch : patches)
            made.insert(patch, QImage(folder.filePath(QStringLiteral("%1.png").arg(patch))));
    }
    return made;
}

/// But for the last bit, which rounding decides.
bool areAlike(const QImage &a, const QImage &b)
{
    const auto near = [](int x, int y) {
        return std::abs(x - y) <= 1;
    };
    for (int y = 0; a.size() == b.size() && y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            if (!near(qRed(p), qRed(q)) || !near(qGreen(p), qGreen(q)) || !near(qBlue(p), qBlue(q))
                || !near(qAlpha(p), qAlpha(q)))
                return false;
        }
    }
    return a.size() == b.size();
}

bool holdsWhatItShows(const OssSnBakePointNode *point)
{
    const QString input = point->preferredInputName();
    const OssImageSet *set = point->imageSet();
    if (!set || set->pixels().isEmpty())
        return false;
    const QList<int> patches = set->pixels().keys();
    const int size = set->resolution();
    if (size > LargestCompared)
        return true; // nobody waits for it
    const QMap<int, QImage> held = pictures(point, point->prefferedOutputPoint(), patches, size);
    const QMap<int, QImage> fresh = pictures(point->inputNode(input),
                                             point->inputOutputPoint(input), patches, size);
    return held.keys() == fresh.keys()
           && std::all_of(patches.cbegin(), patches.cend(), [&](int patch) {
                  return areAlike(held.value(patch), fresh.value(patch));
              });
}

} // namespace

DocumentInvariants::DocumentInvariants()
{
    const auto *projects = OssProjectManager::instance();
    connect(projects, &OssProjectManager::projectSaved, this, [this] { rememberSaved(); });
    connect(projects, &OssProjectManager::projectOpenCompleted, this, [this] { rememberSaved(); });
    const auto *undo = OssUndoManager::instance();
    connect(undo, &OssUndoManager::changed, this, [this, undo] {
        if (undo->count() == 0 && undo->isClean()) // a test begins here
            rememberSaved();
    });
    rememberSaved();
}

void DocumentInvariants::rememberSaved()
{
    OssProject *project = OssProjectManager::instance()->currentProject();
    m_saved = project ? contents(project) : QByteArray();
}

QStringList DocumentInvariants::broken()
{
    m_broken.clear();
    OssProject *project = OssProjectManager::instance()->currentProject();
    if (!project)
        return {};
    const QList<OssShadingGroup *> groups = project->shadingGroups();
    for (const OssShadingGroup *group : groups)
        checkNetwork(group->network());
    checkViewers(project);
    checkSaved(project);
    return m_broken;
}

void DocumentInvariants::say(const OssSnBaseNode *node, const QString &what)
{
    m_broken.append(node->path() + QStringLiteral(": ") + what);
}

void DocumentInvariants::checkNetwork(OssShaderNetwork *network)
{
    const QList<OssSnBaseNode *> nodes = network->nodes();
    for (const OssSnBaseNode *node : nodes) {
        if (node->network() != network)
            say(node, QStringLiteral("stands in another network than the one that has it"));
        if (network->node(node->name()) != node)
            say(node, QStringLiteral("is not found by its name"));
        checkWires(node);
        checkItem(node);
        if (const auto *group = qobject_cast<const OssSnGroupNode *>(node))
            checkNetwork(group->groupNetwork());
    }
    checkScene(network);
}

void DocumentInvariants::checkWires(const OssSnBaseNode *node)
{
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        if (!port.source)
            continue;
        if (!port.source->network())
            say(node, port.name + QStringLiteral(" has a source that is in no network"));
        else if (!port.source->hasOutputPoint(port.sourceOutput))
            say(node, port.name + QStringLiteral(" is wired to an output that is not there"));
        if (!hasWire(port.source, port.sourceOutput, node, port.name))
            say(node, port.name + QStringLiteral(" has a wire of which its source knows nothing"));
    }
    for (const auto &wire : node->outgoingConnections()) {
        const auto &inputs = wire.target->inputPorts();
        const bool known = std::any_of(inputs.cbegin(), inputs.cend(), [&](const auto &port) {
            return port.name == wire.input && port.source == node
                   && port.sourceOutput == wire.outputPoint;
        });
        if (!known)
            say(node, wire.outputPoint + QStringLiteral(" has a wire that ends nowhere"));
    }
}

void DocumentInvariants::checkItem(const OssSnBaseNode *node)
{
    const OssNgNode *item = itemOf(node);
    if (!item) {
        say(node, QStringLiteral("has no item"));
        return;
    }
    if (item->scene()
        != OssSnNodeGraphViewContextManager::instance()->sceneForNetwork(node->network()))
        say(node, QStringLiteral("has its item in another network"));
    if (item->isSelected() != node->selected())
        say(node, QStringLiteral("and its item disagree on being selected"));
    if (item->inputPortNames() != node->inputNames()
        || item->outputPortNames() != node->outputPointNames()) {
        say(node, QStringLiteral("has other ports than its item"));
        return;
    }
    const auto compareLabels = [&](const auto &ports, const auto &shown) {
        for (int i = 0; i < ports.size(); ++i) {
            const auto &port = ports.at(i);
            const QString called = port.label.isEmpty() ? port.name : port.label;
            if (shown.at(i) != called)
                say(node, QStringLiteral("calls \"%1\" what the graph calls \"%2\"")
                              .arg(called, shown.at(i)));
        }
    };
    QStringList inputs;
    QStringList outputs;
    for (const OssNgPort &port : item->inputPorts())
        inputs.append(item->inputDescriptiveName(port.name));
    for (const OssNgPort &port : item->outputPorts())
        outputs.append(item->outputPointDescriptiveName(port.name));
    compareLabels(node->inputPorts(), inputs);
    compareLabels(node->outputPoints(), outputs);
    checkItemPorts(node, item);
    checkItemWires(node, item);
}

void DocumentInvariants::checkItemPorts(const OssSnBaseNode *node, const OssNgNode *item)
{
    QVector<QPointF> places;
    for (const auto *ports : {&item->inputPorts(), &item->outputPorts()}) {
        for (const OssNgPort &port : *ports) {
            if (!port.listed || !port.labelled) // streams may share a row
                continue;
            if (places.contains(port.position))
                say(node, QStringLiteral("has two ports on one spot: ") + port.name);
            places.append(port.position);
        }
    }
}

void DocumentInvariants::checkItemWires(const OssSnBaseNode *node, const OssNgNode *item)
{
    for (const OssSnBaseNode::InputPort &port : node->inputPorts()) {
        const OssNgEdge *edge = item->input(port.name);
        if ((edge != nullptr) != (port.source != nullptr))
            say(node, QStringLiteral("and its item disagree on a wire at ") + port.name);
        else if (edge
                 && (edge->source() != itemOf(port.source)
                     || edge->sourceOutput() != port.sourceOutput))
            say(node, QStringLiteral("has a wire that is shown elsewhere: ") + port.name);
    }
}

void DocumentInvariants::checkScene(OssShaderNetwork *network)
{
    const QGraphicsScene *scene = OssSnNodeGraphViewContextManager::instance()->sceneForNetwork(
        network);
    const QString where = network->parentGroupNode() ? network->parentGroupNode()->path()
                                                     : QStringLiteral("/");
    int wires = 0;
    const QList<OssSnBaseNode *> nodes = network->nodes();
    for (const OssSnBaseNode *node : nodes) {
        for (const auto &port : node->inputPorts())
            wires += port.source ? 1 : 0;
    }
    int items = 0;
    int edges = 0;
    const QList<QGraphicsItem *> all = scene->items();
    for (QGraphicsItem *item : all) {
        items += dynamic_cast<OssNgNode *>(item) ? 1 : 0;
        edges += dynamic_cast<OssNgEdge *>(item) ? 1 : 0;
    }
    if (items != nodes.size() || edges != wires)
        m_broken.append(QStringLiteral("%1: %2 items for %3 nodes, %4 for %5 wires")
                            .arg(where)
                            .arg(items)
                            .arg(nodes.size())
                            .arg(edges)
                            .arg(wires));
}

void DocumentInvariants::checkViewers(const OssProject *project)
{
    const QList<OssShadingGroup *> groups = project->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        const QList<OssSnBaseNode *> all = group->network()->getAllNodes();
        const auto viewers = std::count_if(all.cbegin(), all.cend(),
                                           [](const auto *node) { return node->hasTag(Viewer); });
        if (viewers > 1)
            m_broken.append(QStringLiteral("%1 viewers in one object").arg(viewers));
    }
}

void DocumentInvariants::checkSaved(OssProject *project)
{
    if (OssProjectManager::instance()->isModified())
        return;
    const QByteArray now = contents(project);
    if (now == m_saved)
        return;
    const QList<QByteArray> lines = now.split('\n');
    const QList<QByteArray> before = m_saved.split('\n');
    int at = 0;
    while (at < lines.size() && at < before.size() && lines.at(at) == before.at(at))
        ++at;
    m_broken.append(QStringLiteral("what would be saved changed, and nobody says so: ")
                    + QString::fromUtf8(lines.value(at).trimmed()) + QStringLiteral(" was ")
                    + QString::fromUtf8(before.value(at).trimmed()));
}

QStringList DocumentInvariants::falseBakes()
{
    QStringList wrong;
    const OssProject *project = OssProjectManager::instance()->currentProject();
    const QList<OssShadingGroup *> groups = project ? project->shadingGroups()
                                                    : QList<OssShadingGroup *>();
    for (const OssShadingGroup *group : groups) {
        const QList<OssSnBaseNode *> all = group->network()->getAllNodes();
        for (const OssSnBaseNode *node : all) {
            const auto *point = qobject_cast<const OssSnBakePointNode *>(node);
            if (point && point->isBakedResultUpToDate() && !holdsWhatItShows(point))
                wrong.append(point->path() + QStringLiteral(": its pixels are old ones"));
        }
    }
    return wrong;
}
