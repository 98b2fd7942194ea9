#pragma once

#include <atomic>

/// Tells work in hand that nobody wants its result any more. Work asks at least every few
/// milliseconds and returns early with whatever it has; the result is thrown away.
class OssEvCancel
{
public:
    void cancel() { m_cancelled.store(true, std::memory_order_relaxed); }

    bool isCancelled() const { return m_cancelled.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> m_cancelled{false};
};
