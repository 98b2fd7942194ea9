#pragma once

#include "OssModel/OssModel_export.h"

/// What the model needs before anything is made of it. One lives as long as the program; it is made
/// before a plug-in or a document.
class OSSMODEL_EXPORT OssModelServices
{
public:
    OssModelServices();
    OssModelServices(const OssModelServices &) = delete;
    OssModelServices &operator=(const OssModelServices &) = delete;
};
