#include "OssModel/Evaluation/OssEvaluationService.h"

#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssDebug.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Geometry/OssEvMeshFile.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssModel/Evaluation/OssImageSetFiles.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Images/OssFileWatch.h"

#include <QCoreApplication>
#include <QFileInfo>

OssEvaluationService::OssEvaluationService() = default;

OssEvaluationService::~OssEvaluationService()
{
    m_engine.reset(); // before what it reads from
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
        m_images = std::make_shared<OssImageSetFiles>(OssFileWatch::instance()->contents());
    return m_images;
}

std::shared_ptr<const OssEvMesh> OssEvaluationService::mesh(const OssGeoEntity *entity)
{
    const QString shape = entity ? entity->geometry() : OssGeoEntity::usualGeometry();
    if (shape == QLatin1String("sphere"))
        return OssEvShapes::sphere();
    if (shape == QLatin1String("cube"))
        return OssEvShapes::cube();
    if (!OssGeoEntity::isFile(shape))
        return OssEvShapes::plane();
    Mesh &known = m_meshes[shape];
    // Null where the watch has not looked yet: then what was read is as good as anything.
    const QString content = OssFileWatch::instance()->contentOf(shape);
    if (!known.mesh || (!content.isNull() && known.content != content)) {
        known.content = OssFileWatch::instance()->readContent(shape);
        std::shared_ptr<const OssEvMesh> read;
        const OssEvResult result = OssEvMeshFile::read(shape.toStdString(), &read);
        known.error = QString::fromStdString(result.error());
        if (result)
            known.mesh = read;
        else
            OssDebug("OssEvaluationService", __LINE__, "[ !! ] %s", qPrintable(known.error));
        if (!known.mesh)
            known.mesh = OssEvShapes::plane();
    }
    return known.mesh;
}

OssResult OssEvaluationService::meshState(const OssGeoEntity *entity) const
{
    const QString error = entity ? m_meshes.value(entity->geometry()).error : QString();
    return error.isEmpty() ? OssResult() : OssResult::failure(error);
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
