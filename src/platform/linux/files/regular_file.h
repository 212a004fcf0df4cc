// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

#include "base/result.h"
#include "base/secret.h"
#include "platform/user_files.h"

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

/// Whether it is a regular file that this user may run. Links are followed.
[[nodiscard]] bool isExecutableFile(const std::filesystem::path& file);

/// What becomes of a file that is a symbolic link.
enum class LinkedFile {
  follow,
  refuse,  ///< too_many_symbolic_link_levels; links on the way to the file are followed all the same
};

/// The whole file; file_too_large for one above `maximumBytes`, not_supported for anything but a regular
/// file. Never waits for a pipe or a device.
[[nodiscard]] Result<std::string, std::error_code> readRegularFile(const std::filesystem::path& file,
                                                                   std::size_t maximumBytes,
                                                                   LinkedFile linked = LinkedFile::follow);

/// The same for a file that holds a secret: no other copy of it stays in memory.
[[nodiscard]] Result<Secret, std::error_code> readSecretFile(const std::filesystem::path& file,
                                                             std::size_t maximumBytes,
                                                             LinkedFile linked = LinkedFile::follow);

/// Secrets in plain files.
class PlainSecretFiles final : public SecretFiles {
 public:
  [[nodiscard]] Result<Secret, std::error_code> read(const std::filesystem::path& file,
                                                     std::size_t maximumBytes) const override {
    return readSecretFile(file, maximumBytes);
  }
};

}  // namespace nimbo
