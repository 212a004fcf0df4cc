// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>
#include <vector>

namespace nimbo {

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

}  // namespace nimbo
