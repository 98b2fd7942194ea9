#pragma once

#include "OssEvaluation/Paint/OssEvPaintBuffer.h"
#include "OssModel/OssModel_export.h"

#include <cstdint>
#include <memory>

/// Paint that is in no image yet, as it was when a stroke ended: what is evaluated meanwhile has it, so it
/// is seen behind other nodes and in light. Immutable.
class OSSMODEL_EXPORT OssLivePaint
{
public:
    using Pointer = std::shared_ptr<const OssLivePaint>;

    static Pointer publish(const OssEvPaintBuffer &paint);

    /// By its id, while somebody holds it and for some strokes longer; null afterwards. Any thread.
    static Pointer find(std::uint64_t id);

    std::uint64_t id() const { return m_id; }

    const OssEvPaintBuffer &paint() const { return m_paint; }

    /// Any thread.
    bool has(int patch) const;

private:
    OssLivePaint(std::uint64_t id, const OssEvPaintBuffer &paint);

    std::uint64_t m_id;
    OssEvPaintBuffer m_paint;
};
