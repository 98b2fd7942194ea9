#pragma once

#include "OssEvaluation/Paint/OssEvPaintMask.h"
#include "OssEvaluation/Schedule/OssEvEngine.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QTimer>

#include <vector>

class OssSnBaseNode;

/// What another node gives, as a mask of strokes: where it is bright they paint, where it is dark they do not.
/// Computed ahead, and again when the user rests after an edit of what it depends on; until the new one is
/// there the one before goes on. GUI thread.
class PaintMask : public QObject
{
    Q_OBJECT

public:
    explicit PaintMask(QObject *parent = nullptr);
    ~PaintMask() override;

    /// Null: strokes are not masked.
    void setSource(const OssSnBaseNode *node);
    /// Null also when it is in the graph no more.
    const OssSnBaseNode *source() const;

    void setInverted(bool inverted);

    bool isInverted() const { return m_isInverted; }

    /// Null: there is none, or not yet.
    OssEvPaintMask::Pointer mask() const;

    /// Why strokes cannot be masked now, in words; empty: they can, or need not.
    QString problem() const;

Q_SIGNALS:
    /// Another node, or its mask is there.
    void changed();

private:
    void look();
    void start();
    void stop();
    void finish(int generation, const std::shared_ptr<OssEvPaintMask> &mask,
                const OssEvOutcome &outcome);

    QPointer<const OssSnBaseNode> m_source;
    bool m_isInverted = false;
    OssEvPaintMask::Pointer m_mask;
    QString m_key; ///< of what the mask is, or will be
    QString m_problem;
    QTimer m_rest; ///< since the last edit
    std::vector<OssEvEngine::Id> m_running;
    int m_left = 0; ///< of those, not ready
    int m_generation = 0;
};
