// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "platform/posix/files/unique_fd.h"

namespace nimbo {

/// What is in an open file from its start, cut at the end of `buffer`, in which it lies; absent when it cannot be read.
[[nodiscard]] std::optional<std::string_view> readText(const UniqueFd& file, std::span<char> buffer);

/// A file of /proc or /sys that is read again and again. It stays open: the kernel makes the text anew
/// for each read from the start, and opening and closing costs about 3 µs more.
class ProcFile {
 public:
  explicit ProcFile(std::string path) : path_(std::move(path)) {}

  /// The text as it is now. A file that is not there yet is looked for again at the next call.
  [[nodiscard]] std::optional<std::string_view> read(std::span<char> buffer);

 private:
  std::string path_;
  UniqueFd descriptor_;
};

/// The text of a file of at most a page, as sysfs attributes are; absent when it cannot be read.
[[nodiscard]] std::optional<std::string> readAttribute(const std::string& path);

/// Its first line, without the newline; empty when it cannot be read.
[[nodiscard]] std::string readAttributeLine(const std::string& path);

/// Calls `visit` with each name in a folder, "." and ".." included; not at all when it cannot be
/// listed.
void visitFolder(const std::string& path, const std::function<void(std::string_view name)>& visit);

/// Takes the next whole line off `rest`, without its newline. A last line without a newline was cut
/// off and does not count.
[[nodiscard]] std::optional<std::string_view> takeLine(std::string_view& rest);

/// Takes the next word (blanks and tabs separate) off `rest`; empty at the end.
[[nodiscard]] std::string_view takeWord(std::string_view& rest);

/// Takes `prefix` off `rest` when it begins with it.
[[nodiscard]] bool takePrefix(std::string_view& rest, std::string_view prefix);

/// All of `word` as a decimal number; absent for anything else.
[[nodiscard]] std::optional<std::uint64_t> parseNumber(std::string_view word);
[[nodiscard]] std::optional<double> parseDecimal(std::string_view word);

/// Bytes of a value like "   16632 kB". Absent for anything else and from 2^60 bytes on, so that
/// a few of them can be added.
[[nodiscard]] std::optional<std::uint64_t> parseKilobytes(std::string_view value);

}  // namespace nimbo
