// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/linux/files/unique_fd.h"

namespace nimbo {

/// A file of /proc or /sys that is read again and again. It stays open: the kernel makes the text anew
/// for each read from the start, and opening and closing costs about 3 µs more.
class ProcFile {
 public:
  explicit ProcFile(std::string path) : path_(std::move(path)) {}

  /// The text as it is now, cut at the end of `buffer`, in which it lies; absent when it cannot be
  /// read. A file that is not there yet is looked for again at the next call.
  [[nodiscard]] std::optional<std::string_view> read(std::span<char> buffer);

 private:
  std::string path_;
  UniqueFd descriptor_;
};

/// The text of a file of at most a page, as sysfs attributes are; absent when it cannot be read.
[[nodiscard]] std::optional<std::string> readAttribute(const std::string& path);

/// Calls `visit` with each name in a folder, "." and ".." included; not at all when it cannot be
/// listed.
void visitFolder(const std::string& path, const std::function<void(std::string_view name)>& visit);

}  // namespace nimbo
