#include "Ossa/Headless/Interrupt.h"

#include <atomic>
#include <csignal>

namespace {

std::atomic<bool> g_requested{false};

extern "C" void requestInterrupt(int)
{
    g_requested = true;
}

} // namespace

void Interrupt::catchSignals()
{
    std::signal(SIGINT, requestInterrupt);
    std::signal(SIGTERM, requestInterrupt);
}

bool Interrupt::isRequested()
{
    return g_requested;
}
