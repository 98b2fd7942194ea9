#pragma once

#include "Ossa/Surfaces/ObjectCamera.h"
#include "Ossa/Viewer/ObjectRenderer.h"

#include <QElapsedTimer>
#include <QHash>
#include <QTimer>
#include <QWidget>

class ViewerPictures;

/// The object with the patches on its surface. Left drag turns it, middle drag moves it, the wheel
/// comes nearer. Where OpenGL cannot be had it says so.
///
/// Draws only while it is seen; pixels that arrive are handed to OpenGL some at a time between
/// frames, so that a large picture does not hold up the user.
class ObjectView : public QWidget
{
    Q_OBJECT

public:
    /// The pictures must outlive the view.
    explicit ObjectView(const ViewerPictures *pictures, QWidget *parent = nullptr);
    ~ObjectView() override;

    /// Null: nothing. Another shape than before is framed.
    void setMesh(const std::shared_ptr<const OssEvMesh> &mesh);

    bool isLit() const { return m_isLit; }

    void setLit(bool lit);
    void frameAll();

    QSize sizeHint() const override { return {420, 380}; }

Q_SIGNALS:
    void litChanged(bool lit);

protected:
    void showEvent(QShowEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void begin();
    void noteChange(int patch, const QRect &area);
    void scheduleFrame();
    bool takePictures();
    void redraw();

    const ViewerPictures *m_pictures;
    std::unique_ptr<ObjectRenderer> m_renderer; ///< made when the view is first seen
    std::shared_ptr<const OssEvMesh> m_mesh;
    ObjectCamera m_camera;
    QHash<int, QRect> m_stale; ///< areas that the renderer has not got yet
    QTimer m_frame;
    QImage m_image;
    bool m_isStale = true;
    bool m_isFramed = false;
    bool m_isLit = true;
    QPoint m_last;
};
