#include "OssInterface/Popups/OssLateReleases.h"

#include <QCoreApplication>

void OssLateReleases::keep(QObject *watched, const QEvent *event)
{
    const bool press = event->type() == QEvent::MouseButtonPress
                       || event->type() == QEvent::MouseButtonDblClick;
    if (!press && event->type() != QEvent::MouseButtonRelease)
        return;
    const auto *mouse = static_cast<const QMouseEvent *>(event);
    if (press) {
        m_pressed |= mouse->button();
    } else if (m_pressed & mouse->button()) {
        m_pressed &= ~Qt::MouseButtons(mouse->button());
    } else {
        m_releases.push_back(
            {watched, std::make_unique<QMouseEvent>(
                          mouse->type(), mouse->localPos(), mouse->windowPos(), mouse->screenPos(),
                          mouse->button(), mouse->buttons(), mouse->modifiers())});
    }
}

void OssLateReleases::deliver()
{
    for (Release &release : m_releases) {
        if (release.target)
            QCoreApplication::postEvent(release.target, release.event.release());
    }
    m_releases.clear();
    m_pressed = {};
}
