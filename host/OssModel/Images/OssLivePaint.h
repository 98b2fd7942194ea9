#pragma once

#include "OssEvaluation/Paint/OssEvPaintBuffer.h"
#include "OssModel/OssModel_export.h"

#include <cstdint>
#include <map>
#include <memory>

/// Paint that is in no image yet, as it was when a stroke ended or had come so far: what is evaluated
/// meanwhile has it, so it is seen behind other nodes and in light. Immutable.
class OSSMODEL_EXPORT OssLivePaint
{
public:
    using Pointer = std::shared_ptr<const OssLivePaint>;

    /// `before`: what was published of the same images; may be null.
    static Pointer publish(const OssEvPaintBuffer &paint, const Pointer &before = nullptr);

    /// By its id, while somebody holds it and for some strokes longer; null afterwards. Any thread.
    static Pointer find(std::uint64_t id);

    std::uint64_t id() const { return m_id; }

    const OssEvPaintBuffer &paint() const { return m_paint; }

    /// Any thread.
    bool has(int patch) const { return m_revisions.count(patch) != 0; }

    /// Another one where the paint on a patch is another, of whatever images; 0 where there is none.
    std::uint64_t revision(int patch) const;

private:
    OssLivePaint(std::uint64_t id, const OssEvPaintBuffer &paint, const OssLivePaint *before);

    std::uint64_t m_id;
    std::map<int, std::uint64_t> m_revisions; ///< by patch: where it became what it is
    OssEvPaintBuffer m_paint;
};
