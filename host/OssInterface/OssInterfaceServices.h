#pragma once

#include "OssInterface/OssInterface_export.h"

#include <memory>

/// The services of the user interface and those below it, in the order in which they need each
/// other. Needs QApplication, which outlives it; when it goes, palettes, keys and actions do.
class OSSINTERFACE_EXPORT OssInterfaceServices
{
public:
    OssInterfaceServices();
    ~OssInterfaceServices();
    OssInterfaceServices(const OssInterfaceServices &) = delete;
    OssInterfaceServices &operator=(const OssInterfaceServices &) = delete;

private:
    struct Services;

    std::unique_ptr<Services> m_services;
};
