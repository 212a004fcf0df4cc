// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace nimbo {

/// "2h30m": numbers with d, h, m or s behind each, every unit once and larger ones first; a year at most. Absent for
/// everything else, and for nothing at all.
[[nodiscard]] std::optional<std::chrono::seconds> durationOf(std::string_view words);

/// "18:30", the next time that the user's clock shows that, or "2027-01-04T09:00", seconds optional in both. Absent for
/// everything else, and for a time that no clock shows.
[[nodiscard]] std::optional<std::chrono::system_clock::time_point> timeOfDay(std::string_view words,
                                                                             std::chrono::system_clock::time_point now);

/// "2026-11-22T17:30:00Z"
[[nodiscard]] std::string isoTime(std::chrono::system_clock::time_point time);
/// "2026-11-22 18:30" by the user's clock, without the date on the day of `now`.
[[nodiscard]] std::string clockTime(std::chrono::system_clock::time_point time,
                                    std::chrono::system_clock::time_point now);

}  // namespace nimbo
