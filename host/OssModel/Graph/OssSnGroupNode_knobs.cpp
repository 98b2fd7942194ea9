#include "OssModel/Graph/OssSnGroupNode.h"

#include "OssCore/Program/OssDebug.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssCore/Values/OssAttributeKind.h"
#include "OssCore/Values/OssValueText.h"
#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Types/OssSnTags.h"

#include <QRegularExpression>

// Knobs: attributes of a group that stand for attributes of nodes inside it.

namespace {

constexpr const char *Source = "OssSnGroupNode";

using Links = QVector<OssLinkedCustomAttributeManager::Link>;

OssLinkedCustomAttributeManager *linker()
{
    return OssLinkedCustomAttributeManager::instance();
}

/// Whether each value of the one is one of the other: of one type and, for choices, from one list.
bool haveSameForm(const QVariant &a, const QVariant &b)
{
    return a.userType() == b.userType()
           && OssAttributeKind::choices(a) == OssAttributeKind::choices(b);
}

} // namespace

QString OssSnGroupNode::getAttributeGroupName(const QString &nodeAttribute)
{
    return nodeAttribute.left(qMax(0, nodeAttribute.lastIndexOf(QLatin1Char('/'))));
}

bool OssSnGroupNode::isKnob(const QString &name) const
{
    return userAttribute(name).definition().isKnob;
}

bool OssSnGroupNode::offersKnobs(const OssSnBaseNode *node)
{
    for (const QString &tag : {OssSnTags::input(), OssSnTags::output(), OssSnTags::viewer(),
                               OssSnTags::bottomTransparency(), OssSnTags::shaderInput()}) {
        if (node->hasTag(tag))
            return false;
    }
    const QString version = node->versionUUID();
    return version != QLatin1String("OSS_Misc_Set_Unlit")
           && version != QLatin1String("OSS_Misc_Set_Vector")
           && (!version.isEmpty() || node->hasTag(OssSnTags::group()))
           && node->userAttributesExist();
}

QString OssSnGroupNode::freeKnobName(const QString &wanted) const
{
    QString name = wanted;
    for (int number = 2; exists(name); ++number)
        name = wanted + QLatin1Char('_') + QString::number(number);
    return name;
}

// --- links

void OssSnGroupNode::setKnobLinks(const QString &knob, const Links &links)
{
    const Links before = linker()->links(this, knob);
    linker()->setLinks(this, knob, links);
    OssUndoManager::instance()->record(
        {}, [this, knob, before] { linker()->setLinks(this, knob, before); },
        [this, knob, links] { linker()->setLinks(this, knob, links); }, this);
}

bool OssSnGroupNode::addKnobLink(const QString &knob, OssSnBaseNode *node, const QString &attribute)
{
    if (!node)
        return false;
    const QString path = OssLinkedCustomAttributeManager::pathInside(this, node);
    if (path.isEmpty() || !isKnob(knob)
        || !haveSameForm(node->attribute(attribute), this->attribute(knob)))
        return false;
    Links links = linker()->links(this, knob);
    for (const auto &link : qAsConst(links)) {
        if (link.node == node && link.attribute == attribute)
            return true;
    }
    if (node->attribute(attribute) != this->attribute(knob) && !node->lockOf(attribute).isEmpty())
        return false;
    const OssUndoManager::AutoMacro macro(tr("Link to Knob %1").arg(knob));
    node->setAttribute(attribute, this->attribute(knob));
    links.append({node, attribute, path});
    setKnobLinks(knob, links);
    return true;
}

// --- knobs

QString OssSnGroupNode::createKnob(OssSnBaseNode *node, const QString &attribute)
{
    if (!node) {
        OssDebug(Source, __LINE__, "Node is NULL");
        return {};
    }
    const OssCustomAttribute source = node->userAttribute(attribute);
    const QString path = OssLinkedCustomAttributeManager::pathInside(this, node);
    if (!source.isValid() || path.isEmpty()) {
        OssDebug(Source, __LINE__, "[ !! ] '%s' is no attribute of a node inside group '%s'",
                 qPrintable(attribute), qPrintable(name()));
        return {};
    }
    const auto known = linker()->knobsOf(node, attribute);
    for (const auto &knob : known) {
        if (knob.group == this)
            return knob.name;
    }
    const OssUndoManager::AutoMacro macro(tr("Create Knob %1").arg(source.prettyName()));
    OssCustomAttribute knob = source;
    OssCustomAttribute::Definition &definition = knob.editDefinition();
    definition.prettyName = source.prettyName();
    definition.name = freeKnobName(attribute);
    definition.group = node->name();
    definition.isKnob = true;
    definition.visible = true;
    const QString made = definition.name;
    setUserAttribute(knob, true);
    setKnobLinks(made, {{node, attribute, path}});
    return made;
}

