#include "Ossa/Painting/ObjectCanvas.h"

#include "Ossa/Painting/Brushes.h"
#include "Ossa/Painting/PaintSession.h"
#include "OssCore/Program/OssStatusManager.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <QThread>

#include <cmath>
#include <new>

namespace {

constexpr int restTime = 100; ///< milliseconds without a move of the view
constexpr int outlineParts = 48;
constexpr double fullTurn = 6.283185307179586;

glm::mat4 toMatrix(const QMatrix4x4 &matrix)
{
    glm::mat4 same;
    for (int column = 0; column < 4; ++column) {
        for (int row = 0; row < 4; ++row)
            same[column][row] = matrix(row, column);
    }
    return same;
}

} // namespace

ObjectCanvas::ObjectCanvas(PaintSession *session, QObject *parent)
    : QObject(parent)
    , m_session(session)
{
    connect(session, &PaintSession::stateChanged, this, &ObjectCanvas::prepare);
    m_rest.setSingleShot(true);
    m_rest.setInterval(restTime);
    connect(&m_rest, &QTimer::timeout, this, &ObjectCanvas::prepareDepths);
}

ObjectCanvas::~ObjectCanvas()
{
    for (const auto &thread : {m_thread.get(), m_depthThread.get()}) {
        if (thread)
            thread->wait();
    }
}

void ObjectCanvas::setActive(bool on)
{
    m_isActive = on;
    if (on) {
        prepare();
        return;
    }
    m_surface.reset();
    m_depths.reset();
    m_lastEnd.reset();
}

void ObjectCanvas::setMesh(const std::shared_ptr<const OssEvMesh> &mesh)
{
    if (mesh == m_mesh)
        return;
    m_mesh = mesh;
    m_depths.reset();
    m_lastEnd.reset();
    prepare();
}

void ObjectCanvas::setView(const QMatrix4x4 &camera, const QMatrix4x4 &projection,
                           const QSize &size)
{
    const QMatrix4x4 toClip = projection * camera;
    if (toClip == m_toClip && size == m_size)
        return;
    m_toClip = toClip;
    m_size = size;
    m_frame.reset();
    m_depths.reset();
    m_rest.start();
}

// --- made ready

std::shared_ptr<OssEvPaintSurface> ObjectCanvas::surface() const
{
    const bool fits = m_surface && m_surface->mesh() == m_mesh
                      && m_surface->resolution() == m_session->texelsAcross();
    return fits ? m_surface : nullptr;
}

void ObjectCanvas::prepare()
{
    if (!m_isActive || !m_mesh || m_thread || surface() || m_session->mesh() != m_mesh)
        return;
    auto made = std::make_shared<std::shared_ptr<OssEvPaintSurface>>();
    m_thread.reset(QThread::create([made, mesh = m_mesh, resolution = m_session->texelsAcross()] {
        try {
            *made = std::make_shared<OssEvPaintSurface>(mesh, resolution);
        } catch (const std::bad_alloc &) {
            made->reset();
        }
    }));
    connect(m_thread.get(), &QThread::finished, this, [this, made] {
        m_thread->wait();
        m_thread.release()->deleteLater(); // it is still telling
        adopt(std::move(*made));
    });
    m_thread->start();
}

void ObjectCanvas::adopt(std::shared_ptr<OssEvPaintSurface> surface)
{
    if (!surface) {
        OssStatusManager::instance()->showMessage(
            tr("There is no memory left to paint on the object"));
        return;
    }
    m_surface = std::move(surface);
    m_depths.reset();
    if (!isReady()) {
        prepare(); // it is another one meanwhile
        return;
    }
    prepareDepths();
    Q_EMIT ready();
}

// A press that comes before waits for its own.
void ObjectCanvas::prepareDepths()
{
    if (!m_isActive || m_depths || m_depthThread || m_size.isEmpty() || !surface())
        return;
    auto made = std::make_shared<std::shared_ptr<const OssEvPaintView>>();
    const QMatrix4x4 toClip = m_toClip;
    const QSize size = m_size;
    m_depthThread.reset(QThread::create([made, surface = m_surface, toClip, size] {
        try {
            *made = std::make_shared<OssEvPaintView>(surface.get(), toMatrix(toClip), size.width(),
                                                     size.height());
        } catch (const std::bad_alloc &) {
            made->reset(); // who paints hears of it
        }
    }));
    connect(m_depthThread.get(), &QThread::finished, this, [=, surface = m_surface] {
        m_depthThread->wait();
        m_depthThread.release()->deleteLater();
        if (toClip == m_toClip && size == m_size && surface == m_surface)
            m_depths = m_depths ? m_depths : *made;
        else
            m_rest.start();
    });
    m_depthThread->start();
}

