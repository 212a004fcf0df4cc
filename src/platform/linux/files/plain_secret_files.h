// SPDX-License-Identifier: MIT
#pragma once

#include "platform/linux/files/regular_file.h"
#include "platform/user_files.h"

namespace nimbo {

/// Secrets in plain files.
class PlainSecretFiles final : public SecretFiles {
 public:
  [[nodiscard]] Result<Secret, std::error_code> read(const std::filesystem::path& file,
                                                     std::size_t maximumBytes) const override {
    return readSecretFile(file, maximumBytes);
  }
};

}  // namespace nimbo
