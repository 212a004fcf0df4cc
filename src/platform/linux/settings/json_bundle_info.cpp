// SPDX-License-Identifier: MIT
#include "platform/linux/settings/json_bundle_info.h"

#include <nlohmann/json.hpp>
#include <optional>
#include <string>

#include "base/bounded_json.h"
#include "platform/linux/files/regular_file.h"
#include "platform/linux/settings/json_object_text.h"
#include "platform/preference_value.h"

namespace nimbo {
namespace {

std::optional<std::string> text(const nlohmann::json& info, const char* key) {
  const auto found = info.find(key);
  if (found == info.end()) return std::nullopt;
  auto value = stringValue(*found);
  return value == "" ? std::nullopt : value;
}

}  // namespace

BundleInfo parseBundleInfo(std::string_view json) {
  const auto info = parseJsonObject(json);
  if (!info) return {};
  return {.identifier = text(*info, "CFBundleIdentifier"),
          .shortVersion = text(*info, "CFBundleShortVersionString"),
          .version = text(*info, "CFBundleVersion"),
          .feedUrl = text(*info, "SUFeedURL"),
          .publicKey = text(*info, "SUPublicEDKey"),
          .appGroup = text(*info, "NimboAppGroup")};
}

BundleInfo readBundleInfo(const std::filesystem::path& file) {
  const auto json = readRegularFile(file, kMaximumJsonBytes);
  return json ? parseBundleInfo(*json) : BundleInfo{};
}

}  // namespace nimbo
