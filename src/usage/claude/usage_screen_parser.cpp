// SPDX-License-Identifier: MIT
#include "usage/claude/usage_screen_parser.h"

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "base/text.h"
#include "usage/claude/reset_text_parser.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

// No plan has more than a handful of windows and no terminal such wide lines; a screen without end must
// not cost without end.
constexpr std::size_t kMaximumWindows = 64;
constexpr std::size_t kLongestLine = 16384;

// How long the sequence is that `text` begins with: ESC ] … ended by BEL or ESC \ with neither of them in
// between. 0 for none.
std::size_t commandLength(std::string_view text) {
  const std::size_t end = text.starts_with("\x1B]") ? text.find_first_of("\a\x1B", 2) : std::string_view::npos;
  if (end == std::string_view::npos) return 0;
  if (text[end] == '\a') return end + 1;
  return text.substr(end).starts_with("\x1B\\") ? end + 2 : 0;
}

// Likewise: ESC [ parameters, intermediates and one final character.
std::size_t controlLength(std::string_view text) {
  if (!text.starts_with("\x1B[")) return 0;
  const std::size_t intermediates = std::min(text.find_first_not_of("0123456789:;<=>?", 2), text.size());
  const std::size_t last = text.find_first_not_of(" !\"#$%&'()*+,-./", intermediates);
  const bool isComplete = last != std::string_view::npos && text[last] >= '@' && text[last] <= '~';
  return isComplete ? last + 1 : 0;
}

std::string withoutSequences(std::string_view text, std::size_t (*sequenceLength)(std::string_view)) {
  std::string plain;
  while (!text.empty()) {
    const std::size_t sequence = sequenceLength(text);
    // What is no sequence is text, up to where the next one may begin.
    const std::size_t length = sequence > 0 ? sequence : std::min(text.find('\x1B', 1), text.size());
    if (sequence == 0) plain.append(text.substr(0, length));
    text.remove_prefix(length);
  }
  return plain;
}

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
    return decimalNumber(figure).value_or(std::numeric_limits<double>::infinity());
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

/// Understands the lines of a screen.
class ScreenWindows {
 public:
  struct Window {
    std::string title;
    double usedPercent = std::numeric_limits<double>::infinity();  ///< until its figure is found
    std::string_view resetLine{};                                  ///< empty for none
  };

  void take(std::string_view untrimmed) {
    if (untrimmed.empty() || untrimmed.size() > kLongestLine) return;
    const std::string_view line = trimmedWhiteSpace(untrimmed);
    if (auto title = windowTitle(line)) {
      commit();
      begun_ = Window{std::move(*title)};
    } else if (begun_) {
      takeDetail(line);
    }
  }

  /// Nothing more belongs to the window that was begun.
  void commit() {
    const auto window = std::exchange(begun_, std::nullopt);
    if (!window || window->usedPercent > 100) return;
    const auto known = std::ranges::find(all_, window->title, &Window::title);
    if (known != all_.end()) {
      *known = *window;
    } else if (all_.size() < kMaximumWindows) {
      all_.push_back(*window);
    }
  }

  /// Those with a figure, one per title, in the order of their first appearance.
  [[nodiscard]] const std::vector<Window>& all() const { return all_; }

 private:
  void takeDetail(std::string_view line) {
    if (const auto figure = usedFigure(line)) begun_->usedPercent = *figure;
    if (startsWithIgnoringCase(line, "resets ")) begun_->resetLine = line;
    const bool isOtherSection = startsWithIgnoringCase(line, "usage credits") ||
                                startsWithIgnoringCase(line, "extra usage") || equalsIgnoringCase(line, "activity") ||
                                endsWithIgnoringCase(line, "credit");
    if (isOtherSection) commit();
  }

  std::vector<Window> all_;
  std::optional<Window> begun_;
};

}  // namespace

std::string plainTerminalText(std::string_view bytes) {
  std::string text = withoutSequences(withoutSequences(repairedUtf8(bytes), commandLength), controlLength);
  std::ranges::replace(text, '\r', '\n');
  return text;
}

bool asksForTrust(std::string_view screen, const std::vector<std::string>& folderNames) {
  const std::string text = plainTerminalText(screen);
  const auto shows = [&text](std::string_view part) { return text.find(part) != std::string::npos; };
  return shows("y. Yes, I trust this folder") && shows("Enter y/n:") &&
         std::ranges::any_of(folderNames, [&](const std::string& name) { return shows(repairedUtf8(name)); });
}

bool isDeadEnd(std::string_view screen) {
  // Without what stands between the letters: the tool may move its cursor on instead of writing blanks.
  constexpr std::array<std::string_view, 6> kMarks{"notloggedin",        "pleaserunlogin", "selectloginmethod",
                                                   "choosethetextstyle", "ratelimited",    "ratelimiterror"};
  std::string letters = lowerCased(plainTerminalText(screen));
  std::erase_if(letters, [](char character) { return character < 'a' || character > 'z'; });
  return std::ranges::any_of(kMarks, [&](std::string_view mark) { return letters.find(mark) != std::string::npos; });
}

UsageOutcome parseUsageScreen(std::string_view screen, UsageTime now, std::string_view source,
                              std::string_view localZone) {
  const std::string text = plainTerminalText(screen);
  ScreenWindows windows;
  for (std::string_view rest = text; !rest.empty();) windows.take(takeUntil(rest, '\n'));
  windows.commit();
  if (windows.all().empty()) return tl::unexpected(UsageError{usage_messages::kNoReadableClaudeLimits});
  UsageSnapshot snapshot{.windows = {}, .fetchedAt = now, .source = std::string(source)};
  for (const auto& [title, usedPercent, resetLine] : windows.all()) {
    snapshot.windows.push_back({title, usedPercent, parseResetText(resetLine, now, localZone)});
  }
  return snapshot;
}

}  // namespace nimbo
