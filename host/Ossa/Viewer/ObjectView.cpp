#include "Ossa/Viewer/ObjectView.h"

#include "Ossa/Painting/ObjectCanvas.h"
#include "Ossa/Painting/PaintSession.h"
#include "Ossa/Viewer/DecalHandle.h"
#include "Ossa/Viewer/ViewerPictures.h"
#include "OssCore/Undo/OssUndoManager.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"

#include <QElapsedTimer>
#include <QMouseEvent>
#include <QPainter>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int frameInterval = 33; // milliseconds, while pixels arrive
constexpr qint64 uploadTime = 10; // milliseconds of a frame
constexpr double inset = 24.0;
const QColor groundColor(0x1b, 0x1d, 0x20);
const QColor wordsColor(0xd0, 0x9a, 0x8c);
const QColor plateColor(0x12, 0x13, 0x15, 190);
constexpr float turnAcross = 4.0F; ///< radians, of the surroundings by a drag over the whole view

} // namespace

ObjectView::ObjectView(const ViewerPictures *pictures, QWidget *parent)
    : QWidget(parent)
    , m_pictures(pictures)
    , m_decal(makeDecalHandle())
    , m_wipe(new WipeHandle(this))
{
    setFocusPolicy(Qt::StrongFocus);
    setAccessibleName(tr("Object"));
    setMinimumSize(120, 100);
    m_camera.resetDirection();
    m_frame.setSingleShot(true);
    m_frame.setInterval(frameInterval);
    connect(&m_frame, &QTimer::timeout, this, &ObjectView::redraw);
    connect(pictures, &ViewerPictures::began, this, &ObjectView::begin);
    connect(pictures, &ViewerPictures::changed, this, &ObjectView::noteChange);
    connect(&m_coverage, &PatchCoverage::ready, this,
            [this](int patch) { noteChange(patch, m_pictures->picture(patch).rect()); });
    connect(OssUndoManager::instance(), &OssUndoManager::takingBack, this,
            [this](bool *taken) { *taken = takeStrokeBack() || *taken; });
    startLight();
    begin();
}

ObjectView::~ObjectView() = default;

DecalHandle *ObjectView::makeDecalHandle()
{
    DecalHandle::Sight sight;
    sight.toClip = [this] {
        return LitPicture::toMatrix(m_camera.projection(float(width()) / float(height()))
                                    * m_camera.view());
    };
    sight.ray = [this](const QPointF &place) {
        return rayTo(place);
    };
    return new DecalHandle(this, sight);
}

void ObjectView::setMesh(const std::shared_ptr<const OssEvMesh> &mesh, const OssGeoEntity *entity)
{
    m_decal->setSeen(mesh, entity);
    if (mesh == m_mesh)
        return;
    m_mesh = mesh;
    m_isFramed = false;
    m_zoomPoint.reset();
    if (m_canvas)
        m_canvas->setMesh(mesh);
    redraw();
}

void ObjectView::setLit(bool lit)
{
    if (lit == m_isLit)
        return;
    m_isLit = lit;
    Q_EMIT litChanged(lit);
    activateLight();
    redraw();
}

void ObjectView::frameAll()
{
    if (isInHand() || m_decal->isDragged())
        return;
    if (isMaterial()) {
        frameLight();
        return;
    }
    if (!m_renderer)
        return;
    m_camera.frame(m_renderer->centre(), m_renderer->radius());
    m_isFramed = true;
    m_zoomPoint.reset();
    redraw();
}

// --- pictures

void ObjectView::begin()
{
    if (m_renderer)
        m_renderer->setPatches(m_pictures->patches(), m_pictures->resolution());
    const QList<int> patches = m_pictures->patches();
    for (const int patch : patches)
        noteChange(patch, m_pictures->picture(patch).rect());
    redraw();
}

void ObjectView::noteChange(int patch, const QRect &area)
{
    m_stale[patch] |= area;
    scheduleFrame();
}

void ObjectView::scheduleFrame()
{
    if (isVisible() && !m_frame.isActive())
        m_frame.start();
}

bool ObjectView::takePictures()
{
    QElapsedTimer spent;
    spent.start();
    while (!m_stale.isEmpty() && spent.elapsed() < uploadTime) {
        const auto first = m_stale.begin();
        m_renderer->update(first.key(), m_pictures->picture(first.key()), first.value());
        if (m_renderer->lacksCoverage(first.key()))
            m_coverage.want(m_mesh, first.key());
        m_stale.erase(first);
    }
    return m_stale.isEmpty();
}

// --- drawing

void ObjectView::redraw()
{
    m_isStale = true;
    if (isMaterial())
        drawLight();
    update();
}

void ObjectView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    // Not while painting: making a context may handle events.
    if (!m_renderer) {
        m_renderer = std::make_unique<ObjectRenderer>();
        m_renderer->setPatches(m_pictures->patches(), m_pictures->resolution());
    }
    activateLight();
    redraw();
}

void ObjectView::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    activateLight();
}

