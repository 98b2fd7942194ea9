// What has to be written, and put together, for one glTF file.
#include "OssCore/Documents/OssAtomicFile.h"
#include "OssCore/Program/OssResourceInfo.h"
#include "OssCore/Values/OssColor.h"
#include "OssEvaluation/Geometry/OssEvMesh.h"
#include "OssModel/Evaluation/OssEvaluationService.h"
#include "OssModel/Export/OssExportPlan.h"
#include "OssModel/Graph/OssGeoEntity.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QCoreApplication>
#include <QDir>
#include <QHash>
#include <QMap>
#include <QTemporaryDir>

#include <algorithm>
#include <set>
#include <vector>

namespace {

// Files of the preset.
enum Role { BaseColor, OcclusionRoughnessMetallic, Normal, Emissive, ClearCoat };

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

/// Only this format has a place for it.
OssExportPreset::File clearCoat()
{
    OssExportPreset::File coat;
    coat.name = QStringLiteral("$object[_$material]_clearCoat[.$udim]");
    coat.format = QStringLiteral("png");
    coat.form.depth = OssEvDepth::Byte;
    coat.form.dithers = true;
    coat.channels[0] = {QStringLiteral("Clear Coat"), {}, false, 0.0, true};
    coat.channels[1] = {QStringLiteral("Clear Coat Roughness"), {}, false, 0.0, true};
    coat.channels[2].isUsed = true;
    return coat;
}

bool isFed(const OssExportMaterial &material, const char *name)
{
    const OssExportMaterial::Channel *channel = material.channel(QLatin1String(name));
    return channel && channel->isFed;
}

bool hasClearCoat(const OssExportMaterial &material)
{
    return isFed(material, "Clear Coat")
           || material.node->attribute(QStringLiteral("ClearCoat")).toDouble() > 0.0;
}

/// Whether viewers would see no difference without the file.
bool isNeedless(const OssExportFile &file)
{
    if (file.index == Normal)
        return !isFed(file.material, "Normal");
    if (file.index == ClearCoat)
        return !hasClearCoat(file.material);
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
    case Emissive:
        material->emissive = path;
        break;
    default:
        material->clearCoat = path;
        break;
    }
}

/// Which faces a material is for.
struct Use
{
    std::vector<int> slots; ///< none: all
    std::set<int> patches;
};

using Uses = QHash<const OssSnBaseNode *, Use>;

/// Object by object, patch by patch.
OssEvGltf::Scene sceneOf(const QVector<OssExportFile> &files, const Uses &uses)
{
    OssEvGltf::Scene scene;
    QVector<QPair<const OssSnBaseNode *, int>> known; // node and patch of each material
    QVector<const OssGeoEntity *> objects;
    for (const OssExportFile &file : files) {
        const OssGeoEntity *entity = file.material.entity;
        if (!objects.contains(entity)) {
            objects.append(entity);
            scene.objects.push_back({file.material.object().toStdString(),
                                     OssEvaluationService::instance()->mesh(entity),
                                     {}});
        }
        int at = known.indexOf({file.material.node, file.patch});
        if (at < 0) {
            at = known.size();
            known.append({file.material.node, file.patch});
            scene.materials.push_back(materialOf(file.material, file.patch));
            scene.objects[std::size_t(objects.indexOf(entity))].surfaces.push_back(
                {file.patch, at, uses.value(file.material.node).slots});
        }
        setPath(&scene.materials[std::size_t(at)], file);
    }
    return scene;
}

/// A material slot's faces get the material of its name, all others the object's first one.
class Slots
{
public:
    Slots(const OssGeoEntity *entity, const QVector<OssExportMaterial> &materials)
        : m_materials(materials)
        , m_mesh(OssEvaluationService::instance()->mesh(entity))
    {
        if (m_mesh)
            m_slots = OssExportMaterial::slotsOf(*m_mesh, materials);
    }

    /// Materials that have no faces are left out, with a note.
    void addTo(Uses *uses, QStringList *notes) const
    {
        for (int i = 0; i < m_materials.size() && m_mesh; ++i) {
            const OssExportMaterial &material = m_materials.at(i);
            Use use;
            if (m_materials.size() > 1)
                use.slots = m_slots.value(i);
            if (m_materials.size() == 1 || !use.slots.empty())
                use.patches = OssEvGltf::patchesOf(*m_mesh, use.slots);
            if (use.patches.empty())
                notes->append(tr("\"%1\" is left out: %2 has no faces with a material slot of "
                                 "that name")
                                  .arg(material.path(), material.object()));
            else
                uses->insert(material.node, use);
        }
    }

private:
    QVector<OssExportMaterial> m_materials;
    std::shared_ptr<const OssEvMesh> m_mesh;
    QMap<int, std::vector<int>> m_slots; ///< by material
};

/// Of all materials that are chosen.
Uses usesOf(const OssProject *project, const OssExportOptions &options, QStringList *notes)
{
    QVector<const OssGeoEntity *> objects;
    QVector<QVector<OssExportMaterial>> materials; // of each
    const QVector<OssExportMaterial> all = OssExportMaterial::of(project);
    for (const OssExportMaterial &material : all) {
        if (!options.materials.isEmpty() && !options.materials.contains(material.path()))
            continue;
        if (!objects.contains(material.entity)) {
            objects.append(material.entity);
            materials.append(QVector<OssExportMaterial>());
        }
        materials[objects.indexOf(material.entity)].append(material);
    }
    Uses uses;
    for (int i = 0; i < objects.size(); ++i)
        Slots(objects.at(i), materials.at(i)).addTo(&uses, notes);
    return uses;
}

} // namespace

OssResult OssExportPlan::makeGltf(const OssProject *project, const OssExportOptions &options,
                                  OssExportPlan *plan)
{
    OssExportPreset preset;
    OssResult result = usualPreset(&preset);
    OssExportOptions chosen = options;
    QStringList notes;
    const Uses uses = usesOf(project, options, &notes);
    const QVector<OssExportMaterial> all = OssExportMaterial::of(project);
    if (std::any_of(all.cbegin(), all.cend(), hasClearCoat))
        preset.files.append(clearCoat());
    auto folder = plan->temporary ? plan->temporary : std::make_shared<QTemporaryDir>();
    if (result && !folder->isValid())
        result = OssResult::failure(folder->errorString());
    chosen.folder = folder->path();
    OssExportPlan made;
    if (result)
        result = make(project, preset, chosen, &made);
    if (!result)
        return result;
    const auto isLeftOut = [&uses](const OssExportFile &file) {
        return isNeedless(file) || uses.value(file.material.node).patches.count(file.patch) == 0;
    };
    const auto last = std::remove_if(made.files.begin(), made.files.end(), isLeftOut);
    made.files.erase(last, made.files.end());
    made.temporary = folder;
    made.scene = sceneOf(made.files, uses);
    made.notes = notes + made.notes;
    made.options = options;
    *plan = made;
    return {};
}
