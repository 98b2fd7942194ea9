// What has to be written, and put together, for one glTF file.
#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Values/OssColor.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Export/OssExportPlan.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QCoreApplication>
#include <QDir>
#include <QTemporaryDir>

#include <algorithm>

namespace {

// Files of the preset.
enum Role { BaseColor, OcclusionRoughnessMetallic, Normal, Emissive };

constexpr qint64 LargestPreset = 1 << 20;

QString tr(const char *text)
{
    return QCoreApplication::translate("OssExportGltf", text);
}

OssResult usualPreset(OssExportPreset *preset)
{
    const QString path = QDir(OssResourceInfo::instance()->exportPresetPath())
                             .filePath(QStringLiteral("GltfMetallicRoughness.xml"));
    QByteArray xml;
    const OssResult read = OssAtomicFile::read(path, LargestPreset, &xml);
    return read ? OssExportPreset::read(xml, path, preset) : read;
}

bool isFed(const OssExportMaterial &material, const char *name)
{
    const OssExportMaterial::Channel *channel = material.channel(QLatin1String(name));
    return channel && channel->isFed;
}

/// Whether viewers would see no difference without the file.
bool isNeedless(const OssExportFile &file)
{
    if (file.index == Normal)
        return !isFed(file.material, "Normal");
    if (file.index != Emissive || isFed(file.material, "Emission"))
        return false;
    const auto light = file.material.node->attribute(QStringLiteral("Emission")).value<OssColor>();
    return light.red() <= 0.0 && light.green() <= 0.0 && light.blue() <= 0.0;
}

OssEvGltf::Material materialOf(const OssExportMaterial &from, int patch)
{
    OssEvGltf::Material material;
    material.name = from.name().toStdString() + '.' + std::to_string(patch);
    material.hasOcclusion = isFed(from, "Ambient Occlusion");
    const QVariant opacity = from.node->attribute(QStringLiteral("Opacity"));
    material.blends = isFed(from, "Opacity") || (opacity.isValid() && opacity.toDouble() < 1.0);
    return material;
}

void setPath(OssEvGltf::Material *material, const OssExportFile &file)
{
    const std::string path = file.path.toStdString();
    switch (file.index) {
    case BaseColor:
        material->baseColor = path;
        break;
    case OcclusionRoughnessMetallic:
        material->occlusionRoughnessMetallic = path;
        break;
    case Normal:
        material->normal = path;
        break;
    default:
        material->emissive = path;
        break;
    }
}

/// Object by object, patch by patch.
OssEvGltf::Scene sceneOf(const QVector<OssExportFile> &files)
{
    OssEvGltf::Scene scene;
    QVector<QPair<const OssGeoEntity *, int>> known; // object and patch of each material
    QVector<const OssGeoEntity *> objects;
    for (const OssExportFile &file : files) {
        const OssGeoEntity *entity = file.material.entity;
        if (!objects.contains(entity)) {
            objects.append(entity);
            scene.objects.push_back({file.material.object().toStdString(),
                                     OssEvaluationService::instance()->mesh(entity),
                                     {}});
        }
        int at = known.indexOf({entity, file.patch});
        if (at < 0) {
            at = known.size();
            known.append({entity, file.patch});
            scene.materials.push_back(materialOf(file.material, file.patch));
            scene.objects[std::size_t(objects.indexOf(entity))].surfaces.push_back(
                {file.patch, at});
        }
        setPath(&scene.materials[std::size_t(at)], file);
    }
    return scene;
}

/// The first of each object, or of those that are chosen.
QStringList firstMaterials(const OssProject *project, const OssExportOptions &options,
                           QStringList *notes)
{
    QStringList names;
    QVector<const OssGeoEntity *> objects;
    const QVector<OssExportMaterial> all = OssExportMaterial::of(project);
    for (const OssExportMaterial &material : all) {
        const QString name = material.path();
        if (!options.materials.isEmpty() && !options.materials.contains(name))
            continue;
        if (objects.contains(material.entity)) {
            notes->append(
                tr("%1 has several materials: \"%2\" is left out").arg(material.object(), name));
            continue;
        }
        objects.append(material.entity);
        names.append(name);
    }
    return names;
}

} // namespace

OssResult OssExportPlan::makeGltf(const OssProject *project, const OssExportOptions &options,
                                  OssExportPlan *plan)
{
    OssExportPreset preset;
    OssResult result = usualPreset(&preset);
    OssExportOptions chosen = options;
    QStringList notes;
    chosen.materials = firstMaterials(project, options, &notes);
    auto folder = plan->temporary ? plan->temporary : std::make_shared<QTemporaryDir>();
    if (result && !folder->isValid())
        result = OssResult::failure(folder->errorString());
    chosen.folder = folder->path();
    OssExportPlan made;
    if (result)
        result = make(project, preset, chosen, &made);
    if (!result)
        return result;
    const auto last = std::remove_if(made.files.begin(), made.files.end(), isNeedless);
    made.files.erase(last, made.files.end());
    made.temporary = folder;
    made.scene = sceneOf(made.files);
    made.notes = notes + made.notes;
    made.options = options;
    *plan = made;
    return {};
}
