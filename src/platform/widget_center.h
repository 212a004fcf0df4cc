// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace nimbo {

/// What the program shares with its widgets, which live in other processes.
class WidgetCenter {
 public:
  virtual ~WidgetCenter() = default;

  /// The folder shared with the widgets of that application group; absent when the system gives none.
  /// It may not exist yet. Any thread.
  [[nodiscard]] virtual std::optional<std::filesystem::path> container(const std::string& appGroup) const = 0;

  /// Replaces the file, with its folders made first: a reader sees the old contents or the new ones,
  /// never a part, and no other user sees any. False when that failed and the old ones stand. Waits for
  /// the disk. Any thread.
  [[nodiscard]] virtual bool writeAtomically(const std::filesystem::path& file, std::string_view contents) const = 0;

  /// Tells the widgets of that kind that there is something new to read. Main thread.
  virtual void reloadTimelines(const std::string& kind) = 0;
};

}  // namespace nimbo
