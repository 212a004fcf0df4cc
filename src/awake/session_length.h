// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <optional>
#include <string_view>

namespace nimbo {

// The values of the setting for a session's length that are no length in seconds.
inline constexpr std::int64_t kUntilStopped = 0;
inline constexpr std::int64_t kCustomMinutes = -1;
inline constexpr std::int64_t kUntilDate = -2;

inline constexpr std::int64_t kShortestCustomMinutes = 1;
inline constexpr std::int64_t kLongestCustomMinutes = 10080;  // a week

/// A stored custom length, brought into its range.
[[nodiscard]] inline std::int64_t clampedCustomMinutes(std::int64_t minutes) {
  return std::clamp(minutes, kShortestCustomMinutes, kLongestCustomMinutes);
}

/// A custom length as typed: a whole number in its range, with white space around it allowed.
[[nodiscard]] std::optional<std::int64_t> customMinutes(std::string_view text);

/// What a date picker offers at first: an hour from now, on the minute.
[[nodiscard]] inline std::chrono::system_clock::time_point suggestedEnd(std::chrono::system_clock::time_point now) {
  return std::chrono::floor<std::chrono::minutes>(now + std::chrono::hours(1));
}

/// When a session of the chosen length ends; absent for one until stopped. `date` is for the choice
/// of a date and time.
[[nodiscard]] std::optional<std::chrono::system_clock::time_point> sessionEnd(
    std::int64_t duration, std::int64_t minutes, std::chrono::system_clock::time_point date,
    std::chrono::system_clock::time_point now);

}  // namespace nimbo