OssResult OssSnGroupNode::canLinkKnobs(const QStringList &knobs) const
{
    if (knobs.isEmpty())
        return OssResult::failure(tr("no knob was named"));
    const QVariant first = attribute(knobs.first());
    for (const QString &knob : knobs) {
        const QVariant value = attribute(knob);
        if (!isKnob(knob))
            return OssResult::failure(tr("\"%1\" is no knob").arg(knob));
        if (value.userType() != first.userType())
            return OssResult::failure(tr("the knobs are of differing types"));
        if (!haveSameForm(value, first))
            return OssResult::failure(tr("\"%1\" and \"%2\" have different lists of choices")
                                          .arg(userAttribute(knobs.first()).prettyName(),
                                               userAttribute(knob).prettyName()));
        const QString lock = lockOf(knob);
        if (!lock.isEmpty())
            return OssResult::failure(lock);
    }
    return {};
}

bool OssSnGroupNode::linkKnobs(const QString &name, const QStringList &knobs)
{
    const OssResult can = canLinkKnobs(knobs);
    if (name.isEmpty() || exists(name) || !can) {
        OssDebug(Source, __LINE__, "[ !! ] The knobs '%s' of '%s' cannot become the one '%s'%s",
                 qPrintable(knobs.join(QLatin1String(", "))), qPrintable(this->name()),
                 qPrintable(name), can ? "" : qPrintable(QStringLiteral(": ") + can.error()));
        return false;
    }
    QVector<OssCustomAttribute> linked;
    for (const QString &knob : knobs)
        linked.append(userAttribute(knob));
    const OssUndoManager::AutoMacro macro(tr("Link Knobs: %1").arg(name));
    QStringList order = nodeAttributes();
    Links all;
    // What they stand for gets one value while the old links can still bring it back.
    for (const OssCustomAttribute &knob : qAsConst(linked)) {
        const Links links = linker()->links(this, knob.name());
        for (const auto &link : links) {
            if (!OssLinkedCustomAttributeManager::isBroken(this, knob.name(), link))
                link.node->setAttribute(link.attribute, linked.first().value());
        }
        all += links;
    }
    OssCustomAttribute knob = linked.first();
    knob.editDefinition().name = name;
    knob.setPrettyName(name);
    const QString prefix = knob.group().isEmpty() ? QString() : knob.group() + QLatin1Char('/');
    order[order.indexOf(prefix + linked.first().name())] = prefix + name;
    for (const OssCustomAttribute &old : qAsConst(linked)) {
        order.removeOne(old.group().isEmpty() ? old.name()
                                              : old.group() + QLatin1Char('/') + old.name());
        deleteAttribute(old.name());
    }
    setUserAttribute(knob, true);
    setKnobLinks(name, all);
    setNodeAttributesUndo(order);
    return true;
}

void OssSnGroupNode::renameKnobName(const QString &knob, const QString &oldName,
                                    const QString &newName)
{
    if (!isKnob(knob) || newName.isEmpty() || oldName == newName)
        return;
    const auto apply = [this, knob](const QString &prettyName) {
        const OssUndoManager::Pause pause;
        OssCustomAttribute attribute = userAttribute(knob);
        attribute.setPrettyName(prettyName);
        setUserAttribute(attribute, true);
        Q_EMIT nodeAttributePrettyNameChanged(knob);
    };
    apply(newName);
    OssUndoManager::instance()->record(
        tr("Rename Knob %1").arg(oldName), [apply, oldName] { apply(oldName); },
        [apply, newName] { apply(newName); }, this);
}

