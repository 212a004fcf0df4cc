// SPDX-License-Identifier: MIT
#include "platform/posix/files/user_surroundings.h"

#include <pwd.h>
#include <unistd.h>

#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

namespace nimbo {
namespace {

constexpr const char* kUtc = "UTC";

// The link is followed by name only: what "Europe/Berlin" itself may link to is the database's affair,
// and a name tells one zone from another where the path of the link would not.
std::string linkedZone(const std::filesystem::path& localtime) {
  constexpr std::string_view kDatabase = "/zoneinfo/";
  std::error_code error;
  const std::string target = std::filesystem::read_symlink(localtime, error).string();
  const auto start = target.find(kDatabase);
  if (!error && start != std::string::npos) return target.substr(start + kDatabase.size());
  return std::filesystem::exists(localtime, error) ? localtime.string() : kUtc;
}

}  // namespace

Environment environmentOf(char** entries) {
  Environment variables;
  for (; entries != nullptr && *entries != nullptr; ++entries) {
    const std::string text = *entries;
    const std::size_t equals = text.find('=');
    if (equals != std::string::npos) variables.emplace(text.substr(0, equals), text.substr(equals + 1));
  }
  return variables;
}

std::string variable(const Environment& environment, const std::string& name) {
  const auto found = environment.find(name);
  return found == environment.end() ? std::string() : found->second;
}

std::filesystem::path accountHome() {
  std::vector<char> buffer(16384);
  passwd entry{};
  passwd* found = nullptr;
  const int error = ::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found);
  if (error != 0 || found == nullptr || !std::filesystem::path(found->pw_dir).is_absolute()) return "/";
  return found->pw_dir;
}

// As the C library reads them: a colon before the name does not matter, and an empty name is UTC.
std::string localTimeZoneName(const std::optional<std::string>& tz, const std::filesystem::path& localtime) {
  if (!tz) return linkedZone(localtime);
  const std::string name = tz->starts_with(':') ? tz->substr(1) : *tz;
  return name.empty() ? kUtc : name;
}

UserSurroundings userSurroundings(const Environment& environment, std::filesystem::path caches) {
  UserSurroundings user;
  const std::string home = variable(environment, "HOME");
  user.home = home.starts_with('/') ? std::filesystem::path(home) : accountHome();
  user.caches = std::move(caches);
  user.searchPath = variable(environment, "PATH");
  user.codexHome = variable(environment, "CODEX_HOME");
  for (const auto& [name, value] : environment) {
    std::string& entry = user.environment.emplace_back(name);
    entry += '=';
    entry += value;
  }
  const auto zone = environment.find("TZ");
  user.localZone = [tz = zone == environment.end() ? std::nullopt : std::optional(zone->second)] {
    return localTimeZoneName(tz, "/etc/localtime");
  };
  return user;
}

}  // namespace nimbo