void ObjectView::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    if (isMaterial())
        paintLight(&painter);
    else if (m_renderer)
        paintPatches(&painter);
    m_decal->draw(&painter);
    drawOutline(&painter);
}

void ObjectView::paintPatches(QPainter *painter)
{
    const bool isDrawn = m_renderer->problem().isEmpty();
    if (isDrawn && m_isStale)
        m_renderer->setMesh(m_mesh);
    if (isDrawn && m_isStale) {
        if (!m_isFramed) {
            m_camera.frame(m_renderer->centre(), m_renderer->radius());
            m_isFramed = true;
        }
        if (!takePictures())
            scheduleFrame();
        const double ratio = devicePixelRatioF();
        ObjectRenderer::View view;
        view.size = (QSizeF(size()) * ratio).toSize();
        view.camera = m_camera.view();
        view.projection = m_camera.projection(float(width()) / float(height()));
        view.ground = groundColor;
        view.isLit = m_isLit;
        m_image = m_renderer->render(view);
        m_image.setDevicePixelRatio(ratio);
        m_isStale = false;
    }
    if (m_image.isNull())
        painter->fillRect(rect(), groundColor);
    else
        painter->drawImage(0, 0, m_image);
    paintWords(painter,
               m_renderer->problem().isEmpty() ? m_pictures->problem() : m_renderer->problem());
}

void ObjectView::paintWords(QPainter *painter, const QString &words)
{
    constexpr int flags = Qt::AlignCenter | Qt::TextWordWrap;
    const QRectF room = QRectF(rect()).adjusted(inset, inset, -inset, -inset);
    if (!words.isEmpty()) {
        // Readable on whatever is seen behind.
        const QRectF around = painter->boundingRect(room, flags, words);
        painter->setPen(Qt::NoPen);
        painter->setBrush(plateColor);
        painter->drawRoundedRect(around.adjusted(-8, -5, 8, 5), 5, 5);
    }
    painter->setPen(wordsColor);
    painter->drawText(room, flags, words);
}

void ObjectView::resizeEvent(QResizeEvent *)
{
    redraw();
}

// --- input

void ObjectView::mousePressEvent(QMouseEvent *event)
{
    m_last = event->pos();
    m_isTurning = !paintPress(*event);
}

void ObjectView::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF way = QPointF(event->pos() - m_last) / std::min(width(), height());
    m_last = event->pos();
    m_zoomPoint.reset();
    if (sheetMove(*event) || paintMove(*event) || !m_isTurning)
        return;
    m_isMoving = event->buttons() & (Qt::LeftButton | Qt::MiddleButton);
    const bool turnsLight = (event->buttons() & Qt::LeftButton)
                            && (event->modifiers() & Qt::ShiftModifier);
    m_hasTurned = m_hasTurned || turnsLight;
    if (turnsLight)
        m_light.setTurn(m_light.turn() + float(way.x()) * turnAcross);
    else if (event->buttons() & Qt::MiddleButton)
        m_camera.pan(way);
    else if (event->buttons() & Qt::LeftButton)
        m_camera.orbit(way);
    else
        return;
    redraw();
}

void ObjectView::mouseReleaseEvent(QMouseEvent *event)
{
    if (m_isPainted && event->button() == Qt::LeftButton)
        paintRelease(event->localPos());
    m_sheetHand.release();
    if (!m_isMoving)
        return;
    m_isMoving = false;
    if (std::exchange(m_hasTurned, false))
        Q_EMIT surroundingsTurned();
    redraw();
}

ScenePick::Ray ObjectView::rayTo(const QPointF &place) const
{
    const QVector3D eye = m_camera.eye();
    const QVector3D way = m_camera.wayTo(place, size());
    return {{eye.x(), eye.y(), eye.z()}, {way.x(), way.y(), way.z()}};
}

const OssGeoEntity *ObjectView::objectAt(const QPointF &place) const
{
    // The scene holds the geometry while it is asked for.
    const auto scene = isMaterial() ? m_light.scene() : nullptr;
    return scene ? m_light.entityOf(ScenePick::geometryAt(*scene, rayTo(place))) : nullptr;
}

QVector3D ObjectView::placeAt(const QPointF &place) const
{
    const ScenePick::Ray ray = rayTo(place);
    std::optional<glm::vec3> met;
    if (isMaterial())
        met = ScenePick::firstOf(*m_light.scene(), ray);
    else if (m_mesh)
        met = ScenePick::firstOf(*m_mesh, ray);
    return met ? QVector3D(met->x, met->y, met->z) : m_camera.besideCentre(place, size());
}

// What was under the pointer stays there, so one look is enough for a whole turn of the wheel.
void ObjectView::wheelEvent(QWheelEvent *event)
{
    if (m_isPainted && (SheetHand::wheel(*event) || isInHand()))
        return;
    if (m_zoomPoint != event->position()) {
        m_zoomPoint = event->position();
        m_zoomPlace = placeAt(*m_zoomPoint);
    }
    m_camera.zoomAt(m_zoomPlace, float(std::pow(1.15, event->angleDelta().y() / 120.0)));
    redraw();
}
