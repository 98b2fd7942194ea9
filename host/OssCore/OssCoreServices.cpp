#include "OssCore/OssCoreServices.h"

OssCoreServices::OssCoreServices() = default;
OssCoreServices::~OssCoreServices() = default;
