#include "Ossa/Surfaces/MaterialBalls.h"

#include "Ossa/Surfaces/LitPicture.h"
#include "Ossa/Surfaces/ObjectCamera.h"
#include "Ossa/Surfaces/SurfacePixels.h"
#include "Ossa/Surfaces/Surroundings.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssRender/Draw/OssRdRenderer.h"

#include <QCoreApplication>
#include <QPointer>

namespace {

constexpr int patch = 1001; // of the ball
constexpr int mirrorSamples = 32;
constexpr float keyLight = 0.7F;

} // namespace

/// What the thread keeps from ball to ball; made there, for it takes a second.
struct MaterialBalls::Painter
{
    explicit Painter(const Format &how)
        : format(how)
    {
    }

    QImage draw(const OssRdMaterial &material, const OssEvColorSpaces::Pointer &spaces)
    {
        if (!renderer) {
            renderer = std::make_unique<OssRdRenderer>();
            geometry = OssRdGeometry::of(*OssEvShapes::sphere());
        }
        if (renderer->problem().empty() && colors != spaces) {
            colors = spaces;
            if (!Surroundings::make({}, *spaces, &surroundings))
                return {};
        }
        OssRdScene scene;
        scene.objects.push_back({geometry, {{patch, material}}});
        scene.probe = surroundings.probe;
        scene.keyLight = glm::vec3(keyLight);
        OssRdView view;
        view.width = format.size;
        view.height = format.size;
        view.mirrorSamples = mirrorSamples;
        view.hasGroundShadow = false;
        ObjectCamera camera;
        camera.resetDirection();
        camera.frame({}, float(format.size) / float(format.ball));
        view.camera = LitPicture::toMatrix(camera.view());
        view.projection = LitPicture::toMatrix(camera.projection(1.0F));
        LitPicture::Screen screen;
        screen.colors = spaces;
        return LitPicture::shown(renderer->render(scene, view), screen);
    }

    const Format format;
    std::unique_ptr<OssRdRenderer> renderer;
    std::shared_ptr<const OssRdGeometry> geometry;
    OssEvColorSpaces::Pointer colors;
    Surroundings surroundings;
};

MaterialBalls::MaterialBalls(QObject *parent)
    : MaterialBalls(Format(), parent)
{
}

MaterialBalls::MaterialBalls(const Format &format, QObject *parent)
    : QObject(parent)
    , m_format(format)
    , m_painter(std::make_shared<Painter>(format))
{
    m_thread.setMaxThreadCount(1);
}

MaterialBalls::~MaterialBalls()
{
    cancel();
    m_thread.clear();
    m_thread.waitForDone();
}

void MaterialBalls::cancel()
{
    ++m_generation;
    qDeleteAll(findChildren<SurfacePixels *>());
}

void MaterialBalls::start(const OssSurfaceMaps &maps, const Made &made)
{
    auto *pixels = new SurfacePixels(this);
    pixels->setBehind(true);
    const auto whole = [this, pixels, made] {
        const auto &materials = pixels->materials();
        OssRdMaterial material;
        if (pixels->problem().isEmpty() && !materials.empty())
            material = materials.begin()->second;
        pixels->disconnect(this);
        pixels->deleteLater();
        draw(material, made);
    };
    // Not while it is still telling others.
    connect(pixels, &SurfacePixels::finished, this, whole, Qt::QueuedConnection);
    pixels->show(maps, {maps.mesh()->patches().front()}, m_format.texels);
}

void MaterialBalls::draw(const OssRdMaterial &material, const Made &made)
{
    m_thread.start([self = QPointer<MaterialBalls>(this), painter = m_painter, material, made,
                    colors = OssColorManagement::spaces(), generation = m_generation] {
        const QImage picture = painter->draw(material, colors);
        QMetaObject::invokeMethod(
            qApp,
            [self, made, picture, generation] {
                if (!self || generation != self->m_generation)
                    return;
                self->m_isHopeless = picture.isNull();
                made(picture);
            },
            Qt::QueuedConnection);
    });
}
