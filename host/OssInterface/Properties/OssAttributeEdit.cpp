#include "OssInterface/Properties/OssAttributeEdit.h"

#include "OssCore/Values/OssAttributeKind.h"
#include "OssModel/Graph/OssShaderNetwork.h"

#include <QCoreApplication>

#include <algorithm>
#include <iterator>

OssAttributeEdit::OssAttributeEdit(OssSnBaseNode *node, QString attribute)
    : m_node(node)
    , m_attribute(std::move(attribute))
{
}

OssAttributeEdit::~OssAttributeEdit()
{
    end();
}

QList<OssSnBaseNode *> OssAttributeEdit::partners(const OssSnBaseNode *node)
{
    QList<OssSnBaseNode *> nodes;
    if (!node->selected() || !node->network())
        return nodes;
    const QList<OssSnBaseNode *> selected = node->network()->selectedNodes();
    for (OssSnBaseNode *other : selected) {
        if (other != node && other->nodeType() == node->nodeType()
            && other->pathKey() == node->pathKey())
            nodes.append(other);
    }
    return nodes;
}

QList<OssSnBaseNode *> OssAttributeEdit::targets(OssSnBaseNode *node)
{
    QList<OssSnBaseNode *> nodes{node};
    const QList<OssSnBaseNode *> others = partners(node);
    std::copy_if(others.cbegin(), others.cend(), std::back_inserter(nodes),
                 [](const OssSnBaseNode *other) { return !other->isLocked(); });
    return nodes;
}

OssCustomAttribute OssAttributeEdit::attribute() const
{
    return m_node ? m_node->userAttribute(m_attribute) : OssCustomAttribute();
}

QString OssAttributeEdit::lock() const
{
    return m_node ? m_node->lockOf(m_attribute) : QString();
}

OssMixed OssAttributeEdit::mixed() const
{
    OssMixed mixed;
    const OssCustomAttribute own = attribute();
    const OssAttributeKind *kind = OssAttributeKind::of(own);
    if (!kind)
        return mixed;
    bool inParts = true;
    const int count = kind->parts(own.value()).size();
    QVector<bool> parts(count, false);
    const QVector<Start> all = start();
    for (const Start &other : all) {
        const QVariant value = other.attribute.value();
        if (value == own.value())
            continue;
        mixed.any = true;
        inParts = inParts && kind->parts(value).size() == count;
        const QVector<int> differing = kind->differingParts(own.value(), value);
        for (const int part : differing)
            parts[part] = true;
    }
    if (mixed.any && inParts)
        mixed.parts = parts;
    return mixed;
}

QString OssAttributeEdit::title() const
{
    const QVector<Start> all = start();
    const QString what = attribute().prettyName();
    return all.size() == 1
               ? QCoreApplication::translate("OssAttributeEdit", "Change %1 of %2")
                     .arg(what, all.first().node->name())
               : QCoreApplication::translate("OssAttributeEdit", "Change %1 of %2 Nodes")
                     .arg(what)
                     .arg(all.size());
}

QVector<OssAttributeEdit::Start> OssAttributeEdit::start() const
{
    QVector<Start> found;
    if (!m_node)
        return found;
    const QList<OssSnBaseNode *> nodes = targets(m_node);
    for (OssSnBaseNode *node : nodes) {
        const OssCustomAttribute attribute = node->userAttribute(m_attribute);
        if (attribute.isValid() && node->lockOf(m_attribute).isEmpty())
            found.append({node, attribute});
    }
    return found;
}

void OssAttributeEdit::assign(const QVector<Start> &to, const QVariant &value,
                              const Parts &parts) const
{
    if (to.isEmpty() || to.first().node != m_node)
        return; // the node's own is locked
    const OssAttributeKind *kind = OssAttributeKind::of(to.first().attribute);
    const bool changed = parts == changedParts();
    const Parts which = changed && kind ? kind->differingParts(to.first().attribute.value(), value)
                                        : parts;
    for (const Start &one : to) {
        if (one.node)
            one.node->setAttribute(m_attribute, kind && one.node != m_node ? kind->withParts(
                                                    one.attribute.value(), value, which)
                                                                           : value);
    }
}

void OssAttributeEdit::set(const QVariant &value, const Parts &parts, const QString &joinKey)
{
    if (isDragging()) {
        drag(value, parts);
        return;
    }
    const OssUndoManager::AutoMacro macro(title(), joinKey,
                                          OssUndoManager::AutoMacro::Joining::Always);
    assign(start(), value, parts);
}

void OssAttributeEdit::step(const QVariant &value, const Parts &parts)
{
    if (!m_node || isDragging())
        return;
    const OssUndoManager::AutoMacro macro(title(), m_node->uuidString() + m_attribute);
    assign(start(), value, parts);
}

void OssAttributeEdit::reset()
{
    set(attribute().definition().defaultValue);
}

void OssAttributeEdit::begin(const QString &joinKey)
{
    if (!m_node || isDragging() || !lock().isEmpty())
        return;
    m_macro = std::make_unique<OssUndoManager::AutoMacro>(
        title(), joinKey, OssUndoManager::AutoMacro::Joining::Always);
    m_start = start();
}

void OssAttributeEdit::drag(const QVariant &value, const Parts &parts)
{
    if (!isDragging())
        return;
    const OssUndoManager::Pause pause;
    assign(m_start, value, parts);
}

void OssAttributeEdit::letGo()
{
    end();
    m_node = nullptr;
}

void OssAttributeEdit::end()
{
    if (!isDragging())
        return;
    for (const Start &start : qAsConst(m_start)) {
        if (!start.node)
            continue;
        const OssCustomAttribute before = start.attribute;
        const OssCustomAttribute after = start.node->userAttribute(m_attribute);
        if (before == after || !after.isValid())
            continue;
        OssUndoManager::instance()->record(
            {},
            [node = start.node, before] {
                if (node)
                    node->setUserAttribute(before, true);
            },
            [node = start.node, after] {
                if (node)
                    node->setUserAttribute(after, true);
            },
            start.node);
    }
    m_start.clear();
    m_macro.reset();
}

void OssAttributeEdit::takeBack()
{
    {
        const OssUndoManager::Pause pause;
        for (const Start &start : qAsConst(m_start)) {
            if (start.node)
                start.node->setUserAttribute(start.attribute, true);
        }
    }
    end();
}
