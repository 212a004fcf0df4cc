// SPDX-License-Identifier: MIT
#include "usage/claude/claude_desktop_usage.h"

#include <chrono>
#include <cstddef>
#include <utility>

#include "usage/claude/usage_screen_parser.h"
#include "usage/claude/window_text.h"
#include "usage/usage_messages.h"

namespace nimbo {
namespace {

constexpr char kApplication[] = "com.anthropic.claudefordesktop";
constexpr char kSource[] = "Claude Desktop";
constexpr std::string_view kMarker = "Plan usage limits";

constexpr std::chrono::milliseconds kMessagingTimeout{300};
constexpr std::size_t kMostWindows = 5;

tl::unexpected<UsageReadError> failure(const char* message) {
  return tl::unexpected(UsageReadError{UsageReadError::Kind::usage, message});
}

tl::unexpected<UsageReadError> cancelled() {
  return tl::unexpected(UsageReadError{UsageReadError::Kind::cancelled, {}});
}

}  // namespace

Result<UsageSnapshot, UsageReadError> ClaudeDesktopUsage::read(std::string_view localZone,
                                                               const std::stop_token& stop) const {
  const auto application = accessibility_.application(kApplication);
  if (stop.stop_requested()) return cancelled();
  if (!application) return failure(usage_messages::kDesktopNotRunning);
  if (!accessibility_.isTrusted()) return failure(usage_messages::kDesktopNeedsAccessibility);
  if (stop.stop_requested()) return cancelled();
  application->setMessagingTimeout(kMessagingTimeout);
  application->exposeContent(stop);

  for (const auto& window : application->windows(kMostWindows)) {
    const std::string text = windowText(*window, clock_, stop);
    if (stop.stop_requested()) return cancelled();
    if (text.find(kMarker) == std::string::npos) continue;
    if (auto snapshot = parseUsageScreen(text, clock_.now(), kSource, localZone)) return *std::move(snapshot);
  }
  return failure(usage_messages::kDesktopUsageNotShown);
}

}  // namespace nimbo
