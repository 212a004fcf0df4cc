// SPDX-License-Identifier: MIT
#include "usage/claude/named_time_zone.h"

#include <algorithm>
#include <filesystem>

#include "base/text.h"

namespace nimbo {
namespace {

// The longest identifiers have some thirty characters. Without points there is no way out of the
// database's folder; below "right/" are zones whose days have leap seconds.
bool isIdentifier(std::string_view name) {
  constexpr std::size_t kLongest = 64;
  const auto isAllowed = [](char character) {
    const char lower = lowerCased(character);
    return (lower >= 'a' && lower <= 'z') || isDigit(lower) ||
           std::string_view("/_+-").find(lower) != std::string::npos;
  };
  return !name.empty() && name.size() <= kLongest && name.front() != '/' && !name.starts_with("right/") &&
         std::all_of(name.begin(), name.end(), isAllowed);
}

// The library remembers each name that it ever failed to find: it must not be asked for inventions.
bool mayExist(std::string_view identifier) {
  const std::filesystem::path database = "/usr/share/zoneinfo";
  std::error_code ignored;
  return !std::filesystem::exists(database, ignored) ||
         std::filesystem::is_regular_file(database / identifier, ignored);
}

}  // namespace

std::optional<cctz::time_zone> namedTimeZone(std::string_view identifier) {
  if (!isIdentifier(identifier) || !mayExist(identifier)) return std::nullopt;
  return trustedTimeZone(identifier);
}

std::optional<cctz::time_zone> trustedTimeZone(std::string_view name) {
  cctz::time_zone zone;
  return cctz::load_time_zone(std::string(name), &zone) ? std::optional(zone) : std::nullopt;
}

}  // namespace nimbo