std::shared_ptr<const OssEvPaintView> ObjectCanvas::makeView(const OssEvPaintSurface *surface) const
{
    return std::make_shared<OssEvPaintView>(surface, toMatrix(m_toClip), m_size.width(),
                                            m_size.height());
}

const OssEvPaintView &ObjectCanvas::frame()
{
    if (!m_frame)
        m_frame = makeView(nullptr);
    return *m_frame;
}

QPointF ObjectCanvas::flipped(const QPointF &place) const
{
    return {place.x(), m_size.height() - place.y()};
}

// --- strokes

ObjectCanvas::Press ObjectCanvas::begin(const QPointF &from, double pressure)
{
    if (!m_depths)
        m_depths = makeView(m_surface.get());
    const QPointF place = flipped(from);
    if (!OssEvSurfaceStroke::touchAt(*m_surface, *m_depths, Brushes::instance()->brush(), place.x(),
                                     place.y()))
        return Press::Beside;
    return m_session->beginOn(m_surface, m_depths, place, pressure) ? Press::Begun : Press::Refused;
}

ObjectCanvas::Press ObjectCanvas::press(const QPointF &place, double pressure)
{
    const auto tell = [](const QString &what) {
        OssStatusManager::instance()->showMessage(what);
        return Press::Refused;
    };
    if (!m_session->node())
        return tell(tr("There is nothing to paint on: \"New\" makes a paint node"));
    if (m_session->mesh() != m_mesh)
        return tell(tr("What is painted on is not the object that is seen"));
    if (!surface()) {
        prepare();
        return tell(tr("The object is being made ready to be painted on"));
    }
    try {
        const Press pressed = begin(place, pressure);
        if (pressed == Press::Begun)
            noteEnd(place);
        return pressed;
    } catch (const std::bad_alloc &) {
        return tell(tr("There is no memory left to paint"));
    }
}

ObjectCanvas::Press ObjectCanvas::pressLine(const QPointF &place, double pressure)
{
    const std::optional<glm::vec3> from = m_lastEnd && surface() ? frame().project(*m_lastEnd)
                                                                 : std::nullopt;
    if (!from)
        return press(place, pressure);
    const Press pressed = press(flipped({double(from->x), double(from->y)}), pressure);
    if (pressed == Press::Begun)
        move(place, pressure);
    return pressed;
}

void ObjectCanvas::move(const QPointF &place, double pressure)
{
    m_session->moveTo(flipped(place), pressure);
    noteEnd(place);
}

void ObjectCanvas::noteEnd(const QPointF &place)
{
    const QPointF at = flipped(place);
    const auto hit = m_surface->pick(frame().eye(), frame().ray(at.x(), at.y()));
    if (hit)
        m_lastEnd = hit->place;
}

// --- what is under the pointer

QPolygonF ObjectCanvas::outline(const QPointF &place, double part)
{
    const std::shared_ptr<OssEvPaintSurface> object = surface();
    if (!object)
        return {};
    const QPointF at = flipped(place);
    const auto touch = OssEvSurfaceStroke::touchAt(*object, frame(), Brushes::instance()->brush(),
                                                   at.x(), at.y());
    if (!touch)
        return {};
    QPolygonF ring;
    for (int i = 0; i <= outlineParts; ++i) {
        const double angle = fullTurn * i / outlineParts;
        const float radius = touch->radius * float(part);
        const auto pixel = frame().project(touch->centre
                                           + touch->right * (radius * float(std::cos(angle)))
                                           + touch->up * (radius * float(std::sin(angle))));
        if (pixel)
            ring.append(flipped({double(pixel->x), double(pixel->y)}));
    }
    return ring;
}

std::optional<QPointF> ObjectCanvas::uvAt(const QPointF &place)
{
    const std::shared_ptr<OssEvPaintSurface> object = surface();
    const QPointF at = flipped(place);
    const auto hit = object ? object->pick(frame().eye(), frame().ray(at.x(), at.y()))
                            : std::nullopt;
    if (!hit)
        return std::nullopt;
    return QPointF(double(hit->uv.x), double(hit->uv.y));
}
