#pragma once

#include <QPoint>
#include <QPointer>

class OssNgNode;
class OssShaderNetworkView;
class OssSnGroupNode;
class QWidget;

/// Has the inside of a group in front while this lives; the tab that was there before comes back, and
/// one that was opened for this goes again. Views that were open keep what they show.
class GroupInFront
{
public:
    explicit GroupInFront(OssSnGroupNode *group);
    ~GroupInFront();
    GroupInFront(const GroupInFront &) = delete;
    GroupInFront &operator=(const GroupInFront &) = delete;

    /// Brings an item of the group to where the dialog and the window behind it do not cover it, if
    /// there is room beside them.
    void reveal(const OssNgNode *item, const QWidget *dialog) const;

private:
    QPointer<QWidget> m_before; ///< null when the group was in front already
    QPointer<OssShaderNetworkView> m_inside;
    QPoint m_scrolled; ///< where the view stood
    bool m_opened = false;
};
