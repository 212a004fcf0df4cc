// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <system_error>

namespace nimbo {

/// Makes the folder and those it lies in, each with mode 0700. What is there already stays as it is,
/// even when it is no folder.
[[nodiscard]] std::error_code makePrivateFolders(const std::filesystem::path& folder);

}  // namespace nimbo
