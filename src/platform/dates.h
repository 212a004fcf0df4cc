// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace nimbo {

/// Dates in the user's language and time zone. Main thread only.
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
