// SPDX-License-Identifier: MIT
#pragma once

#include <time.h>

#include <array>

#include "platform/clock.h"

namespace nimbo {

/// The same on every machine: UTC, "2026-11-21 14:30".
class FakeDates final : public Dates {
 public:
  using Time = std::chrono::system_clock::time_point;

  [[nodiscard]] std::string shortDateAndTime(Time time) const override { return format(time, "%Y-%m-%d %H:%M"); }
  [[nodiscard]] std::string shortTime(Time time) const override { return format(time, "%H:%M"); }
  [[nodiscard]] std::string abbreviatedDateAndShortTime(Time time) const override {
    return format(time, "%b %d, %Y %H:%M");
  }

 private:
  static std::string format(Time time, const char* pattern) {
    const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(time).time_since_epoch().count();
    std::tm fields{};
    std::array<char, 32> text{};
    if (::gmtime_r(&seconds, &fields) == nullptr) return "out of range";
    return {text.data(), std::strftime(text.data(), text.size(), pattern, &fields)};
  }
};

}  // namespace nimbo
