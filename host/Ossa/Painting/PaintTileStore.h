#pragma once

#include "OssEvaluation/Paint/OssEvPaintBuffer.h"

#include <QTemporaryFile>

#include <list>
#include <map>
#include <memory>
#include <vector>

/// Tiles of paint that the history goes back and forth between. At most so many bytes of them stay
/// in memory; the oldest go to a temporary file until they are wanted. Where that cannot be written
/// they stay in memory. GUI thread.
class PaintTileStore : public std::enable_shared_from_this<PaintTileStore>
{
public:
    static constexpr std::size_t historyBytes = std::size_t(256) << 20;

    /// One tile; alive for as long as a step needs it.
    class Kept
    {
    public:
        Kept(std::shared_ptr<PaintTileStore> store, OssEvPaintTilePointer tile);
        Kept(const Kept &) = delete;
        Kept &operator=(const Kept &) = delete;
        ~Kept();

        /// Null, with a line in the log, when the file cannot be read.
        OssEvPaintTilePointer tile();

    private:
        friend class PaintTileStore;

        std::shared_ptr<PaintTileStore> m_store;
        OssEvPaintTilePointer m_tile; ///< null while it is in the file
        std::list<Kept *>::iterator m_place;
        qint64 m_slot = -1; ///< in the file
    };

    explicit PaintTileStore(std::size_t bytes = historyBytes);

    /// Steps that keep the same tile share it. Null for null.
    std::shared_ptr<Kept> keep(const OssEvPaintTilePointer &tile);
    /// Brings memory down to what is allowed. Tiles that others hold too stay: it would free nothing.
    void trim();

    std::size_t bytesInMemory() const { return m_inMemory.size() * OssEvPaintTile::Bytes; }

private:
    bool write(Kept *kept);
    OssEvPaintTilePointer read(qint64 slot);

    std::size_t m_bytes;
    std::list<Kept *> m_inMemory;                                  ///< the oldest first
    std::map<const OssEvPaintTile *, std::weak_ptr<Kept>> m_known; ///< of those in memory
    QTemporaryFile m_file;
    std::vector<qint64> m_freeSlots;
    qint64 m_slots = 0;
};
