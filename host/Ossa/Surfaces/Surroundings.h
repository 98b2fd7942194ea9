#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssEvaluation/Files/OssEvColorSpaces.h"
#include "OssRender/Light/OssRdLightProbe.h"

#include <QString>

#include <memory>

/// Light from all around, as it is drawn and as it falls on surfaces, in the working space. Immutable.
struct Surroundings
{
    std::shared_ptr<const OssRdPicture> picture;
    std::shared_ptr<const OssRdLightProbe> probe;

    /// One of OssRdEnvironment::names(), or a file, in the working space of `colors`. Any thread; takes a
    /// second or so.
    static OssResult make(const QString &nameOrFile, const OssEvColorSpaces &colors,
                          Surroundings *surroundings);
};
