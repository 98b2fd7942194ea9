#pragma once

#include "OssEvaluation/Values/OssEvTile.h"

#include <QHash>
#include <QImage>
#include <QWidget>

/// The patches of an object side by side, as their numbers place them. Middle drag pans, the wheel
/// zooms at the pointer, F shows everything.
class UvView : public QWidget
{
    Q_OBJECT

public:
    explicit UvView(QWidget *parent = nullptr);

    /// What is there goes on being shown until its pixels are replaced.
    void begin(const QList<int> &patches, int resolution, const QString &problem);
    /// A tile of a coarser picture is shown enlarged and has no values.
    void setTile(int patch, int resolution, const QPoint &place, const QImage &picture,
                 const OssEvTilePointer &tile);
    void frameAll();

    QSize sizeHint() const override { return {420, 380}; }

Q_SIGNALS:
    /// The middle of what is seen moved; in patches, v upwards.
    void focusMoved(const QPointF &place);
    /// Values under the pointer, or where there are none an empty text.
    void pointed(const QString &text);

protected:
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    struct Patch
    {
        QImage picture;
        QHash<QPair<int, int>, OssEvTilePointer> tiles;
    };

    QRectF rectOf(int patch) const;
    QPointF toUv(const QPointF &place) const;
    QString valuesAt(const QPointF &place) const;
    void tellFocus();

    QHash<int, Patch> m_patches;
    int m_resolution = 1024;
    QString m_problem;
    double m_scale = 300.0; ///< pixels of a patch
    QPointF m_origin;       ///< of patch 1001's lower left corner
    QPoint m_last;
    bool m_framed = false;
};
