// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

#include "darwin/fakes/fake_core_foundation.h"

namespace nimbo::fake {

// The main run loop and the main dispatch queue: one in a process, as there. Timers follow the monotonic clock, those
// of libdispatch the wall clock.

/// What a system sleep of that length does, or somebody who sets the clock: only the wall clock goes on.
void moveWallClock(std::chrono::nanoseconds forward);

/// The interval and the tolerance of the timer that was made last.
struct TimerSettings {
  std::chrono::duration<double> interval;
  std::chrono::duration<double> tolerance;
};
[[nodiscard]] TimerSettings lastTimer();
/// The leeway of the wall-clock timer that was set last.
[[nodiscard]] std::chrono::nanoseconds lastLeeway();

}  // namespace nimbo::fake
