#include "OssCoreModules/Images/OssCanvasManager.h"

OssCanvasManager *OssCanvasManager::instance()
{
    static OssCanvasManager manager;
    return &manager;
}

OssResult OssCanvasManager::bakePaint()
{
    return m_current ? m_current->bakePaint() : OssResult();
}
