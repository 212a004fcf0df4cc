// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nimbo {

/// What one group of a .desktop file, or of another file of that form, says, by freedesktop.org's rules for desktop
/// entries.
class DesktopEntry {
 public:
  /// Absent when the text has no such group.
  [[nodiscard]] static std::optional<DesktopEntry> parse(std::string_view text,
                                                         std::string_view group = "Desktop Entry");

  [[nodiscard]] std::optional<std::string> text(std::string_view key) const;
  [[nodiscard]] std::optional<bool> flag(std::string_view key) const;
  /// Separated by semicolons; absent when the key is.
  [[nodiscard]] std::optional<std::vector<std::string>> list(std::string_view key) const;

  /// What `Exec` runs, without places for files and links; the first word is the program's whole path.
  /// Absent when there is no such command, or `TryExec` or it name a program that is not there.
  /// `searchPath` has the form of PATH.
  [[nodiscard]] std::optional<std::vector<std::string>> command(const std::string& searchPath) const;

 private:
  std::map<std::string, std::string, std::less<>> values_;  // as written
};

/// `argument` as one word of a command.
[[nodiscard]] std::string quotedForExec(std::string_view argument);

/// `text` as it is written after a key; commands, too, after their words are quoted.
[[nodiscard]] std::string escapedForEntry(std::string_view text);

}  // namespace nimbo
