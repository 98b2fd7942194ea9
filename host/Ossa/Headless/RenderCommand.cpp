#include "Ossa/Headless/RenderCommand.h"

#include "Ossa/Headless/CommandLine.h"
#include "Ossa/Headless/Interrupt.h"
#include "Ossa/Headless/ProgressBar.h"
#include "Ossa/Headless/StillFile.h"
#include "Ossa/Surfaces/LitPicture.h"
#include "Ossa/Surfaces/LitSurface.h"
#include "Ossa/Surfaces/ObjectCamera.h"
#include "Ossa/Surfaces/SurfacePixels.h"
#include "Ossa/Surfaces/Surroundings.h"
#include "OssModel/Export/OssExportPlan.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssShaderNetwork.h"
#include "OssModel/Graph/OssShadingGroup.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"
#include "OssModel/Project/OssProjectManager.h"
#include "OssRender/Draw/OssRdRenderer.h"
#include "OssRender/Light/OssRdEnvironment.h"
#include "OssRender/Surface/OssRdDisplacement.h"

#include <QCoreApplication>
#include <QDir>
#include <QEventLoop>
#include <QFileInfo>
#include <QRegularExpression>

#include <cstdio>
#include <map>

namespace {

constexpr int mirrorSamples = 256;
constexpr float keyLight = 0.7F;

QString tr(const char *text)
{
    return QCoreApplication::translate("RenderCommand", text);
}

/// All objects with their materials.
QVector<LitSurface> surfacesOf(const OssProject *project)
{
    QVector<LitSurface> surfaces;
    const QList<OssGeoEntity *> entities = project->entities();
    for (const OssGeoEntity *entity : entities)
        surfaces += LitSurface::of(project, entity);
    return surfaces;
}

OssResult find(const OssProject *project, const QString &node, QVector<LitSurface> *surfaces)
{
    if (node.isEmpty()) {
        *surfaces = surfacesOf(project);
        const bool hasMaterial = std::any_of(
            surfaces->cbegin(), surfaces->cend(),
            [](const LitSurface &surface) { return surface.shown.node != nullptr; });
        return hasMaterial ? OssResult() : OssResult::failure(tr("The project has no material"));
    }
    const QList<OssShadingGroup *> groups = project->shadingGroups();
    for (const OssShadingGroup *group : groups) {
        const OssSnBaseNode *found = group->network()->nodeByPath(node);
        if (found) {
            *surfaces = {
                {OssSnProducer::of(found, found->prefferedOutputPoint()), group->geoEntity(), {}}};
            return {};
        }
    }
    return OssResult::failure(tr("There is no node \"%1\"").arg(node));
}

using Geometries = std::map<std::shared_ptr<const OssEvMesh>, std::shared_ptr<const OssRdGeometry>>;

/// Waits for pixels.
OssResult addObject(const LitSurface &surface, int resolution, Geometries *geometries,
                    OssRdScene *scene)
{
    const auto bare = OssMeshes::instance()->look(surface.entity->source()).mesh;
    if (bare && !geometries->count(bare))
        (*geometries)[bare] = OssRdGeometry::of(*bare);
    if (!surface.shown.node) {
        scene->objects.push_back({(*geometries)[bare], {}, surface.slots});
        return {};
    }
    const OssSurfaceMaps maps = OssSurfaceMaps::of(surface.shown, surface.entity);
    if (!maps.problem().isEmpty())
        return OssResult::failure(maps.problem());
    const std::vector<int> &patches = maps.mesh()->patches();
    SurfacePixels pixels;
    QEventLoop loop;
    QObject::connect(&pixels, &SurfacePixels::finished, &loop, &QEventLoop::quit);
    pixels.show(maps, QList<int>(patches.begin(), patches.end()), resolution);
    if (!pixels.isWhole())
        loop.exec(QEventLoop::ExcludeUserInputEvents);
    if (!pixels.problem().isEmpty())
        return OssResult::failure(pixels.problem());
    scene->objects.push_back({(*geometries)[bare], pixels.materials(), surface.slots});
    return {};
}

/// Each mesh once, for all that lies on it.
void displace(int levels, OssRdScene *scene)
{
    std::map<std::shared_ptr<const OssRdGeometry>, std::vector<OssRdDisplacement::Skin>> skins;
    for (const OssRdScene::Object &object : scene->objects)
        skins[object.geometry].push_back({object.materials, object.slots});
    for (const auto &[geometry, all] : skins) {
        const auto made = OssRdDisplacement::of(*geometry, all,
                                                OssRdDisplacement::levelsFor(*geometry, levels));
        for (OssRdScene::Object &object : scene->objects) {
            if (made && object.geometry == geometry)
                object.geometry = made;
        }
    }
}

/// "still.png", or "still.0007.png" of a turntable.
QString pathOf(const RenderOptions &options, int frame)
{
    if (options.frames == 0)
        return options.output;
    const QFileInfo file(options.output);
    return file.dir().filePath(QStringLiteral("%1.%2.%3")
                                   .arg(file.completeBaseName())
                                   .arg(frame + 1, 4, 10, QLatin1Char('0'))
                                   .arg(file.suffix()));
}

OssRdView viewOf(const RenderOptions &options)
{
    OssRdView view;
    view.width = options.size.width();
    view.height = options.size.height();
    view.mirrorSamples = mirrorSamples;
    view.ground = StillFile::isLight(options.output) ? glm::vec4(0.0F)
                                                     : glm::vec4(0.033F, 0.036F, 0.041F, 1.0F);
    view.behind = options.background == QLatin1String("environment")
                      ? OssRdView::Behind::Surrounding
                  : options.background == QLatin1String("blurred") ? OssRdView::Behind::Blurred
                                                                   : OssRdView::Behind::Plain;
    return view;
}

ObjectCamera cameraOf(const OssRdScene &scene)
{
    glm::vec3 low(1e30F);
    glm::vec3 high(-1e30F);
    for (const OssRdScene::Object &object : scene.objects) {
        low = glm::min(low, object.geometry->centre - object.geometry->radius);
        high = glm::max(high, object.geometry->centre + object.geometry->radius);
    }
    const glm::vec3 centre = (low + high) / 2.0F;
    float radius = 0.0F;
    for (const OssRdScene::Object &object : scene.objects)
        radius = std::max(radius,
                          glm::distance(object.geometry->centre, centre) + object.geometry->radius);
    ObjectCamera camera;
    camera.resetDirection();
    camera.frame({centre.x, centre.y, centre.z}, radius);
    return camera;
}

int drawAll(const RenderOptions &options, const OssRdScene &scene)
{
    OssRdRenderer renderer;
    if (!renderer.problem().empty())
        return failCommand(
            tr("Nothing can be drawn: %1").arg(QString::fromStdString(renderer.problem())));
    const ProgressBar bar;
    OssRdView view = viewOf(options);
    const int frames = std::max(1, options.frames);
    for (int frame = 0; frame < frames; ++frame) {
        ObjectCamera camera = cameraOf(scene);
        camera.turn(options.turn + 360.0F * float(frame) / float(frames));
        view.camera = LitPicture::toMatrix(camera.view());
        view.projection = LitPicture::toMatrix(
            camera.projection(float(view.width) / float(view.height)));
        const OssRdImage picture = renderer.render(scene, view);
        if (picture.isEmpty())
            return failCommand(QString::fromStdString(renderer.problem()));
        const QString path = pathOf(options, frame);
        const OssResult written = StillFile::write(picture, path);
        if (!written)
            return failCommand(written.error());
        bar.show(QFileInfo(path).fileName(), frame + 1, frames);
        std::printf("%s\n", qPrintable(path));
        if (Interrupt::isRequested())
            return Interrupt::exitCode;
    }
    return ExitCode::Success;
}

} // namespace

