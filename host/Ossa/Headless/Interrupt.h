#pragma once

/// Ctrl+C, and being told to end, in commands without a window: they end their work instead of
/// leaving it half done.
namespace Interrupt {

constexpr int exitCode = 130; ///< what shells give for Ctrl+C

/// From now on the signals only ask.
void catchSignals();
bool isRequested();

} // namespace Interrupt
