#pragma once

#include "OssEvaluation/Files/OssEvFileColors.h"
#include "OssEvaluation/Files/OssEvFileContents.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Schedule/OssEvImageProvider.h"

#include <memory>
#include <string>

/// What a file says of itself, before any pixel is decoded.
struct OssEvImageHeader
{
    int width = 0;
    int height = 0;
    int channels = 0;
    bool isInteger = false;
    /// 32-bit floats, which are kept in full precision.
    bool isPrecise = false;
    std::string format;
    /// The colour space that a file of ours says it is in; mostly none.
    std::string space;
};

/// Images by the names of their files. A name with "<UDIM>", or with a patch number before its
/// suffix, stands for a file for each patch; a patch without a file is transparent.
///
/// Automatic colour is as OssEvFileColors says; in files of the pixel store, as they say themselves, and
/// where they do not, in the built-in working space. Data is never converted and keeps its alpha apart.
class OSSEVALUATION_EXPORT OssEvImageFiles : public OssEvImageProvider
{
public:
    /// Larger images are refused by what their header says.
    static constexpr int MaximumSize = 65536;
    static constexpr long long MaximumTexels = 1LL << 29;

    /// With `contents` pictures are known by what is in their files, without by the files' names, times
    /// and sizes.
    explicit OssEvImageFiles(OssEvFileColors colors = OssEvFileColors(),
                             std::shared_ptr<OssEvFileContents> contents = {});
    ~OssEvImageFiles() override;

    static OssEvResult readHeader(const std::string &path, OssEvImageHeader *header);

    OssEvResult describe(const Image &image, OssEvImageInfo *info) override;
    OssEvResult read(const Image &image, int reduction, int tileRow, const OssEvCancel &cancel,
                     const Deliver &deliver) override;

protected:
    /// Whether a file is known by what is in it, which costs reading it, or by its name, times and
    /// size, as is enough for those that nobody writes again.
    enum class Identity { Content, Looks };

    OssEvResult describeFile(const Image &image, Identity identity, OssEvImageInfo *info);
    OssEvResult readFile(const Image &image, Identity identity, int reduction, int tileRow,
                         const OssEvCancel &cancel, const Deliver &deliver);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
