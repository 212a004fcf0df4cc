// SPDX-License-Identifier: MIT
#include "command/time_words.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <ctime>
#include <span>

namespace nimbo {
namespace {

using std::chrono::seconds;
using std::chrono::system_clock;

constexpr std::int64_t kDay = 86400;
constexpr std::int64_t kLongest = 366 * kDay;

/// Takes a number of so many digits at most off `rest`.
std::optional<int> takeNumber(std::string_view& rest, std::size_t digits) {
  int value = 0;
  const std::string_view beginning = rest.substr(0, digits);
  const auto [end, error] = std::from_chars(beginning.data(), beginning.data() + beginning.size(), value);
  if (error != std::errc() || value < 0 || beginning.front() == '-') return std::nullopt;
  rest.remove_prefix(static_cast<std::size_t>(end - beginning.data()));
  return value;
}

bool take(std::string_view& rest, char character) {
  if (!rest.starts_with(character)) return false;
  rest.remove_prefix(1);
  return true;
}

std::tm localTime(system_clock::time_point time) {
  const std::time_t instant = system_clock::to_time_t(time);
  std::tm parts{};
  ::localtime_r(&instant, &parts);
  return parts;
}

/// Absent when the clock skips it, there is no such day, or it is beyond what the time's type holds (the year 2262).
std::optional<system_clock::time_point> fromLocal(std::tm wanted) {
  wanted.tm_isdst = -1;
  std::tm made = wanted;
  const std::time_t instant = std::mktime(&made);
  const bool same = made.tm_mday == wanted.tm_mday && made.tm_hour == wanted.tm_hour && made.tm_min == wanted.tm_min;
  constexpr auto kLast = std::chrono::duration_cast<seconds>(system_clock::duration::max()).count();
  if (instant <= 0 || instant > kLast || !same) return std::nullopt;
  return system_clock::from_time_t(instant);
}

/// "18:30" or "18:30:15" to the end of `rest`.
bool readClock(std::string_view rest, std::tm& time) {
  const auto hour = takeNumber(rest, 2);
  if (!hour || !take(rest, ':')) return false;
  const auto minute = takeNumber(rest, 2);
  const auto second = take(rest, ':') ? takeNumber(rest, 2) : std::optional(0);
  if (!minute || !second || !rest.empty() || *hour > 23 || *minute > 59 || *second > 59) return false;
  time.tm_hour = *hour;
  time.tm_min = *minute;
  time.tm_sec = *second;
  return true;
}

bool readDate(std::string_view rest, std::tm& time) {
  const auto year = takeNumber(rest, 4);
  if (!year || !take(rest, '-')) return false;
  const auto month = takeNumber(rest, 2);
  if (!month || !take(rest, '-')) return false;
  const auto day = takeNumber(rest, 2);
  if (!day || !rest.empty() || *year < 1970 || *month < 1 || *month > 12 || *day < 1) return false;
  time.tm_year = *year - 1900;
  time.tm_mon = *month - 1;
  time.tm_mday = *day;
  return true;
}

}  // namespace

std::optional<seconds> durationOf(std::string_view words) {
  struct Unit {
    char letter;
    std::int64_t length;
  };
  constexpr std::array kUnits{Unit{'d', kDay}, Unit{'h', 3600}, Unit{'m', 60}, Unit{'s', 1}};
  std::int64_t total = 0;
  std::span<const Unit> left = kUnits;
  while (!words.empty()) {
    const auto number = takeNumber(words, 8);
    if (!number) return std::nullopt;
    while (!left.empty() && !words.starts_with(left.front().letter)) left = left.subspan(1);
    if (left.empty()) return std::nullopt;
    total += *number * left.front().length;
    left = left.subspan(1);
    words.remove_prefix(1);
  }
  if (total <= 0 || total > kLongest) return std::nullopt;
  return seconds(total);
}

std::optional<system_clock::time_point> timeOfDay(std::string_view words, system_clock::time_point now) {
  std::tm time = localTime(now);
  if (const std::size_t split = words.find('T'); split != std::string_view::npos) {
    if (!readDate(words.substr(0, split), time) || !readClock(words.substr(split + 1), time)) return std::nullopt;
    return fromLocal(time);
  }
  if (!readClock(words, time)) return std::nullopt;
  // A day that skips it is passed over.
  for (int day = 0; day < 3; ++day, ++time.tm_mday) {
    std::tm noon = time;
    noon.tm_hour = 12;
    noon.tm_isdst = -1;
    std::mktime(&noon);  // brings the end of a month into order
    std::tm wanted = noon;
    wanted.tm_hour = time.tm_hour;
    if (const auto found = fromLocal(wanted); found && *found > now) return found;
  }
  return std::nullopt;
}

std::string isoTime(system_clock::time_point time) {
  const std::time_t instant = system_clock::to_time_t(time);
  std::tm parts{};
  ::gmtime_r(&instant, &parts);
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
                     parts.tm_hour, parts.tm_min, parts.tm_sec);
}

std::string clockTime(system_clock::time_point time, system_clock::time_point now) {
  const std::tm then = localTime(time);
  const std::tm today = localTime(now);
  std::string clock = fmt::format("{:02}:{:02}", then.tm_hour, then.tm_min);
  if (then.tm_year == today.tm_year && then.tm_yday == today.tm_yday) return clock;
  return fmt::format("{:04}-{:02}-{:02} {}", then.tm_year + 1900, then.tm_mon + 1, then.tm_mday, clock);
}

}  // namespace nimbo
