#pragma once

#include <QFont>
#include <QRectF>
#include <QString>
#include <QStringList>

class QColor;
class QPainter;

/// Single lines of text, laid out once and shared by all that show the same words.
namespace OssNgText {

enum class Role { Title, Label, Note, Backdrop };

const QFont &font(Role role);
qreal width(Role role, const QString &text);
qreal lineHeight(Role role);
/// Cut with an ellipsis where it is wider than `width`.
QString elided(Role role, const QString &text, qreal width);
/// Lines no wider than `width`, broken at blanks where possible; the last of `most` is elided.
QStringList wrapped(Role role, const QString &text, qreal width, int most);
/// Vertically centred on `centerLeft`, in the painter's pen.
void draw(QPainter *painter, Role role, const QPointF &centerLeft, const QString &text);
/// The same in the left of a strip, at the size of a small label on screen whatever the painter's
/// scale, elided. Nothing where the strip is too small for that.
void drawSmall(QPainter *painter, Role role, const QRectF &strip, const QString &text);

} // namespace OssNgText
