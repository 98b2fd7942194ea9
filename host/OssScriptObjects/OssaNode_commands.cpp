#include "OssScriptObjects/OssaNode.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssModel/Evaluation/OssDependencyMarks.h"
#include "OssModel/Graph/OssPublishedGroup.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Project/OssNodeTypeWatch.h"

// What scripts ask of those who show nodes, and of a group's ports and knobs.

namespace Ossa {

namespace {

OssShaderNetworkManager *networks()
{
    return OssShaderNetworkManager::instance();
}

} // namespace

OssSnGroupNode *Node::group() const
{
    OssSnBaseNode *own = node();
    auto *found = qobject_cast<OssSnGroupNode *>(own);
    if (own && !found)
        fail(OssScriptException::NotSupported,
             QStringLiteral("The node \"%1\" is no group").arg(own->name()));
    return found;
}

// --- showing

void Node::goTo() const
{
    networks()->goToNode(node());
}

void Node::showProperties(Node *after, Node *before) const
{
    OssSnBaseNode *own = node();
    OssSnBaseNode *above = own && after ? after->node() : nullptr;
    OssSnBaseNode *below = own && before ? before->node() : nullptr;
    if (!own || (after && !above) || (before && !below))
        return;
    if (above && below)
        fail(OssScriptException::NotAllowed,
             QStringLiteral("A panel goes after one node or before one, not both"));
    else if (above)
        networks()->requestPropertiesAfter(own, above);
    else if (below)
        networks()->requestPropertiesBefore(own, below);
    else
        networks()->requestProperties(own);
}

void Node::lookAt(int input) const
{
    OssSnBaseNode *own = node();
    const OssSnBaseNode *viewer = own ? own->network()->viewerNode() : nullptr;
    if (own && own->prefferedOutputPoint().isEmpty())
        fail(OssScriptException::NotAllowed,
             QStringLiteral("\"%1\" has nothing to look at").arg(own->name()));
    else if (input < 0 || (viewer && input > 0 && !viewer->hasInput(QString::number(input))))
        fail(OssScriptException::OutOfRange,
             QStringLiteral("The viewer has no input %1").arg(input));
    else if (own)
        networks()->requestViewer(own, input);
}

void Node::matchPosition(Node *other) const
{
    OssSnBaseNode *own = node();
    if (own && !other)
        fail(OssScriptException::WrongType, QStringLiteral("None is no node"));
    OssSnBaseNode *from = own && other ? other->node() : nullptr;
    if (!from)
        return;
    if (from->network() != own->network())
        fail(OssScriptException::NotAllowed,
             QStringLiteral("\"%1\" and \"%2\" are in different networks")
                 .arg(from->name(), own->name()));
    else
        networks()->requestSamePosition(from, own);
}

QVariantMap Node::markDependencies() const
{
    constexpr double UsualPatch = 2048.0 * 2048.0 * 1e3; // texels times milliseconds
    QVariantMap costs;
    OssSnBaseNode *own = node();
    if (!own)
        return costs;
    OssDependencyMarks::instance()->mark({own});
    const QVector<OssDependencyMarks::Cost> all = OssDependencyMarks::costs({own});
    for (const OssDependencyMarks::Cost &cost : all)
        costs.insert(cost.node->path(), cost.perTexel * UsualPatch);
    return costs;
}

// --- inputs

bool Node::isInputEnabled(const QString &input) const
{
    const OssSnBaseNode *own = nodeWithInput(input);
    return own && own->isInputEnabled(input);
}

void Node::setInputEnabled(const QString &input, bool enabled)
{
    if (OssSnBaseNode *own = nodeWithInput(input))
        own->setInputEnabled(input, enabled);
}

bool Node::isInputShared(const QString &input) const
{
    const OssSnBaseNode *own = nodeWithInput(input);
    return own && own->sharedInputNames().contains(input);
}

// --- ports and knobs of groups

QString Node::renameKnob(const QString &knob, const QString &name)
{
    OssSnGroupNode *own = group();
    if (!own)
        return {};
    const QString got = own->renameKnob(knob, name);
    if (got.isEmpty())
        fail(OssScriptException::NotAllowed,
             QStringLiteral("\"%1\" of \"%2\" cannot be called \"%3\"")
                 .arg(knob, own->name(), name));
    return got;
}

void Node::setKnobInfo(const QString &knob, const QVariantMap &info)
{
    OssSnGroupNode *own = group();
    if (!own)
        return;
    using Definition = OssCustomAttribute::Definition;
    Definition described = own->userAttribute(knob).definition();
    const QMap<QString, QVariant Definition::*> values{
        {QStringLiteral("default"), &Definition::defaultValue},
        {QStringLiteral("minimum"), &Definition::minimum},
        {QStringLiteral("maximum"), &Definition::maximum}};
    const QMap<QString, QString Definition::*> texts{
        {QStringLiteral("toolTip"), &Definition::toolTip},
        {QStringLiteral("section"), &Definition::group}};
    for (auto value = info.cbegin(); value != info.cend(); ++value) {
        if (values.contains(value.key()))
            described.*values[value.key()] = *value;
        else if (texts.contains(value.key()))
            described.*texts[value.key()] = value->toString();
        else
            fail(OssScriptException::UnknownName,
                 QStringLiteral("A knob has no \"%1\" that can be set").arg(value.key()));
    }
    if (!own->describeKnob(knob, described))
        fail(OssScriptException::UnknownName,
             QStringLiteral("\"%1\" has no knob \"%2\"").arg(own->name(), knob));
}

void Node::linkKnob(const QString &knob, Node *inner, const QString &attribute)
{
    OssSnGroupNode *own = group();
    if (own && !inner)
        fail(OssScriptException::WrongType, QStringLiteral("None is no node"));
    OssSnBaseNode *target = own && inner ? inner->nodeWithAttribute(attribute) : nullptr;
    if (target && !own->addKnobLink(knob, target, attribute))
        fail(OssScriptException::NotAllowed,
             QStringLiteral("The knob \"%1\" of \"%2\" cannot stand for \"%3\" of \"%4\"")
                 .arg(knob, own->name(), attribute, target->name()));
}

void Node::reorderInputs(const QStringList &names)
{
    OssSnBaseNode *own = node();
    if (own && names != own->inputNames() && !own->reorderInputs(names))
        fail(OssScriptException::NotAllowed,
             QStringLiteral("The inputs of \"%1\" are %2, each once")
                 .arg(own->name(), own->inputNames().join(QStringLiteral(", "))));
}

void Node::reorderOutputs(const QStringList &names)
{
    OssSnBaseNode *own = node();
    if (own && names != own->outputPointNames() && !own->reorderOutputs(names))
        fail(OssScriptException::NotAllowed,
             QStringLiteral("The outputs of \"%1\" are %2, each once")
                 .arg(own->name(), own->outputPointNames().join(QStringLiteral(", "))));
}

void Node::orderPortsByPosition()
{
    if (OssSnGroupNode *own = group())
        networks()->requestPortsInOrderOfPlaces(own);
}

void Node::arrangeInputsByOrder()
{
    if (OssSnGroupNode *own = group())
        networks()->requestPlacesInOrderOfPorts(own);
}

QString Node::publish(const QString &category, const QString &name, const QString &toolTip,
                      const QStringList &aliases)
{
    OssSnGroupNode *own = group();
    const OssPublishedGroup::Form form{category, name, toolTip, aliases, false};
    const OssResult published = own ? OssNodeTypeWatch::instance()->publish(own, form)
                                    : OssResult();
    if (!published)
        fail(OssScriptException::NotAllowed, published.error());
    return own && published ? form.pathKey() : QString();
}

QString Node::writeType(const QString &path, const QString &category, const QString &name,
                        const QString &toolTip, const QStringList &aliases)
{
    OssSnGroupNode *own = group();
    const OssPublishedGroup::Form form{category, name, toolTip, aliases, true};
    OssResult result = own ? OssPublishedGroup::canPublish(own, form) : OssResult();
    if (own && result)
        result = OssAtomicFile::write(path, OssPublishedGroup::describe(own, form));
    if (!result)
        fail(OssScriptException::NotAllowed, result.error());
    return own && result ? form.pathKey() : QString();
}

} // namespace Ossa
