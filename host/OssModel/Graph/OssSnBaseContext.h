#pragma once

#include "OssCore/Documents/OssSerializableObject.h"
#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"

#include <QHash>
#include <QPointF>
#include <QSet>
#include <QSizeF>
#include <QVector>

class OssSnBaseNode;

/// What another part of the application attaches to a node, under a name: for instance the node's
/// item in the node graph. A context is a child object of its node and is saved with it.
///
/// The host makes it through a context loader, loads its saved state, calls initializeGui() once, and
/// then reports the node's user attributes to it.
class OSSMODEL_EXPORT OssSnBaseContext : public OssSerializableObject
{
    Q_OBJECT

public:
    struct Input
    {
        QString name;
        bool preferred;
        bool setAtLoad;
        QSet<QString> tags;
    };

    explicit OssSnBaseContext(QObject *parent);
    ~OssSnBaseContext() override;

    /// Null while the context belongs to no node.
    OssSnBaseNode *parentNode() const;
    /// The node's inputs in order, with the tags that its type and this context give them.
    QVector<Input> inputs() const;
    QStringList outputPointNames() const;
    /// The node answers to it in hasInputTag().
    void addInputTag(const QString &inputName, const QString &tag);
    bool hasInputTag(const QString &inputName, const QString &tag) const;

    bool onLoadCollection(const QString &name, const QString &type, const QString &elementType,
                          int count, const Attributes &attributes) override;

    /// Once, from the node, when it stands in its network with its ports and saved state: shows it and
    /// follows it from then on. Nodes at its other ends may have no context yet.
    virtual void initializeGui() = 0;
    /// A context of the same class for another node, without its state; null when it cannot be.
    virtual OssSnBaseContext *clone(OssSnBaseNode *node) const;
    /// Whether the attribute only stands in for one that another object holds.
    virtual bool attributeIsStub(const QString &name, bool flag) const;
    /// Part of the text from which a node's version hash is made.
    virtual QString versionHashSource() const;
    /// Whether the text counts in the version hash at all.
    virtual bool hasVersionHash() const;
    virtual bool versionMatch(const OssSnBaseContext *other) const;
    /// Take over what a type's description sets, resp. what a user changed, from another context.
    virtual void copyGuiStateFrom(OssSnBaseContext *other);
    virtual void copyGuiNodeStateFrom(OssSnBaseContext *other);

    // --- where the node is shown; what has no item answers with nothing and does nothing, and setters
    // give false then
    /// Scene coordinates of the upper left corner.
    virtual QPointF nodePosition() const { return {}; }

    virtual QSizeF nodeSize() const { return {}; }

    /// For places that belong to another change, as that of a node just made: no step of its own,
    /// and undoing leaves the node where it is. Outside of a macro the document counts as changed.
    virtual bool setNodePosition(QPointF) { return false; }

    /// Records a step, as what users and scripts ask for.
    virtual bool setNodePositionUndo(QPointF) { return false; }

    /// The same. False also where the size follows from what is shown.
    virtual bool setNodeSizeUndo(QSizeF) { return false; }

    /// Moves the item to the nearest free place.
    virtual void placeNode() {}

    /// For a node that comes in the place of another: where it stands, its size and how its ports are
    /// shown become those of the other, as part of what made it.
    virtual void takePlaceOf(const OssSnBaseContext *) {}

    /// Asks for a file and writes the node there. Cancelled when the user names none.
    virtual OssResult exportNode();

public Q_SLOTS:
    /// From the node: for each of its attributes after initializeGui(), then whenever one was added
    /// or set, undoing and dragging included. The node has the new value already.
    virtual void onUserAttributeChanged(OssCustomAttribute Attribute, OssSnBaseNode *Node);
    /// From the node, which has the attribute no longer; undoing included. Also before
    /// initializeGui().
    virtual void onUserAttributeRemoved(OssCustomAttribute Attribute, OssSnBaseNode *Node);

private:
    QHash<QString, QSet<QString>> m_inputTags;
};
