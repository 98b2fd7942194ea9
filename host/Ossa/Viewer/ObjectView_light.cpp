#include "Ossa/Viewer/ObjectView.h"

#include "Ossa/Viewer/ViewerHint.h"
#include "OssModel/Project/OssProjectManager.h"

#include <QPainter>

#include <cmath>

// The object in light.

namespace {

constexpr glm::vec4 ground(0.0110F, 0.0123F, 0.0144F, 1.0F); // the canvas, scene-linear
// Behind a channel by itself, which may be black: blue, as no number is. On the screen, and scene-linear.
constexpr glm::vec4 dataGround(0.13F, 0.17F, 0.27F, 1.0F);
constexpr glm::vec4 colorGround(0.0152F, 0.0245F, 0.0595F, 1.0F);

} // namespace

void ObjectView::startLight()
{
    m_look.ground = ground;
    connect(m_wipe, &WipeHandle::moved, this, &ObjectView::redraw);
    connect(&m_light, &LitScene::changed, this, [this] {
        if (isMaterial())
            redraw();
    });
    connect(OssProjectManager::instance(), &OssProjectManager::projectClosing, this, [this] {
        m_isLightFramed = false;
        m_camera.resetDirection();
    });
    connect(&m_light, &LitScene::reshaped, this, [this] {
        // What has the same middle and size is the same thing to who looks.
        if (!m_isLightFramed && isVisible())
            frameLight();
    });
}

void ObjectView::activateLight()
{
    const bool wanted = isVisible() && isMaterial();
    if (wanted && !m_litRenderer) {
        m_litRenderer = std::make_unique<LitRenderer>();
        connect(m_litRenderer.get(), &LitRenderer::drawn, this, [this](const QImage &picture) {
            m_litImage = picture;
            if (isMaterial())
                update();
        });
        connect(m_litRenderer.get(), &LitRenderer::failed, this, [this](const QString &problem) {
            m_lightProblem = problem;
            redraw();
        });
    }
    m_light.setActive(wanted);
    m_wipe->setShown(isMaterial() && !m_kept.empty());
}

void ObjectView::setLook(const OssRdView &look)
{
    m_look = look;
    redraw();
}

void ObjectView::setScreen(const LitPicture::Screen &screen)
{
    m_screen = screen;
    redraw();
}

void ObjectView::follow()
{
    m_light.follow();
}

void ObjectView::keepPicture()
{
    m_kept = m_light.scene()->objects;
    m_keptName = m_shownName;
    activateLight();
    redraw();
}

void ObjectView::dropKeptPicture()
{
    m_kept.clear();
    activateLight();
    redraw();
}

void ObjectView::setShownName(const QString &name)
{
    m_shownName = name;
    update();
}

void ObjectView::frameLight()
{
    const std::shared_ptr<const OssRdGeometry> geometry = m_light.geometry();
    if (!geometry)
        return;
    const glm::vec3 &centre = geometry->centre;
    m_camera.frame({centre.x, centre.y, centre.z}, geometry->radius);
    m_isLightFramed = true;
    m_zoomPoint.reset();
    redraw();
}

void ObjectView::drawLight()
{
    if (!m_litRenderer || !isVisible() || !m_screen.colors || size().isEmpty())
        return;
    const QSize pixels = (QSizeF(size()) * devicePixelRatioF()).toSize();
    LitRenderer::Request request;
    request.scene = m_light.scene();
    if (!request.scene->probe && request.scene->keyLight == glm::vec3(0.0F))
        return; // it is dark until the surroundings are there
    request.view = m_look;
    request.view.width = pixels.width();
    request.view.height = pixels.height();
    request.view.camera = LitPicture::toMatrix(m_camera.view());
    request.view.projection = LitPicture::toMatrix(
        m_camera.projection(float(width()) / float(height())));
    request.screen = m_screen;
    switch (m_look.shows) {
    case OssRdView::Shows::Lit:
    case OssRdView::Shows::BaseColor:
    case OssRdView::Shows::Emission:
    case OssRdView::Shows::Matcap:
        break;
    default:
        request.screen.isData = true;
    }
    // Numbers have no surroundings.
    if (m_look.shows != OssRdView::Shows::Lit) {
        request.view.behind = OssRdView::Behind::Plain;
        request.view.ground = request.screen.isData ? dataGround : colorGround;
    }
    request.isPainted = m_isPainted && !m_isMoving && !m_wipe->isDragged();
    request.isMoving = m_isMoving || m_wipe->isDragged() || isInHand();
    if (isComparing()) {
        // In the light that is chosen now.
        auto beside = std::make_shared<OssRdScene>(*request.scene);
        beside->objects = m_kept;
        request.beside = beside;
        request.border = float(m_wipe->part());
    }
    m_litRenderer->draw(request);
}

void ObjectView::paintHint(QPainter *painter) const
{
    const QString how = ViewerHint::whyBare();
    const QRectF place = QRectF(rect()).adjusted(12.0, 12.0, -12.0, -12.0);
    constexpr int flags = Qt::AlignHCenter | Qt::AlignBottom | Qt::TextWordWrap;
    const QRectF plate = painter->boundingRect(place, flags, how).adjusted(-6.0, -3.0, 6.0, 3.0);
    painter->fillRect(plate, QColor(0x14, 0x15, 0x18, 200));
    painter->setPen(QColor(0xb8, 0xbe, 0xc8));
    painter->drawText(place, flags, how);
}

void ObjectView::paintLight(QPainter *painter)
{
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->fillRect(rect(), QColor(0x1b, 0x1d, 0x20));
    if (!m_litImage.isNull())
        painter->drawImage(rect(), m_litImage);
    if (isComparing())
        WipeLine::draw(painter, rect(), std::round(m_wipe->part() * width()), m_keptName,
                       m_shownName);
    if (m_light.isBare())
        paintHint(painter);
    else
        paintWords(painter, m_light.problem());
}
