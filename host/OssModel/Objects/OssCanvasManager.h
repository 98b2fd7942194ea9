#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/Objects/OssCanvasWidget.h"

/// Which canvas the user paints on. GUI thread.
class OSSMODEL_EXPORT OssCanvasManager : public OssService<OssCanvasManager>
{
public:
    OssCanvasManager() = default;

    /// Null while there is none.
    OssCanvasWidget *currentCanvas() const { return m_current; }

    /// Not owned.
    void setCurrentCanvas(OssCanvasWidget *canvas) { m_current = canvas; }

    /// Has the current canvas bake its paint, as before a document is written. Nothing without one.
    OssResult bakePaint();

private:
    OssCanvasWidget *m_current = nullptr;
};
