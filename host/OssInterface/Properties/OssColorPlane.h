#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QWidget>

/// The display colours of one hue: saturation to the right, value upwards, and below them the hues. A
/// press takes what is under the pointer and drags it; arrows move in the square, with Shift in the
/// hues.
class OSSINTERFACE_EXPORT OssColorPlane : public QWidget
{
    Q_OBJECT

public:
    struct Hsv
    {
        double hue = 0.0; ///< each 0 to 1
        double saturation = 0.0;
        double value = 0.0;
    };

    explicit OssColorPlane(QWidget *parent);

    const Hsv &color() const { return m_color; }

    /// Shows it; nothing is announced.
    void setColor(const Hsv &color);

    QRectF square() const;
    QRectF hues() const;

    QSize sizeHint() const override { return {240, 190}; }

Q_SIGNALS:
    void dragBegun();
    void dragged();
    void dragEnded();
    void stepped();

protected:
    bool event(QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    enum class Held { Nothing, Square, Hues };

    void take(const QPointF &at);

    Hsv m_color;
    Held m_held = Held::Nothing;
};
