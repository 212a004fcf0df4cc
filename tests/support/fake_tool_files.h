// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <set>
#include <system_error>
#include <vector>

#include "platform/user_files.h"

namespace nimbo {

/// The files and the folder are there that the test says.
class FakeToolFiles final : public ToolFiles {
 public:
  [[nodiscard]] bool isExecutable(const std::filesystem::path& file) const override {
    asked.push_back(file);
    return executables.contains(file);
  }

  [[nodiscard]] Result<PrivateFolder, std::error_code> preparePrivateFolder(
      const std::filesystem::path& folder) const override {
    prepared.push_back(folder);
    if (error) return tl::unexpected(error);
    return PrivateFolder{state, ownName.empty() ? folder : ownName};
  }

  std::set<std::filesystem::path> executables;
  PrivateFolder::State state = PrivateFolder::State::empty;
  std::filesystem::path ownName;  ///< when it is not the one asked for
  std::error_code error;

  mutable std::vector<std::filesystem::path> asked;
  mutable std::vector<std::filesystem::path> prepared;
};

}  // namespace nimbo
