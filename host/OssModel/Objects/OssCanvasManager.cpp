#include "OssModel/Objects/OssCanvasManager.h"

OssCanvasWidget::~OssCanvasWidget()
{
    if (OssCanvasManager::instance()->currentCanvas() == this)
        OssCanvasManager::instance()->setCurrentCanvas(nullptr);
}

OssResult OssCanvasManager::bakePaint()
{
    return m_current ? m_current->bakePaint() : OssResult();
}
