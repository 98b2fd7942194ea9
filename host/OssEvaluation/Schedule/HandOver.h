#pragma once

/// Tells the thread sanitizer what it cannot see: oneTBB, which is not built for it, hands a task
/// from the thread that enqueues it to the one that runs it. Nothing in other builds.
#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#define OSSEV_UNWATCHED __attribute__((no_sanitize("thread"), noinline))

inline void OssEvHandOver(void *what)
{
    __tsan_release(what);
}

inline void OssEvTakeOver(void *what)
{
    __tsan_acquire(what);
}
#else
#define OSSEV_UNWATCHED

inline void OssEvHandOver(void * /*what*/) {}

inline void OssEvTakeOver(void * /*what*/) {}
#endif
