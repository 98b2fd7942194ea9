#include "OssModel/Evaluation/OssEvaluationService.h"

#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssModel/Evaluation/OssImageSetFiles.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/Images/OssFileWatch.h"
#include "OssModel/Objects/OssMeshes.h"

OssEvaluationService::OssEvaluationService()
    : m_colors(QObject::connect(OssColorManagement::instance(), &OssColorManagement::changed,
                                [this] { m_images.reset(); }))
{
}

OssEvaluationService::~OssEvaluationService()
{
    QObject::disconnect(m_colors);
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
        m_images = std::make_shared<OssImageSetFiles>(OssColorManagement::instance()->fileColors(),
                                                      OssFileWatch::instance()->contents());
    return m_images;
}

std::shared_ptr<const OssEvMesh> OssEvaluationService::mesh(const OssGeoEntity *entity)
{
    return OssMeshes::instance()->waitFor(entity ? entity->source() : OssGeometrySource()).mesh;
}

QList<int> OssEvaluationService::patches(const OssGeoEntity *entity)
{
    QList<int> list;
    const auto shape = mesh(entity);
    if (!shape)
        return list;
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
    target.mesh = OssMeshes::instance()->look(entity ? entity->source() : OssGeometrySource()).mesh;
    target.images = images();
    return target;
}
