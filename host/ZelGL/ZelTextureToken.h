#pragma once

#include "ZelGL/ZelGL_export.h"

/// Names one use of textures for the life of the process, so that what is uploaded for it can be
/// told apart from the rest. Tokens are made as static objects: making one touches neither GL
/// nor any other static object, so the order of initialisation does not matter.
class ZELGL_EXPORT ZelTextureToken
{
public:
    ZelTextureToken() noexcept;
    ZelTextureToken(const ZelTextureToken &) = delete;
    ZelTextureToken &operator=(const ZelTextureToken &) = delete;

    /// Unique in the process, never 0.
    unsigned id() const noexcept { return m_id; }

private:
    unsigned m_id;
};
