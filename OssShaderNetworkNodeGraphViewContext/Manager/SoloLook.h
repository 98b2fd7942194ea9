#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QTimer>

class OssShaderNetworkView;
class OssSnBaseNode;
class QAction;

/// The command "Look At": shows the selected node in the Viewer without wiring the viewer to it, until
/// it comes again or Esc. By its key it takes the node under the pointer, if there is one; while the
/// key is held it goes along with the pointer, and ends when a key that was held is let go.
class SoloLook : public QObject
{
    Q_OBJECT

public:
    explicit SoloLook(QObject *parent);

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void toggle();
    void follow(OssShaderNetworkView *view);
    void release();
    bool look(const OssSnBaseNode *node);
    void onSoloChanged();
    static const OssSnBaseNode *nodeUnderPointer(const OssShaderNetworkView *view);

    QAction *m_action;
    QPointer<OssShaderNetworkView> m_view; ///< in which the key is held, or that ends it by Esc
    QElapsedTimer m_sincePress;
    qint64 m_heldFor = 0;   ///< milliseconds, when it was let go
    QTimer m_letGo;         ///< runs out when no repetition of the key comes after its release
    bool m_isByKey = false; ///< while the command is carried out
    bool m_isHeld = false;
    bool m_hasMoved = false; ///< to another node while the key was held
};
