// SPDX-License-Identifier: MIT
#include "platform/linux/files/xdg_folders.h"

namespace nimbo {
namespace {

namespace fs = std::filesystem;

fs::path absoluteOr(const std::map<std::string, std::string>& environment, const char* name, const fs::path& fallback) {
  const auto found = environment.find(name);
  if (found == environment.end() || !fs::path(found->second).is_absolute()) return fallback;
  return found->second;
}

}  // namespace

XdgFolders xdgFolders(const std::map<std::string, std::string>& environment, const fs::path& accountHome) {
  const fs::path home = absoluteOr(environment, "HOME", accountHome);
  return {.config = absoluteOr(environment, "XDG_CONFIG_HOME", home / ".config"),
          .data = absoluteOr(environment, "XDG_DATA_HOME", home / ".local/share"),
          .cache = absoluteOr(environment, "XDG_CACHE_HOME", home / ".cache")};
}

}  // namespace nimbo
