#pragma once

#include "OssEvaluation/Files/OssEvImageWriter.h"
#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"
#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssEvaluation/Values/OssEvDepth.h"

#include <functional>
#include <optional>
#include <string>

/// Computes a target into a file. The file is written while the rest is computed, line by line from
/// the top, so that a bake needs memory for a few rows of tiles and not for the image.
namespace OssEvBake {

struct Job
{
    OssEvTarget target;
    /// Its suffix says the format.
    std::string path;
    /// Numbers instead of colours.
    bool isData = false;
    /// Of the file.
    OssEvImageForm form;
    /// 32 bits, in formats that have floats.
    bool isPrecise = false;
    /// What is kept of each value; none: whatever the format can hold. Whole numbers are counted in
    /// the colour space `fileSpace`, or that of screens where it is empty.
    std::optional<OssEvDepth> depth;
    std::string fileSpace;
    /// One channel of numbers: of colours their luminance.
    bool isScalar = false;
    /// Where there is a mesh, texels around its charts get the colour of the nearest one within. How
    /// far around is the target's `bleed`.
    bool dilate = true;
    /// All texels beyond do, however far away. Needs memory for the whole image.
    bool fillsAll = false;
    /// Higher ones come first, whenever they were started.
    int priority = 0;
    /// Called on the calling thread.
    std::function<void(int done, int total)> onProgress;
    /// May be null.
    const OssEvCancel *cancel = nullptr;
};

/// Waits until the file is written; never to be called from one of the engine's callbacks. A bake
/// that fails or is cancelled leaves what was there before. Says so when cancelled.
OSSEVALUATION_EXPORT OssEvResult run(OssEvEngine *engine, const Job &job);

/// What a file's pixels depend on: another key, other pixels. Fails where the job would. Looks at files.
OSSEVALUATION_EXPORT OssEvResult key(const Job &job, OssEvKey *key);

} // namespace OssEvBake
