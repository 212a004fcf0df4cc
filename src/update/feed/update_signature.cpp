// SPDX-License-Identifier: MIT
#include "update/feed/update_signature.h"

#include <sodium.h>

#include <array>
#include <cstddef>
#include <optional>

namespace nimbo {
namespace {

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

}  // namespace nimbo
