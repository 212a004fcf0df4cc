// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "usage/claude/terminal_text.h"
#include "usage/usage_model.h"

namespace nimbo {

/// Understands a usage screen line by line: a title, then its figure and its reset, in any order and
/// with anything in between.
class UsageScreenLines {
 public:
  struct Window {
    std::string title;
    double usedPercent = std::numeric_limits<double>::infinity();  ///< until its figure is found
    std::string resetLine{};                                       ///< empty for none
  };

  /// All lines of `text`, the last of which need not end.
  void takeAll(std::string_view text);
  /// Nothing more belongs to the window that was begun.
  void commit();

  /// Those with a figure, one per title, in the order of their first appearance.
  [[nodiscard]] const std::vector<Window>& windows() const { return windows_; }

 private:
  void take(std::string_view untrimmed);
  void takeDetail(std::string_view line);

  std::vector<Window> windows_;
  std::optional<Window> begun_;
};

/// Reads the limits off a usage screen while it is being drawn: each byte is looked at once, and at any
/// moment the answer is the one that the whole text so far would give. A plain value; any thread.
class UsageScreenParser {
 public:
  void append(std::string_view bytes);

  /// The screen as it stands; an error while it shows no limit. `localZone` as in `parseResetText`.
  [[nodiscard]] UsageOutcome snapshot(UsageTime now, std::string_view source, std::string_view localZone) const;

 private:
  TerminalText text_;
  std::size_t lineStart_ = 0;  // of the first line that may still change
  UsageScreenLines lines_;     // those before it
};

/// The same for a text that is complete.
[[nodiscard]] UsageOutcome parseUsageScreen(std::string_view text, UsageTime now, std::string_view source,
                                            std::string_view localZone);

}  // namespace nimbo
