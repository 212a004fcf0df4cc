// SPDX-License-Identifier: MIT
#pragma once

#include "platform/clock.h"

namespace nimbo {

/// Stands still until it is set or advanced.
class FakeClock final : public Clock {
 public:
  [[nodiscard]] std::chrono::system_clock::time_point now() const override { return now_; }
  [[nodiscard]] std::chrono::duration<double> uptime() const override { return uptime_; }

  void setNow(std::chrono::system_clock::time_point now) { now_ = now; }

  /// Moves both clocks, as passing time does.
  void advance(std::chrono::duration<double> time) {
    now_ += std::chrono::duration_cast<std::chrono::system_clock::duration>(time);
    uptime_ += time;
  }

 private:
  // 2026-03-14 09:26:53 UTC, an hour after start-up
  std::chrono::system_clock::time_point now_{std::chrono::seconds{1773480413}};
  std::chrono::duration<double> uptime_{3600};
};

}  // namespace nimbo
