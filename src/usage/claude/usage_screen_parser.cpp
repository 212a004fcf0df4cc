// SPDX-License-Identifier: MIT
#include "usage/claude/usage_screen_parser.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "base/text.h"
#include "usage/claude/reset_text_parser.h"
#include "usage/usage_messages.h"

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

// The figure in front of the first "% used"; infinite when no number is that large.
std::optional<double> usedFigure(std::string_view line) {
  for (std::size_t sign = line.find('%'); sign != std::string_view::npos; sign = line.find('%', sign + 1)) {
    const std::string_view figure = decimalAtEnd(line.substr(0, sign));
    if (figure.empty() || !isUsedNext(line.substr(sign + 1))) continue;
    double number = std::numeric_limits<double>::infinity();
    std::from_chars(figure.data(), figure.data() + figure.size(), number);
    return number;
  }
  return std::nullopt;
}

bool equalsOneOf(std::string_view line, std::initializer_list<std::string_view> words) {
  for (const std::string_view word : words) {
    if (equalsIgnoringCase(line, word)) return true;
  }
  return false;
}

// Of the window that begins with that line.
std::optional<std::string> windowTitle(std::string_view line) {
  if (equalsIgnoringCase(line, "current session")) return "5-hour";
  if (equalsOneOf(line, {"current day", "daily"})) return "Daily";
  const bool isWeek = startsWithIgnoringCase(line, "current week");
  if (!isWeek && !equalsOneOf(line, {"all models", "sonnet only", "opus only"})) return std::nullopt;
  if (equalsOneOf(line, {"all models", "current week", "current week (all models)"})) return "Weekly";
  std::string name = removedIgnoringCase(line, "current week");
  name.erase(0, std::min(name.find_first_not_of(" ()"), name.size()));
  name.erase(name.find_last_not_of(" ()") + 1);
  return removedIgnoringCase(name, " only") + " weekly";
}

}  // namespace

void UsageScreenLines::takeAll(std::string_view text) {
  for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
    take(text.substr(0, end));
    text.remove_prefix(end + 1);
  }
  take(text);
}

void UsageScreenLines::take(std::string_view untrimmed) {
  if (untrimmed.empty() || untrimmed.size() > kLongestLine) return;
  const std::string_view line = trimmedWhiteSpace(untrimmed);
  if (auto title = windowTitle(line)) {
    commit();
    begun_ = Window{std::move(*title)};
  } else if (begun_) {
    takeDetail(line);
  }
}

void UsageScreenLines::takeDetail(std::string_view line) {
  if (const auto figure = usedFigure(line)) begun_->usedPercent = *figure;
  if (startsWithIgnoringCase(line, "resets ")) begun_->resetLine = line;
  const bool isOtherSection = startsWithIgnoringCase(line, "usage credits") ||
                              startsWithIgnoringCase(line, "extra usage") || equalsIgnoringCase(line, "activity");
  if (isOtherSection) commit();
}

void UsageScreenLines::commit() {
  const auto window = std::exchange(begun_, std::nullopt);
  if (!window || window->usedPercent > 100) return;
  const auto known = std::ranges::find(windows_, window->title, &Window::title);
  if (known != windows_.end()) {
    *known = *window;
  } else if (windows_.size() < kMaximumWindows) {
    windows_.push_back(*window);
  }
}

void UsageScreenParser::append(std::string_view bytes) {
  const std::size_t searched = text_.settled().size();
  text_.append(bytes);
  const std::string_view settled = text_.settled();
  const std::size_t lastLineFeed = settled.substr(searched).rfind('\n');
  if (lastLineFeed == std::string_view::npos) return;
  const std::size_t lineEnd = searched + lastLineFeed;
  lines_.takeAll(settled.substr(lineStart_, lineEnd - lineStart_));
  lineStart_ = lineEnd + 1;
}

UsageOutcome UsageScreenParser::snapshot(UsageTime now, std::string_view source, std::string_view localZone) const {
  UsageScreenLines lines = lines_;
  lines.takeAll(text_.settled().substr(lineStart_) + text_.unsettled());
  lines.commit();
  if (lines.windows().empty()) return tl::unexpected(UsageError{usage_messages::kNoReadableClaudeLimits});
  UsageSnapshot snapshot{.windows = {}, .fetchedAt = now, .source = std::string(source)};
  for (const auto& [title, usedPercent, resetLine] : lines.windows()) {
    snapshot.windows.push_back({title, usedPercent, parseResetText(resetLine, now, localZone)});
  }
  return snapshot;
}

UsageOutcome parseUsageScreen(std::string_view text, UsageTime now, std::string_view source,
                              std::string_view localZone) {
  UsageScreenParser parser;
  parser.append(text);
  return parser.snapshot(now, source, localZone);
}

}  // namespace nimbo
