// SPDX-License-Identifier: MIT
#include "usage/claude/usage_screen_lines.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include "base/text.h"

namespace nimbo {
namespace {

// No plan has more than a handful of windows and no terminal such wide lines; a screen without end must
// not cost without end.
constexpr std::size_t kMaximumWindows = 64;
constexpr std::size_t kLongestLine = 16384;

bool isUsedNext(std::string_view text) {
  while (const std::size_t length = leadingWhiteSpace(text)) text.remove_prefix(length);
  return text.starts_with("used");
}

// "61" or "61.5" at the end of `text`; of "1.2.3" the last two.
std::string_view decimalAtEnd(std::string_view text) {
  const auto digitsFrom = [&](std::size_t end) {
    while (end > 0 && isDigit(text[end - 1])) --end;
    return end;
  };
  std::size_t start = digitsFrom(text.size());
  const bool hasFraction = start < text.size() && start >= 2 && text[start - 1] == '.' && isDigit(text[start - 2]);
  if (hasFraction) start = digitsFrom(start - 1);
  return text.substr(start);
}

// The figure in front of the first "% used".
std::optional<std::string_view> usedFigure(std::string_view line) {
  for (std::size_t sign = line.find('%'); sign != std::string_view::npos; sign = line.find('%', sign + 1)) {
    const std::string_view figure = decimalAtEnd(line.substr(0, sign));
    if (!figure.empty() && isUsedNext(line.substr(sign + 1))) return figure;
  }
  return std::nullopt;
}

std::optional<double> decimalNumber(std::string_view figure) {
  double number = 0;
  const auto [end, error] = std::from_chars(figure.data(), figure.data() + figure.size(), number);
  return error == std::errc() && std::isfinite(number) ? std::optional(number) : std::nullopt;
}

bool equalsOneOf(std::string_view line, std::initializer_list<std::string_view> words) {
  return std::any_of(words.begin(), words.end(), [&](std::string_view word) { return equalsIgnoringCase(line, word); });
}

bool isWeekTitle(std::string_view line) {
  return startsWithIgnoringCase(line, "current week") || equalsOneOf(line, {"all models", "sonnet only", "opus only"});
}

std::string weekTitle(std::string_view line) {
  if (equalsOneOf(line, {"all models", "current week", "current week (all models)"})) return "Weekly";
  std::string name = removedIgnoringCase(line, "current week");
  name.erase(0, std::min(name.find_first_not_of(" ()"), name.size()));
  name.erase(name.find_last_not_of(" ()") + 1);
  return removedIgnoringCase(name, " only") + " weekly";
}

}  // namespace

void UsageScreenLines::take(std::string_view untrimmed) {
  if (untrimmed.empty() || untrimmed.size() > kLongestLine) return;
  const std::string_view line = trimmedWhiteSpace(untrimmed);
  if (equalsIgnoringCase(line, "current session")) return begin("5-hour");
  if (equalsOneOf(line, {"current day", "daily"})) return begin("Daily");
  if (isWeekTitle(line)) return begin(weekTitle(line));
  if (title_) takeDetail(line);
}

void UsageScreenLines::takeAll(std::string_view text) {
  while (!text.empty()) take(takeUntil(text, '\n'));
}

void UsageScreenLines::begin(std::string title) {
  commit();
  title_ = std::move(title);
}

void UsageScreenLines::takeDetail(std::string_view line) {
  if (const auto figure = usedFigure(line)) percent_ = decimalNumber(*figure);
  if (startsWithIgnoringCase(line, "resets ")) resetLine_ = line;
  const bool isOtherSection = startsWithIgnoringCase(line, "usage credits") ||
                              startsWithIgnoringCase(line, "extra usage") || equalsIgnoringCase(line, "activity");
  if (isOtherSection) commit();
}

void UsageScreenLines::commit() {
  const auto title = std::exchange(title_, std::nullopt);
  const auto percent = std::exchange(percent_, std::nullopt);
  const std::string resetLine = std::exchange(resetLine_, {});
  if (!title || !percent || !std::isfinite(*percent) || *percent < 0 || *percent > 100) return;
  const auto known =
      std::find_if(windows_.begin(), windows_.end(), [&](const Window& window) { return window.title == *title; });
  if (known != windows_.end()) {
    *known = {*title, *percent, resetLine};
  } else if (windows_.size() < kMaximumWindows) {
    windows_.push_back({*title, *percent, resetLine});
  }
}

}  // namespace nimbo
