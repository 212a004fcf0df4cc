// SPDX-License-Identifier: MIT
#include "usage/claude/reset_text_parser.h"

#include <cctz/time_zone.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <string>

#include "base/text.h"

namespace nimbo {
namespace {

using Seconds = cctz::seconds;
using ZoneSeconds = cctz::time_point<Seconds>;

constexpr std::array<std::string_view, 12> kMonths = {"january",   "february", "march",    "april",
                                                      "may",       "june",     "july",     "august",
                                                      "september", "october",  "november", "december"};
constexpr std::array<std::string_view, 7> kWeekdays = {"mon", "tue", "wed", "thu", "fri", "sat", "sun"};
constexpr Seconds kDay{86400};

bool isLetter(char character) { return character >= 'a' && character <= 'z'; }

// The longest identifiers have some thirty characters. Without points there is no way out of the
// database's folder; below "right/" are zones whose days have leap seconds.
bool isIdentifier(std::string_view name) {
  constexpr std::size_t kLongest = 64;
  const auto isAllowed = [](char character) {
    return isLetter(lowerCased(character)) || isDigit(character) ||
           std::string_view("/_+-").find(character) != std::string::npos;
  };
  return !name.empty() && name.size() <= kLongest && name.front() != '/' && !name.starts_with("right/") &&
         std::ranges::all_of(name, isAllowed);
}

// The library remembers each name that it ever failed to find: it must not be asked for inventions.
bool mayExist(std::string_view identifier) {
  const std::filesystem::path database = "/usr/share/zoneinfo";
  std::error_code ignored;
  return !std::filesystem::exists(database, ignored) ||
         std::filesystem::is_regular_file(database / identifier, ignored);
}

// Of a name that can be trusted.
std::optional<cctz::time_zone> trustedTimeZone(std::string_view name) {
  cctz::time_zone zone;
  return cctz::load_time_zone(std::string(name), &zone) ? std::optional(zone) : std::nullopt;
}

// Of a name that stands on the screen.
std::optional<cctz::time_zone> namedTimeZone(std::string_view identifier) {
  return isIdentifier(identifier) && mayExist(identifier) ? trustedTimeZone(identifier) : std::nullopt;
}

// Reads a text in lower case piece by piece, from the left.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  [[nodiscard]] bool atEnd() const { return rest_.empty(); }

  bool skip(std::string_view word) {
    if (!rest_.starts_with(word)) return false;
    rest_.remove_prefix(word.size());
    return true;
  }

  bool skipSpaces() {
    return !take([](char character) { return character == ' '; }).empty();
  }

  /// As many characters as belong.
  template <class Predicate>
  std::string_view take(Predicate belongs) {
    const auto* const end = std::ranges::find_if_not(rest_, belongs);
    const std::string_view taken = rest_.substr(0, static_cast<std::size_t>(end - rest_.begin()));
    rest_.remove_prefix(taken.size());
    return taken;
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
  std::string_view rest_;
};

enum class Hours { twelve, both };

// Since midnight, from "9:00am", "9:00 am" or, as the tool writes a full hour, "9am", to the end; where
// both kinds of hours are allowed also from "15:59".
std::optional<Seconds> timeOfDay(Scanner scanner, Hours hours) {
  const auto hour = scanner.number(1);
  const bool hasMinute = scanner.skip(":");
  const auto minute = hasMinute ? scanner.number(2) : std::optional(0);
  if (!hour || !minute || *minute > 59) return std::nullopt;
  const Seconds minutes = std::chrono::minutes(*minute);
  if (hours == Hours::both && hasMinute && scanner.atEnd()) {
    return *hour < 24 ? std::optional(std::chrono::hours(*hour) + minutes) : std::nullopt;
  }
  scanner.skipSpaces();
  const bool isAfternoon = scanner.skip("pm");
  const bool isWhole = (isAfternoon || scanner.skip("am")) && scanner.atEnd();
  if (!isWhole || *hour < 1 || *hour > 12) return std::nullopt;
  return std::chrono::hours(*hour % 12 + (isAfternoon ? 12 : 0)) + minutes;
}

cctz::civil_second onThatDay(cctz::civil_day day, Seconds time) { return cctz::civil_second(day) + time.count(); }

// "2027" after spaces, a comma or both; where none stands, nothing is taken.
std::optional<cctz::year_t> takeYear(Scanner& scanner) {
  Scanner ahead = scanner;
  ahead.skip(",");
  ahead.skipSpaces();
  const std::string_view digits = ahead.take(isDigit);
  if (digits.size() != 4) return std::nullopt;
  scanner = ahead;
  cctz::year_t year = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), year);
  return year;
}

struct Date {
  cctz::civil_day day;
  bool hasYear = false;  ///< of its own
};

