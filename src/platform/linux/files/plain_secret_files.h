// SPDX-License-Identifier: MIT
#pragma once

#include "platform/secret_files.h"

namespace nimbo {

/// Secrets in plain files, read straight into the one buffer that is handed out.
class PlainSecretFiles final : public SecretFiles {
 public:
  [[nodiscard]] Result<std::string, std::error_code> read(const std::filesystem::path& file,
                                                          std::size_t maximumBytes) const override;
};

}  // namespace nimbo
