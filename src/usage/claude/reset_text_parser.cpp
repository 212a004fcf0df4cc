// SPDX-License-Identifier: MIT
#include "usage/claude/reset_text_parser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <string>

#include "base/text.h"
#include "usage/claude/named_time_zone.h"

namespace nimbo {
namespace {

using Seconds = std::chrono::duration<std::int64_t>;
using ZoneSeconds = cctz::time_point<cctz::seconds>;

constexpr std::array<std::string_view, 12> kMonths = {"january",   "february", "march",    "april",
                                                      "may",       "june",     "july",     "august",
                                                      "september", "october",  "november", "december"};
constexpr std::array<std::string_view, 7> kWeekdays = {"mon", "tue", "wed", "thu", "fri", "sat", "sun"};
constexpr Seconds kDay{86400};

struct TimeOfDay {
  int hour = 0;
  int minute = 0;
};

cctz::civil_second onThatDay(cctz::civil_day day, TimeOfDay time) {
  return cctz::civil_second(day.year(), day.month(), day.day(), time.hour, time.minute);
}

// Takes a form apart from the left. Texts are in lower case.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  [[nodiscard]] bool atEnd() const { return rest_.empty(); }

  bool skipSpaces() {
    const std::size_t count = std::min(rest_.find_first_not_of(' '), rest_.size());
    rest_.remove_prefix(count);
    return count > 0;
  }

  bool skip(std::string_view word) {
    if (!rest_.starts_with(word)) return false;
    rest_.remove_prefix(word.size());
    return true;
  }

  std::string_view letters() {
    return take([](char character) { return character >= 'a' && character <= 'z'; });
  }

  /// Of `least` to two digits.
  std::optional<int> number(std::size_t least) {
    const std::string_view digits = take(isDigit);
    if (digits.size() < least || digits.size() > 2) return std::nullopt;
    int value = 0;
    std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
  }

 private:
  template <class Predicate>
  std::string_view take(Predicate belongs) {
    const auto* const end = std::find_if_not(rest_.begin(), rest_.end(), belongs);
    const std::string_view taken = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
    rest_.remove_prefix(taken.size());
    return taken;
  }

