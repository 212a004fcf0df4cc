// SPDX-License-Identifier: MIT
#include "usage/codex/usage_response_parser.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "base/bounded_json.h"
#include "base/text.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

using nlohmann::json;
using std::chrono::hours;
using std::chrono::minutes;
using std::chrono::nanoseconds;
using std::chrono::seconds;

struct Candidate {
  std::string_view key;
  std::string_view title;
};

constexpr Candidate kCodexWindows[] = {{"primary_window", "Session"}, {"secondary_window", "Weekly"}};
constexpr Candidate kClaudeWindows[] = {{"five_hour", "5-hour"},
                                        {"seven_day", "Weekly"},
                                        {"seven_day_sonnet", "Sonnet weekly"},
                                        {"seven_day_opus", "Opus weekly"}};

// Some writers put whole numbers down as 18000.0.
std::optional<std::int64_t> wholeNumber(const json* value) {
  constexpr double kLargestExact = 9007199254740992.0;
  const auto number = jsonNumber(value);
  if (!number || std::abs(*number) > kLargestExact || *number != std::trunc(*number)) return std::nullopt;
  return static_cast<std::int64_t>(*number);
}

std::string windowTitle(const json& window, std::string_view fallback) {
  constexpr std::int64_t kWeek = 604800;
  constexpr std::int64_t kHour = 3600;
  const auto length = wholeNumber(jsonMember(window, "limit_window_seconds"));
  if (!length || *length < 1) return std::string(fallback);
  if (*length == kWeek) return "Weekly";
  return *length % kHour == 0 ? fmt::format("{}-hour", *length / kHour) : fmt::format("{}-minute", *length / 60);
}

// A number that no instant reaches says nothing.
std::optional<UsageTime> secondsSince1970(const json* value) {
  constexpr double kLast = 9.2e9;
  const auto number = jsonNumber(value);
  if (!number || *number <= 0 || *number > kLast) return std::nullopt;
  return UsageTime(std::chrono::round<std::chrono::microseconds>(std::chrono::duration<double>(*number)));
}

std::optional<UsageTime> resetTime(const json& window) {
  if (const auto time = secondsSince1970(jsonMember(window, "reset_at"))) return time;
  const json* const text = jsonMember(window, "resets_at");
  return text != nullptr && text->is_string() ? parseIso8601(text->get_ref<const std::string&>()) : std::nullopt;
}

std::vector<UsageWindow> readWindows(const json& answer, UsageProvider provider) {
  const bool isClaude = provider == UsageProvider::claude;
  const json* const limits = isClaude ? &answer : jsonMember(answer, "rate_limit");
  if (limits == nullptr) return {};
  std::vector<UsageWindow> windows;
  for (const auto& [key, title] : isClaude ? std::span<const Candidate>(kClaudeWindows) : kCodexWindows) {
    const json* const window = jsonMember(*limits, key);
    if (window == nullptr) continue;
    const auto percent = jsonNumber(jsonMember(*window, isClaude ? "utilization" : "used_percent"));
    if (percent && *percent >= 0 && *percent <= 100) {
      windows.push_back({windowTitle(*window, title), *percent, resetTime(*window)});
    }
  }
  return windows;
}

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

// Decimals beyond the ninth are below what any system's instants tell apart.
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

UsageOutcome parseUsageResponse(std::string_view body, UsageProvider provider, UsageTime now) {
  const auto answer = parseBoundedJson(body);
  if (!answer) return tl::unexpected(UsageError{usage_messages::kNotJson});
  if (!answer->is_object()) return tl::unexpected(UsageError{usage_messages::kUnreadableUsageData});
  auto windows = readWindows(*answer, provider);
  if (windows.empty()) return tl::unexpected(UsageError{usage_messages::kNoSupportedLimits});
  return UsageSnapshot{.windows = std::move(windows), .fetchedAt = now};
}

std::chrono::seconds rateLimitWait(const std::optional<std::string>& header) {
  constexpr double kShortestWait = 600;
  // Beyond this a number means nothing, and a time so far away cannot be counted.
  constexpr double kLongestWait = 366.0 * 24 * 3600;
  const double asked = decimalNumber(header.value_or(std::string())).value_or(kShortestWait);
  const double wait = std::clamp(asked, kShortestWait, kLongestWait);
  return std::chrono::seconds(static_cast<std::chrono::seconds::rep>(std::ceil(wait)));
}

std::optional<UsageTime> parseIso8601(std::string_view text) {
  constexpr std::size_t kWholeSeconds = 19;
  const std::size_t zone = std::min(text.find_first_of("Z+-", kWholeSeconds), text.size());
  const auto time = dateAndTime(text.substr(0, kWholeSeconds));
  const auto decimals = time ? fraction(text.substr(kWholeSeconds, zone - kWholeSeconds)) : std::nullopt;
  const auto offset = zoneOffset(text.substr(zone));
  if (!decimals || !offset || !isRepresentable(*time - *offset)) return std::nullopt;
  return UsageTime(*time - *offset) + std::chrono::floor<UsageTime::duration>(*decimals);
}

}  // namespace nimbo
