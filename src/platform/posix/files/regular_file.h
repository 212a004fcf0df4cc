// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <system_error>

#include "base/result.h"
#include "base/secret.h"
#include "platform/user_files.h"

namespace nimbo {

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
