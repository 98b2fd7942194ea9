#include "OssModel/Export/OssSurfaceMaps.h"

#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Export/OssExportPack.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QCoreApplication>

namespace {

/// Texels beyond the charts, in a patch of 4096: as many as the smaller levels of a texture reach.
constexpr int Beyond = 64;

const QString BaseColor = QStringLiteral("Base Color");

struct Part
{
    const char *channel; ///< of a material
    const char *component;
    double value; ///< where it has none
};

constexpr Part Parts[OssSurfaceMaps::Maps][4] = {
    {{"Base Color", "Red", 0.5},
     {"Base Color", "Green", 0.5},
     {"Base Color", "Blue", 0.5},
     {"Opacity", "", 1.0}},
    {{"Normal", "Red", 0.5},
     {"Normal", "Green", 0.5},
     {"Metallic", "", 0.0},
     {"Roughness", "", 0.5}},
    {{"Emission", "Red", 0.0},
     {"Emission", "Green", 0.0},
     {"Emission", "Blue", 0.0},
     {"Ambient Occlusion", "", 1.0}},
    {{"Clear Coat", "", 0.0},
     {"Clear Coat Roughness", "", 0.1},
     {"Displacement", "", 0.0},
     {"", "", 0.0}},
};

/// The file that would hold the map.
OssExportFile fileOf(OssSurfaceMaps::Map map, int patch, int resolution)
{
    OssExportFile file;
    file.patch = patch;
    file.resolution = resolution;
    file.isData = true;
    for (std::size_t i = 0; i < 4; ++i) {
        const Part &part = Parts[map][i];
        OssExportPreset::Channel &channel = file.how.channels[i];
        channel.from = QLatin1String(part.channel);
        channel.component = QLatin1String(part.component);
        channel.value = part.value;
        channel.isUsed = true;
    }
    return file;
}

bool isFed(const OssExportMaterial &material, const char *name)
{
    const OssExportMaterial::Channel *channel = material.channel(QLatin1String(name));
    return channel && channel->isFed;
}

float heightOf(const OssExportMaterial &material)
{
    return isFed(material, "Displacement")
               ? material.node->userAttribute(QStringLiteral("Height")).value().toFloat()
               : 0.0F;
}

} // namespace

OssSurfaceMaps OssSurfaceMaps::of(const OssSnProducer &shown, const OssGeoEntity *entity)
{
    OssSurfaceMaps maps;
    if (!shown.node) {
        maps.m_problem = QCoreApplication::translate("OssSurfaceMaps",
                                                     "Nothing is connected to the viewer here");
        return maps;
    }
    OssExportMaterial material = OssExportMaterial::of(shown.node);
    const bool isMaterial = material.node != nullptr;
    if (!isMaterial) {
        material.node = shown.node;
        material.channels = {{shown.outputPoint, OssSnDataKind::Color, true}};
    }
    material.entity = entity;
    OssExportSource source = OssExportSource::of(material);
    if (!isMaterial)
        source.channels = QStringList{BaseColor};
    maps.m_height = heightOf(material);
    maps.m_hasNormal = isFed(material, "Normal");
    maps.m_problem = source.state.error();
    maps.m_mesh = source.target.mesh;
    for (int map = 0; maps.m_problem.isEmpty() && map < Maps; ++map) {
        OssEvTarget &target = maps.m_targets[std::size_t(map)];
        target = source.job(fileOf(Map(map), 0, 0)).target;
        target.bleed = Beyond;
    }
    return maps;
}

QString OssSurfaceMaps::problem() const
{
    return m_problem;
}

std::shared_ptr<const OssEvMesh> OssSurfaceMaps::mesh() const
{
    return m_mesh;
}

OssEvTarget OssSurfaceMaps::target(Map map, int patch, int resolution) const
{
    OssEvTarget target = m_targets[map];
    target.patch = patch;
    target.width = resolution;
    target.height = resolution;
    return target;
}

OssEvResult OssSurfaceMaps::key(Map map, int patch, int resolution, OssEvKey *key) const
{
    OssEvBake::Job job;
    job.target = target(map, patch, resolution);
    return OssEvBake::key(job, key);
}
