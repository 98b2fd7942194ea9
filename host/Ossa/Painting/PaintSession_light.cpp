#include "Ossa/Painting/PaintSession.h"

#include "OssModel/Images/OssLivePaint.h"
#include "OssModel/Objects/OssImageSet.h"

#include <utility>
#include <vector>

// The stroke in hand, for what is evaluated meanwhile.

void PaintSession::noteUnseen(int patch, const OssEvRegion &area)
{
    constexpr int size = OssEvPaintTile::Size;
    for (int y = area.y / size; y * size < area.bottom(); ++y) {
        for (int x = area.x / size; x * size < area.right(); ++x)
            m_unseen.insert({patch, x, y});
    }
}

/// The stroke goes on in its tiles, so others get copies of those.
std::shared_ptr<const OssLivePaint> PaintSession::strokeSoFar()
{
    if (m_unseen.empty() && m_soFar)
        return m_soFar;
    for (const OssEvPaintBuffer::Place &place : std::exchange(m_unseen, {})) {
        const OssEvPaintTilePointer tile = m_buffer.tile(place);
        m_seen.setTile(place, tile ? std::make_shared<const OssEvPaintTile>(*tile) : nullptr);
    }
    m_soFar = OssLivePaint::publish(m_seen);
    return m_soFar;
}

void PaintSession::withStroke(const std::function<void()> &run)
{
    std::vector<PaintSession *> all = inUse();
    all.push_back(this);
    std::vector<std::pair<OssImageSet *, std::shared_ptr<const OssLivePaint>>> before;
    for (PaintSession *session : all) {
        if (!session->m_stroke || !session->m_images)
            continue;
        before.emplace_back(session->m_images, session->m_images->livePaint());
        session->m_images->setLivePaint(session->strokeSoFar());
    }
    run();
    for (const auto &[images, paint] : before)
        images->setLivePaint(paint);
}

void PaintSession::publishInHand()
{
    if (!m_stroke)
        return;
    m_stroke->share();
    publish();
    for (PaintSession *along : inUse())
        along->publishInHand();
}
