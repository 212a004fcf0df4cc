// SPDX-License-Identifier: MIT
#include "update/feed/update_item.h"

#include <sodium.h>

#include <algorithm>
#include <array>
#include <optional>

#include "base/text.h"
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

/// Takes the first number off `version`, without its leading zeros: "" is 0.
std::string_view takeNumber(std::string_view& version) {
  std::string_view number = takeUntil(version, '.');
  number.remove_prefix(std::min(number.find_first_not_of('0'), number.size()));
  return number;
}

const unsigned char* bytesOf(std::string_view text) { return reinterpret_cast<const unsigned char*>(text.data()); }

/// Exactly that many bytes, with padding as the standard wants it.
template <std::size_t kSize>
std::optional<std::array<unsigned char, kSize>> decoded(const std::string& base64) {
  std::array<unsigned char, kSize> bytes{};
  std::size_t size = 0;
  const int result = sodium_base642bin(bytes.data(), bytes.size(), base64.data(), base64.size(), nullptr, &size,
                                       nullptr, sodium_base64_VARIANT_ORIGINAL);
  return result == 0 && size == kSize ? std::optional(bytes) : std::nullopt;
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

bool isSigned(const UpdateItem& item, const std::string& publicKey) {
  if (sodium_init() < 0) return false;
  const auto key = decoded<crypto_sign_PUBLICKEYBYTES>(publicKey);
  const auto signature = decoded<crypto_sign_BYTES>(item.signature);
  if (!key || !signature) return false;
  const std::string statement = updateStatement(item);
  return crypto_sign_verify_detached(signature->data(), bytesOf(statement), statement.size(), key->data()) == 0;
}

bool describes(const UpdateItem& item, std::string_view package) {
  if (package.size() != item.length) return false;
  std::array<unsigned char, crypto_hash_sha256_BYTES> digest{};
  crypto_hash_sha256(digest.data(), bytesOf(package), package.size());
  std::array<char, 2 * crypto_hash_sha256_BYTES + 1> text{};
  sodium_bin2hex(text.data(), text.size(), digest.data(), digest.size());
  return item.sha256 == text.data();
}

bool isVersion(std::string_view text) {
  return !text.empty() && text.front() != '.' && text.back() != '.' && text.find("..") == std::string_view::npos &&
         text.find_first_not_of(".0123456789") == std::string_view::npos;
}

bool isNewerVersion(std::string_view candidate, std::string_view than) {
  if (!isVersion(candidate) || !isVersion(than)) return false;
  while (!candidate.empty() || !than.empty()) {
    // As text, so that no number is too large.
    const auto left = takeNumber(candidate);
    const auto right = takeNumber(than);
    if (left.size() != right.size()) return left.size() > right.size();
    if (left != right) return left > right;
  }
  return false;
}

}  // namespace nimbo
