// SPDX-License-Identifier: MIT
#include "usage/iso8601.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

#include "base/text.h"

namespace nimbo {
namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::nanoseconds;
using std::chrono::seconds;

// All of them take what they find off `rest`.
std::optional<int> digits(std::string_view& rest, std::size_t count) {
  const std::string_view word = rest.substr(0, count);
  if (word.size() < count || !std::all_of(word.begin(), word.end(), isDigit)) return std::nullopt;
  int number = 0;
  std::from_chars(word.data(), word.data() + count, number);
  rest.remove_prefix(count);
  return number;
}

bool skip(std::string_view& rest, char character) {
  if (!rest.starts_with(character)) return false;
  rest.remove_prefix(1);
  return true;
}

std::optional<std::chrono::sys_days> date(std::string_view& rest) {
  const auto year = digits(rest, 4);
  if (!year || !skip(rest, '-')) return std::nullopt;
  const auto month = digits(rest, 2);
  if (!month || !skip(rest, '-')) return std::nullopt;
  const auto day = digits(rest, 2);
  if (!day) return std::nullopt;
  const auto date = std::chrono::year(*year) / *month / *day;
  return date.ok() ? std::optional(std::chrono::sys_days(date)) : std::nullopt;
}

std::optional<seconds> hoursAndMinutes(std::string_view& rest, bool needsColon) {
  const auto hour = digits(rest, 2);
  const bool hasColon = skip(rest, ':');
  const auto minute = digits(rest, 2);
  if (!hour || !minute || *hour > 23 || *minute > 59 || (needsColon && !hasColon)) return std::nullopt;
  return hours(*hour) + minutes(*minute);
}

std::optional<seconds> timeOfDay(std::string_view& rest) {
  const auto time = hoursAndMinutes(rest, /*needsColon=*/true);
  if (!time || !skip(rest, ':')) return std::nullopt;
  const auto second = digits(rest, 2);
  return second && *second < 60 ? std::optional(*time + seconds(*second)) : std::nullopt;
}

// Decimals beyond the ninth are below what an instant tells apart.
std::optional<nanoseconds> fraction(std::string_view& rest) {
  if (!skip(rest, '.')) return nanoseconds::zero();
  const auto* const end = std::find_if_not(rest.begin(), rest.end(), isDigit);
  std::string decimals(rest.begin(), end);
  if (decimals.empty()) return std::nullopt;
  rest.remove_prefix(decimals.size());
  decimals.resize(9, '0');
  std::string_view nine = decimals;
  return nanoseconds(digits(nine, 9).value_or(0));
}

std::optional<seconds> zoneOffset(std::string_view& rest) {
  if (skip(rest, 'Z')) return seconds::zero();
  const bool isWest = skip(rest, '-');
  if (!isWest && !skip(rest, '+')) return std::nullopt;
  const auto offset = hoursAndMinutes(rest, /*needsColon=*/false);
  return offset && isWest ? std::optional(-*offset) : offset;
}

bool isRepresentable(std::chrono::sys_seconds time) {
  return time > std::chrono::ceil<seconds>(UsageTime::min()) && time < std::chrono::floor<seconds>(UsageTime::max());
}

}  // namespace

std::optional<UsageTime> parseIso8601(std::string_view text) {
  const auto day = date(text);
  if (!day || !skip(text, 'T')) return std::nullopt;
  const auto time = timeOfDay(text);
  if (!time) return std::nullopt;
  const auto decimals = fraction(text);
  const auto offset = decimals ? zoneOffset(text) : std::nullopt;
  if (!offset || !text.empty()) return std::nullopt;
  const std::chrono::sys_seconds whole = *day + *time - *offset;
  return isRepresentable(whole) ? std::optional(UsageTime(whole) + *decimals) : std::nullopt;
}

std::string iso8601Text(UsageTime time) {
  const auto day = std::chrono::floor<days>(time);
  const std::chrono::year_month_day date(day);
  const std::chrono::hh_mm_ss<nanoseconds> clock(time - day);
  std::string text =
      fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}", int(date.year()), unsigned(date.month()), unsigned(date.day()),
                  clock.hours().count(), clock.minutes().count(), clock.seconds().count());
  if (clock.subseconds().count() > 0) {
    text += fmt::format(".{:09}", clock.subseconds().count());
    text.erase(text.find_last_not_of('0') + 1);
  }
  return text + "Z";
}

}  // namespace nimbo
