#pragma once

#include "OssSnNodeGraphViewContext.h"

/// Context of nodes that exist for the layout only: backdrops, sticky notes and dots. Shows the
/// node's user attributes (title, label, colour, order) on the item.
class OssSnUINodeGraphViewContext : public OssSnNodeGraphViewContext
{
    Q_OBJECT
    /// "Backdrop", "StickyNote", "Dot"; anything else is shown as a note.
    Q_PROPERTY(QString guiNodeClass READ guiNodeClass WRITE setGuiNodeClass)

public:
    explicit OssSnUINodeGraphViewContext(QObject *node);
    ~OssSnUINodeGraphViewContext() override;

    QString guiNodeClass() const { return m_guiNodeClass; }

    /// Makes the item, the first time.
    void setGuiNodeClass(const QString &guiNodeClass);
    /// A backdrop of an old project has no type; it gets the one it should have.
    void upgradeOldBackdrop();

    void initializeGui() override;
    void applySelection(bool selected) override;

public Q_SLOTS:
    void onUserAttributeChanged(OssCustomAttribute Attribute, OssSnBaseNode *Node) override;
    /// The nodes that lie on the backdrop now; none for other items.
    QList<OssSnBaseNode *> childrenNodes() const;
    void setText(QString text) override;
    void onZOrderChanged(int ZOrder);
    // Requests of the node that holds others: the current view does the geometry.
    void onContainerChildrenRefreshed(QList<OssSnBaseNode *> MemberNodes,
                                      bool containerChildrenRefreshed);
    void onContainerStretchedBy(OssSnBaseNode *ReferenceNode);
    void onContainerPeersStretched(QList<OssSnBaseNode *> ContainerNodeToStretchList);
    void onContainerRespacedWrt(OssSnBaseNode *ReferenceNode);
    void onContainerMovedDown(OssSnBaseNode *ReferenceNode);
    void onContainerMovedToFreshLocation(bool PreserveY);

protected Q_SLOTS:
    void selectGuiNode(bool selected) override;

private:
    void connectContainer(const OssSnBaseNode *node);
    void showText(const OssCustomAttribute &attribute, const char *method);
    void showBackground(const OssCustomAttribute &attribute);

    QString m_guiNodeClass;
};
