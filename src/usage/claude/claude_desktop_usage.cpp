// SPDX-License-Identifier: MIT
#include "usage/claude/claude_desktop_usage.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <optional>
#include <string_view>

#include "base/text.h"
#include "usage/claude/usage_screen_parser.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

constexpr char kApplication[] = "com.anthropic.claudefordesktop";
constexpr char kDesktopSource[] = "Claude Desktop";
constexpr std::string_view kMarker = "Plan usage limits";

constexpr std::chrono::milliseconds kMessagingTimeout{300};
constexpr std::chrono::seconds kTimePerWindow{2};
constexpr std::size_t kMostWindows = 5;
constexpr std::size_t kMostElements = 1500;
constexpr int kDeepest = 34;
constexpr std::ptrdiff_t kTooLong = 300;

std::ptrdiff_t characters(std::string_view utf8) {
  return std::ranges::count_if(utf8, [](char byte) { return (byte & 0xC0) != 0x80; });
}

class Walk {
 public:
  Walk(const Clock& clock, const std::stop_token& stop)
      : clock_(clock), stop_(stop), deadline_(clock.uptime() + kTimePerWindow) {}

  void visit(AccessibleElement& element, int depth = 0) {
    if (depth > kDeepest || visited_ >= kMostElements || clock_.uptime() > deadline_ || stop_.stop_requested()) return;
    ++visited_;
    add(element.title());
    add(element.description());
    add(element.value());
    for (const auto& child : element.children(kMostElements - visited_)) visit(*child, depth + 1);
  }

  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  // An element often repeats its title as its value.
  void add(const std::optional<std::string>& line) {
    if (!line || line->empty() || characters(*line) >= kTooLong || line == lastLine_) return;
    const std::string_view words = trimmedWhiteSpace(*line);
    const bool isSameLine = continuesFigure(words);
    if (lastLine_ && !isSameLine) text_ += '\n';
    text_ += isSameLine ? words : *line;
    lastLine_ = line;
  }

  // Pages spread a figure over elements that stand side by side: "23" and "% used".
  [[nodiscard]] bool continuesFigure(std::string_view words) const {
    if (text_.empty()) return false;
    return (isDigit(text_.back()) && words.starts_with('%')) || (text_.back() == '%' && words.starts_with("used"));
  }

  const Clock& clock_;
  const std::stop_token& stop_;
  const std::chrono::duration<double> deadline_;
  std::size_t visited_ = 0;
  std::optional<std::string> lastLine_;
  std::string text_;
};

}  // namespace

UsageOutcome ClaudeDesktopUsage::read(std::string_view localZone, const std::stop_token& stop) const {
  const auto application = accessibility_.application(kApplication);
  if (stop.stop_requested()) return tl::unexpected(UsageError{});
  if (!application) return tl::unexpected(UsageError{usage_messages::kDesktopNotRunning});
  if (!accessibility_.isTrusted()) {
    return tl::unexpected(UsageError{usage_messages::desktopNeedsAccessibility(wording_)});
  }
  if (stop.stop_requested()) return tl::unexpected(UsageError{});
  application->setMessagingTimeout(kMessagingTimeout);
  application->exposeContent(stop);

  const auto windows = application->windows(kMostWindows);
  for (const auto& window : windows) {
    const std::string text = windowText(*window, clock_, stop);
    if (stop.stop_requested()) return tl::unexpected(UsageError{});
    if (text.find(kMarker) == std::string::npos) continue;
    if (auto outcome = parseUsageScreen(text, clock_.now(), kDesktopSource, localZone)) return outcome;
  }
  return tl::unexpected(
      UsageError{windows.empty() ? wording_.desktopShowsNothing : usage_messages::kDesktopUsageNotShown});
}

std::string windowText(AccessibleElement& window, const Clock& clock, const std::stop_token& stop) {
  Walk walk(clock, stop);
  walk.visit(window);
  return walk.text();
}

}  // namespace nimbo
