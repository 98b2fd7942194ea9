#pragma once

#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssEvaluation/Values/OssEvTile.h"

#include <QImage>
#include <QString>
#include <QVector>

#include <string>

/// What pictures are made for, by the colour configuration.
struct ViewerScreen
{
    std::string display;
    std::string view;

    friend bool operator==(const ViewerScreen &a, const ViewerScreen &b)
    {
        return a.display == b.display && a.view == b.view;
    }
};

/// How values are shown on screen.
struct ViewerLook
{
    enum Channels { Color, Red, Green, Blue, Alpha };

    Channels channels = Color;
    double exposure = 0.0; ///< stops
    double gamma = 1.0;
    ViewerScreen screen; ///< of the project's configuration; empty: the first
    bool raw = false;    ///< numbers as they are, without a display transform

    friend bool operator==(const ViewerLook &a, const ViewerLook &b)
    {
        return a.channels == b.channels && a.exposure == b.exposure && a.gamma == b.gamma
               && a.screen == b.screen && a.raw == b.raw;
    }
};

namespace ViewerPixels {

/// What pictures can be made for: the displays of the configuration with their views, but for those that
/// show plain numbers, as every look can.
QVector<ViewerScreen> screens(const OssEvColorSpaces &colors);
/// For people; a display that has one view needs no more than its own name.
QString titleOf(const ViewerScreen &screen, const QVector<ViewerScreen> &screens);

/// The tile as it is shown, with its alpha; any thread.
QImage picture(const OssEvTile &tile, const ViewerLook &look);

/// Texels of a row as RGBA, premultiplied as they flow; a single channel as grey.
void read(const OssEvTile &tile, int x, int y, int count, float *rgba);

/// What read() gave as it is shown; spoils the texels. Magenta where colours cannot be converted.
/// `isColor`: not a single channel. Any thread.
void show(float *rgba, int count, bool isColor, const ViewerLook &look, QRgb *line);

} // namespace ViewerPixels
