#pragma once

#include <QRect>
#include <QRectF>

#include <algorithm>
#include <cmath>
#include <unordered_map>
#include <vector>

/// What a grid keeps of everything that stands in it.
struct OssNgGridEntry
{
    QRectF bounds;
    QRect cells;
    mutable quint32 stamp = 0; ///< last search that met it
    bool visible = true;       ///< what is not is never found
    bool large = false;        ///< kept apart, for its bounds cover too many cells
};

/// Finds what lies in a rectangle among very many: a uniform grid of square cells. `Entry` is
/// derived from OssNgGridEntry; the grid knows nothing else of it. An entry is named by its slot,
/// which is its own until it is removed.
template <typename Entry>
class OssNgGrid
{
public:
    /// What covers more than `mostCells` is kept in a list of its own that every search walks.
    explicit OssNgGrid(int mostCells)
        : m_mostCells(mostCells)
    {
    }

    int add(const Entry &entry)
    {
        int slot = int(m_entries.size());
        if (m_free.empty()) {
            m_entries.push_back(entry);
        } else {
            slot = m_free.back();
            m_free.pop_back();
            m_entries[std::size_t(slot)] = entry;
        }
        link(slot, cellsOf(entry.bounds));
        return slot;
    }

    /// Leaves a default entry, not visible, in the slot.
    void remove(int slot)
    {
        unlink(slot);
        Entry &entry = (*this)[slot];
        entry = Entry();
        entry.visible = false;
        m_free.push_back(slot);
    }

    /// To be called after the bounds of an entry were changed. Whether it covers other cells now.
    bool settle(int slot)
    {
        const QRect cells = cellsOf((*this)[slot].bounds);
        if (cells == (*this)[slot].cells)
            return false;
        unlink(slot);
        link(slot, cells);
        return true;
    }

    /// Slots of the visible entries that touch the rectangle, each once, in no order. Appended.
    void find(const QRectF &rect, std::vector<int> *found) const
    {
        const QRect cells = cellsOf(rect);
        if (std::size_t(cells.width()) * std::size_t(cells.height()) >= m_cells.size()) {
            for (int slot = 0; slot < int(m_entries.size()); ++slot)
                take(slot, rect, found);
            return;
        }
        const quint32 stamp = ++m_stamp;
        for (int y = cells.top(); y <= cells.bottom(); ++y) {
            for (int x = cells.left(); x <= cells.right(); ++x) {
                const auto cell = m_cells.find(key(x, y));
                if (cell == m_cells.end())
                    continue;
                for (const int slot : cell->second) {
                    quint32 &seen = (*this)[slot].stamp;
                    if (seen == stamp)
                        continue;
                    seen = stamp;
                    take(slot, rect, found);
                }
            }
        }
        for (const int slot : m_large)
            take(slot, rect, found);
    }

    Entry &operator[](int slot) { return m_entries[std::size_t(slot)]; }

    const Entry &operator[](int slot) const { return m_entries[std::size_t(slot)]; }

    /// By slot; those of free slots are default ones.
    std::vector<Entry> &entries() { return m_entries; }

    const std::vector<Entry> &entries() const { return m_entries; }

    int count() const { return int(m_entries.size() - m_free.size()); }

private:
    static constexpr qreal CellSize = 512.0;

    static QRect cellsOf(const QRectF &rect)
    {
        const auto cell = [](qreal value) {
            return int(std::floor(std::clamp(value, -1e6, 1e6) / CellSize));
        };
        return {QPoint(cell(rect.left()), cell(rect.top())),
                QPoint(cell(rect.right()), cell(rect.bottom()))};
    }

    static quint64 key(int x, int y) { return quint64(quint32(x)) << 32U | quint32(y); }

    /// Rectangles without width or height intersect nothing in Qt's sense; entries may be such.
    static bool touches(const QRectF &a, const QRectF &b)
    {
        return a.left() <= b.right() && b.left() <= a.right() && a.top() <= b.bottom()
               && b.top() <= a.bottom();
    }

    void take(int slot, const QRectF &rect, std::vector<int> *found) const
    {
        const Entry &entry = (*this)[slot];
        if (entry.visible && touches(entry.bounds, rect))
            found->push_back(slot);
    }

    void link(int slot, const QRect &cells)
    {
        Entry &entry = (*this)[slot];
        entry.cells = cells;
        entry.large = qint64(cells.width()) * cells.height() > m_mostCells;
        if (entry.large) {
            m_large.push_back(slot);
            return;
        }
        for (int y = cells.top(); y <= cells.bottom(); ++y) {
            for (int x = cells.left(); x <= cells.right(); ++x)
                m_cells[key(x, y)].push_back(slot);
        }
    }

    void unlink(int slot)
    {
        const Entry &entry = (*this)[slot];
        if (entry.large) {
            drop(m_large, slot);
            return;
        }
        for (int y = entry.cells.top(); y <= entry.cells.bottom(); ++y) {
            for (int x = entry.cells.left(); x <= entry.cells.right(); ++x)
                drop(m_cells[key(x, y)], slot);
        }
    }

    static void drop(std::vector<int> &members, int slot)
    {
        const auto found = std::find(members.begin(), members.end(), slot);
        *found = members.back();
        members.pop_back();
    }

    int m_mostCells;
    std::vector<Entry> m_entries;
    std::vector<int> m_free;
    std::vector<int> m_large;
    std::unordered_map<quint64, std::vector<int>> m_cells;
    mutable quint32 m_stamp = 0;
};
