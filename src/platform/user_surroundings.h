// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace nimbo {

/// What the programs of this user find when they start.
struct UserSurroundings {
  std::filesystem::path home;
  std::filesystem::path caches;
  std::string searchPath;                ///< PATH
  std::string codexHome;                 ///< CODEX_HOME; usually empty
  std::vector<std::string> environment;  ///< all of it, "NAME=value"
  /// An identifier such as "Europe/Berlin" or the path of a zone file; asked anew, as people travel.
  std::function<std::string()> localZone;
};

}  // namespace nimbo
