#pragma once

#include "OssCore/Program/OssService.h"
#include "OssModel/OssModel_export.h"

#include <QStringList>

class OssSnBaseNode;
class QMimeData;

/// What materials and paint need beyond single nodes.
class OSSMODEL_EXPORT OssMaterialPaintManager : public OssService<OssMaterialPaintManager>
{
public:
    OssMaterialPaintManager() = default;

    /// Wires the source to the next free input of a merge: the base, what lies over it, the mask.
    /// Undoable. False when none is free or they cannot be wired.
    bool autoconnectMergeNode(OssSnBaseNode *source, OssSnBaseNode *merge);

    /// Whether a drag brings material archives (*.oma), resp. custom procedural archives (*.opc):
    /// as such or as files from outside.
    bool draggableMaterialType(const QMimeData *data) const;
    bool draggableCustomProceduralType(const QMimeData *data) const;
    /// The archives of a drag, in order.
    QStringList pathListFromMimeData(const QMimeData *data) const;

private:
};
