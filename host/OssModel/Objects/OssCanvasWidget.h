#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssModel/OssModel_export.h"

class OssImageSet;

/// What is painted on, as the document sees it: strokes stay in its paint buffer until they are
/// baked into images. Widgets that are painted on implement it. GUI thread.
class OSSMODEL_EXPORT OssCanvasWidget
{
public:
    OssCanvasWidget() = default;
    OssCanvasWidget(const OssCanvasWidget &) = delete;
    OssCanvasWidget &operator=(const OssCanvasWidget &) = delete;
    /// It is the current canvas no more.
    virtual ~OssCanvasWidget();

    /// Does what the user wants done with paint when its images are about to be read: as a rule
    /// writes what the paint buffer holds for them into them before it returns. With an empty
    /// buffer, or for null, nothing happens.
    virtual void handleBakeBehavior(OssImageSet *images) = 0;

    /// Writes whatever the paint buffer holds into its images, without a question, and returns when
    /// that is done. One undo step; nothing when the buffer is empty. On failure the buffer keeps it.
    virtual OssResult bakePaint() = 0;
};
