#pragma once

#include "OssNodeGraph/OssNodeGraph_export.h"

#include <QStringList>

class OssNgNode;

/// Makes the graph readable to assistive technology: the view is a list of its visible nodes,
/// each told in words with its ports and what they are wired to. Choosing a node selects it.
namespace OssNgAccessible {

/// May be called again; needs the application object.
OSSNODEGRAPH_EXPORT void install();
/// "Noise, Procedural" and what is the matter with it: disabled, bypassed, the error's reason.
OSSNODEGRAPH_EXPORT QString nodeDescription(const OssNgNode *node);
/// "Base, from Noise Output" for an input; "Output, to Blend Base, Levels Input" for an output.
OSSNODEGRAPH_EXPORT QStringList portDescriptions(const OssNgNode *node);

} // namespace OssNgAccessible
