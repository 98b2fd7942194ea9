#include "OssModel/Graph/OssLinkedCustomAttributeManager.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShaderNetworkManager.h"
#include "OssModel/Graph/OssSnGroupNode.h"

#include <algorithm>

OssLinkedCustomAttributeManager::OssLinkedCustomAttributeManager()
{
    connect(OssShaderNetworkManager::instance(), &OssShaderNetworkManager::nodeRegistered, this,
            [this](OssShaderNetwork *, OssSnBaseNode *node) { onNodeRegistered(node); });
}

// --- look-up

QVector<OssLinkedCustomAttributeManager::Link> OssLinkedCustomAttributeManager::links(
    const OssSnGroupNode *group, const QString &knob) const
{
    QVector<Link> found = m_links.value(group).value(knob);
    for (Link &link : found) {
        const QString path = link.node ? pathInside(group, link.node) : QString();
        if (!path.isEmpty())
            link.nodePath = path;
    }
    return found;
}

QStringList OssLinkedCustomAttributeManager::knobs(const OssSnGroupNode *group) const
{
    return m_links.value(group).keys();
}

QVector<OssLinkedCustomAttributeManager::Knob> OssLinkedCustomAttributeManager::knobsOf(
    const OssSnBaseNode *node, const QString &attribute) const
{
    QVector<Knob> found;
    const QVector<Knob> all = m_targets.value(node);
    for (const Knob &knob : all) {
        const QVector<Link> links = m_links.value(knob.group).value(knob.name);
        const bool stands = std::any_of(links.cbegin(), links.cend(), [&](const Link &link) {
            return link.node == node && link.attribute == attribute;
        });
        const bool known = std::any_of(found.cbegin(), found.cend(), [&knob](const Knob &other) {
            return other.group == knob.group && other.name == knob.name;
        });
        if (stands && !known)
            found.append(knob);
    }
    return found;
}

QVector<OssLinkedCustomAttributeManager::Place> OssLinkedCustomAttributeManager::tiedTogether(
    const OssSnBaseNode *node, const QString &attribute) const
{
    QVector<Place> reached{{node, attribute}};
    const auto reach = [&reached](const OssSnBaseNode *other, const QString &name) {
        if (!reached.contains({other, name}))
            reached.append({other, name});
    };
    int next = 0;
    while (next < reached.size()) { // it grows meanwhile
        const auto [from, name] = reached.at(next++);
        if (const auto *group = qobject_cast<const OssSnGroupNode *>(from)) {
            const QVector<Link> links = m_links.value(group).value(name);
            for (const Link &link : links) {
                if (!isBroken(group, name, link))
                    reach(link.node, link.attribute);
            }
        }
        const QVector<Knob> knobs = knobsOf(from, name);
        for (const Knob &knob : knobs) {
            if (!isBroken(knob.group, knob.name, {const_cast<OssSnBaseNode *>(from), name, {}}))
                reach(knob.group, knob.name);
        }
    }
    return reached;
}

const OssSnBaseNode *OssLinkedCustomAttributeManager::lockedNode(const OssSnBaseNode *node,
                                                                 const QString &attribute) const
{
    const QVector<Place> places = tiedTogether(node, attribute);
    const auto locked = std::find_if(places.cbegin(), places.cend(),
                                     [](const Place &place) { return place.first->isLocked(); });
    return locked == places.cend() ? nullptr : locked->first;
}

void OssLinkedCustomAttributeManager::onLockedChanged()
{
    const auto *node = qobject_cast<const OssSnBaseNode *>(sender());
    if (!node)
        return;
    const QStringList attributes = node->userAttributeNames();
    for (const QString &attribute : attributes) {
        const QVector<Place> places = tiedTogether(node, attribute);
        for (const Place &place : places) {
            auto *group = qobject_cast<OssSnGroupNode *>(const_cast<OssSnBaseNode *>(place.first));
            if (group && m_links.value(group).contains(place.second))
                Q_EMIT linksChanged(group, place.second);
        }
    }
}

QString OssLinkedCustomAttributeManager::pathInside(const OssSnGroupNode *group,
                                                    const OssSnBaseNode *node)
{
    QString path = node->name();
    const OssShaderNetwork *network = node->network();
    while (network && network != group->groupNetwork()) {
        const OssSnGroupNode *around = network->parentGroupNode();
        if (!around)
            return {};
        path = around->name() + QLatin1Char('/') + path;
        network = around->network();
    }
    return network ? path : QString();
}

bool OssLinkedCustomAttributeManager::isBroken(const OssSnGroupNode *group, const QString &knob,
                                               const Link &link)
{
    if (!link.node || pathInside(group, link.node).isEmpty())
        return true;
    const OssCustomAttribute attribute = link.node->userAttribute(link.attribute);
    return !attribute.isValid()
           || attribute.value().userType() != group->attribute(knob).userType();
}

