#include "OssInterface/Properties/OssNumberField.h"

#include "OssCore/Values/OssNumberText.h"
#include "OssInterface/Properties/OssExpression.h"

#include <QApplication>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int DragThreshold = 3;
constexpr double FineFactor = 0.1;
constexpr double Corner = 4.0;
constexpr int LargeStep = 10;
constexpr int FewestDigits = 2;
constexpr int FewestShown = 4; ///< of any number, so that it looks as it was typed
constexpr int MostDecimals = 12;
constexpr double Significant = 1e5;
constexpr double Huge = 1e12; ///< from here on as a power of ten
constexpr double Tiny = 1e-9;
constexpr int Margin = 6;
constexpr int NarrowMargin = 3;
constexpr int Narrow = 60;
constexpr int WheelClick = 120;

/// 1, 2 or 5 times a power of ten, at most `value`.
double niceStep(double value)
{
    const double power = std::pow(10.0, std::floor(std::log10(value)));
    const double lead = value / power;
    return power * (lead >= 5.0 ? 5.0 : lead >= 2.0 ? 2.0 : 1.0);
}

/// The nearest multiple of the grain, as people would write it.
double roundedTo(double grain, double value)
{
    return QString::number(std::round(value / grain) * grain, 'g', 12).toDouble();
}

} // namespace

OssNumberField::OssNumberField(QWidget *parent)
    : QWidget(parent)
{
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::SizeHorCursor);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

OssNumberField::~OssNumberField() = default;

// --- value

void OssNumberField::setRange(const Range &range)
{
    m_range = range;
    if (!m_range.softMinimum)
        m_range.softMinimum = range.minimum;
    if (!m_range.softMaximum)
        m_range.softMaximum = range.maximum;
    update();
}

bool OssNumberField::hasSoftRange() const
{
    return m_range.softMinimum && m_range.softMaximum
           && *m_range.softMinimum < *m_range.softMaximum;
}

double OssNumberField::bounded(double value) const
{
    if (m_range.isInteger)
        value = std::round(value);
    if (m_range.minimum)
        value = std::max(value, *m_range.minimum);
    if (m_range.maximum)
        value = std::min(value, *m_range.maximum);
    return value;
}

void OssNumberField::setValue(double value)
{
    if (m_value == value && !m_mixed)
        return;
    m_value = value;
    m_mixed = false;
    update();
}

void OssNumberField::setMixed(bool mixed)
{
    m_mixed = mixed;
    update();
}

void OssNumberField::setPrefix(const QString &prefix)
{
    m_prefix = prefix;
    update();
}

int OssNumberField::decimals() const
{
    if (m_range.isInteger)
        return 0;
    // Values a hundredth of a step apart are told apart; without a range, six digits are.
    const double least = hasSoftRange() ? singleStep() / 100.0
                                        : std::max(std::fabs(m_value), 1.0) / Significant;
    const int byRange = int(std::ceil(-std::log10(least) - Tiny));
    const int before = int(std::floor(std::log10(std::max(std::fabs(m_value), 1.0)))) + 1;
    return qBound(0, std::max(byRange, FewestShown - before), MostDecimals);
}

QString OssNumberField::textWith(int decimals) const
{
    const double least = std::pow(10.0, 1 - decimals);
    const double size = std::fabs(m_value);
    if ((size > 0.0 && size < least && !m_range.isInteger) || size >= Huge)
        return QString::number(m_value, 'g', FewestDigits + qMin(decimals, 1));
    QString text = QString::number(m_value, 'f', decimals);
    while (text.contains(QLatin1Char('.'))
           && (text.endsWith(QLatin1Char('0')) || text.endsWith(QLatin1Char('.')))) {
        const bool point = text.endsWith(QLatin1Char('.'));
        text.chop(1);
        if (point)
            break;
    }
    return text;
}

QString OssNumberField::text() const
{
    return m_mixed ? tr("mixed") : textWith(decimals());
}

QString OssNumberField::textFitting(int width) const
{
    const QFontMetricsF metrics(font()); // advances in whole pixels tell less than what is cut
    QString shown = text();
    // Digits that have no room are left out, not replaced by dots.
    for (int digits = decimals() - 1;
         !m_mixed && digits >= 0 && metrics.horizontalAdvance(shown) > width; --digits)
        shown = textWith(digits);
    return metrics.elidedText(shown, Qt::ElideRight, width);
}

double OssNumberField::singleStep() const
{
    if (m_range.isInteger)
        return 1.0;
    if (hasSoftRange())
        return niceStep((*m_range.softMaximum - *m_range.softMinimum) / 50.0);
    return niceStep(std::max(std::fabs(m_value), 1.0) / 10.0);
}

QSize OssNumberField::sizeHint() const
{
    return {140, fontMetrics().height() + 10};
}

QSize OssNumberField::minimumSizeHint() const
{
    return {34, sizeHint().height()};
}

// --- painting

