#include "Ossa/Painting/PaintStep.h"

#include "Ossa/Painting/PaintSession.h"
#include "OssModel/Objects/OssImageSet.h"

PaintStep::PaintStep(PaintSession *session, OssImageSet *images, int resolution,
                     const std::vector<OssEvStroke::Change> &changes, Kind kind)
    : OssUndoStep(kind == Clear ? PaintSession::tr("Clear Paint") : QString())
    , m_session(session)
    , m_images(images)
    , m_resolution(resolution)
    , m_kind(kind)
{
    for (const OssEvStroke::Change &change : changes)
        m_changes.push_back({change.place, session->tiles()->keep(change.before),
                             session->tiles()->keep(change.after)});
}

void PaintStep::undo()
{
    apply(false);
}

void PaintStep::redo()
{
    apply(true);
}

void PaintStep::apply(bool forward)
{
    if (!m_session)
        return;
    std::vector<std::pair<OssEvPaintBuffer::Place, OssEvPaintTilePointer>> tiles;
    for (const Change &change : m_changes) {
        const auto &kept = forward ? change.after : change.before;
        tiles.emplace_back(change.place, kept ? kept->tile() : nullptr);
    }
    m_session->setTiles(m_images, m_resolution, tiles,
                        m_kind == Bake ? PaintSession::Quietly : PaintSession::Show);
}
