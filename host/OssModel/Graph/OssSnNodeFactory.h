#pragma once

#include "OssModel/OssModel_export.h"
#include "OssModel/Types/OssSnNodeType.h"

#include <functional>
#include <memory>

class OssSnBaseNode;

/// Makes node objects of the class that their type names. Classes are told to it once, at start.
class OSSMODEL_EXPORT OssSnNodeFactory
{
public:
    using Type = std::shared_ptr<const OssSnNodeType>;
    using Maker = std::function<std::unique_ptr<OssSnBaseNode>(const Type &)>;

    static void registerClass(const QString &className, Maker maker);

    template <class Node>
    static void registerClass(const char *className)
    {
        registerClass(QString::fromLatin1(className),
                      [](const Type &type) { return std::make_unique<Node>(type); });
    }

    /// Never null: a type that is null, or names a class nobody knows, gives a plain node; without
    /// a type it is a placeholder.
    static std::unique_ptr<OssSnBaseNode> make(const Type &type);

    static bool isKnownClass(const QString &className);
};
