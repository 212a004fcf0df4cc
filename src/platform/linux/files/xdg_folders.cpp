// SPDX-License-Identifier: MIT
#include "platform/linux/files/xdg_folders.h"

#include <pwd.h>
#include <unistd.h>

#include <vector>

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

fs::path accountHome() {
  std::vector<char> buffer(16384);
  passwd entry{};
  passwd* found = nullptr;
  const int error = ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
  if (error != 0 || found == nullptr || !fs::path(found->pw_dir).is_absolute()) return "/";
  return found->pw_dir;
}

}  // namespace nimbo
