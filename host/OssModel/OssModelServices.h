#pragma once

#include "OssModel/OssModel_export.h"

#include <memory>

/// The model's services and those below it, in the order in which they need each other, and the
/// classes of its nodes. Made before a plug-in or a document; when it goes, the document does.
class OSSMODEL_EXPORT OssModelServices
{
public:
    OssModelServices();
    ~OssModelServices();
    OssModelServices(const OssModelServices &) = delete;
    OssModelServices &operator=(const OssModelServices &) = delete;

private:
    struct Services;

    std::unique_ptr<Services> m_services;
};
