#pragma once

#include "OssInterface/OssInterface_export.h"

#include <QVector>
#include <QWidget>

/// A picture with handles that are added, removed, dragged and moved by keys: what the fields of
/// curves and ramps have in common. A drag is told as one edit.
class OSSINTERFACE_EXPORT OssHandleField : public QWidget
{
    Q_OBJECT

public:
    explicit OssHandleField(QWidget *parent);

    /// Several values that differ are edited together; this is one of them. Shown as such.
    void setMixed(bool mixed);

Q_SIGNALS:
    void edited();
    /// One of many small changes that follow each other.
    void stepped();
    void dragBegun();
    void dragged();
    void dragEnded();
    /// By Escape.
    void left();

protected:
    /// Has Delete, Space and + for itself, also where they are keys of commands.
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

    /// Says so in a corner of the picture, clear of the handles if there is one.
    void paintMixed(QPainter *painter, const QRectF &picture,
                    const QVector<QPointF> &handles = {}) const;

    /// The pointer has a handle; a drag begins when it moves.
    void takeHandle() { m_hasHandle = true; }

    void letHandleGo() { m_hasHandle = false; }

    /// For a move: whether a handle is held. Announces the drag at its first move.
    bool isDragging();
    /// For a release. True when a drag is over, which the caller announces.
    bool endDrag();

private:
    bool m_hasHandle = false;
    bool m_dragging = false;
    bool m_mixed = false;
};