void OssNumberField::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    QPainterPath shape;
    shape.addRoundedRect(box, Corner, Corner);
    const bool focus = hasFocus() || m_dragging;
    painter.fillPath(shape, palette().color(QPalette::Base));
    if (hasSoftRange() && !m_mixed) {
        const double part = (m_value - *m_range.softMinimum)
                            / (*m_range.softMaximum - *m_range.softMinimum);
        QColor fill = palette().color(QPalette::Highlight);
        if (!isEnabled())
            fill = palette().color(QPalette::Mid);
        else if (underMouse() || focus)
            fill = fill.lighter(120);
        painter.setClipPath(shape);
        painter.fillRect(
            QRectF(box.left(), box.top(), box.width() * qBound(0.0, part, 1.0), box.height()),
            fill);
        painter.setClipping(false);
    }
    painter.setPen(palette().color(focus          ? QPalette::Link
                                   : underMouse() ? QPalette::PlaceholderText
                                                  : QPalette::Light));
    painter.drawPath(shape);
    const int margin = width() < Narrow ? NarrowMargin : Margin;
    const QRect inside = rect().adjusted(margin, 0, -margin, 0);
    const QString shown = textFitting(inside.width());
    if (!m_prefix.isEmpty()
        && fontMetrics().horizontalAdvance(m_prefix + text()) + Margin < inside.width()) {
        painter.setPen(palette().color(QPalette::PlaceholderText));
        painter.drawText(inside, Qt::AlignLeft | Qt::AlignVCenter, m_prefix);
    }
    painter.setPen(palette().color(isEnabled() ? QPalette::Active : QPalette::Disabled,
                                   m_mixed ? QPalette::PlaceholderText : QPalette::Text));
    painter.drawText(inside, Qt::AlignRight | Qt::AlignVCenter, shown);
}

void OssNumberField::resizeEvent(QResizeEvent *)
{
    if (m_typing)
        m_typing->setGeometry(rect());
}

bool OssNumberField::event(QEvent *event)
{
    if (event->type() == QEvent::ToolTip && toolTip().isEmpty() && !m_fault.isEmpty())
        return true;
    // Keys that mean something here do not run commands of the window.
    if (event->type() == QEvent::ShortcutOverride) {
        const auto *key = static_cast<QKeyEvent *>(event);
        const QString typed = key->text();
        if (!(key->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier))
            && ((!typed.isEmpty() && typed.at(0).isPrint()) || key->key() == Qt::Key_Backspace
                || key->key() == Qt::Key_Delete || (m_dragging && key->key() == Qt::Key_Escape))) {
            event->accept();
            return true;
        }
    }
    return QWidget::event(event);
}

// --- dragging

void OssNumberField::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton) {
        event->ignore();
        return;
    }
    m_pressed = true;
    m_pressX = event->x();
    m_pressValue = m_value;
    m_dragValue = m_value;
}

void OssNumberField::focusInEvent(QFocusEvent *event)
{
    m_focusIsNew = event->reason() == Qt::MouseFocusReason;
    QWidget::focusInEvent(event);
}

void OssNumberField::mouseMoveEvent(QMouseEvent *event)
{
    if (!m_pressed)
        return;
    if (!m_dragging) {
        if (std::abs(event->x() - m_pressX) < DragThreshold)
            return;
        m_dragging = true;
        m_pressX = event->x();
        Q_EMIT dragBegun();
        return;
    }
    const double perPixel = hasSoftRange()
                                ? (*m_range.softMaximum - *m_range.softMinimum) / qMax(1, width())
                                : std::max(std::fabs(m_pressValue), 1.0) / 100.0;
    const double speed = event->modifiers() & Qt::ShiftModifier ? FineFactor : 1.0;
    m_dragValue += (event->x() - m_pressX) * perPixel * speed;
    m_pressX = event->x();
    // No more digits than one pixel is worth.
    const double grain = event->modifiers() & Qt::ControlModifier ? singleStep()
                                                                  : niceStep(perPixel * speed);
    double value = bounded(roundedTo(grain, m_dragValue));
    // A slider does not leave what it spans; one that is beyond comes back only.
    if (hasSoftRange()) {
        value = std::max(value, std::min(*m_range.softMinimum, m_pressValue));
        value = std::min(value, std::max(*m_range.softMaximum, m_pressValue));
    }
    if (value == m_value)
        return;
    setValue(value);
    Q_EMIT dragged(value);
}

void OssNumberField::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || !m_pressed)
        return;
    m_pressed = false;
    if (m_dragging)
        endDrag(true);
    else if (rect().contains(event->pos()))
        startTyping();
}

void OssNumberField::endDrag(bool keep)
{
    m_dragging = false;
    m_pressed = false;
    if (!keep && m_value != m_pressValue) {
        setValue(m_pressValue);
        Q_EMIT dragged(m_pressValue);
    }
    Q_EMIT dragEnded();
    update();
    if (std::exchange(m_focusIsNew, false))
        Q_EMIT left();
}

// --- stepping

void OssNumberField::wheelEvent(QWheelEvent *event)
{
    // Without the focus the panel scrolls.
    if (!hasFocus() || m_dragging) {
        event->ignore();
        return;
    }
    m_wheelAngle += event->angleDelta().y();
    const int clicks = m_wheelAngle / WheelClick;
    m_wheelAngle -= clicks * WheelClick;
    const double value = bounded(m_value + clicks * singleStep());
    if (clicks != 0 && value != m_value) {
        setValue(value);
        Q_EMIT stepped(value);
    }
    event->accept();
}

