#include "OssModel/OssModelServices.h"

#include "OssModel/Nodes/OssSnNodeClasses.h"

OssModelServices::OssModelServices()
{
    OssSnNodeClasses::registerAll();
}
