#include "Ossa/Viewer/ObjectView.h"

#include "Ossa/Painting/Brushes.h"
#include "Ossa/Painting/ObjectCanvas.h"
#include "Ossa/Painting/PaintMarks.h"
#include "Ossa/Painting/PaintSession.h"
#include "Ossa/Viewer/DecalHandle.h"
#include "Ossa/Viewer/ViewerPictures.h"
#include "OssCore/Program/OssStatusManager.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTabletEvent>

// The object as a canvas.

namespace {

constexpr double smallestCore = 4.0; ///< pixels: what is smaller is not drawn within the outline

} // namespace

void ObjectView::setCanvas(PaintSession *session)
{
    m_session = session;
    m_canvas = std::make_unique<ObjectCanvas>(session);
    connect(m_canvas.get(), &ObjectCanvas::ready, this, [this] { update(); });
    connect(Brushes::instance(), &Brushes::changed, this, [this] { update(); });
    setMouseTracking(true);
    followStrokes();
}

void ObjectView::followStrokes()
{
    LitScene::Hand hand;
    hand.isPainting = [this] {
        return m_session->isPainting();
    };
    hand.within = [this](const std::function<void()> &run) {
        m_session->withStroke(run);
    };
    m_light.setHand(hand);
    connect(m_session, &PaintSession::painted, &m_light, &LitScene::touch);
    connect(m_session, &PaintSession::paintedAlong, &m_light, &LitScene::touch);
    connect(m_session, &PaintSession::settled, &m_light, &LitScene::expectSame);
    connect(m_session, &PaintSession::stateChanged, this, [this] {
        if (m_session->isPainting())
            return;
        m_light.strokeEnded();
        if (isMaterial())
            redraw(); // finely again
    });
}

void ObjectView::setPainted(bool painted)
{
    m_isPainted = painted;
    m_everyMove.setWanted(painted);
    if (!painted)
        m_session->end();
    m_gradientFrom.reset();
    m_decal->setActive(!painted);
    m_canvas->setActive(painted);
    m_light.setPainted(painted);
    setCursor(painted ? Qt::CrossCursor : Qt::ArrowCursor);
    activateLight();
    redraw();
}

void ObjectView::placeCanvas()
{
    m_canvas->setView(m_camera.view(), m_camera.projection(float(width()) / float(height())),
                      size());
}

bool ObjectView::paintPress(const QMouseEvent &event)
{
    if (m_isPainted && m_sheetHand.press(event))
        return true;
    if (!m_isPainted || event.button() != Qt::LeftButton || (event.modifiers() & Qt::AltModifier))
        return false;
    placeCanvas();
    if (event.modifiers() & Qt::ControlModifier) {
        pick(event.localPos());
        return true;
    }
    const OssEvBrush::Tool tool = Brushes::instance()->brush().tool;
    if (tool == OssEvBrush::Tool::Gradient) {
        m_gradientFrom = event.localPos();
        return true;
    }
    if (tool == OssEvBrush::Tool::Fill)
        return m_canvas->fill(event.localPos()) != ObjectCanvas::Press::Beside;
    const QPointF place = m_hand.begin(event.localPos());
    const ObjectCanvas::Press pressed = event.modifiers() & Qt::ShiftModifier
                                            ? m_canvas->pressLine(place, m_hand.pressure())
                                            : m_canvas->press(place, m_hand.pressure());
    return pressed != ObjectCanvas::Press::Beside; // there a drag turns the object
}

bool ObjectView::paintMove(const QMouseEvent &event)
{
    if (!m_isPainted)
        return false;
    m_pointer = event.localPos();
    update();
    if (!m_session->isPainting())
        return false;
    m_canvas->move(m_hand.follow(event.localPos(), Brushes::instance()->steadiness()),
                   m_hand.pressure());
    return true;
}

bool ObjectView::sheetMove(const QMouseEvent &event)
{
    return m_isPainted && m_sheetHand.move(event, size());
}

void ObjectView::paintRelease(const QPointF &place)
{
    m_session->end();
    if (!m_gradientFrom)
        return;
    const QPointF from = *m_gradientFrom;
    m_gradientFrom.reset();
    update();
    placeCanvas();
    if (from == place || Brushes::instance()->brush().tool != OssEvBrush::Tool::Gradient)
        return;
    if (m_canvas->fill(from, place) == ObjectCanvas::Press::Beside)
        OssStatusManager::instance()->showMessage(tr("A gradient begins on the object"));
}

void ObjectView::pick(const QPointF &place)
{
    if (Brushes::instance()->brush().tool == OssEvBrush::Tool::Clone) {
        m_canvas->setCloneSource(place);
        update();
        return;
    }
    const std::optional<QPointF> uv = m_canvas->uvAt(place);
    if (uv)
        Brushes::instance()->takeColor(m_pictures->colorAt(*uv));
}

void ObjectView::tabletEvent(QTabletEvent *event)
{
    // Left to Qt, which makes a mouse event of it: the gestures are the same.
    m_hand.note(*event);
    event->ignore();
}

void ObjectView::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Escape || !takeStrokeBack())
        QWidget::keyPressEvent(event);
}

bool ObjectView::isInHand() const
{
    return m_isPainted && (m_session->isPainting() || m_gradientFrom);
}

bool ObjectView::takeStrokeBack()
{
    if (!isInHand())
        return false;
    m_session->cancel();
    m_canvas->forgetEnd();
    m_gradientFrom.reset();
    update();
    return true;
}

void ObjectView::focusOutEvent(QFocusEvent *event)
{
    if (m_isPainted)
        m_session->end();
    m_gradientFrom.reset();
    QWidget::focusOutEvent(event);
}

void ObjectView::enterEvent(QEvent *event)
{
    QWidget::enterEvent(event);
    if (m_isPainted)
        Q_EMIT entered();
}

void ObjectView::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    m_pointer.reset();
    update();
}

void ObjectView::drawOutline(QPainter *painter)
{
    if (!m_isPainted)
        return;
    SheetHand::draw(painter, size());
    if (!m_pointer || m_isMoving)
        return;
    placeCanvas();
    if (m_gradientFrom)
        PaintMarks::drawLine(painter, *m_gradientFrom, *m_pointer);
    if (PaintMarks::hasNoOutline())
        return;
    if (Brushes::instance()->brush().tool == OssEvBrush::Tool::Clone) {
        if (const auto source = m_canvas->cloneSource(*m_pointer))
            PaintMarks::drawSource(painter, *source);
    }
    const QPolygonF ring = m_canvas->outline(*m_pointer);
    if (ring.isEmpty())
        return;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    // Dark and light, so that it is seen on any picture.
    painter->setPen(QPen(QColor(0, 0, 0, 160), 2.5));
    painter->drawPolyline(ring);
    painter->setPen(QPen(Qt::white, 1.0));
    painter->drawPolyline(ring);
    const double hardness = Brushes::instance()->brush().hardness;
    const QPolygonF core = m_canvas->outline(*m_pointer, hardness);
    const double across = std::max(core.boundingRect().width(), core.boundingRect().height());
    if (across < smallestCore || hardness > 0.95)
        return;
    painter->setPen(QPen(QColor(255, 255, 255, 110), 1.0, Qt::DotLine));
    painter->drawPolyline(core);
}
