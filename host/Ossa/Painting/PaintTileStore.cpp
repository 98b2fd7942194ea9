#include "Ossa/Painting/PaintTileStore.h"

#include "OssCore/Program/OssDebug.h"

namespace {

constexpr auto tileBytes = qint64(OssEvPaintTile::Bytes);

} // namespace

PaintTileStore::Kept::Kept(std::shared_ptr<PaintTileStore> store, OssEvPaintTilePointer tile)
    : m_store(std::move(store))
    , m_tile(std::move(tile))
    , m_place(m_store->m_inMemory.insert(m_store->m_inMemory.end(), this))
{
}

PaintTileStore::Kept::~Kept()
{
    if (m_tile) {
        m_store->m_known.erase(m_tile.get());
        m_store->m_inMemory.erase(m_place);
    } else if (m_slot >= 0) {
        m_store->m_freeSlots.push_back(m_slot);
    }
}

OssEvPaintTilePointer PaintTileStore::Kept::tile()
{
    return m_tile ? m_tile : m_store->read(m_slot);
}

PaintTileStore::PaintTileStore(std::size_t bytes)
    : m_bytes(bytes)
{
}

std::shared_ptr<PaintTileStore::Kept> PaintTileStore::keep(const OssEvPaintTilePointer &tile)
{
    if (!tile)
        return nullptr;
    std::weak_ptr<Kept> &known = m_known[tile.get()];
    std::shared_ptr<Kept> kept = known.lock();
    if (!kept) {
        kept = std::make_shared<Kept>(shared_from_this(), tile);
        known = kept;
    }
    return kept;
}

void PaintTileStore::trim()
{
    for (auto at = m_inMemory.begin(); at != m_inMemory.end() && bytesInMemory() > m_bytes;) {
        Kept *kept = *at++; // it may leave the list
        if (kept->m_tile.use_count() == 1 && !write(kept))
            return;
    }
}

bool PaintTileStore::write(Kept *kept)
{
    if (!m_file.isOpen() && !m_file.open()) {
        OssDebug("PaintTileStore", __LINE__, "[ !! ] %s", qPrintable(m_file.errorString()));
        return false;
    }
    const bool isNew = m_freeSlots.empty();
    const qint64 slot = isNew ? m_slots : m_freeSlots.back();
    const auto *data = reinterpret_cast<const char *>(kept->m_tile->values());
    if (!m_file.seek(slot * tileBytes) || m_file.write(data, tileBytes) != tileBytes
        || !m_file.flush()) {
        OssDebug("PaintTileStore", __LINE__, "[ !! ] %s", qPrintable(m_file.errorString()));
        return false;
    }
    if (isNew)
        ++m_slots;
    else
        m_freeSlots.pop_back();
    m_known.erase(kept->m_tile.get());
    m_inMemory.erase(kept->m_place);
    kept->m_slot = slot;
    kept->m_tile.reset();
    return true;
}

OssEvPaintTilePointer PaintTileStore::read(qint64 slot)
{
    const auto tile = std::make_shared<OssEvPaintTile>();
    auto *data = reinterpret_cast<char *>(tile->values());
    if (slot >= 0 && m_file.seek(slot * tileBytes) && m_file.read(data, tileBytes) == tileBytes)
        return tile;
    OssDebug("PaintTileStore", __LINE__, "[ !! ] Paint of the history is gone: %s",
             qPrintable(m_file.errorString()));
    return nullptr;
}
