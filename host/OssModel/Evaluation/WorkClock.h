#pragma once

#include <QElapsedTimer>

/// How long work in the background will still take, reckoned from what is done. Rests are not counted.
class WorkClock
{
public:
    void start()
    {
        m_elapsed.start();
        m_rested = 0;
        m_rest.invalidate();
    }

    void setResting(bool rests)
    {
        if (rests && !m_rest.isValid()) {
            m_rest.start();
        } else if (!rests && m_rest.isValid()) {
            m_rested += m_rest.elapsed();
            m_rest.invalidate();
        }
    }

    /// -1 as long as what is done says nothing.
    int secondsLeft(qint64 done, qint64 total) const
    {
        constexpr int FirstGuess = 1000; // milliseconds
        const qint64 now = m_rest.isValid() ? m_rest.elapsed() : 0;
        const qint64 worked = m_elapsed.isValid() ? m_elapsed.elapsed() - m_rested - now : 0;
        if (worked < FirstGuess || done <= 0)
            return -1;
        return int((total - done) * worked / done / 1000);
    }

private:
    QElapsedTimer m_elapsed;
    QElapsedTimer m_rest;
    qint64 m_rested = 0; ///< milliseconds
};
