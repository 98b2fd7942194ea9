#include "OssModel/Graph/OssSnNodeFactory.h"

#include "OssCore/Program/OssDebug.h"
#include "OssModel/Graph/OssSnBaseNode.h"

#include <QHash>

namespace {

QHash<QString, OssSnNodeFactory::Maker> &makers()
{
    static QHash<QString, OssSnNodeFactory::Maker> table;
    return table;
}

} // namespace

void OssSnNodeFactory::registerClass(const QString &className, Maker maker)
{
    makers().insert(className, std::move(maker));
}

bool OssSnNodeFactory::isKnownClass(const QString &className)
{
    return makers().contains(className);
}

std::unique_ptr<OssSnBaseNode> OssSnNodeFactory::make(const Type &type)
{
    if (!type)
        return std::make_unique<OssSnBaseNode>(nullptr);
    const auto found = makers().constFind(type->className);
    if (found == makers().cend()) {
        OssDebug("OssSnNodeFactory", __LINE__, "[ !! ] Node type '%s' names the unknown class '%s'",
                 qPrintable(type->pathKey), qPrintable(type->className));
        return std::make_unique<OssSnBaseNode>(type);
    }
    return (*found)(type);
}
