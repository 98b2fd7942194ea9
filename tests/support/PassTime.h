#pragma once

#include <QTest>

/// Lets that many milliseconds pass, and has done what was due by then also where the machine stood still meanwhile:
/// a single wait may end before the event loop has seen a timer.
inline void passTime(int milliseconds)
{
    constexpr int Parts = 10;
    for (int i = 0; i < Parts; ++i)
        QTest::qWait(milliseconds / Parts);
    QTest::qWait(0);
}
