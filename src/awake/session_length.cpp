// SPDX-License-Identifier: MIT
#include "awake/session_length.h"

#include <charconv>
#include <system_error>

#include "base/text.h"

namespace nimbo {

std::optional<std::int64_t> customMinutes(std::string_view text) {
  text = trimmedWhiteSpace(text);
  std::int64_t minutes = 0;
  const char* const end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, minutes);
  if (error != std::errc() || rest != end || minutes != clampedCustomMinutes(minutes)) return std::nullopt;
  return minutes;
}

std::optional<std::chrono::system_clock::time_point> sessionEnd(std::int64_t duration, std::int64_t minutes,
                                                                std::chrono::system_clock::time_point date,
                                                                std::chrono::system_clock::time_point now) {
  switch (duration) {
    case kUntilStopped:
      return std::nullopt;
    case kCustomMinutes:
      return now + std::chrono::minutes(minutes);
    case kUntilDate:
      return date;
    default:
      return now + std::chrono::seconds(duration);
  }
}

}  // namespace nimbo
