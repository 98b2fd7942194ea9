#include "PointerDiary.h"

#include "OssScripting/OssScriptEngine.h"

#include <QApplication>
#include <QMouseEvent>
#include <QWidget>
#include <QWindow>

extern Q_WIDGETS_EXPORT QWidget *qt_button_down; // Qt's own: to whom moves and releases go

namespace {

constexpr int Kept = 40;

QString nameOf(const QObject *object)
{
    return object ? QLatin1String(object->metaObject()->className()) + QLatin1Char(' ')
                        + object->objectName()
                  : QStringLiteral("nobody");
}

} // namespace

PointerDiary::PointerDiary()
{
    qApp->installEventFilter(this);
}

bool PointerDiary::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::WindowBlocked && qobject_cast<QWindow *>(watched))
        add(QStringLiteral("blocked: ") + nameOf(watched));
    const bool release = event->type() == QEvent::MouseButtonRelease;
    if (!release && event->type() != QEvent::MouseButtonPress
        && event->type() != QEvent::MouseButtonDblClick)
        return false;
    const auto *mouse = static_cast<QMouseEvent *>(event);
    add(QStringLiteral(
            "%1 of %2 to %3; down %4, popup %5, modal %6, grabber %7, pressed %8, script %9")
            .arg(release ? QStringLiteral("release") : QStringLiteral("press"))
            .arg(int(mouse->button()))
            .arg(nameOf(watched))
            .arg(int(mouse->buttons()))
            .arg(nameOf(QApplication::activePopupWidget()),
                 nameOf(QApplication::activeModalWidget()), nameOf(QWidget::mouseGrabber()),
                 nameOf(qt_button_down))
            .arg(OssScriptEngine::instance()->isRunning()));
    return false;
}

void PointerDiary::add(const QString &line)
{
    m_lines.append(line);
    if (m_lines.size() > Kept)
        m_lines.removeFirst();
}
