#pragma once

#include "Ossa/Painting/PaintTileStore.h"
#include "OssCore/Undo/OssUndoStep.h"
#include "OssEvaluation/Paint/OssEvStroke.h"

#include <QPointer>

#include <vector>

class OssImageSet;
class PaintSession;

/// A change of the paint buffer: tiles before and after. What several steps have in common they
/// share.
class PaintStep final : public OssUndoStep
{
public:
    enum Kind {
        Stroke,
        Clear,
        Bake, ///< part of a step that also writes the images
    };

    PaintStep(PaintSession *session, OssImageSet *images, int resolution,
              const std::vector<OssEvStroke::Change> &changes, Kind kind);

    void undo() override;
    void redo() override;

private:
    struct Change
    {
        OssEvPaintBuffer::Place place;
        std::shared_ptr<PaintTileStore::Kept> before;
        std::shared_ptr<PaintTileStore::Kept> after;
    };

    void apply(bool forward);

    QPointer<PaintSession> m_session;
    QPointer<OssImageSet> m_images;
    int m_resolution;
    std::vector<Change> m_changes;
    Kind m_kind;
};
