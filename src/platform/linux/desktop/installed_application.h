// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nimbo {

struct XdgFolders;

/// An application that the system can start, as its desktop entry has it.
struct InstalledApplication {
  std::string desktopId;
  std::vector<std::string> command;  ///< program's whole path and arguments; may be empty when `isActivatable`
  bool isActivatable = false;        ///< it takes org.freedesktop.Application calls under its identifier
};

/// Where desktop entries lie, the ones that override others first: the user's, the system's and what
/// Flatpak and Snap export, also when the session forgot to name those.
[[nodiscard]] std::vector<std::filesystem::path> applicationFolders(
    const std::map<std::string, std::string>& environment, const XdgFolders& folders);

/// The first of `desktopIds` that is installed. An entry that is marked as removed, or whose program is
/// not there, is not.
[[nodiscard]] std::optional<InstalledApplication> findInstalledApplication(
    const std::vector<std::string_view>& desktopIds, const std::vector<std::filesystem::path>& folders,
    const std::string& searchPath);

}  // namespace nimbo