// "nov 20", "november 20" or "nov 20, 2027", which must exist; `year` counts where none is written.
std::optional<Date> takeDate(Scanner& scanner, cctz::year_t year) {
  const std::string_view word = scanner.take(isLetter);
  const auto isNamed = [&](std::string_view month) { return word == month || word == month.substr(0, 3); };
  const auto month = std::ranges::find_if(kMonths, isNamed) - kMonths.begin() + 1;
  const auto day = scanner.skipSpaces() ? scanner.number(1) : std::nullopt;
  if (!day) return std::nullopt;
  const auto written = takeYear(scanner);
  const cctz::civil_day date(written.value_or(year), month, *day);  // of what does not exist another one
  const bool exists = date.month() == month && date.day() == *day;
  return exists ? std::optional(Date{date, written.has_value()}) : std::nullopt;
}

cctz::civil_day oneYearOn(cctz::civil_day day) {
  const cctz::civil_day next(day.year() + 1, day.month(), day.day());
  return next.month() == day.month() ? next : next - 1;  // 29 February
}

// The clock of instants ends in 2262.
std::optional<UsageTime> instant(ZoneSeconds time) {
  constexpr auto kFirst = std::chrono::ceil<Seconds>(UsageTime::min());
  constexpr auto kLast = std::chrono::floor<Seconds>(UsageTime::max());
  return time >= kFirst && time <= kLast ? std::optional(UsageTime(time)) : std::nullopt;
}

// "nov 20 at 9:00am" or "nov 20, 9:00am"; near the end of a year the tool writes "jan 2, 2027, 9am".
std::optional<UsageTime> resetOnDate(Scanner scanner, UsageTime now, const cctz::time_zone& zone) {
  constexpr Seconds kTooLongAgo = 180 * kDay;
  const auto date = takeDate(scanner, cctz::convert(now, zone).year());
  const bool isSpaced = scanner.skipSpaces();
  const bool isJoined = scanner.skip(",") || (isSpaced && scanner.skip("at "));
  scanner.skipSpaces();
  const auto time = timeOfDay(scanner, Hours::twelve);
  if (!date || !isJoined || !time) return std::nullopt;
  const ZoneSeconds moment = cctz::convert(onThatDay(date->day, *time), zone);
  const bool isNextYear = !date->hasYear && std::chrono::floor<Seconds>(now) - moment > kTooLongAgo;
  return instant(isNextYear ? cctz::convert(onThatDay(oneYearOn(date->day), *time), zone) : moment);
}

// That time of that day, if it comes after `now`.
std::optional<UsageTime> momentAfter(UsageTime now, cctz::civil_day day, Seconds time, const cctz::time_zone& zone) {
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

std::optional<UsageTime> nextMoment(UsageTime now, std::optional<cctz::weekday> weekday, Seconds time,
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
  const auto* const name = std::ranges::find(kWeekdays, text.substr(0, 3));
  Scanner scanner(text);
  scanner.take([](char character) { return character != ' '; });
  if (name == kWeekdays.end() || !scanner.skipSpaces()) return std::nullopt;
  scanner.skip("at ");
  scanner.skipSpaces();
  const auto time = timeOfDay(scanner, Hours::twelve);
  return time ? nextMoment(now, static_cast<cctz::weekday>(name - kWeekdays.begin()), *time, zone) : std::nullopt;
}

// Of the word that follows after any spaces.
std::optional<Seconds> unitLength(Scanner scanner) {
  scanner.skipSpaces();
  const std::string_view unit =
      scanner.take([](char character) { return isLetter(character) || isDigit(character) || character == '_'; });
  const auto isOneOf = [&](std::initializer_list<std::string_view> names) {
    return std::ranges::find(names, unit) != names.end();
  };
  if (isOneOf({"d", "day", "days"})) return kDay;
  if (isOneOf({"h", "hr", "hrs", "hour", "hours"})) return Seconds(3600);
  if (isOneOf({"m", "min", "minute", "minutes"})) return Seconds(60);
  return std::nullopt;
}

// "2h 14m": each number whose unit is a word of its own counts. Absent when there is none, or when the
// clock does not reach that far.
std::optional<UsageTime> resetAfter(Scanner scanner, UsageTime now) {
  const auto reach = std::chrono::floor<Seconds>(UsageTime::max() - std::max(now, UsageTime()));
  std::optional<Seconds> sum;
  for (;;) {
    scanner.take([](char character) { return !isDigit(character); });
    const std::string_view digits = scanner.take(isDigit);
    if (digits.empty()) return sum ? std::optional(now + *sum) : std::nullopt;
    const auto unit = unitLength(scanner);
    if (!unit) continue;
    auto number = Seconds::max().count();  // stays when there are too many digits
    std::from_chars(digits.data(), digits.data() + digits.size(), number);
    const Seconds before = sum.value_or(Seconds::zero());
    if (number > (reach - before) / *unit) return std::nullopt;
    sum = before + number * *unit;
  }
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
  if (text.starts_with("in ")) return resetAfter(Scanner(text), now);
  if (!zone) return std::nullopt;
  if (const auto time = timeOfDay(Scanner(text), Hours::both)) return nextMoment(now, std::nullopt, *time, *zone);
  if (const auto reset = resetOnDate(Scanner(text), now, *zone)) return reset;
  return resetOnWeekday(text, now, *zone);
}

}  // namespace nimbo
