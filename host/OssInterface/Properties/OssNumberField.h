#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QWidget>

#include <optional>

class QLineEdit;

/// A number that is dragged, stepped or typed: the filled part of the field is where the value lies
/// in its soft range. A click, Enter or the first digit opens it for typing, where arithmetic may be
/// written. Dragging sideways changes the value (Shift: a tenth as fast, Ctrl: in steps); arrow keys
/// and the wheel step it while it has the focus; Escape takes a drag or what was typed back.
class OSSINTERFACE_EXPORT OssNumberField : public QWidget
{
    Q_OBJECT
    Q_PROPERTY(double value READ value WRITE setValue)

public:
    struct Range
    {
        std::optional<double> minimum; ///< no value lies below
        std::optional<double> maximum;
        std::optional<double> softMinimum; ///< what the filled part spans
        std::optional<double> softMaximum;
        bool isInteger = false;
    };

    explicit OssNumberField(QWidget *parent = nullptr);
    ~OssNumberField() override;

    const Range &range() const { return m_range; }

    void setRange(const Range &range);

    double value() const { return m_value; }

    /// Shows a value; nothing is announced.
    void setValue(double value);

    /// Several values are edited together; shown until one is given.
    void setMixed(bool mixed);
    /// A letter in front of the number, such as "R".
    void setPrefix(const QString &prefix);

    QString text() const;
    /// The text with as many digits as so many pixels have room for.
    QString textFitting(int width) const;
    /// What one arrow key adds.
    double singleStep() const;

    bool isTyping() const { return m_typing != nullptr; }

    /// What was typed and is not a number yet, in words; empty when all is well.
    QString typingFault() const { return m_fault; }

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

public Q_SLOTS:
    /// Opens the field for typing, with the value selected or with a first character.
    void startTyping(const QString &first = {});

Q_SIGNALS:
    void edited(double value);
    void stepped(double value);
    void dragBegun();
    void dragged(double value);
    void dragEnded();
    /// By Return, when what was typed was taken, by Escape, or after a drag that brought the keyboard
    /// here.
    void left();

protected:
    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;

private:
    double bounded(double value) const;
    bool hasSoftRange() const;
    /// Behind the point, so that values which the range's steps tell apart look different.
    int decimals() const;
    QString textWith(int decimals) const;
    bool stepByKey(int key);
    void endDrag(bool keep);
    /// `asked`: by a key that says so, not by going elsewhere.
    void finishTyping(bool keep, bool asked = false);
    /// Keys that end typing.
    bool takeTypingKey(int key);
    void closeEditor();

    Range m_range;
    double m_value = 0.0;
    bool m_mixed = false;
    QString m_prefix;
    QString m_fault;
    QLineEdit *m_typing = nullptr;
    int m_pressX = 0;
    double m_pressValue = 0.0;
    double m_dragValue = 0.0; ///< not rounded, so that slow drags move at last
    bool m_pressed = false;
    bool m_focusIsNew = false; ///< the press brought it
    bool m_dragging = false;
    int m_wheelAngle = 0;
};
