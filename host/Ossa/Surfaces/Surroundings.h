#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssRender/Light/OssRdLightProbe.h"

#include <QString>

#include <memory>

/// Light from all around, as it is drawn and as it falls on surfaces, in the working space. Immutable.
struct Surroundings
{
    std::shared_ptr<const OssRdPicture> picture;
    std::shared_ptr<const OssRdLightProbe> probe;

    /// One of OssRdEnvironment::names(), or a file. Any thread; takes a second or so.
    static OssResult make(const QString &nameOrFile, Surroundings *surroundings);
};
