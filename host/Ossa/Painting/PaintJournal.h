#pragma once

#include "OssCore/Values/OssResult.h"
#include "OssEvaluation/Paint/OssEvPaintBuffer.h"

#include <QString>
#include <QThreadPool>

#include <utility>
#include <vector>

/// Paint that is in no image yet, on disk: a folder in "paint/" of the configuration folder with a file
/// for each tile, each of which is whole whatever happens to the program. Copies of unsaved work name the
/// folder, so a crash costs no stroke. Files are written on a thread of its own. GUI thread.
class PaintJournal
{
public:
    /// Tiles as they are from now on; null: none any more.
    using Tiles = std::vector<std::pair<OssEvPaintBuffer::Place, OssEvPaintTilePointer>>;

    static constexpr int keptDays = 14;

    PaintJournal();
    PaintJournal(const PaintJournal &) = delete;
    PaintJournal &operator=(const PaintJournal &) = delete;
    /// Waits for the disk.
    ~PaintJournal();

    /// Of the folder; empty while there is none.
    QString name() const { return m_name; }

    void begin(int resolution);
    /// Goes on with what read() has read.
    void resume(const QString &name, int resolution);
    void write(const Tiles &tiles);

    /// What was written stays, for copies that name it, and is swept away after keptDays.
    void end() { m_name.clear(); }

    void waitForDisk() { m_worker.waitForDone(); }

    /// Whether a text can be a name; what a document names may be hostile.
    static bool isName(const QString &name);
    /// Fails, with the reason, when it is not there or damaged.
    static OssResult read(const QString &name, OssEvPaintBuffer *paint);

private:
    static void sweep();

    QString m_name;
    int m_resolution = 0;
    QThreadPool m_worker;
};
