#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvKey.h"
#include "OssEvaluation/Values/OssEvResult.h"
#include "OssEvaluation/Values/OssEvWorkingSpace.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

/// What colours mean: converts files and screens to and from the working space, in which everything is
/// computed. Stands on an OpenColorIO configuration; the built-in one needs no file and knows "Linear"
/// (scene-linear with the primaries of BT.709), "sRGB", "Gamma 2.2", "ACEScg", "ACES2065-1" and "Raw".
/// These names are understood beside every other configuration that has colour spaces of the usual
/// names for them, or says how it hangs together with others (the role aces_interchange).
///
/// Colours are float RGBA, four values in a row, not premultiplied. Never changed once made; safe to
/// use from any thread.
class OSSEVALUATION_EXPORT OssEvColorSpaces
{
public:
    using Pointer = std::shared_ptr<const OssEvColorSpaces>;

    /// What screens and most image files of whole numbers hold.
    static constexpr const char *Screen = "sRGB";
    /// The built-in working space: proportional to light.
    static constexpr const char *Light = "Linear";
    /// Numbers that are no colours.
    static constexpr const char *Data = "Raw";
    /// Holds the configuration's path.
    static constexpr const char *Variable = "OCIO";

    static Pointer builtIn();

    /// A configuration of the user's, whose working space is that of its scene-linear role. Refused
    /// when it has none.
    static OssEvResult read(const std::string &path, Pointer *spaces);
    /// The one that the environment names.
    static OssEvResult readEnvironment(Pointer *spaces);

    /// The same configuration with another working space. Refused when it is none of its own, or holds
    /// no colours.
    OssEvResult withWorking(const std::string &space, Pointer *spaces) const;

    ~OssEvColorSpaces();

    bool isBuiltIn() const;
    /// One of names().
    const std::string &working() const;
    /// Null for the built-in configuration in "Linear"; otherwise a hash of the working space and the
    /// configuration with the files that its colour spaces use, by their bytes.
    const OssEvKey &key() const;

    /// Of the configuration, in its order.
    std::vector<std::string> names() const;
    /// Those proportional to light, which is what one works in.
    std::vector<std::string> linearNames() const;
    /// What a file's name tells by the configuration's own rules; empty where only the last one, which
    /// takes all files, says something.
    std::string spaceOfFile(const std::string &path) const;

    std::vector<std::string> displays() const;
    std::vector<std::string> views(const std::string &display) const;

    /// Whether there is nothing to convert: the working space, or numbers.
    bool isWorking(const std::string &space) const;
    bool isData(const std::string &space) const;
    /// What the way from a space into the working one consists of: another one, another text.
    OssEvResult tellConversion(const std::string &space, std::string *text) const;

    /// The working space as kernels know it; linear BT.709 where nothing tells how to come there.
    OssEvWorkingSpace workingSpace() const;

    OssEvResult toWorking(const std::string &space, float *rgba, std::size_t count) const;
    OssEvResult fromWorking(const std::string &space, float *rgba, std::size_t count) const;
    /// The colour that a pointer picks on a screen; by the role color_picking where there is one.
    OssEvResult toWorkingFromPicked(float *rgba, std::size_t count) const;
    OssEvResult toPickedFromWorking(float *rgba, std::size_t count) const;

    /// What a screen is sent. `exposure` in stops, before the transform; `gamma` after it.
    OssEvResult toDisplay(const std::string &display, const std::string &view, double exposure,
                          double gamma, float *rgba, std::size_t count) const;

private:
    struct Private;

    explicit OssEvColorSpaces(std::unique_ptr<Private> inside);

    std::unique_ptr<Private> d;
};
