// SPDX-License-Identifier: MIT
#pragma once

#include "platform/user_files.h"

namespace nimbo {

/// The file system itself. A folder is opened once without following a link, and all that is found out
/// is about what was opened.
class LocalToolFiles final : public ToolFiles {
 public:
  [[nodiscard]] bool isExecutable(const std::filesystem::path& file) const override;
  [[nodiscard]] Result<PrivateFolder, std::error_code> preparePrivateFolder(
      const std::filesystem::path& folder) const override;
};

}  // namespace nimbo