// --- changes

void OssLinkedCustomAttributeManager::setLinks(OssSnGroupNode *group, const QString &knob,
                                               const QVector<Link> &links)
{
    const QVector<Link> before = m_links.value(group).value(knob);
    for (const Link &link : before) {
        if (link.node)
            removeTarget(link.node, {group, knob});
    }
    if (links.isEmpty()) {
        m_links[group].remove(knob);
    } else {
        m_links[group].insert(knob, links);
        follow(group);
    }
    for (const Link &link : links) {
        if (link.node)
            addTarget(link.node, {group, knob});
    }
    Q_EMIT linksChanged(group, knob);
}

void OssLinkedCustomAttributeManager::forget(OssSnGroupNode *group)
{
    const QMap<QString, QVector<Link>> links = m_links.take(group);
    for (auto knob = links.cbegin(); knob != links.cend(); ++knob) {
        for (const Link &link : *knob) {
            if (link.node)
                removeTarget(link.node, {group, knob.key()});
        }
    }
    m_targets.remove(group);
}

void OssLinkedCustomAttributeManager::follow(OssSnBaseNode *node)
{
    connect(node, &OssSerializableObject::userAttributeChanged, this,
            &OssLinkedCustomAttributeManager::onAttributeChanged, Qt::UniqueConnection);
    connect(node, &OssSnBaseNode::lockedChanged, this,
            &OssLinkedCustomAttributeManager::onLockedChanged, Qt::UniqueConnection);
}

void OssLinkedCustomAttributeManager::addTarget(OssSnBaseNode *node, const Knob &knob)
{
    if (!m_targets.contains(node)) {
        follow(node);
        connect(node, &OssSnBaseNode::nodeRemovedFromNetwork, this,
                &OssLinkedCustomAttributeManager::onNodeRemoved, Qt::UniqueConnection);
        connect(node, &QObject::destroyed, this, [this](QObject *gone) { m_targets.remove(gone); });
    }
    m_targets[node].append(knob);
}

void OssLinkedCustomAttributeManager::removeTarget(OssSnBaseNode *node, const Knob &knob)
{
    const auto found = m_targets.find(node);
    if (found == m_targets.end())
        return;
    const auto one = std::find_if(found->begin(), found->end(), [&knob](const Knob &other) {
        return other.group == knob.group && other.name == knob.name;
    });
    if (one != found->end())
        found->erase(one);
    if (!found->isEmpty())
        return;
    m_targets.erase(found);
    // A group may still be followed for its own knobs.
    if (!m_links.contains(qobject_cast<OssSnGroupNode *>(node)))
        disconnect(node, nullptr, this, nullptr);
}

// --- followers

void OssLinkedCustomAttributeManager::onAttributeChanged(const QString &name)
{
    auto *node = qobject_cast<OssSnBaseNode *>(sender());
    if (!node)
        return;
    // Undoing the change that was recorded comes this way too, and knows no locks.
    const OssUndoManager::Pause pause;
    const QVariant value = node->attribute(name);
    if (const auto *group = qobject_cast<OssSnGroupNode *>(node)) {
        const QVector<Link> own = m_links.value(group).value(name);
        for (const Link &link : own) {
            if (!isBroken(group, name, link))
                link.node->assignAttribute(link.attribute, value, true);
        }
    }
    const QVector<Knob> knobs = knobsOf(node, name);
    for (const Knob &knob : knobs) {
        if (!isBroken(knob.group, knob.name, {node, name, {}}))
            knob.group->assignAttribute(knob.name, value, true);
    }
}

void OssLinkedCustomAttributeManager::onNodeRemoved()
{
    const auto *node = qobject_cast<const OssSnBaseNode *>(sender());
    const QVector<Knob> knobs = m_targets.value(node);
    for (const Knob &knob : knobs) {
        const QString path = pathInside(knob.group, node);
        for (Link &link : m_links[knob.group][knob.name]) {
            if (link.node == node && !path.isEmpty())
                link.nodePath = path;
        }
        // The node is still there; who looks again does so after this.
        QMetaObject::invokeMethod(
            this,
            [this, group = QPointer<OssSnGroupNode>(knob.group), name = knob.name] {
                if (group)
                    Q_EMIT linksChanged(group, name);
            },
            Qt::QueuedConnection);
    }
}

void OssLinkedCustomAttributeManager::onNodeRegistered(const OssSnBaseNode *node)
{
    const QVector<Knob> knobs = m_targets.value(node);
    for (const Knob &knob : knobs)
        Q_EMIT linksChanged(knob.group, knob.name);
}
