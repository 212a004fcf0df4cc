// SPDX-License-Identifier: MIT
#include "usage/iso8601.h"

#include <algorithm>
#include <string>
#include <vector>

#include "base/text.h"

namespace nimbo {
namespace {

using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::nanoseconds;
using std::chrono::seconds;

// The numbers in a text of that form, in which each 0 stands for a digit; none when it has another form.
std::vector<int> numbersIn(std::string_view text, std::string_view form) {
  if (text.size() != form.size()) return {};
  std::vector<int> numbers{0};
  for (std::size_t index = 0; index < form.size(); ++index) {
    const bool isExpected = form[index] == '0' ? isDigit(text[index]) : text[index] == form[index];
    if (!isExpected) return {};
    if (form[index] == '0') {
      numbers.back() = numbers.back() * 10 + (text[index] - '0');
    } else {
      numbers.push_back(0);
    }
  }
  return numbers;
}

std::optional<std::chrono::sys_seconds> dateAndTime(std::string_view text) {
  const auto numbers = numbersIn(text, "0000-00-00T00:00:00");
  if (numbers.empty() || numbers[3] > 23 || numbers[4] > 59 || numbers[5] > 59) return std::nullopt;
  const auto date = std::chrono::year(numbers[0]) / numbers[1] / numbers[2];
  if (!date.ok()) return std::nullopt;
  return std::chrono::sys_days(date) + hours(numbers[3]) + minutes(numbers[4]) + seconds(numbers[5]);
}

// Decimals beyond the ninth are below what an instant tells apart.
std::optional<nanoseconds> fraction(std::string_view text) {
  if (text.empty()) return nanoseconds::zero();
  std::string decimals(text.substr(1));
  if (text[0] != '.' || decimals.empty() || !std::ranges::all_of(decimals, isDigit)) return std::nullopt;
  decimals.resize(9, '0');
  return nanoseconds(std::stoi(decimals));
}

std::optional<seconds> zoneOffset(std::string_view text) {
  if (text == "Z") return seconds::zero();
  if (text.find_first_of("+-") != 0) return std::nullopt;
  std::string time(text.substr(1));
  if (time.size() == 4) time.insert(2, 1, ':');
  const auto numbers = numbersIn(time, "00:00");
  if (numbers.empty() || numbers[0] > 23 || numbers[1] > 59) return std::nullopt;
  const seconds offset = hours(numbers[0]) + minutes(numbers[1]);
  return text[0] == '-' ? -offset : offset;
}

bool isRepresentable(std::chrono::sys_seconds time) {
  return time > std::chrono::ceil<seconds>(UsageTime::min()) && time < std::chrono::floor<seconds>(UsageTime::max());
}

}  // namespace

std::optional<UsageTime> parseIso8601(std::string_view text) {
  constexpr std::size_t kWholeSeconds = 19;
  const std::size_t zone = std::min(text.find_first_of("Z+-", kWholeSeconds), text.size());
  const auto time = dateAndTime(text.substr(0, kWholeSeconds));
  const auto decimals = time ? fraction(text.substr(kWholeSeconds, zone - kWholeSeconds)) : std::nullopt;
  const auto offset = zoneOffset(text.substr(zone));
  if (!decimals || !offset || !isRepresentable(*time - *offset)) return std::nullopt;
  return UsageTime(*time - *offset) + *decimals;
}

}  // namespace nimbo
