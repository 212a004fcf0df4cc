// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

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

/// The real clocks, by the C++ library: the same on every system.
class SystemClock final : public Clock {
 public:
  [[nodiscard]] std::chrono::system_clock::time_point now() const override { return std::chrono::system_clock::now(); }
  [[nodiscard]] std::chrono::duration<double> uptime() const override {
    return std::chrono::steady_clock::now().time_since_epoch();
  }
};

/// Times of the wall clock in the user's language and time zone. Main thread only.
class Dates {
 public:
  virtual ~Dates() = default;

  /// Date and time in the short styles of the user's locale: "11/21/2026, 2:30 PM".
  [[nodiscard]] virtual std::string shortDateAndTime(std::chrono::system_clock::time_point time) const = 0;

  /// Only the time, in the same style: "2:30 PM".
  [[nodiscard]] virtual std::string shortTime(std::chrono::system_clock::time_point time) const = 0;

  /// With the month's abbreviated name: "Nov 21, 2026, 2:30 PM".
  [[nodiscard]] virtual std::string abbreviatedDateAndShortTime(std::chrono::system_clock::time_point time) const = 0;
};

}  // namespace nimbo
