#include "OssCoreModules/Evaluation/OssEvaluationService.h"

#include "OssCore/OssAtomicFile.h"
#include "OssCore/OssDebug.h"
#include "OssCoreModules/Project/OssGeoEntity.h"
#include "OssEvaluation/Files/OssEvBake.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvMeshFile.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"

#include <QCoreApplication>
#include <QFileInfo>

namespace {

QString tr(const char *text)
{
    return QCoreApplication::translate("OssEvaluationService", text);
}

} // namespace

OssEvaluationService *OssEvaluationService::instance()
{
    static OssEvaluationService service;
    return &service;
}

OssEvaluationService::OssEvaluationService() = default;
OssEvaluationService::~OssEvaluationService() = default;

void OssEvaluationService::shutdown()
{
    m_engine.reset();
    m_images.reset();
    m_meshes.clear();
}

OssEvEngine *OssEvaluationService::engine()
{
    if (!m_engine)
        m_engine = std::make_unique<OssEvEngine>();
    return m_engine.get();
}

std::shared_ptr<OssEvImageProvider> OssEvaluationService::images()
{
    if (!m_images)
        m_images = std::make_shared<OssEvImageFiles>();
    return m_images;
}

std::shared_ptr<const OssEvMesh> OssEvaluationService::mesh(const OssGeoEntity *entity)
{
    const QString shape = entity ? entity->geometry() : QStringLiteral("plane");
    if (shape == QLatin1String("sphere"))
        return OssEvShapes::sphere();
    if (shape == QLatin1String("cube"))
        return OssEvShapes::cube();
    if (shape == QLatin1String("plane"))
        return OssEvShapes::plane();
    std::shared_ptr<const OssEvMesh> &known = m_meshes[shape];
    if (!known) {
        const OssEvResult result = OssEvMeshFile::read(shape.toStdString(), &known);
        if (!result) {
            OssDebug("OssEvaluationService", __LINE__, "[ !! ] %s", result.error().c_str());
            known = OssEvShapes::plane();
        }
    }
    return known;
}

QList<int> OssEvaluationService::patches(const OssGeoEntity *entity)
{
    QList<int> list;
    const auto shape = mesh(entity);
    for (const int patch : shape->patches())
        list.append(patch);
    return list;
}

OssEvTarget OssEvaluationService::target(const OssSnEvaluationGraph &graph,
                                         const OssGeoEntity *entity, int patch, int resolution)
{
    OssEvTarget target;
    target.graph = graph.graph;
    target.node = graph.node;
    target.output = graph.output;
    target.patch = patch;
    target.width = resolution;
    target.height = resolution;
    target.mesh = mesh(entity);
    target.images = images();
    return target;
}

OssResult OssEvaluationService::bake(const BakeJob &job)
{
    OssEvImageWriter::Format format = OssEvImageWriter::Format::Exr;
    if (!OssEvImageWriter::formatOf(job.path.toStdString(), &format))
        return OssResult::failure(tr("%1: images are written as .exr, .png or .tif").arg(job.path));
    const OssSnEvaluationGraph graph = OssSnEvaluationGraph::of(job.node, job.outputPoint);
    if (!graph.error.isEmpty())
        return OssResult::failure(graph.error);
    const OssResult folder = OssAtomicFile::makeFolder(QFileInfo(job.path).absolutePath());
    if (!folder)
        return folder;
    OssEvCancel cancel;
    for (int i = 0; i < job.patches.size(); ++i) {
        OssEvBake::Job bake;
        bake.target = target(graph, job.entity, job.patches.at(i), job.resolution);
        bake.target.keepIntermediates = false;
        bake.path = QString(job.path)
                        .replace(QLatin1String("<UDIM>"), QString::number(job.patches.at(i)))
                        .toStdString();
        bake.format = format;
        bake.cancel = &cancel;
        bake.onProgress = [&](int done, int total) {
            const int all = total * job.patches.size();
            if (job.onProgress && !job.onProgress(total * i + done, all))
                cancel.cancel();
        };
        const OssEvResult result = OssEvBake::run(engine(), bake);
        if (!result)
            return OssResult::failure(QString::fromStdString(result.error()));
    }
    return {};
}
