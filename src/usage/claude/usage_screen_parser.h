// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "base/result.h"
#include "usage/claude/terminal_text.h"
#include "usage/claude/usage_screen_lines.h"
#include "usage/usage_model.h"

namespace nimbo {

/// Reads the limits off a usage screen while it is being drawn: each byte is looked at once, and at any
/// moment the answer is the one that the whole text so far would give. A plain value; any thread.
class UsageScreenParser {
 public:
  void append(std::string_view bytes);

  /// All that was appended, without escapes and with line feeds only.
  [[nodiscard]] std::string text() const;

  /// The screen as it stands. `localZone` as in `parseResetText`.
  [[nodiscard]] Result<UsageSnapshot, UsageError> snapshot(UsageTime now, std::string_view source,
                                                           std::string_view localZone) const;

 private:
  TerminalText text_;
  std::size_t lineStart_ = 0;  // of the first line that may still change
  UsageScreenLines lines_;     // those before it
};

/// The same for a text that is complete.
[[nodiscard]] Result<UsageSnapshot, UsageError> parseUsageScreen(std::string_view text, UsageTime now,
                                                                 std::string_view source, std::string_view localZone);

}  // namespace nimbo
