#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>
#include <QRect>

class QMouseEvent;

/// A menu that comes while a button is held comes under the pointer, so that letting go would run
/// whatever the hand has slipped onto. The release of that press runs an entry only where it was meant:
/// the button was held for long, and the pointer moved within the menu. GUI thread.
class OssMenuPress : public QObject
{
    Q_OBJECT

public:
    OssMenuPress();

    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    void follow(const QMouseEvent &move, const QRect &menu);

    Qt::MouseButtons m_held = Qt::NoButton; ///< since before the menu came
    QElapsedTimer m_since;
    QPoint m_entered; ///< of the screen: where the pointer first was within the menu
    bool m_isInside = false;
    bool m_hasMoved = false;
};
