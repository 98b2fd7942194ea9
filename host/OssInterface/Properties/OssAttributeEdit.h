#pragma once

#include "OssCore/Undo/OssUndoManager.h"
#include "OssInterface/OssInterface_export.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QPointer>

#include <memory>

/// Edits one attribute of a node for a user: of all selected nodes of its type at once when the node
/// is one of them. Every edit is one undo step, a drag from begin() to end() too.
class OSSINTERFACE_EXPORT OssAttributeEdit
{
public:
    OssAttributeEdit(OssSnBaseNode *node, QString attribute);
    OssAttributeEdit(const OssAttributeEdit &) = delete;
    OssAttributeEdit &operator=(const OssAttributeEdit &) = delete;
    /// Ends a drag.
    ~OssAttributeEdit();

    /// The node and what else is selected of its type in its network.
    static QList<OssSnBaseNode *> targets(OssSnBaseNode *node);

    OssCustomAttribute attribute() const;
    /// Whether the targets have different values.
    bool isMixed() const;

    void set(const QVariant &value);
    /// The same, joining quick repetitions into one step: for keys that are held down.
    void step(const QVariant &value);
    void reset();

    void begin();
    void drag(const QVariant &value);
    void end();

    bool isDragging() const { return m_macro != nullptr; }

private:
    struct Start
    {
        QPointer<OssSnBaseNode> node;
        OssCustomAttribute attribute;
    };

    QString title() const;
    void assign(const QVariant &value) const;

    QPointer<OssSnBaseNode> m_node;
    QString m_attribute;
    /// Open during a drag, so that nothing is undone under it.
    std::unique_ptr<OssUndoManager::AutoMacro> m_macro;
    QVector<Start> m_start;
};
