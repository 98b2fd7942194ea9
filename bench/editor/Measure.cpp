#include "Measure.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QPainter>
#include <QThread>

#include <algorithm>
#include <cstdio>

namespace {

double g_cal = 1.0;

} // namespace

double Measure::now()
{
    timespec time = {};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return double(time.tv_sec) * 1e3 + double(time.tv_nsec) / 1e6;
}

void Measure::calibrate()
{
    QImage image(1920, 1080, QImage::Format_ARGB32_Premultiplied);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::darkGray);
    double best = 1e9;
    for (int round = 0; round < 5; ++round) {
        const double start = now();
        for (int i = 0; i < 1000; ++i)
            painter.drawRoundedRect(QRectF((i * 37) % 1700, (i * 91) % 950, 150, 90), 8, 8);
        best = std::min(best, now() - start);
    }
    g_cal = best;
    std::printf("cal %.1f ms\n", g_cal);
}

void Measure::print(const char *what, int count, double milliseconds)
{
    std::printf("%7d  %-44s %10.2f ms %9.3f cal\n", count, what, milliseconds,
                milliseconds / g_cal);
    std::fflush(stdout);
}

double Measure::rest()
{
    constexpr qint64 QuietMilliseconds = 100;
    constexpr double NothingDone = 0.2;
    double longest = 0.0;
    QElapsedTimer quiet;
    quiet.start();
    while (quiet.elapsed() < QuietMilliseconds) {
        const double start = now();
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        const double spent = now() - start;
        longest = std::max(longest, spent);
        if (spent > NothingDone)
            quiet.restart();
        else
            QThread::msleep(1);
    }
    return longest;
}
