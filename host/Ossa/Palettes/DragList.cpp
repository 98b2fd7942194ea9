#include "Ossa/Palettes/DragList.h"

#include <QDrag>
#include <QIcon>
#include <QMimeData>

namespace {

constexpr int pictureSide = 32;
// Up and left: clear of the pointer and of what the target shows under it.
constexpr int besidePointer = pictureSide + 14;

} // namespace

void DragList::startDrag(Qt::DropActions actions)
{
    const QModelIndexList indexes = selectedIndexes();
    if (indexes.isEmpty())
        return;
    auto *drag = new QDrag(this); // Qt deletes it
    drag->setMimeData(model()->mimeData(indexes));
    const auto picture = indexes.first().data(Qt::DecorationRole).value<QIcon>();
    if (!picture.isNull()) {
        drag->setPixmap(picture.pixmap(pictureSide));
        drag->setHotSpot({besidePointer, besidePointer});
    }
    drag->exec(actions & Qt::CopyAction ? Qt::CopyAction : actions, Qt::CopyAction);
}
