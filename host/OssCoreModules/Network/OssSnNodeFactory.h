#pragma once

#include "OssCoreModules/Network/OssSnNodeType.h"
#include "OssCoreModules/OssCoreModules_export.h"

#include <memory>

class OssSnBaseNode;

/// Makes node objects of the class that their type names.
class OSSCOREMODULES_EXPORT OssSnNodeFactory
{
public:
    /// Never null: a type that is null, or names a class nobody knows, gives a plain node; without
    /// a type it is a placeholder.
    static std::unique_ptr<OssSnBaseNode> make(const std::shared_ptr<const OssSnNodeType> &type);
    static bool isKnownClass(const QString &className);
};
