// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <filesystem>
#include <system_error>

#include "base/result.h"
#include "base/secret.h"

namespace nimbo {

/// Reads files that hold a secret. Any thread; may block for as long as the file system does.
class SecretFiles {
 public:
  virtual ~SecretFiles() = default;

  /// The whole file, of which no other copy stays in memory; an error for one above `maximumBytes`
  /// and for anything but a regular file. Links are followed; pipes and devices are not waited for.
  [[nodiscard]] virtual Result<Secret, std::error_code> read(const std::filesystem::path& file,
                                                             std::size_t maximumBytes) const = 0;
};

}  // namespace nimbo
