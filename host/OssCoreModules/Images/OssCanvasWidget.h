#pragma once

#include "OssCore/OssResult.h"
#include "OssCoreModules/OssCoreModules_export.h"

#include <QWidget>

class OssImageSet;

/// What is painted on. Strokes stay in its paint buffer until they are baked into images.
class OSSCOREMODULES_EXPORT OssCanvasWidget : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Does what the user wants done with paint when its images are about to be read: as a rule
    /// writes what the paint buffer holds for them into them before it returns. With an empty
    /// buffer, or for null, nothing happens.
    virtual void handleBakeBehavior(OssImageSet *images) = 0;

    /// Writes whatever the paint buffer holds into its images, without a question, and returns when
    /// that is done. One undo step; nothing when the buffer is empty. On failure the buffer keeps it.
    virtual OssResult bakePaint() = 0;
};
