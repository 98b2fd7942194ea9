#pragma once

#include "OssCoreModules/OssCoreModules_export.h"
#include "OssEvaluation/Files/OssEvImageFiles.h"

#include <QString>

class OssImageSet;

/// Images as the document knows them: files by their paths, and image sets, whose patches are files
/// of the pixel store. What it needs of a set is in the image's name, so workers ask no document.
class OSSCOREMODULES_EXPORT OssImageSetFiles : public OssEvImageFiles
{
public:
    /// The name under which the set's pixels are evaluated; empty while it has none. Other pixels,
    /// other name. GUI thread.
    static QString nameOf(const OssImageSet *set);

    OssEvResult describe(const Image &image, OssEvImageInfo *info) override;
    OssEvResult read(const Image &image, int reduction, int tileRow, const OssEvCancel &cancel,
                     const Deliver &deliver) override;

private:
    /// False when there is nothing for the patch.
    static bool toFile(const Image &image, Image *file);
};
