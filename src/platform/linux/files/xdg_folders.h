// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <map>
#include <string>

namespace nimbo {

/// The user's base folders by the XDG base directory rules. They may not exist yet.
struct XdgFolders {
  std::filesystem::path config;
  std::filesystem::path data;
  std::filesystem::path cache;
};

/// A variable counts only when it holds an absolute path; without a usable HOME, `accountHome` stands in.
[[nodiscard]] XdgFolders xdgFolders(const std::map<std::string, std::string>& environment,
                                    const std::filesystem::path& accountHome);

}  // namespace nimbo