bool OssNumberField::stepByKey(int key)
{
    double value = m_value;
    switch (key) {
    case Qt::Key_Right:
    case Qt::Key_Up:
        value += singleStep();
        break;
    case Qt::Key_Left:
    case Qt::Key_Down:
        value -= singleStep();
        break;
    case Qt::Key_PageUp:
        value += LargeStep * singleStep();
        break;
    case Qt::Key_PageDown:
        value -= LargeStep * singleStep();
        break;
    case Qt::Key_Home:
        value = m_range.softMinimum.value_or(value);
        break;
    case Qt::Key_End:
        value = m_range.softMaximum.value_or(value);
        break;
    default:
        return false;
    }
    // Steps of a tenth must not gather what binary fractions lack.
    if (!m_range.isInteger && key != Qt::Key_Home && key != Qt::Key_End)
        value = roundedTo(singleStep() / 1000.0, value);
    value = bounded(value);
    if (value != m_value || m_mixed) {
        setValue(value);
        Q_EMIT stepped(value);
    }
    return true;
}

void OssNumberField::keyPressEvent(QKeyEvent *event)
{
    if (m_dragging) {
        if (event->key() == Qt::Key_Escape)
            endDrag(false);
        return;
    }
    const bool plain = !(event->modifiers()
                         & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier));
    const QString typed = event->text();
    if (plain && stepByKey(event->key()))
        return;
    if (plain && event->key() == Qt::Key_Escape) {
        Q_EMIT left();
        return;
    }
    if (plain && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter))
        startTyping();
    else if (plain && !typed.isEmpty() && typed.at(0).isPrint() && !typed.at(0).isSpace())
        startTyping(typed);
    else
        QWidget::keyPressEvent(event);
}

// --- typing

void OssNumberField::startTyping(const QString &first)
{
    if (m_typing || !isEnabled())
        return;
    m_focusIsNew = false;
    m_typing = new QLineEdit(this); // until it is closed
    m_typing->setGeometry(rect());
    m_typing->setAlignment(Qt::AlignRight);
    m_typing->setAccessibleName(accessibleName());
    m_typing->installEventFilter(this);
    const QString whole = OssNumberText::of(m_value);
    m_typing->setText(first.isEmpty() ? whole : first);
    m_typing->setModified(!first.isEmpty());
    m_typing->show();
    m_typing->setFocus();
    if (first.isEmpty())
        m_typing->selectAll();
}

bool OssNumberField::takeTypingKey(int key)
{
    // Used up here: the field around would begin anew at Return.
    if (key == Qt::Key_Escape || key == Qt::Key_Return || key == Qt::Key_Enter) {
        finishTyping(key != Qt::Key_Escape, true);
        if (!m_typing && key != Qt::Key_Escape)
            Q_EMIT left();
        return true;
    }
    if (key != Qt::Key_Tab && key != Qt::Key_Backtab)
        return false;
    finishTyping(true);
    if (!m_typing)
        focusNextPrevChild(key == Qt::Key_Tab);
    return true;
}

bool OssNumberField::eventFilter(QObject *watched, QEvent *event)
{
    if (!m_typing || watched != m_typing)
        return QWidget::eventFilter(watched, event);
    if (event->type() == QEvent::ShortcutOverride
        && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Escape) {
        event->accept();
        return true;
    }
    if (event->type() == QEvent::KeyPress && takeTypingKey(static_cast<QKeyEvent *>(event)->key()))
        return true;
    if (event->type() == QEvent::FocusOut
        && static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason) {
        finishTyping(true);
        // What is no number does not stay behind in a field that nobody types in.
        if (m_typing)
            closeEditor();
    }
    return QWidget::eventFilter(watched, event);
}

void OssNumberField::finishTyping(bool keep, bool asked)
{
    if (!m_typing)
        return;
    double value = m_value;
    if (keep && m_typing->isModified()) {
        const OssResult result = OssExpression::evaluate(m_typing->text(), m_value, &value);
        m_fault = result.error();
        if (!result) {
            m_typing->setObjectName(QStringLiteral("Warning"));
            m_typing->setStyleSheet(QString()); // looks at the name again
            m_typing->setToolTip(m_fault);
            m_typing->setAccessibleDescription(m_fault);
            return;
        }
    }
    // Who only looked at one of several values does not give it to all.
    const bool typed = keep && (m_typing->isModified() || (m_mixed && asked));
    closeEditor();
    value = bounded(value);
    if (!typed || (value == m_value && !m_mixed))
        return;
    setValue(value);
    Q_EMIT edited(value);
}

void OssNumberField::closeEditor()
{
    QLineEdit *editor = m_typing;
    m_typing = nullptr;
    m_fault.clear();
    const bool hadFocus = editor->hasFocus();
    editor->removeEventFilter(this);
    editor->hide();
    editor->deleteLater(); // this may be one of its own events
    if (hadFocus)
        setFocus();
    update();
}
