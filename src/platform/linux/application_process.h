// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace nimbo {

/// By what a desktop application is known among the processes of this system.
struct ApplicationMarks {
  std::string_view identifier;             ///< of the bundle; a Flatpak may bear it
  std::vector<std::string_view> programs;  ///< its executable's base name, or its folder's for Electron
  /// Base names that belong to the application only if the process also shows windows.
  std::vector<std::string_view> ambiguousPrograms;
};

enum class ProcessShows { windows, perhapsNothing };

/// Looks at the executable behind a process, at the program that Electron runs and at the
/// application of a Flatpak: things that neither a web page nor a window's title can imitate.
/// `root` is that of procfs.
[[nodiscard]] bool isProcessOf(const ApplicationMarks& application, const std::string& root, std::int64_t pid,
                               ProcessShows shows);

/// Whether any process that may be looked at is the application.
[[nodiscard]] bool isRunning(const ApplicationMarks& application, const std::string& root);

}  // namespace nimbo
