// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

namespace nimbo {

/// The two clocks of the system. Any thread.
class Clock {
 public:
  virtual ~Clock() = default;

  /// The wall clock; may jump when the user or the network sets it.
  [[nodiscard]] virtual std::chrono::system_clock::time_point now() const = 0;

  /// Seconds since start-up; never goes back.
  [[nodiscard]] virtual std::chrono::duration<double> uptime() const = 0;
};

}  // namespace nimbo
