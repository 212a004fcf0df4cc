// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>

#include "base/result.h"

namespace nimbo {

/// Tells one state of a file from another without reading it. Times are since 1970.
struct FileStamp {
  std::uint64_t device = 0;
  std::uint64_t inode = 0;
  std::int64_t bytes = 0;
  std::int64_t modifiedSeconds = 0;
  std::int64_t changedSeconds = 0;  ///< contents, name or mode; unlike the one above, nobody can set it back
  std::int64_t changedNanoseconds = 0;

  bool operator==(const FileStamp&) const = default;
};

/// Whether any later change of the file must give it another stamp. File systems count time in steps of up
/// to two seconds, so that a second change within one step may leave the stamp as it is.
[[nodiscard]] bool isSettled(const FileStamp& stamp, std::int64_t secondsSince1970);

/// Links are followed.
[[nodiscard]] Result<FileStamp, std::error_code> fileStamp(const std::filesystem::path& file);

}  // namespace nimbo