std::vector<std::string> RenderOptions::backgrounds()
{
    return {"plain", "environment", "blurred"};
}

std::string RenderOptions::environments()
{
    std::string all;
    for (const std::string &name : OssRdEnvironment::names())
        all += (all.empty() ? "" : ", ") + name;
    return all;
}

QSize RenderOptions::toSize(const QString &text)
{
    static const QRegularExpression form(QStringLiteral("^(\\d{1,5})x(\\d{1,5})$"));
    const QRegularExpressionMatch match = form.match(text);
    const QSize size(match.captured(1).toInt(), match.captured(2).toInt());
    return size.width() <= largest && size.height() <= largest ? size : QSize();
}

int runRenderCommand(const RenderOptions &options)
{
    if (!StillFile::isPossible(options.output))
        return failCommand(tr("\"%1\" is no picture that can be written: use *.png, *.jpg or *.exr")
                               .arg(options.output));
    OssProjectManager *projects = OssProjectManager::instance();
    const OssResult opened = projects->openProject(options.project);
    if (!opened)
        return failCommand(opened.error());
    Interrupt::catchSignals();
    OssExportPlan::waitForMeshes(projects->currentProject());
    QVector<LitSurface> surfaces;
    const OssResult found = find(projects->currentProject(), options.node, &surfaces);
    if (!found)
        return failCommand(found.error());
    OssRdScene scene;
    scene.keyLight = glm::vec3(keyLight);
    Surroundings around;
    const OssResult lit = Surroundings::make(options.environment, *OssColorManagement::spaces(),
                                             &around);
    if (!lit)
        return failCommand(lit.error());
    scene.probe = around.probe;
    scene.surrounding = around.picture;
    Geometries geometries;
    for (const LitSurface &surface : qAsConst(surfaces)) {
        const OssResult added = addObject(surface, options.resolution, &geometries, &scene);
        if (!added)
            return failCommand(added.error());
    }
    if (options.levels > 0)
        displace(options.levels, &scene);
    return drawAll(options, scene);
}