bool OssSnGroupNode::describeKnob(const QString &knob,
                                  const OssCustomAttribute::Definition &described)
{
    if (!isKnob(knob))
        return false;
    const OssCustomAttribute before = userAttribute(knob);
    OssCustomAttribute after = before;
    OssCustomAttribute::Definition &definition = after.editDefinition();
    definition.group = described.group;
    definition.toolTip = described.toolTip;
    definition.defaultValue = OssAttributeKind::like(before.value(), described.defaultValue);
    if (!definition.defaultValue.isValid())
        definition.defaultValue = before.definition().defaultValue;
    definition.minimum = described.minimum;
    definition.maximum = described.maximum;
    definition.softMinimum = described.softMinimum;
    definition.softMaximum = described.softMaximum;
    if (after == before)
        return true;
    const auto apply = [this, knob](OssCustomAttribute attribute) {
        const OssUndoManager::Pause pause;
        attribute.setValue(this->attribute(knob));
        setUserAttribute(attribute, true);
        Q_EMIT nodeAttributesSet();
    };
    apply(after);
    OssUndoManager::instance()->record(
        tr("Describe Knob %1").arg(before.prettyName()), [apply, before] { apply(before); },
        [apply, after] { apply(after); }, this);
    return true;
}

void OssSnGroupNode::applyKnobName(const QString &oldName, const QString &newName,
                                   const QString &prettyName)
{
    const Links own = linker()->links(this, oldName);
    const auto around = linker()->knobsOf(this, oldName);
    {
        const OssUndoManager::Pause pause;
        if (oldName != newName) {
            linker()->setLinks(this, oldName, {});
            renameUserAttribute(oldName, newName);
        }
        OssCustomAttribute attribute = userAttribute(newName);
        attribute.setPrettyName(prettyName);
        setUserAttribute(attribute, false);
    }
    if (oldName != newName)
        linker()->setLinks(this, newName, own);
    for (const auto &knob : around) {
        Links links = linker()->links(knob.group, knob.name);
        for (auto &link : links) {
            if (link.node == this && link.attribute == oldName)
                link.attribute = newName;
        }
        linker()->setLinks(knob.group, knob.name, links);
    }
    if (oldName == newName)
        Q_EMIT nodeAttributePrettyNameChanged(newName);
    else
        Q_EMIT nodeAttributeRenamed(oldName, newName);
}

QString OssSnGroupNode::renameKnob(const QString &knob, const QString &wanted)
{
    const QString shown = wanted.simplified();
    if (!isKnob(knob) || shown.isEmpty())
        return {};
    // Of attributes a slash tells the section, and what begins with a line is not shown.
    static const QRegularExpression atBegin(QStringLiteral("^_+"));
    QString base = shown;
    base.replace(QLatin1Char('/'), QLatin1Char('_')).remove(atBegin);
    if (base.isEmpty())
        base = QStringLiteral("Knob");
    QString name = base;
    for (int number = 2; name != knob && exists(name); ++number)
        name = base + QLatin1Char('_') + QString::number(number);
    const QString before = userAttribute(knob).prettyName();
    if (name == knob && shown == before)
        return name;
    applyKnobName(knob, name, shown);
    OssUndoManager::instance()->record(
        tr("Rename Knob %1").arg(before),
        [this, knob, name, before] { applyKnobName(name, knob, before); },
        [this, knob, name, shown] { applyKnobName(knob, name, shown); }, this);
    return name;
}

bool OssSnGroupNode::deleteAttribute(const QString &name)
{
    if (!isKnob(name)) {
        OssDebug(Source, __LINE__, "[ !! ] '%s' of '%s' is no knob and stays", qPrintable(name),
                 qPrintable(this->name()));
        return false;
    }
    const OssUndoManager::AutoMacro macro(
        tr("Delete Knob %1").arg(userAttribute(name).prettyName()));
    setKnobLinks(name, {});
    return removeUserAttribute(name);
}

int OssSnGroupNode::brokenLinkCount(const QString &knob) const
{
    int count = 0;
    const Links links = linker()->links(this, knob);
    for (const auto &link : links)
        count += OssLinkedCustomAttributeManager::isBroken(this, knob, link) ? 1 : 0;
    return count;
}

int OssSnGroupNode::removeBrokenLinks()
{
    const OssUndoManager::AutoMacro macro(tr("Remove Broken Links"));
    int removed = 0;
    const QStringList knobs = linker()->knobs(this);
    for (const QString &knob : knobs) {
        const Links links = linker()->links(this, knob);
        Links whole;
        for (const auto &link : links) {
            if (!OssLinkedCustomAttributeManager::isBroken(this, knob, link))
                whole.append(link);
        }
        if (whole.size() == links.size())
            continue;
        removed += links.size() - whole.size();
        // A knob that stands for nothing any more is of no use.
        if (whole.isEmpty())
            deleteAttribute(knob);
        else
            setKnobLinks(knob, whole);
    }
    return removed;
}

