#pragma once

#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssRender/Values/OssRdPicture.h"

#include <glm/glm.hpp>

#include <QImage>
#include <QMatrix4x4>

#include <string>

/// Pictures that the renderer makes, as screens show them.
namespace LitPicture {

struct Screen
{
    OssEvColorSpaces::Pointer colors;
    std::string display; ///< empty: the first
    std::string view;
    double exposure = 0.0; ///< stops
    double gamma = 1.0;
    bool isData = false; ///< numbers as they are

    friend bool operator==(const Screen &a, const Screen &b)
    {
        return a.colors == b.colors && a.display == b.display && a.view == b.view
               && a.exposure == b.exposure && a.gamma == b.gamma && a.isData == b.isData;
    }
};

/// ARGB32, premultiplied. Magenta where colours cannot be converted. Any thread; uses several.
QImage shown(const OssRdImage &picture, const Screen &screen);

/// Qt's as the renderer has it.
glm::mat4 toMatrix(const QMatrix4x4 &matrix);

} // namespace LitPicture
