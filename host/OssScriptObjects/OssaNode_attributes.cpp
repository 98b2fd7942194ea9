#include "OssScriptObjects/OssaNode.h"

#include "OssCore/OssColor.h"
#include "OssCore/OssUserEnum.h"
#include "OssModel/Evaluation/OssBakeProgress.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssShaderNetworkUtils.h"
#include "OssModel/Graph/OssSnGroupNode.h"
#include "OssModel/Nodes/OssSnBakePointNode.h"
#include "OssModel/Objects/OssImageSet.h"
#include "OssScriptObjects/OssaImageSet.h"
#include "OssScriptObjects/OssScriptObjects.h"

#include <cmath>

namespace Ossa {

namespace {

bool isNumber(int type)
{
    return type == QMetaType::Double || type == QMetaType::LongLong || type == QMetaType::Int;
}

/// Numbers in a list for a colour or a point, the number that a text says; other values as they are.
QVariant coerced(const QVariant &value, int type)
{
    QVariant number = value;
    if (value.userType() == QMetaType::QString && isNumber(type) && number.convert(type))
        return number;
    if (value.userType() != QMetaType::QVariantList)
        return value;
    QVector<double> numbers;
    const QVariantList entries = value.toList();
    for (const QVariant &entry : entries) {
        bool good = false;
        numbers.append(entry.toDouble(&good));
        if (!good)
            return value;
    }
    if (type == qMetaTypeId<OssColor>() && (numbers.size() == 3 || numbers.size() == 4))
        return QVariant::fromValue(
            OssColor(numbers[0], numbers[1], numbers[2], numbers.size() == 4 ? numbers[3] : 1.0));
    if (type == QMetaType::QPointF && numbers.size() == 2)
        return QPointF(numbers[0], numbers[1]);
    if (type == QMetaType::QPoint && numbers.size() == 2)
        return QPointF(numbers[0], numbers[1]).toPoint();
    return value;
}

QVariant plainValue(const QVariant &value)
{
    if (value.userType() == qMetaTypeId<OssUserEnum>())
        return value.value<OssUserEnum>().currentName();
    return value;
}

/// Numbers that are none, and those beyond a hard bound, would be refused by a panel, too.
bool isWithin(const QVariant &value, const OssCustomAttribute::Definition &definition)
{
    if (!isNumber(value.userType()))
        return true;
    const double number = value.toDouble();
    return std::isfinite(number)
           && (!definition.minimum.isValid() || number >= definition.minimum.toDouble())
           && (!definition.maximum.isValid() || number <= definition.maximum.toDouble());
}

/// What converts to a colour or a point without being a good one.
bool isSound(const QVariant &value, int type)
{
    bool good = true;
    if (type == qMetaTypeId<OssColor>() && value.userType() == QMetaType::QString)
        OssColor::fromString(value.toString(), &good);
    if (value.userType() == qMetaTypeId<OssColor>()) {
        const auto color = value.value<OssColor>();
        good = std::isfinite(color.red() + color.green() + color.blue() + color.alpha());
    }
    if (value.userType() == QMetaType::QPointF)
        good = std::isfinite(value.toPointF().x() + value.toPointF().y());
    return good;
}

/// What an attribute takes, in words.
QString kindInWords(const QVariant &present)
{
    const auto choice = present.value<OssUserEnum>();
    if (!choice.names().isEmpty())
        return choice.names().join(QStringLiteral(", "));
    const int type = present.userType();
    if (type == qMetaTypeId<OssColor>())
        return QStringLiteral("a colour");
    if (type == QMetaType::QPointF || type == QMetaType::QPoint)
        return QStringLiteral("a point");
    if (type == QMetaType::Bool)
        return QStringLiteral("True or False");
    return isNumber(type) ? QStringLiteral("a number") : QStringLiteral("a text");
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
    return own ? plainValue(own->attribute(name)) : QVariant();
}

void Node::setAttribute(const QString &name, const QVariant &value)
{
    OssSnBaseNode *own = nodeWithAttribute(name);
    if (!own)
        return;
    const QVariant present = own->attribute(name);
    const QVariant wanted = coerced(value, present.userType());
    if (!isWithin(wanted, own->userAttribute(name).definition())) {
        fail(OssScriptException::OutOfRange,
             QStringLiteral("%1 is out of the range of the attribute \"%2\" of \"%3\"")
                 .arg(value.toString(), name, own->name()));
        return;
    }
    if (isSound(wanted, present.userType()) && own->setAttribute(name, wanted))
        return;
    const QString given = value.toString();
    fail(OssScriptException::WrongType,
         QStringLiteral("%1 is no value for the attribute \"%2\" of \"%3\", which takes %4")
             .arg(given.isEmpty() ? QStringLiteral("This") : QStringLiteral("\"%1\"").arg(given),
                  name, own->name(), kindInWords(present)));
}

void Node::resetAttribute(const QString &name)
{
    if (OssSnBaseNode *own = nodeWithAttribute(name))
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
    info[QStringLiteral("default")] = plainValue(definition.defaultValue);
    info[QStringLiteral("minimum")] = definition.minimum;
    info[QStringLiteral("maximum")] = definition.maximum;
    info[QStringLiteral("isKnob")] = definition.isKnob;
    info[QStringLiteral("isDefault")] = attribute.isDefault();
    if (attribute.value().userType() == qMetaTypeId<OssUserEnum>())
        info[QStringLiteral("choices")] = attribute.value().value<OssUserEnum>().names();
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
    if (job.patches.size() > 1 && !path.contains(QLatin1String("<UDIM>"))) {
        fail(OssScriptException::NotAllowed,
             QStringLiteral("%1: several patches need \"<UDIM>\" in the path").arg(path));
        return {};
    }
    OssBakeProgress progress(QStringLiteral("Baking %1").arg(own->name()), 1);
    job.onProgress = progress.forPart(0, own->name());
    const OssResult baked = service->bake(job, path);
    if (!baked || progress.isStopped()) {
        fail(baked ? OssScriptException::Cancelled : OssScriptException::FileNotAccessible,
             baked ? QStringLiteral("The bake was stopped") : baked.error());
        return {};
    }
    QStringList files;
    for (const int patch : qAsConst(job.patches))
        files.append(QString(path).replace(QLatin1String("<UDIM>"), QString::number(patch)));
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
    const OssResult baked = OssShaderNetworkUtils::bakeBakePoints({bakePoint}, true, true);
    if (!baked)
        fail(OssScriptException::ObjectUnavailable, baked.error());
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
