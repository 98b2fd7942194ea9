#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"

#include <QList>
#include <QString>

class OssShaderNetwork;
class OssSnBaseNode;
class OssSnGroupNode;

/// Groups as archives with everything they need: their nodes and the images that these hold.
/// Materials (*.oma) come back as they were, custom procedurals (*.opc) as one closed node with its
/// knobs.
namespace OssNodeArchive {

enum class Kind { Material, CustomProcedural };

OSSMODEL_EXPORT OssResult write(const OssSnGroupNode *group, Kind kind, const QString &path);
/// All of the archive or nothing. Its images are unpacked into a folder of the user's
/// configuration that bears the archive's hash, and added to the project. One undo step.
OSSMODEL_EXPORT OssResult read(OssShaderNetwork *network, Kind kind, const QString &path,
                               QList<OssSnBaseNode *> *inserted);

} // namespace OssNodeArchive
