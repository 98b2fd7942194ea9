#include "Ossa/Surfaces/LitSurface.h"

#include "OssModel/Export/OssExportMaterials.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssSnBaseNode.h"
#include "OssModel/Objects/OssMeshes.h"
#include "OssModel/Project/OssProject.h"

#include <algorithm>

QVector<LitSurface> LitSurface::of(const OssProject *project, const OssGeoEntity *entity)
{
    const auto mesh = OssMeshes::instance()->look(entity->source()).mesh;
    if (!mesh)
        return {};
    QVector<OssExportMaterial> own;
    const QVector<OssExportMaterial> all = OssExportMaterial::of(project);
    std::copy_if(all.cbegin(), all.cend(), std::back_inserter(own),
                 [entity](const OssExportMaterial &one) { return one.entity == entity; });
    if (own.isEmpty())
        return {{{}, entity, {}}};
    QVector<LitSurface> surfaces;
    const QMap<int, std::vector<int>> slots = OssExportMaterial::slotsOf(*mesh, own);
    for (auto use = slots.cbegin(); use != slots.cend(); ++use) {
        const OssSnBaseNode *node = own.at(use.key()).node;
        surfaces.append({{node, node->prefferedOutputPoint()},
                         entity,
                         slots.size() > 1 ? use.value() : std::vector<int>()});
    }
    return surfaces;
}

QVector<LitSurface> LitSurface::of(const OssProject *project, const OssGeoEntity *entity,
                                   const OssSnProducer &looked)
{
    const OssSnProducer shown = OssExportMaterial::behind(looked);
    QVector<LitSurface> surfaces;
    if (shown.node && OssExportMaterial::of(shown.node).node)
        surfaces = of(project, entity);
    const auto isShown = [&shown](const LitSurface &one) {
        return one.shown.node == shown.node;
    };
    const auto found = std::find_if(surfaces.begin(), surfaces.end(), isShown);
    if (found == surfaces.end())
        return {{shown, entity, {}}};
    std::rotate(surfaces.begin(), found, found + 1);
    return surfaces;
}

QVector<const OssGeoEntity *> LitSurface::beside(const OssProject *project,
                                                 const OssGeoEntity *entity)
{
    QVector<const OssGeoEntity *> others;
    const QList<OssGeoEntity *> entities = project->entities();
    for (const OssGeoEntity *other : entities) {
        if (other != entity && entity->hasFile() && other->hasFile())
            others.append(other);
    }
    return others;
}