void OssSnGroupNode::handKnobsOver()
{
    const QStringList own = linker()->knobs(this);
    for (const QString &knob : own) {
        const Links inner = linker()->links(this, knob);
        const auto outer = linker()->knobsOf(this, knob);
        for (const auto &around : outer) {
            Links links;
            const Links before = linker()->links(around.group, around.name);
            for (const auto &link : before) {
                if (link.node == this && link.attribute == knob)
                    links += inner;
                else
                    links.append(link);
            }
            around.group->setKnobLinks(around.name, links);
        }
    }
}

void OssSnGroupNode::replaceInKnobs(const OssSnBaseNode *node, OssSnBaseNode *replacement)
{
    const QVector<OssCustomAttribute> attributes = node->userAttributes();
    for (const OssCustomAttribute &attribute : attributes) {
        const auto knobs = linker()->knobsOf(node, attribute.name());
        for (const auto &knob : knobs) {
            Links links = linker()->links(knob.group, knob.name);
            for (auto &link : links) {
                if (link.node == node)
                    link.node = replacement;
            }
            knob.group->setKnobLinks(knob.name, links);
        }
    }
}

// --- files

void OssSnGroupNode::saveKnobLinks(OssSerializer &serializer) const
{
    for (const OssCustomAttribute &attribute : userAttributes()) {
        if (!attribute.definition().isKnob)
            continue;
        const Links links = linker()->links(this, attribute.name());
        for (const auto &link : links) {
            serializer.writeElement(QStringLiteral("knobLink"),
                                    {{QStringLiteral("knob"), attribute.name()},
                                     {QStringLiteral("node"), link.nodePath},
                                     {QStringLiteral("attribute"), link.attribute}});
        }
    }
}

bool OssSnGroupNode::onLoadUserAttribute(const QString &name, const Attributes &attributes)
{
    if (exists(name) || attributes.value(QStringLiteral("knob")) != QLatin1String("true"))
        return OssSnBaseNode::onLoadUserAttribute(name, attributes);
    const int type = QMetaType::type(attributes.value(QStringLiteral("type")).toLatin1());
    const QStringList choices = OssValueText::fromText(attributes.value(QStringLiteral("choices")),
                                                       QMetaType::QStringList)
                                    .toStringList();
    const QVariant empty = OssAttributeKind::empty(type, choices);
    const auto read = [&](const char *key) {
        return OssAttributeKind::like(
            empty, OssValueText::fromText(attributes.value(QLatin1String(key)), type));
    };
    const auto bound = [&](const char *key) {
        return OssValueText::fromText(attributes.value(QLatin1String(key)), QMetaType::Double);
    };
    const QVariant value = read("value");
    if (name.isEmpty() || name.contains(QLatin1Char('/')) || !value.isValid())
        return false;
    OssCustomAttribute knob(name, value);
    OssCustomAttribute::Definition &definition = knob.editDefinition();
    definition.isKnob = true;
    definition.prettyName = attributes.value(QStringLiteral("prettyName"));
    definition.group = attributes.value(QStringLiteral("group"));
    definition.toolTip = attributes.value(QStringLiteral("toolTip"));
    definition.editor = attributes.value(QStringLiteral("editor"));
    definition.minimum = bound("minimum");
    definition.maximum = bound("maximum");
    definition.softMinimum = bound("softMinimum");
    definition.softMaximum = bound("softMaximum");
    if (read("default").isValid())
        definition.defaultValue = read("default");
    initUserAttributes(userAttributes() + QVector<OssCustomAttribute>{knob});
    return true;
}

void OssSnGroupNode::loadKnobLink(const Attributes &attributes)
{
    // The nodes it leads to come further down.
    m_loadedKnobLinks.append({attributes.value(QStringLiteral("knob")),
                              attributes.value(QStringLiteral("node")),
                              attributes.value(QStringLiteral("attribute"))});
}

void OssSnGroupNode::onEndLoad()
{
    OssSnBaseNode::onEndLoad();
    for (const LoadedKnobLink &loaded : qAsConst(m_loadedKnobLinks)) {
        if (!isKnob(loaded.knob))
            continue;
        Links links = linker()->links(this, loaded.knob);
        links.append({groupNetwork()->nodeByPath(loaded.node), loaded.attribute, loaded.node});
        linker()->setLinks(this, loaded.knob, links);
    }
    m_loadedKnobLinks.clear();
}
