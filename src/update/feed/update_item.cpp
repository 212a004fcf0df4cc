// SPDX-License-Identifier: MIT
#include "update/feed/update_item.h"

#include <algorithm>
#include <string_view>

#include "update/feed/version_order.h"
#include "update/https_url.h"

namespace nimbo {
namespace {

constexpr std::size_t kLongestText = 64;
constexpr std::size_t kLongestUrl = 2048;
constexpr std::size_t kLongestFileName = 200;

bool consistsOf(std::string_view text, std::string_view characters) {
  return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

bool isShortVersion(std::string_view text) {
  return !text.empty() && text.size() <= kLongestText &&
         std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

bool isBoundedVersion(std::string_view text) { return text.size() <= kLongestText && isVersion(text); }

bool isArchitecture(std::string_view text) {
  return text.size() <= kLongestText && consistsOf(text, "abcdefghijklmnopqrstuvwxyz0123456789-");
}

}  // namespace

std::string updateStatement(const UpdateItem& item) {
  std::string statement = "nimbo-update-1\n";
  for (const std::string& field : {item.version, item.shortVersion, item.minimumSystem, item.architecture, item.url,
                                   std::to_string(item.length), item.sha256}) {
    statement.append(field).append("\n");
  }
  return statement;
}

bool isWellFormed(const UpdateItem& item) {
  return isBoundedVersion(item.version) && isShortVersion(item.shortVersion) &&
         (item.minimumSystem.empty() || isBoundedVersion(item.minimumSystem)) && isArchitecture(item.architecture) &&
         item.url.size() <= kLongestUrl && isHttpsUrl(item.url) && !packageFileName(item).empty() && item.length > 0 &&
         item.length <= kMaximumPackageBytes && item.sha256.size() == 64 && consistsOf(item.sha256, "0123456789abcdef");
}

std::string packageFileName(const UpdateItem& item) {
  const std::string path = item.url.substr(0, item.url.find_first_of("?#"));
  std::string name = path.substr(path.rfind('/') + 1);
  const bool plain = name.size() <= kLongestFileName && !name.starts_with('.') && name.size() > 4 &&
                     name.ends_with(".deb") &&
                     consistsOf(name, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789.+~_-");
  return plain ? name : std::string();
}

}  // namespace nimbo
