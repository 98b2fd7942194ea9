#pragma once

#include "OssEvaluation/Values/OssEvTile.h"

#include <QImage>
#include <QStringList>

/// How values are shown on screen.
struct ViewerLook
{
    enum Channels { Color, Red, Green, Blue, Alpha };

    Channels channels = Color;
    double exposure = 0.0; ///< stops
    double gamma = 1.0;
    int display = 0;  ///< place in ViewerPixels::displays()
    bool raw = false; ///< numbers as they are, without a display transform

    friend bool operator==(const ViewerLook &a, const ViewerLook &b)
    {
        return a.channels == b.channels && a.exposure == b.exposure && a.gamma == b.gamma
               && a.display == b.display && a.raw == b.raw;
    }
};

namespace ViewerPixels {

/// What pictures can be made for: the displays of the colour configuration, each with its first view.
QStringList displays();

/// The tile as it is shown, with its alpha; any thread.
QImage picture(const OssEvTile &tile, const ViewerLook &look);

/// Texels of a row as RGBA, premultiplied as they flow; a single channel as grey.
void read(const OssEvTile &tile, int x, int y, int count, float *rgba);

/// What read() gave as it is shown; spoils the texels. Magenta where colours cannot be converted.
/// `isColor`: not a single channel. Any thread.
void show(float *rgba, int count, bool isColor, const ViewerLook &look, QRgb *line);

} // namespace ViewerPixels
