#pragma once

#include "OssEvaluation/Values/OssEvTile.h"

#include <QImage>

/// How values are shown on screen.
struct ViewerLook
{
    enum Channels { Color, Red, Green, Blue, Alpha };

    Channels channels = Color;
    double exposure = 0.0; ///< stops
    double gamma = 1.0;
    bool raw = false; ///< numbers as they are, without a display transform

    friend bool operator==(const ViewerLook &a, const ViewerLook &b)
    {
        return a.channels == b.channels && a.exposure == b.exposure && a.gamma == b.gamma
               && a.raw == b.raw;
    }
};

namespace ViewerPixels {

/// The tile as it is shown, with its alpha; any thread.
QImage picture(const OssEvTile &tile, const ViewerLook &look);

} // namespace ViewerPixels
