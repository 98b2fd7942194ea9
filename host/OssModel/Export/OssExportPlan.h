#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssEvaluation/Files/OssEvGltf.h"
#include "OssModel/Export/OssExportMaterials.h"
#include "OssModel/Export/OssExportPreset.h"

#include <QList>
#include <QStringList>

#include <memory>

class QTemporaryDir;

/// What the user chooses for one export.
struct OSSMODEL_EXPORT OssExportOptions
{
    static constexpr int UsualResolution = 2048;
    static constexpr int UsualPadding = 16;
    /// Everything beyond the charts gets the colour of the nearest one.
    static constexpr int EndlessPadding = -1;

    QString folder;
    /// One glTF file (*.glb) instead of a folder of textures.
    QString file;
    /// Of materials, as "OBJECT/MATERIAL"; empty: all.
    QStringList materials;
    /// Of files for each channel, which the preset then must have; empty: all.
    QStringList channels;
    /// Empty: all of each object.
    QList<int> patches;
    /// Texels of a patch's side, where the preset does not say.
    int resolution = UsualResolution;
    /// Texels.
    int padding = UsualPadding;
    int version = 1;
    /// Whether files for each channel are written of channels to which nothing is connected.
    bool writesConstants = true;
};

/// A file that is to be written.
struct OSSMODEL_EXPORT OssExportFile
{
    QString path;
    OssExportMaterial material;
    int index = 0; ///< of the preset's file
    int patch = 1001;
    int resolution = 0;
    int padding = 0;
    bool isData = false; ///< numbers, not colours
    /// With what the format adds: nothing is left to be chosen.
    OssExportPreset::File how;

    int channelCount() const;
    /// "16 bit half"
    QString depthText() const;
    /// "Linear", or "Data".
    QString spaceText() const;
    /// Before the format packs them.
    qint64 bytes() const;
    /// "Ambient Occlusion, Roughness, Metallic"
    QString contentText() const;
};

/// Which files an export writes, before anything is written.
struct OSSMODEL_EXPORT OssExportPlan
{
    QVector<OssExportFile> files;
    /// What is written otherwise than the preset says, in words.
    QStringList notes;
    OssExportPreset preset;
    OssExportOptions options;

    /// Of one glTF file: what it is put together from, and the folder of its textures until then, which
    /// goes with the last plan that knows it.
    OssEvGltf::Scene scene;
    std::shared_ptr<QTemporaryDir> temporary;

    qint64 bytes() const;

    /// For whoever cannot come again later. Handles events, but no input.
    static void waitForMeshes(const OssProject *project);

    /// Fails, in words, where nothing is to be written, two files would have one name, or what was asked
    /// for is not there, or a mesh is still being read. GUI
    /// thread.
    static OssResult make(const OssProject *project, const OssExportPreset &preset,
                          const OssExportOptions &options, OssExportPlan *plan);
    /// The same for one glTF file, `options.file`. Where several materials of an object are chosen, faces
    /// of a material slot get the one of its name, all others the first. A plan that has a folder goes on
    /// with it.
    static OssResult makeGltf(const OssProject *project, const OssExportOptions &options,
                              OssExportPlan *plan);
};
