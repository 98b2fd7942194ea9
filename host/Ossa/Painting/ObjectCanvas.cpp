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
    connect(session->surfaces(), &PaintSurfaces::ready, this, &ObjectCanvas::adopt);
    m_rest.setSingleShot(true);
    m_rest.setInterval(restTime);
    connect(&m_rest, &QTimer::timeout, this, &ObjectCanvas::prepareDepths);
}

ObjectCanvas::~ObjectCanvas()
{
    if (m_depthThread)
        m_depthThread->wait();
}

void ObjectCanvas::setActive(bool on)
{
    m_isActive = on;
    if (on) {
        prepare();
        return;
    }
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
    m_cloneSource.reset();
    m_cloneWay.reset();
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
    m_cloneWay.reset();
    m_rest.start();
}

// --- made ready

std::shared_ptr<OssEvPaintSurface> ObjectCanvas::surface() const
{
    return m_isActive && m_session->mesh() == m_mesh ? m_session->surface() : nullptr;
}

void ObjectCanvas::prepare()
{
    if (m_isActive && m_mesh && m_session->mesh() == m_mesh)
        m_session->wantSurface();
}

void ObjectCanvas::adopt()
{
    if (!isReady())
        return;
    m_depths.reset();
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
    m_depthThread.reset(QThread::create([made, surface = surface(), toClip, size] {
        try {
            *made = std::make_shared<OssEvPaintView>(surface.get(), toMatrix(toClip), size.width(),
                                                     size.height());
        } catch (const std::bad_alloc &) {
            made->reset(); // who paints hears of it
        }
    }));
    connect(m_depthThread.get(), &QThread::finished, this, [=, used = surface()] {
        m_depthThread->wait();
        m_depthThread.release()->deleteLater();
        if (toClip == m_toClip && size == m_size && used == surface())
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

PaintStart ObjectCanvas::startAt(const QPointF &place, double pressure)
{
    PaintStart start(place, pressure);
    const QTransform toWidget(1.0, 0.0, 0.0, -1.0, 0.0, m_size.height());
    start.toSheet = toWidget * Brushes::instance()->sheet().fromView(m_size);
    if (!m_cloneWay && m_cloneSource) {
        if (const auto source = frame().project(*m_cloneSource))
            m_cloneWay = QPointF(double(source->x), double(source->y)) - place;
    }
    start.cloneFrom = m_cloneWay;
    return start;
}

ObjectCanvas::Press ObjectCanvas::begin(const QPointF &from, double pressure)
{
    if (!m_depths)
        m_depths = makeView(surface().get());
    const QPointF place = flipped(from);
    if (!OssEvSurfaceStroke::touchAt(*surface(), *m_depths, Brushes::instance()->brush(), place.x(),
                                     place.y()))
        return Press::Beside;
    return m_session->beginOn(m_depths, startAt(place, pressure)) ? Press::Begun : Press::Refused;
}

ObjectCanvas::Press ObjectCanvas::fill(const QPointF &place, const std::optional<QPointF> &end)
{
    if (check() == Press::Refused)
        return Press::Refused;
    try {
        if (!m_depths)
            m_depths = makeView(surface().get());
    } catch (const std::bad_alloc &) {
        OssStatusManager::instance()->showMessage(tr("There is no memory left to paint"));
        return Press::Refused;
    }
    const QPointF at = flipped(place);
    if (!surface()->pick(frame().eye(), frame().ray(at.x(), at.y())))
        return Press::Beside;
    const std::optional<QPointF> to = end ? std::optional(flipped(*end)) : std::nullopt;
    return m_session->fillOn(m_depths, startAt(at, 1.0), to) ? Press::Begun : Press::Refused;
}

ObjectCanvas::Press ObjectCanvas::check()
{
    const auto tell = [](const QString &what) {
        OssStatusManager::instance()->showMessage(what);
        return Press::Refused;
    };
    if (!m_session->node())
        return tell(tr("There is nothing to paint on: \"New\" makes a paint node"));
    if (m_session->mesh() != m_mesh)
        return tell(tr("What is painted on is not the object that is seen"));
    if (surface())
        return Press::Begun;
    prepare();
    return tell(tr("The object is being made ready to be painted on"));
}

ObjectCanvas::Press ObjectCanvas::press(const QPointF &place, double pressure)
{
    if (check() == Press::Refused)
        return Press::Refused;
    try {
        const Press pressed = begin(place, pressure);
        if (pressed == Press::Begun)
            noteEnd(place);
        return pressed;
    } catch (const std::bad_alloc &) {
        OssStatusManager::instance()->showMessage(tr("There is no memory left to paint"));
        return Press::Refused;
    }
}

ObjectCanvas::Press ObjectCanvas::pressLine(const QPointF &place, double pressure)
{
    const std::optional<glm::vec3> from = m_lastEnd && surface() ? frame().project(*m_lastEnd)
                                                                 : std::nullopt;
    if (!from)
        return press(place, pressure);
    const QPointF at = flipped(place);
    if (!OssEvSurfaceStroke::touchAt(*surface(), frame(), Brushes::instance()->brush(), at.x(),
                                     at.y()))
        return Press::Beside;
    const Press pressed = press(flipped({double(from->x), double(from->y)}), pressure);
    if (pressed == Press::Begun)
        move(place, pressure);
    return pressed;
}

void ObjectCanvas::move(const QPointF &place, double pressure)
{
    m_session->follow(flipped(place), pressure);
    noteEnd(place);
}

void ObjectCanvas::noteEnd(const QPointF &place)
{
    const QPointF at = flipped(place);
    const std::shared_ptr<OssEvPaintSurface> object = surface();
    if (!object)
        return;
    const auto hit = object->pick(frame().eye(), frame().ray(at.x(), at.y()));
    if (hit)
        m_lastEnd = hit->place;
}

// --- cloning

bool ObjectCanvas::setCloneSource(const QPointF &place)
{
    const std::shared_ptr<OssEvPaintSurface> object = surface();
    const QPointF at = flipped(place);
    const auto hit = object ? object->pick(frame().eye(), frame().ray(at.x(), at.y()))
                            : std::nullopt;
    if (!hit)
        return false;
    m_cloneSource = hit->place;
    m_cloneWay.reset();
    return true;
}

std::optional<QPointF> ObjectCanvas::cloneSource(const QPointF &place)
{
    if (m_cloneWay)
        return flipped(flipped(place) + *m_cloneWay);
    const auto source = m_cloneSource ? frame().project(*m_cloneSource) : std::nullopt;
    if (!source)
        return std::nullopt;
    return flipped({double(source->x), double(source->y)});
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
