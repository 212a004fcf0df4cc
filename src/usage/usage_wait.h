// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

#include "platform/clock.h"
#include "usage/usage_model.h"

namespace nimbo {

/// Ends at an instant of the wall clock, but lasts no longer than it was to when it began, however the clock is set.
class UsageWait {
 public:
  UsageWait() = default;  ///< one that is over
  UsageWait(UsageTime until, const Clock& clock)
      : until_(until),
        untilUptime_(clock.uptime() + Seconds(until.time_since_epoch()) - Seconds(clock.now().time_since_epoch())) {}

  [[nodiscard]] UsageTime until() const { return until_; }
  [[nodiscard]] bool lasts(const Clock& clock) const { return clock.now() < until_ && clock.uptime() < untilUptime_; }

 private:
  using Seconds = std::chrono::duration<double>;

  UsageTime until_{};
  Seconds untilUptime_{0};
};

}  // namespace nimbo
