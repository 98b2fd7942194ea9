#pragma once

#include "OssCoreModules/OssCoreModules_export.h"

#include <QWidget>

class OssImageSet;

/// What is painted on. Strokes stay in its paint buffer until they are baked into images.
class OSSCOREMODULES_EXPORT OssCanvasWidget : public QWidget
{
    Q_OBJECT

public:
    using QWidget::QWidget;

    /// Writes what the paint buffer holds for the images into them before it returns. With an empty
    /// buffer, or for null, nothing happens.
    virtual void handleBakeBehavior(OssImageSet *images) = 0;
};
