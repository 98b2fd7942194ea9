#pragma once

#include <ctime>

/// Processor time of this thread, which is what a user waits for: in milliseconds, and in units of "cal", the
/// painting of 1000 antialiased rounded rectangles in the same process, so that runs on different machines can be
/// compared.
namespace Measure {

/// Milliseconds of processor time of this thread.
double now();

/// Takes the unit; to be called once, before anything is measured.
void calibrate();

/// One row: what was done with that many nodes, and how long it took.
void print(const char *what, int count, double milliseconds);

/// Runs the event loop until nothing came up in it for a tenth of a second: pictures are drawn, what was put off
/// is done. Returns the longest single turn, in milliseconds.
double rest();

template <class Work>
void row(const char *what, int count, Work work)
{
    const double start = now();
    work();
    print(what, count, now() - start);
}

/// The same with all that follows from it.
template <class Work>
void rowUntilRest(const char *what, int count, Work work)
{
    row(what, count, [&] {
        work();
        rest();
    });
}

} // namespace Measure
