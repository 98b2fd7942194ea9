#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssModel/Images/OssColorManagement.h"
#include "OssModel/OssModel_export.h"

class OssProject;

/// Another configuration or working space for the open project, with what its nodes hold of the old
/// one. GUI thread.
namespace OssProjectColors {

/// Whether nodes keep the numbers of their colours, which then look different, or what they look like.
enum class Values { Kept, Converted };

/// How many colours of nodes, those of ramps among them, would be other numbers in the other space.
OSSMODEL_EXPORT int countColors(const OssProject *project, const OssColorSettings &settings);

/// One step, with fresh paint, which becomes part of its images before. Fails, and changes nothing,
/// where the paint cannot be kept or colours cannot be converted. `converted` is how many colours were. A space that cannot be had is
/// no failure: OssColorManagement tells it.
OSSMODEL_EXPORT OssResult change(OssProject *project, const OssColorSettings &settings,
                                 Values values, int *converted = nullptr);

} // namespace OssProjectColors
