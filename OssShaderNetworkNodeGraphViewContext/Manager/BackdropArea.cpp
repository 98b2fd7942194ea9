#include "Manager/BackdropArea.h"

#include "OssCore/Undo/OssUndoManager.h"
#include "OssNodeGraph/Items/OssNgBackdropNode.h"
#include "OssNodeGraph/Items/OssNgBackdropNodeRectChangeUndo.h"
#include "OssNodeGraph/Items/OssNgNodePositionChangeUndo.h"

void setBackdropArea(OssNgBackdropNode *backdrop, const QRectF &area)
{
    OssUndoManager *history = OssUndoManager::instance();
    backdrop->savePosition();
    backdrop->saveBoundingRect();
    backdrop->setPosition(area.topLeft());
    if (!backdrop->isAt(backdrop->savedPosition()))
        history->addUndo(std::make_unique<OssNgNodePositionChangeUndo>(backdrop));
    backdrop->setRect({0.0, 0.0, area.width(), area.height()});
    const QRectF before = backdrop->savedBoundingRect();
    const QRectF now = backdrop->rect();
    if (now.width() != before.width() || now.height() != before.height())
        history->addUndo(std::make_unique<OssNgBackdropNodeRectChangeUndo>(backdrop));
}
