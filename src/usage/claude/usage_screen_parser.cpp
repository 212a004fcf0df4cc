// SPDX-License-Identifier: MIT
#include "usage/claude/usage_screen_parser.h"

#include "usage/claude/reset_text_parser.h"
#include "usage/usage_messages.h"

namespace nimbo {

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

std::string UsageScreenParser::text() const { return text_.settled() + text_.unsettled(); }

Result<UsageSnapshot, UsageError> UsageScreenParser::snapshot(UsageTime now, std::string_view source,
                                                              std::string_view localZone) const {
  UsageScreenLines lines = lines_;
  std::string rest = text_.settled().substr(lineStart_);
  lines.takeAll(rest.append(text_.unsettled()));
  lines.commit();
  if (lines.windows().empty()) return tl::unexpected(UsageError{usage_messages::kNoReadableClaudeLimits});
  UsageSnapshot snapshot{.windows = {}, .fetchedAt = now, .source = std::string(source)};
  for (const UsageScreenLines::Window& window : lines.windows()) {
    snapshot.windows.push_back({window.title, window.usedPercent, parseResetText(window.resetLine, now, localZone)});
  }
  return snapshot;
}

Result<UsageSnapshot, UsageError> parseUsageScreen(std::string_view text, UsageTime now, std::string_view source,
                                                   std::string_view localZone) {
  UsageScreenParser parser;
  parser.append(text);
  return parser.snapshot(now, source, localZone);
}

}  // namespace nimbo
