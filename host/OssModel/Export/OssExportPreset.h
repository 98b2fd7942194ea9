#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssEvaluation/Files/OssEvImageForm.h"
#include "OssModel/OssModel_export.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

#include <array>
#include <optional>

/// How a material becomes files: which channels go into which file, under which name, in which form.
/// A readable file:
///
///     <ExportPreset Name="..." >
///       <Description>...</Description>
///       <File Name="$object_$material_orm[.$udim]" Format="png" Depth="8 bit" Dither="true"
///             Space="Raw" Compression="..." Quality="90" Resolution="1024" Padding="8" Normal="-Y">
///         <Channel To="R" From="Ambient Occlusion" Default="1"/>
///         <Channel To="G" From="Roughness" Default="0.5"/>
///         <Channel To="B" From="Metallic" Component="Red" Invert="true"/>
///         <Channel To="A" Value="1"/>
///       </File>
///       <File Name="$object_$channel.$udim" Format="exr" Each="true"/>
///     </ExportPreset>
///
/// Only Name and Format of a file must be there. A Padding of "all" goes on everywhere. One with Each is written once for each channel of the
/// material, and has no Channel elements.
///
/// Tokens of names are those of `tokens()`. What stands in brackets is written only where its tokens
/// tell files apart: `[.$udim]` where an object has several patches. A "/" makes folders.
struct OSSMODEL_EXPORT OssExportPreset
{
    /// What one channel of a file is.
    struct Channel
    {
        QString from; ///< channel of the material; empty for a constant
        QString
            component; ///< one of `components()`; empty: the same as `to`, of numbers the number
        bool inverts = false;
        double value = 0.0; ///< the constant, or where the material has no such channel
        bool isUsed = false;

        bool operator==(const Channel &other) const;
    };

    struct File
    {
        QString name;
        QString format; ///< suffix
        OssEvImageForm form;
        int resolution = 0;         ///< 0: as asked for
        std::optional<int> padding; ///< as OssExportOptions has it; none: as asked for
        bool flipsNormals = false;  ///< −Y: green of normals points down
        bool isEach = false;
        std::array<Channel, 4> channels; ///< red, green, blue, alpha

        bool operator==(const File &other) const;
    };

    QString name;
    QString description;
    QVector<File> files;

    /// Refuses what is no preset, or could not be written, in words that name the file.
    static OssResult read(const QByteArray &xml, const QString &fileName, OssExportPreset *preset);
    QByteArray write() const;

    /// Fails, in words, where a file of it cannot be written.
    OssResult check() const;

    /// Of names of files: "$project".
    static QStringList tokens();
    /// "Red", "Green", "Blue", "Alpha", "Luminance".
    static QStringList components();
};
