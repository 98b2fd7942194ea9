#pragma once

#include "OssEvaluation/Values/OssEvCancel.h"
#include "OssRender/Draw/OssRdScene.h"
#include "OssRender/OssRender_export.h"

#include <memory>
#include <string>

/// Draws scenes with OpenGL, without a window: on a machine with no display and no GPU as well, where
/// Mesa's software does the work. Each call may come from another thread, but only one at a time.
class OSSRENDER_EXPORT OssRdRenderer
{
public:
    OssRdRenderer();
    OssRdRenderer(const OssRdRenderer &) = delete;
    OssRdRenderer &operator=(const OssRdRenderer &) = delete;
    ~OssRdRenderer();

    /// Why nothing can be drawn, in words; empty when all is well.
    const std::string &problem() const;

    /// What draws, in the driver's words.
    const std::string &deviceName() const;

    /// Scene-linear, premultiplied over what is behind, from the top. Empty when nothing can be drawn, or
    /// when it was cancelled, which is asked between parts of pictures that take long.
    OssRdImage render(const OssRdScene &scene, const OssRdView &view,
                      const OssEvCancel *cancel = nullptr);
    /// The same with another scene in the columns left of `border`.
    OssRdImage renderBeside(const OssRdScene &left, int border, const OssRdScene &scene,
                            const OssRdView &view, const OssEvCancel *cancel = nullptr);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
