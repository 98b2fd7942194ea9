#include "OssInterface/Properties/OssAttributeEdit.h"

#include "OssModel/Graph/OssShaderNetwork.h"

#include <QCoreApplication>

#include <algorithm>

OssAttributeEdit::OssAttributeEdit(OssSnBaseNode *node, QString attribute)
    : m_node(node)
    , m_attribute(std::move(attribute))
{
}

OssAttributeEdit::~OssAttributeEdit()
{
    end();
}

QList<OssSnBaseNode *> OssAttributeEdit::targets(OssSnBaseNode *node)
{
    QList<OssSnBaseNode *> nodes{node};
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

OssCustomAttribute OssAttributeEdit::attribute() const
{
    return m_node ? m_node->userAttribute(m_attribute) : OssCustomAttribute();
}

bool OssAttributeEdit::isMixed() const
{
    if (!m_node)
        return false;
    const QVariant own = m_node->attribute(m_attribute);
    const QList<OssSnBaseNode *> nodes = targets(m_node);
    return std::any_of(nodes.cbegin(), nodes.cend(), [&](const OssSnBaseNode *node) {
        return node->exists(m_attribute) && node->attribute(m_attribute) != own;
    });
}

QString OssAttributeEdit::title() const
{
    return QCoreApplication::translate("OssAttributeEdit", "Change %1")
        .arg(attribute().prettyName());
}

void OssAttributeEdit::assign(const QVariant &value) const
{
    if (!m_node)
        return;
    const QList<OssSnBaseNode *> nodes = targets(m_node);
    for (OssSnBaseNode *node : nodes) {
        if (node->exists(m_attribute))
            node->setAttribute(m_attribute, value);
    }
}

void OssAttributeEdit::set(const QVariant &value)
{
    if (isDragging()) {
        drag(value);
        return;
    }
    const OssUndoManager::AutoMacro macro(title());
    assign(value);
}

void OssAttributeEdit::step(const QVariant &value)
{
    if (!m_node || isDragging())
        return;
    const OssUndoManager::AutoMacro macro(title(), m_node->uuidString() + m_attribute);
    assign(value);
}

void OssAttributeEdit::reset()
{
    set(attribute().definition().defaultValue);
}

void OssAttributeEdit::begin()
{
    if (!m_node || isDragging())
        return;
    m_macro = std::make_unique<OssUndoManager::AutoMacro>(title());
    m_start.clear();
    const QList<OssSnBaseNode *> nodes = targets(m_node);
    for (OssSnBaseNode *node : nodes) {
        if (node->exists(m_attribute))
            m_start.append({node, node->userAttribute(m_attribute)});
    }
}

void OssAttributeEdit::drag(const QVariant &value)
{
    if (!isDragging())
        return;
    const OssUndoManager::Pause pause;
    for (const Start &start : qAsConst(m_start)) {
        if (start.node)
            start.node->setAttribute(m_attribute, value);
    }
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
            });
    }
    m_start.clear();
    m_macro.reset();
}
