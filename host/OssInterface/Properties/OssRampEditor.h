#pragma once

#include "OssEvaluation/Values/OssEvRamp.h"
#include "OssInterface/OssInterface_export.h"
#include "OssInterface/Properties/OssHandleField.h"
#include "OssInterface/Properties/OssPropertyEditor.h"

#include <QVector>

class OssColorEditor;
class OssNumberField;
class OssRampField;

/// Edits a ramp of colours, "0,0,0,0,1 1,1,1,1,1": its picture with stops, and below it place and
/// colour of the current stop.
class OSSINTERFACE_EXPORT OssRampEditor : public OssPropertyEditor
{
    Q_OBJECT

public:
    explicit OssRampEditor(QWidget *parent);
    void showValue(const OssCustomAttribute &attribute, const OssMixed &mixed) override;
    QString joinKey() const override;

    OssColorEditor *colorEditor() const { return m_color; }

    OssNumberField *placeField() const { return m_place; }

private:
    QVariant value() const;
    /// Where the current stop's parts begin, and those of its channels.
    int firstPart() const;
    QVector<int> partsOf(const QVector<int> &channels) const;
    void showCurrent();
    void takeColor(const QVariant &color);

    OssRampField *m_field;
    OssNumberField *m_place;
    OssColorEditor *m_color;
    QString m_name;
    OssMixed m_mixed;
};

/// The picture of the ramp with its stops, mixed linearly. A double click on the picture adds a stop
/// of the colour there, on a stop it asks for its colour; stops are dragged, and dragged off to
/// remove them. By keys: + adds a stop behind the current one, Delete removes it, Space goes to the
/// next, Left and Right move it (Shift: a tenth as far), Return asks for its colour.
class OSSINTERFACE_EXPORT OssRampField : public OssHandleField
{
    Q_OBJECT

public:
    using Stop = OssEvRamp::Stop;

    explicit OssRampField(QWidget *parent);

    void setStops(const QVector<Stop> &stops);

    const QVector<Stop> &stops() const { return m_stops; }

    int current() const { return m_current; }

    /// Null when there is none.
    const Stop *currentStop() const;
    /// Without a signal: the caller knows.
    void setCurrentColor(const std::array<float, 4> &color);
    void setCurrentPlace(double place);

    /// Middle of a stop's grip.
    QPointF gripOf(int stop) const;

    QSize sizeHint() const override { return {140, 46}; }

Q_SIGNALS:
    void currentChanged();
    void colorWanted();

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    QRectF bar() const;
    double placeAt(const QPointF &position) const;
    int stopNear(const QPointF &position) const;
    OssEvRamp ramp() const;
    void paintBar(class QPainter *painter) const;
    void paintGrip(class QPainter *painter, int stop) const;
    void setCurrent(int stop);
    void addStop(double place);
    void removeStop(int stop);
    void describe();

    QVector<Stop> m_stops;
    int m_current = 0;
    bool m_isOff = false; ///< the dragged stop is away from the ramp: it goes when let go
};
