#pragma once

#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/OssInterface_export.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QPointer>
#include <QVector>

#include <memory>

/// In which of their parts (OssAttributeKind::parts) several values differ.
struct OssMixed
{
    explicit OssMixed(bool anything = false)
        : any(anything)
    {
    }

    bool at(int part) const { return parts.isEmpty() ? any : parts.value(part); }

    bool operator==(const OssMixed &other) const
    {
        return any == other.any && parts == other.parts;
    }

    bool any;
    QVector<bool> parts; ///< empty: as a whole
};

/// Edits one attribute of a node for a user: of all selected nodes of its type at once when the node
/// is one of them. What is locked is left alone. Every edit is one undo step, a drag from begin() to
/// end() too.
///
/// Of an edit that names parts of the value, the others' remaining parts stay theirs.
class OSSINTERFACE_EXPORT OssAttributeEdit
{
public:
    using Parts = QVector<int>;

    OssAttributeEdit(OssSnBaseNode *node, QString attribute);
    OssAttributeEdit(const OssAttributeEdit &) = delete;
    OssAttributeEdit &operator=(const OssAttributeEdit &) = delete;
    /// Ends a drag.
    ~OssAttributeEdit();

    /// What else is selected of the node's type in its network.
    static QList<OssSnBaseNode *> partners(const OssSnBaseNode *node);
    /// The node and its partners, without those that are locked.
    static QList<OssSnBaseNode *> targets(OssSnBaseNode *node);

    /// For an edit of those parts that differ from what the node had.
    static Parts changedParts() { return {-1}; }

    OssCustomAttribute attribute() const;
    /// How the targets' values differ.
    OssMixed mixed() const;
    /// Why the attribute cannot be edited; empty when it can.
    QString lock() const;

    /// Edits of one `joinKey` follow each other as one step, unless it is empty.
    void set(const QVariant &value, const Parts &parts = {}, const QString &joinKey = {});
    /// The same, joining quick repetitions into one step: for keys that are held down.
    void step(const QVariant &value, const Parts &parts = {});
    void reset();

    void begin(const QString &joinKey = {});
    void drag(const QVariant &value, const Parts &parts = {});
    void end();
    /// Ends a drag as if it had never been.
    void takeBack();

    /// Ends a drag and edits nothing any more: the node is about to go.
    void letGo();

    bool isDragging() const { return m_macro != nullptr; }

private:
    struct Start
    {
        QPointer<OssSnBaseNode> node;
        OssCustomAttribute attribute;
    };

    QString title() const;
    QVector<Start> start() const;
    void assign(const QVector<Start> &to, const QVariant &value, const Parts &parts) const;

    QPointer<OssSnBaseNode> m_node;
    QString m_attribute;
    /// Open during a drag, so that nothing is undone under it.
    std::unique_ptr<OssUndoManager::AutoMacro> m_macro;
    QVector<Start> m_start;
};
