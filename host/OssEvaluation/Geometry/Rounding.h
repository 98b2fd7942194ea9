#pragma once

/// Whole numbers next to one that an int can hold. Unlike those of the standard library they need no call,
/// which counts where it is done some times for each of a million triangles.
template <class Real>
int roundedDown(Real value)
{
    const int whole = int(value);
    return whole - (Real(whole) > value ? 1 : 0);
}

template <class Real>
int roundedUp(Real value)
{
    const int whole = int(value);
    return whole + (Real(whole) < value ? 1 : 0);
}
