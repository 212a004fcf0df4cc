// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

#include "base/result.h"

namespace nimbo {

/// The folder that `userDirs`, the text of the user's user-dirs.dirs, names for downloads; "Downloads" in
/// `home` when it names none.
[[nodiscard]] std::filesystem::path downloadsFolder(std::string_view userDirs, const std::filesystem::path& home);

/// Saves `package` in `folder`, which is made when there is none, under the name "nimbo.deb", or
/// "nimbo (1).deb" and so on when there is such a file: none is ever replaced. It gets a visible name
/// once it is whole; on an error nothing is left. Returns where it is.
[[nodiscard]] Result<std::filesystem::path, std::error_code> savePackage(const std::filesystem::path& folder,
                                                                         const std::string& name,
                                                                         std::string_view package);

}  // namespace nimbo
