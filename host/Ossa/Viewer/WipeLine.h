#pragma once

#include <QCursor>
#include <QObject>
#include <QString>

#include <optional>

class QPainter;
class QPointF;
class QRectF;
class QWidget;

/// The line between what was kept, left of it, and what is looked at now, as views draw it.
namespace WipeLine {

constexpr double grip = 5.0;   ///< pixels beside the line that take it
constexpr double least = 0.02; ///< of the width: the line stays where it can be seen

/// `x`: of the line in the view. The names stand beside it.
void draw(QPainter *painter, const QRectF &view, double x, const QString &keptName,
          const QString &shownName);

} // namespace WipeLine

/// Has the user draw a wipe line across a widget: takes the left button at the line from it.
class WipeHandle : public QObject
{
    Q_OBJECT

public:
    /// The widget owns it.
    explicit WipeHandle(QWidget *view);

    bool isShown() const { return m_isShown; }

    /// Shown anew the line is in the middle.
    void setShown(bool shown);

    bool isDragged() const { return m_isDragged; }

    /// Where the line is, of the width.
    double part() const { return m_part; }

    bool eventFilter(QObject *watched, QEvent *event) override;

Q_SIGNALS:
    /// The line is elsewhere, or was let go.
    void moved();

private:
    bool isAt(const QPointF &place) const;
    bool take(const class QMouseEvent &event);
    void showCursor(bool atLine);

    QWidget *m_view;
    double m_part = 0.5;
    bool m_isShown = false;
    bool m_isDragged = false;
    bool m_hadTracking = false;         ///< before the line was shown
    std::optional<QCursor> m_ownCursor; ///< of the view, while the line's is shown
};