  std::string_view rest_;
};

std::optional<int> takeMinutes(Scanner& scanner) {
  const auto minute = scanner.number(2);
  return minute && *minute < 60 ? minute : std::nullopt;
}

// "9:00am" or "9:00 am" to the end; the tool also writes "9am" for a full hour.
std::optional<TimeOfDay> twelveHourTime(Scanner scanner) {
  const auto hour = scanner.number(1);
  if (!hour || *hour < 1 || *hour > 12) return std::nullopt;
  const auto minute = scanner.skip(":") ? takeMinutes(scanner) : std::optional(0);
  scanner.skipSpaces();
  const bool isAfternoon = scanner.skip("pm");
  if (!minute || (!isAfternoon && !scanner.skip("am")) || !scanner.atEnd()) return std::nullopt;
  return TimeOfDay{*hour % 12 + (isAfternoon ? 12 : 0), *minute};
}

// "15:59" to the end.
std::optional<TimeOfDay> twentyFourHourTime(Scanner scanner) {
  const auto hour = scanner.number(1);
  if (!hour || *hour > 23 || !scanner.skip(":")) return std::nullopt;
  const auto minute = takeMinutes(scanner);
  if (!minute || !scanner.atEnd()) return std::nullopt;
  return TimeOfDay{*hour, *minute};
}

std::optional<int> takeMonth(Scanner& scanner) {
  const std::string_view word = scanner.letters();
  for (std::size_t index = 0; index < kMonths.size(); ++index) {
    if (word == kMonths.at(index) || word == kMonths.at(index).substr(0, 3)) return static_cast<int>(index) + 1;
  }
  return std::nullopt;
}

std::optional<cctz::civil_day> civilDay(cctz::year_t year, int month, int day) {
  const cctz::civil_day date(year, month, day);
  return date.month() == month && date.day() == day ? std::optional(date) : std::nullopt;
}

// "nov 20 at 9:00am" or "nov 20, 9:00am".
std::optional<cctz::civil_second> dateAndTime(Scanner scanner, cctz::year_t year) {
  const auto month = takeMonth(scanner);
  if (!month || !scanner.skipSpaces()) return std::nullopt;
  const auto day = scanner.number(1);
  const auto date = day ? civilDay(year, *month, *day) : std::nullopt;
  const bool isSpaced = scanner.skipSpaces();
  const bool isJoined = scanner.skip(",") || (isSpaced && scanner.skip("at "));
  if (!date || !isJoined) return std::nullopt;
  scanner.skipSpaces();
  const auto time = twelveHourTime(scanner);
  return time ? std::optional(onThatDay(*date, *time)) : std::nullopt;
}

cctz::civil_second oneYearOn(cctz::civil_second time) {
  const cctz::civil_second next(time.year() + 1, time.month(), time.day(), time.hour(), time.minute());
  return next.month() == time.month() ? next : next - kDay.count();  // 29 February
}

// The clock of instants ends in 2262.
std::optional<UsageTime> instant(ZoneSeconds time) {
  constexpr auto kFirst = std::chrono::ceil<Seconds>(UsageTime::min().time_since_epoch());
  constexpr auto kLast = std::chrono::floor<Seconds>(UsageTime::max().time_since_epoch());
  const Seconds sinceEpoch = time.time_since_epoch();
  return sinceEpoch >= kFirst && sinceEpoch <= kLast ? std::optional(UsageTime(sinceEpoch)) : std::nullopt;
}

std::optional<UsageTime> resetOnDate(Scanner scanner, UsageTime now, const cctz::time_zone& zone) {
  constexpr Seconds kTooLongAgo{15552000};
  const auto date = dateAndTime(scanner, cctz::convert(now, zone).year());
  if (!date) return std::nullopt;
  const ZoneSeconds time = cctz::convert(*date, zone);
  const bool isNextYear = std::chrono::floor<Seconds>(now.time_since_epoch()) - time.time_since_epoch() > kTooLongAgo;
  return instant(isNextYear ? cctz::convert(oneYearOn(*date), zone) : time);
}

// That time of that day, if it comes after `now`.
std::optional<UsageTime> momentAfter(UsageTime now, cctz::civil_day day, TimeOfDay time, const cctz::time_zone& zone) {
  using Lookup = cctz::time_zone::civil_lookup;
  const Lookup found = zone.lookup(onThatDay(day, time));
  const bool isSkipped = found.kind == Lookup::SKIPPED;
  if (isSkipped && cctz::civil_day(cctz::convert(found.trans, zone)) != day) return std::nullopt;
  for (const ZoneSeconds candidate : {isSkipped ? found.trans : found.pre, isSkipped ? found.trans : found.post}) {
    const auto moment = instant(candidate);
    if (moment && *moment > now) return moment;
  }
  return std::nullopt;
}

std::optional<UsageTime> nextMoment(UsageTime now, std::optional<cctz::weekday> weekday, TimeOfDay time,
                                    const cctz::time_zone& zone) {
  constexpr int kTwoWeeks = 14;  // one may be lost to a change of the clocks
  const cctz::civil_day today(cctz::convert(now, zone));
  for (cctz::civil_day day = today; day <= today + kTwoWeeks; ++day) {
    if (weekday && cctz::get_weekday(day) != *weekday) continue;
    if (const auto moment = momentAfter(now, day, time, zone)) return moment;
  }
  return std::nullopt;
}

// "mon 9:00am" or "monday at 9:00am".
std::optional<UsageTime> resetOnWeekday(std::string_view text, UsageTime now, const cctz::time_zone& zone) {
  const auto* const name = std::find(kWeekdays.begin(), kWeekdays.end(), text.substr(0, 3));
  const std::size_t space = text.find(' ');
  if (name == kWeekdays.end() || space == std::string_view::npos) return std::nullopt;
  Scanner scanner(text.substr(space));
  scanner.skipSpaces();
  scanner.skip("at ");
  scanner.skipSpaces();
  const auto time = twelveHourTime(scanner);
  return time ? nextMoment(now, static_cast<cctz::weekday>(name - kWeekdays.begin()), *time, zone) : std::nullopt;
}

std::optional<UsageTime> resetAtTime(std::string_view text, UsageTime now, const cctz::time_zone& zone) {
  auto time = twelveHourTime(Scanner(text));
  if (!time) time = twentyFourHourTime(Scanner(text));
  return time ? nextMoment(now, std::nullopt, *time, zone) : std::nullopt;
}

std::optional<Seconds> unitLength(std::string_view unit) {
  const auto isOneOf = [&](std::initializer_list<std::string_view> names) {
    return std::find(names.begin(), names.end(), unit) != names.end();
  };
  if (isOneOf({"d", "day", "days"})) return kDay;
  if (isOneOf({"h", "hr", "hrs", "hour", "hours"})) return Seconds(3600);
  if (isOneOf({"m", "min", "minute", "minutes"})) return Seconds(60);
  return std::nullopt;
}

// The word that `text` begins with after any spaces.
std::string_view nextWord(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  const auto isWord = [](char character) { return (character >= 'a' && character <= 'z') || isDigit(character); };
  const auto* const end =
      std::find_if_not(text.begin(), text.end(), [&](char character) { return isWord(character) || character == '_'; });
  return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

// "2h 14m": each number whose unit is a word of its own counts. Absent when there is none, or when the
// clock does not reach that far.
std::optional<UsageTime> resetAfter(std::string_view text, UsageTime now) {
  const auto reach = std::chrono::floor<Seconds>(UsageTime::max() - std::max(now, UsageTime()));
  std::optional<Seconds> sum;
  for (;;) {
    text.remove_prefix(static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isDigit) - text.begin()));
    if (text.empty()) break;
    std::int64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    const auto unit = unitLength(nextWord(text));
    if (!unit) continue;
    const Seconds left = reach - sum.value_or(Seconds::zero());
    if (error != std::errc() || number > left / *unit) return std::nullopt;
    sum = sum.value_or(Seconds::zero()) + number * *unit;
  }
  return sum ? std::optional(now + *sum) : std::nullopt;
}

}  // namespace

std::optional<UsageTime> parseResetText(std::string_view line, UsageTime now, std::string_view localZone) {
  constexpr std::string_view kResets = "resets ";
  line = trimmedWhiteSpace(line);
  if (startsWithIgnoringCase(line, kResets)) line = trimmedWhiteSpace(line.substr(kResets.size()));
  const std::size_t bracket = line.ends_with(')') ? line.find('(') : std::string_view::npos;
  const bool hasZone = bracket != std::string_view::npos;
  const auto zone =
      hasZone ? namedTimeZone(line.substr(bracket + 1, line.size() - bracket - 2)) : trustedTimeZone(localZone);
  if (hasZone && !zone) return std::nullopt;
  const std::string text = plainLowerCased(trimmedWhiteSpace(line.substr(0, bracket)));
  if (text.starts_with("in ")) return resetAfter(text, now);
  if (!zone) return std::nullopt;
  if (const auto reset = resetOnDate(Scanner(text), now, *zone)) return reset;
  if (const auto reset = resetAtTime(text, now, *zone)) return reset;
  return resetOnWeekday(text, now, *zone);
}

}  // namespace nimbo
