#pragma once

#include "OssEvaluation/OssEvaluation_export.h"

#include <cstddef>
#include <memory>

/// Memory for texels, 64-byte aligned and not initialised. Freed blocks of a tile's size are kept
/// for the next tile: fresh pages cost more than the kernels that fill them.
class OSSEVALUATION_EXPORT OssEvBuffer
{
public:
    static constexpr std::size_t Alignment = 64;

    OssEvBuffer() = default;
    /// Throws std::bad_alloc, which the engine turns into an error of the node.
    explicit OssEvBuffer(std::size_t bytes);
    OssEvBuffer(OssEvBuffer &&other) noexcept;
    OssEvBuffer &operator=(OssEvBuffer &&other) noexcept;
    OssEvBuffer(const OssEvBuffer &) = delete;
    OssEvBuffer &operator=(const OssEvBuffer &) = delete;
    ~OssEvBuffer();

    std::size_t size() const { return m_size; }

    template <class T>
    T *as() const
    {
        return static_cast<T *>(m_data);
    }

    /// Grows to at least `bytes`; the content is lost.
    void reserve(std::size_t bytes);

    /// Gives kept blocks back to the system.
    static void releaseKept();

private:
    void *m_data = nullptr;
    std::size_t m_size = 0;
};
