#pragma once

#include <QPointer>

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

private:
    QPointer<QWidget> m_before;
    QPointer<OssShaderNetworkView> m_inside; ///< null when it was in front already
    bool m_opened = false;
};
