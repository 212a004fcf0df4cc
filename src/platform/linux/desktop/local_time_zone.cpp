// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/local_time_zone.h"

#include <string_view>
#include <system_error>

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

// As the C library reads them: a colon before the name does not matter, and an empty name is UTC.
std::string localTimeZoneName(const std::optional<std::string>& tz, const std::filesystem::path& localtime) {
  if (!tz) return linkedZone(localtime);
  const std::string name = tz->starts_with(':') ? tz->substr(1) : *tz;
  return name.empty() ? kUtc : name;
}

}  // namespace nimbo
