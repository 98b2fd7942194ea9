#include "OssCoreModules/Script/OssaAPI.h"

namespace Ossa {

API::API(QObject *parent)
    : QObject(parent)
{
}

API::~API() = default;

} // namespace Ossa
