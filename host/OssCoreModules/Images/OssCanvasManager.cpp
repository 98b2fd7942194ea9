#include "OssCoreModules/Images/OssCanvasManager.h"

OssCanvasManager *OssCanvasManager::instance()
{
    static OssCanvasManager manager;
    return &manager;
}
