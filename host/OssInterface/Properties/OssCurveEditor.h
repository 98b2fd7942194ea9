#pragma once

#include "OssInterface/OssInterface_export.h"
#include "OssInterface/Properties/OssHandleField.h"
#include "OssInterface/Properties/OssPropertyEditor.h"

#include <QPointF>
#include <QVector>

class OssCurveField;

/// Edits a curve through points, "0,0 0.5,0.8 1,1".
class OSSINTERFACE_EXPORT OssCurveEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssCurveEditor(QWidget *parent);
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;

    /// Points in ascending order of x; what is no point is left out.
    static QVector<QPointF> pointsFromText(const QString &text);
    static QString textFromPoints(const QVector<QPointF> &points);

private:
    OssCurveField *m_field;
};

/// The picture of the curve. A double click adds a point or, on one, removes it; points are dragged.
/// By keys: + adds a point beside the current one, Delete removes it, Space goes to the next, arrows
/// move it (Shift: a tenth as far).
class OSSINTERFACE_EXPORT OssCurveField : public OssHandleField
{
    Q_OBJECT

public:
    explicit OssCurveField(QWidget *parent);

    void setPoints(const QVector<QPointF> &points);

    const QVector<QPointF> &points() const { return m_points; }

    /// What nodes make of the curve.
    double valueAt(double x) const;

    QPointF toWidget(const QPointF &point) const;

    QSize sizeHint() const override { return {140, 110}; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QPointF fromWidget(const QPointF &position) const;
    QRectF area() const;
    int pointNear(const QPointF &position) const;
    void addPoint(const QPointF &point);
    void removePoint(int index);
    bool movePoint(int index, QPointF to);
    void describe();

    QVector<QPointF> m_points;
    int m_current = 0;
};
