// SPDX-License-Identifier: MIT
#include "platform/linux/settings/json_bundle_info.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "base/bounded_json.h"
#include "platform/posix/files/regular_file.h"

namespace nimbo {

BundleInfo parseBundleInfo(std::string_view json) {
  const auto info = parseBoundedJson(json);
  if (!info) return {};
  return bundleInfoOf([&info](const char* key) -> std::optional<std::string> {
    const auto* const member = jsonMember(*info, key);
    return member != nullptr ? stringValue(*member) : std::nullopt;
  });
}

BundleInfo readBundleInfo(const std::filesystem::path& file) {
  const auto json = readRegularFile(file, kMaximumJsonBytes);
  return json ? parseBundleInfo(*json) : BundleInfo{};
}

}  // namespace nimbo
