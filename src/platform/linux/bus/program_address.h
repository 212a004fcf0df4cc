// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-bus.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace nimbo {

// Where the running program is found on the session bus, and what is told there.

inline constexpr const char* kProgramName = "com.quellwerk.Nimbo";
inline constexpr const char* kProgramPath = "/com/quellwerk/Nimbo";
inline constexpr const char* kApplicationInterface = "org.freedesktop.Application";
inline constexpr const char* kAwakeInterface = "com.quellwerk.Nimbo.Awake1";
inline constexpr const char* kUsageInterface = "com.quellwerk.Nimbo.Usage1";
inline constexpr const char* kResourcesInterface = "com.quellwerk.Nimbo.Resources1";
/// With a sentence for the user.
inline constexpr const char* kRefusedError = "com.quellwerk.Nimbo.Error.Refused";
inline int refuse(sd_bus_error* error, const std::string& why) {
  return sd_bus_error_set(error, kRefusedError, why.c_str());
}

// Times are seconds since 1970, UTC; 0 for none.

/// What the time's type holds, in the year 2262.
inline constexpr std::int64_t kLatestTime =
    std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::duration::max()).count();

[[nodiscard]] inline std::int64_t secondsOf(const std::optional<std::chrono::system_clock::time_point>& time) {
  if (!time) return 0;
  return std::chrono::duration_cast<std::chrono::seconds>(time->time_since_epoch()).count();
}

[[nodiscard]] inline std::optional<std::chrono::system_clock::time_point> timeOf(std::int64_t seconds) {
  if (seconds <= 0 || seconds > kLatestTime) return std::nullopt;
  return std::chrono::system_clock::time_point(std::chrono::seconds(seconds));
}

}  // namespace nimbo
