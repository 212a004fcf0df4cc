// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nimbo {

struct XdgFolders;

/// By what a desktop application is known on this system.
struct ApplicationMarks {
  std::string_view identifier;             ///< of the bundle; a Flatpak may bear it
  std::vector<std::string_view> programs;  ///< its executable's base name, or its folder's for Electron
  /// Base names that belong to the application only if the process also shows windows.
  std::vector<std::string_view> ambiguousPrograms;
  std::vector<std::string_view> desktopIds{};  ///< of its desktop entry in one package or another
};

/// Null for applications that this program has nothing to do with.
[[nodiscard]] const ApplicationMarks* applicationMarks(std::string_view bundleIdentifier);

enum class ProcessShows { windows, perhapsNothing };

/// Looks at the executable behind a process, at the program that Electron runs and at the
/// application of a Flatpak: things that neither a web page nor a window's title can imitate.
/// `root` is that of procfs.
[[nodiscard]] bool isProcessOf(const ApplicationMarks& application, const std::string& root, std::int64_t pid,
                               ProcessShows shows);

/// Whether any process that may be looked at is the application.
[[nodiscard]] bool isRunning(const ApplicationMarks& application, const std::string& root);

/// An application that the system can start, as its desktop entry has it.
struct InstalledApplication {
  std::string desktopId;
  std::vector<std::string> command;  ///< program's whole path and arguments; may be empty when `isActivatable`
  bool isActivatable = false;        ///< it takes org.freedesktop.Application calls under its identifier
};

/// The user's and the system's, by the XDG base directory rules; earlier ones go before later ones.
[[nodiscard]] std::vector<std::filesystem::path> dataFolders(const std::map<std::string, std::string>& environment,
                                                             const XdgFolders& folders);

/// Where desktop entries lie, the ones that override others first: the user's, the system's and what
/// Flatpak and Snap export, also when the session forgot to name those.
[[nodiscard]] std::vector<std::filesystem::path> applicationFolders(
    const std::map<std::string, std::string>& environment, const XdgFolders& folders);

/// The first of `desktopIds` that is installed. An entry that is marked as removed, or whose program is
/// not there, is not.
[[nodiscard]] std::optional<InstalledApplication> findInstalledApplication(
    const std::vector<std::string_view>& desktopIds, const std::vector<std::filesystem::path>& folders,
    const std::string& searchPath);

/// The name, in English, that the first desktop entry found for `desktopIds` gives its application.
[[nodiscard]] std::optional<std::string> applicationName(const std::vector<std::string_view>& desktopIds,
                                                         const std::vector<std::filesystem::path>& folders);

}  // namespace nimbo
