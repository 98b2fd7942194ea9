#include "OssScriptObjects/OssaNode.h"

#include "OssCore/Values/OssAttributeKind.h"
#include "OssModel/Evaluation/OssBakeProgress.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssBakeReport.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Images/OssUdimPath.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssScriptObjects/OssaImageSet.h"
#include "OssScriptObjects/OssScriptObjects.h"

#include <cmath>

namespace Ossa {

namespace {

/// Numbers that are none, and those beyond a hard bound, would be refused by a panel, too.
bool isWithin(const QVariant &value, const OssCustomAttribute &attribute)
{
    const OssCustomAttribute::Definition &definition = attribute.definition();
    const OssAttributeKind *kind = OssAttributeKind::of(attribute);
    bool isNumber = false;
    const double number = value.toDouble(&isNumber);
    if (!isNumber || !kind || !kind->form.isNumber)
        return true;
    return std::isfinite(number)
           && (!definition.minimum.isValid() || number >= definition.minimum.toDouble())
           && (!definition.maximum.isValid() || number <= definition.maximum.toDouble());
}

/// What an attribute takes, in words.
QString kindInWords(const OssCustomAttribute &attribute)
{
    const QStringList choices = OssAttributeKind::choices(attribute.value());
    const OssAttributeKind *kind = OssAttributeKind::of(attribute);
    return choices.isEmpty() && kind ? QString(kind->form.words)
                                     : choices.join(QStringLiteral(", "));
}

bool kindFromText(const QString &text, OssSnDataKind *kind)
{
    const QStringList names{QStringLiteral("color"), QStringLiteral("scalar"),
                            QStringLiteral("vector"), QStringLiteral("material"),
                            QStringLiteral("data")};
    const int index = names.indexOf(text.toLower());
    *kind = OssSnDataKind(std::max(index, 0));
    return index >= 0;
}

} // namespace

QStringList Node::attributes() const
{
    const OssSnBaseNode *own = node();
    return own ? own->userAttributeNames() : QStringList();
}

OssSnBaseNode *Node::nodeToEdit(const QString &name) const
{
    OssSnBaseNode *own = nodeWithAttribute(name);
    const QString lock = own ? own->lockOf(name) : QString();
    if (lock.isEmpty())
        return own;
    fail(OssScriptException::NotAllowed,
         QStringLiteral("The attribute \"%1\" of \"%2\" cannot be changed: %3")
             .arg(name, own->name(), lock));
    return nullptr;
}

OssSnBaseNode *Node::nodeWithAttribute(const QString &name) const
{
    OssSnBaseNode *own = node();
    if (!own || own->exists(name))
        return own;
    fail(OssScriptException::UnknownName,
         QStringLiteral("The node \"%1\" has no attribute \"%2\"; it has %3")
             .arg(own->name(), name, own->userAttributeNames().join(QStringLiteral(", "))));
    return nullptr;
}

QVariant Node::attribute(const QString &name) const
{
    const OssSnBaseNode *own = nodeWithAttribute(name);
    return own ? own->attribute(name) : QVariant();
}

void Node::setAttribute(const QString &name, const QVariant &value)
{
    OssSnBaseNode *own = nodeToEdit(name);
    if (!own)
        return;
    const OssCustomAttribute present = own->userAttribute(name);
    if (!isWithin(value, present)) {
        fail(OssScriptException::OutOfRange,
             QStringLiteral("%1 is out of the range of the attribute \"%2\" of \"%3\"")
                 .arg(value.toString(), name, own->name()));
        return;
    }
    if (own->setAttribute(name, value))
        return;
    const QString given = value.toString();
    fail(OssScriptException::WrongType,
         QStringLiteral("%1 is no value for the attribute \"%2\" of \"%3\", which takes %4")
             .arg(given.isEmpty() ? QStringLiteral("This") : QStringLiteral("\"%1\"").arg(given),
                  name, own->name(), kindInWords(present)));
}

void Node::resetAttribute(const QString &name)
{
    if (OssSnBaseNode *own = nodeToEdit(name))
        own->setAttribute(name, own->userAttribute(name).definition().defaultValue);
}

QVariantMap Node::attributeInfo(const QString &name) const
{
    const OssSnBaseNode *own = nodeWithAttribute(name);
    if (!own)
        return {};
    const OssCustomAttribute attribute = own->userAttribute(name);
    const OssCustomAttribute::Definition &definition = attribute.definition();
    QVariantMap info;
    info[QStringLiteral("label")] = attribute.prettyName();
    info[QStringLiteral("section")] = attribute.group();
    info[QStringLiteral("toolTip")] = definition.toolTip;
    info[QStringLiteral("default")] = definition.defaultValue;
    info[QStringLiteral("minimum")] = definition.minimum;
    info[QStringLiteral("maximum")] = definition.maximum;
    info[QStringLiteral("isKnob")] = definition.isKnob;
    info[QStringLiteral("isDefault")] = attribute.isDefault();
    const OssAttributeKind *kind = OssAttributeKind::of(attribute);
    info[QStringLiteral("kind")] = kind ? QString(kind->name) : QString();
    if (kind && kind->hasChoices())
        info[QStringLiteral("choices")] = OssAttributeKind::choices(attribute.value());
    return info;
}

// --- groups

Node *Node::createInput(const QString &name, const QString &kind)
{
    OssSnBaseNode *own = node();
    if (!own)
        return nullptr;
    auto *group = qobject_cast<OssSnGroupNode *>(own);
    OssSnDataKind port = OssSnDataKind::Color;
    OssSnBaseNode *inside = group && kindFromText(kind, &port) ? group->createInput(name, port)
                                                               : nullptr;
    if (!inside)
        fail(OssScriptException::NotAllowed,
             QStringLiteral("\"%1\" cannot get an input \"%2\" of kind \"%3\"")
                 .arg(own->name(), name, kind));
    return OssScriptObject<Node>(inside);
}

Node *Node::createOutput(const QString &name, const QString &kind)
{
    OssSnBaseNode *own = node();
    if (!own)
        return nullptr;
    auto *group = qobject_cast<OssSnGroupNode *>(own);
    OssSnDataKind port = OssSnDataKind::Color;
    OssSnBaseNode *inside = group && kindFromText(kind, &port) ? group->createOutput(name, port)
                                                               : nullptr;
    if (!inside)
        fail(OssScriptException::NotAllowed,
             QStringLiteral("\"%1\" cannot get an output \"%2\" of kind \"%3\"")
                 .arg(own->name(), name, kind));
    return OssScriptObject<Node>(inside);
}

QString Node::createKnob(Node *inner, const QString &attribute)
{
    OssSnBaseNode *own = node();
    if (own && !inner)
        fail(OssScriptException::WrongType, QStringLiteral("None is no node"));
    if (!own || !inner)
        return {};
    OssSnBaseNode *target = inner->nodeWithAttribute(attribute);
    if (!target)
        return {};
    auto *group = qobject_cast<OssSnGroupNode *>(own);
    const QString knob = group ? group->createKnob(target, attribute) : QString();
    if (knob.isEmpty())
        fail(OssScriptException::NotAllowed,
             QStringLiteral("\"%1\" of \"%2\" cannot become a knob of \"%3\"")
                 .arg(attribute, target->name(), own->name()));
    return knob;
}

// --- pixels

ImageSet *Node::imageSet() const
{
    const OssSnBaseNode *own = node();
    return own ? OssScriptObject<ImageSet>(OssShaderNetworkUtils::imageSetOf(own)) : nullptr;
}

QStringList Node::bake(const QString &path, int resolution, const QList<int> &patches) const
{
    const OssSnBaseNode *own = node();
    if (!own)
        return {};
    if (resolution < 1 || resolution > 32768) {
        fail(OssScriptException::OutOfRange,
             QStringLiteral("A patch is 1 to 32768 pixels wide, not %1").arg(resolution));
        return {};
    }
    OssEvaluationService *service = OssEvaluationService::instance();
    OssEvaluationService::BakeJob job;
    job.node = own;
    job.outputPoint = own->prefferedOutputPoint();
    job.entity = own->network()->geoEntity();
    job.patches = patches.isEmpty() ? service->patches(job.entity) : patches;
    job.resolution = resolution;
    if (job.patches.size() > 1 && !OssUdimPath::isPattern(path)) {
        fail(OssScriptException::NotAllowed,
             QStringLiteral("%1: several patches need \"<UDIM>\" in the path").arg(path));
        return {};
    }
    OssBakeProgress progress(QStringLiteral("Baking %1").arg(own->name()), 1);
    job.onProgress = progress.forPart(0, own->name());
    const OssResult baked = service->bake(job, path);
    if (!baked) {
        fail(baked.isCancelled() ? OssScriptException::Cancelled
                                 : OssScriptException::FileNotAccessible,
             baked.error());
        return {};
    }
    QStringList files;
    for (const int patch : qAsConst(job.patches))
        files.append(OssUdimPath::file(path, patch));
    return files;
}

void Node::bakeImageSet()
{
    OssSnBaseNode *own = node();
    if (!own)
        return;
    OssSnBakePointNode *bakePoint = OssShaderNetworkUtils::asTrueBakePointNode(own);
    if (!bakePoint) {
        fail(OssScriptException::NotSupported,
             QStringLiteral("The node \"%1\" is no bake point").arg(own->name()));
        return;
    }
    OssBakeReport report;
    const OssResult baked = OssShaderNetworkUtils::bakeBakePoints({bakePoint}, true, true, &report);
    if (!report.filtered.isEmpty())
        fail(OssScriptException::NotAllowed, report.inWords());
    if (!baked)
        fail(baked.isCancelled() ? OssScriptException::Cancelled
                                 : OssScriptException::ObjectUnavailable,
             baked.error());
}

QStringList Node::upgrade()
{
    OssSnBaseNode *own = node();
    QStringList lost;
    if (own && !OssShaderNetworkManager::instance()->upgradeNode(own, &lost))
        fail(OssScriptException::NotAllowed,
             QStringLiteral("The node \"%1\" cannot be upgraded").arg(own->name()));
    return lost;
}

} // namespace Ossa
