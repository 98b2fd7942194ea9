#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"

#include <QHash>
#include <QMap>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVector>

class OssSnBaseNode;
class OssSnGroupNode;

/// Keeps knobs of groups and the attributes inside that they stand for at one value: a change on
/// either side goes to all others. Only the change itself is recorded; undoing it goes the same way.
///
/// A link outlives the node it leads to: it is broken while the node is not inside the group, or
/// has no attribute of that name and type, and whole again when the node comes back. GUI thread.
class OSSMODEL_EXPORT OssLinkedCustomAttributeManager
    : public QObject
    , public OssService<OssLinkedCustomAttributeManager>
{
    Q_OBJECT

public:
    struct Link
    {
        QPointer<OssSnBaseNode> node; ///< null when it is not known here
        QString attribute;
        QString nodePath; ///< where the node stood last, from inside the group: "Inner/Blur"
    };

    struct Knob
    {
        OssSnGroupNode *group;
        QString name;
    };

    OssLinkedCustomAttributeManager();

    /// What a knob stands for, in the order in which it was linked.
    QVector<Link> links(const OssSnGroupNode *group, const QString &knob) const;
    /// The knobs of a group that have links, by name.
    QStringList knobs(const OssSnGroupNode *group) const;
    /// The knobs, of any group, that stand for an attribute.
    QVector<Knob> knobsOf(const OssSnBaseNode *node, const QString &attribute) const;
    /// A locked node among those whose values an edit of the attribute would change, its own
    /// included; null when there is none.
    const OssSnBaseNode *lockedNode(const OssSnBaseNode *node, const QString &attribute) const;
    static bool isBroken(const OssSnGroupNode *group, const QString &knob, const Link &link);
    /// The path of a node from inside a group; empty when it is not inside.
    static QString pathInside(const OssSnGroupNode *group, const OssSnBaseNode *node);

    /// Replaces a knob's links; none remove it from here. No undo, and no value changes: both are
    /// the group's, which calls this.
    void setLinks(OssSnGroupNode *group, const QString &knob, const QVector<Link> &links);
    /// A group is dying.
    void forget(OssSnGroupNode *group);

Q_SIGNALS:
    /// A knob was linked otherwise, one of its links broke or healed, or what it is tied to was
    /// locked or unlocked.
    void linksChanged(OssSnGroupNode *group, const QString &knob);

private Q_SLOTS:
    void onAttributeChanged(const QString &name);
    void onNodeRemoved();
    void onLockedChanged();

private:
    using Place = QPair<const OssSnBaseNode *, QString>; ///< a node and its attribute

    /// What has one value with an attribute, itself first.
    QVector<Place> tiedTogether(const OssSnBaseNode *node, const QString &attribute) const;
    void follow(OssSnBaseNode *node);
    void addTarget(OssSnBaseNode *node, const Knob &knob);
    void removeTarget(OssSnBaseNode *node, const Knob &knob);
    void onNodeRegistered(const OssSnBaseNode *node);

    QHash<const OssSnGroupNode *, QMap<QString, QVector<Link>>> m_links;
    QHash<const QObject *, QVector<Knob>> m_targets; ///< by node; each knob once per link
};
