#pragma once

#include "OssEvaluation/OssEvaluation_export.h"
#include "OssEvaluation/Values/OssEvResult.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

/// What colours mean outside: converts files and screens to and from the working space, which is
/// scene-linear with the primaries of BT.709. Stands on an OpenColorIO configuration; the built-in
/// one needs no file and knows "Linear", "sRGB", "Gamma 2.2", "ACEScg" and "Raw".
///
/// Colours are float RGBA, four values in a row, not premultiplied. Safe to use from any thread.
class OSSEVALUATION_EXPORT OssEvColorSpaces
{
public:
    /// What screens and most image files of whole numbers hold, in the built-in spaces.
    static constexpr const char *Screen = "sRGB";
    /// The working space: proportional to light.
    static constexpr const char *Light = "Linear";

    static std::shared_ptr<const OssEvColorSpaces> builtIn();

    /// A configuration of the user's. Refused when it has no scene-linear role.
    static OssEvResult read(const std::string &path,
                            std::shared_ptr<const OssEvColorSpaces> *spaces);

    ~OssEvColorSpaces();

    std::vector<std::string> names() const;
    std::vector<std::string> displays() const;
    std::vector<std::string> views(const std::string &display) const;

    OssEvResult toScene(const std::string &space, float *rgba, std::size_t count) const;
    OssEvResult fromScene(const std::string &space, float *rgba, std::size_t count) const;

    /// What a screen is sent. `exposure` in stops, before the transform; `gamma` after it.
    OssEvResult toDisplay(const std::string &display, const std::string &view, double exposure,
                          double gamma, float *rgba, std::size_t count) const;

private:
    struct Private;

    explicit OssEvColorSpaces(std::unique_ptr<Private> inside);

    std::unique_ptr<Private> d;
};
