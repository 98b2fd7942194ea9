#pragma once

class QObject;
class QString;

namespace Ossa {
class API;
} // namespace Ossa

/// Makes the script objects of one script class for the objects of one internal class, subclasses
/// included. Given to OssScriptManager, which owns it.
class OssAPIFactory
{
public:
    /// The caller owns the result. It may come back empty (Ossa::API::isNull()) when the object is
    /// of no use to the script class.
    virtual Ossa::API *create(QObject *internal) = 0;
    virtual ~OssAPIFactory() = default;
    virtual QString internalClassName() = 0;
    virtual QString scriptClassName() = 0;
};
