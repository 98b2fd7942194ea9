#pragma once

#include "OssEvaluation/Files/OssEvImageFiles.h"
#include "OssModel/Images/OssLivePaint.h"
#include "OssModel/OssModel_export.h"

#include <QString>

class OssSnBaseNode;

/// Images as the document knows them: files by their paths, and image sets, whose patches are files
/// of the pixel store, with the paint on them that is in no file yet. What it needs of a set is in the image's name, so workers ask no document.
class OSSMODEL_EXPORT OssImageSetFiles : public OssEvImageFiles
{
public:
    OssImageSetFiles(const OssEvFileColors &colors, std::shared_ptr<OssEvFileContents> contents)
        : OssEvImageFiles(colors, std::move(contents))
        , m_spaces(colors.spaces())
    {
    }

    /// The name under which the node's images are evaluated; empty while they have no pixels. Other
    /// pixels, other name. Patches that nothing was written to have the set's fill colour. A bake
    /// point with a limit leaves out those beyond it, and the colour that it says stands for them
    /// and for all that have no pixels. GUI thread.
    static QString nameOf(const OssSnBaseNode *node);

    OssEvResult describe(const Image &image, OssEvImageInfo *info) override;
    OssEvResult read(const Image &image, int reduction, int tileRow, const OssEvCancel &cancel,
                     const Deliver &deliver) override;

private:
    /// False when there is nothing for the patch. Files of the pixel store are never written again.
    static bool toFile(const Image &image, Image *file, Identity *identity);
    /// The colour of such a patch, as the rest of its line; empty when it is transparent.
    static std::string fillOf(const Image &image);
    /// Paint on the patch that is in no file yet; fails when it has gone meanwhile.
    static OssEvResult findPaint(const Image &image, OssLivePaint::Pointer *live);
    /// What is under such paint.
    OssEvResult describeBeneath(const Image &image, OssEvImageInfo *info);
    OssEvResult readPainted(const OssLivePaint &live, const Image &image, int reduction,
                            int tileRow, const OssEvCancel &cancel, const Deliver &deliver);

    OssEvColorSpaces::Pointer m_spaces;
};
