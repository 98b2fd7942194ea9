#include "Ossa/Headless/Interrupt.h"

#include <atomic>
#include <csignal>

namespace {

std::atomic<bool> wasRequested{false};

extern "C" void requestInterrupt(int)
{
    wasRequested = true;
}

} // namespace

void Interrupt::catchSignals()
{
    std::signal(SIGINT, requestInterrupt);
    std::signal(SIGTERM, requestInterrupt);
}

bool Interrupt::isRequested()
{
    return wasRequested;
}
