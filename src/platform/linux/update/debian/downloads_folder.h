// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string_view>

namespace nimbo {

/// The folder that `userDirs`, the text of the user's user-dirs.dirs, names for downloads; "Downloads" in
/// `home` when it names none.
[[nodiscard]] std::filesystem::path downloadsFolder(std::string_view userDirs, const std::filesystem::path& home);

}  // namespace nimbo
