// SPDX-License-Identifier: MIT
#pragma once

#include <sodium.h>

#include <array>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "update/feed/update_item.h"

namespace nimbo {

inline std::string toBase64(const unsigned char* bytes, std::size_t size) {
  std::string text(sodium_base64_encoded_len(size, sodium_base64_VARIANT_ORIGINAL), '\0');
  sodium_bin2base64(text.data(), text.size(), bytes, size, sodium_base64_VARIANT_ORIGINAL);
  text.pop_back();  // its end mark
  return text;
}

inline std::string sha256Of(std::string_view text) {
  std::array<unsigned char, crypto_hash_sha256_BYTES> digest{};
  crypto_hash_sha256(digest.data(), reinterpret_cast<const unsigned char*>(text.data()), text.size());
  std::array<char, 2 * crypto_hash_sha256_BYTES + 1> hex{};
  return sodium_bin2hex(hex.data(), hex.size(), digest.data(), digest.size());
}

/// Who publishes updates, or somebody who would like to.
class Publisher {
 public:
  Publisher() {
    if (sodium_init() < 0) throw std::runtime_error("libsodium");
    crypto_sign_keypair(publicKey_.data(), secretKey_.data());
  }

  [[nodiscard]] std::string publicKey() const { return toBase64(publicKey_.data(), publicKey_.size()); }

  [[nodiscard]] UpdateItem sign(UpdateItem item) const {
    const std::string statement = updateStatement(item);
    std::array<unsigned char, crypto_sign_BYTES> signature{};
    crypto_sign_detached(signature.data(), nullptr, reinterpret_cast<const unsigned char*>(statement.data()),
                         statement.size(), secretKey_.data());
    item.signature = toBase64(signature.data(), signature.size());
    return item;
  }

 private:
  std::array<unsigned char, crypto_sign_PUBLICKEYBYTES> publicKey_{};
  std::array<unsigned char, crypto_sign_SECRETKEYBYTES> secretKey_{};
};

/// A well-formed item for that package, not signed.
inline UpdateItem itemFor(std::string_view package, const std::string& version = "1.2",
                          const std::string& url = "https://updates.test/nimbo_1.2_amd64.deb") {
  return {.version = version,
          .shortVersion = version,
          .minimumSystem = "2.31",
          .architecture = "amd64",
          .url = url,
          .length = package.size(),
          .sha256 = sha256Of(package),
          .signature = {}};
}

inline std::string xmlOf(const UpdateItem& item) {
  return "<item><title>Nimbo</title><nimbo:version>" + item.version + "</nimbo:version><nimbo:shortVersion>" +
         item.shortVersion + "</nimbo:shortVersion><nimbo:minimumSystem>" + item.minimumSystem +
         "</nimbo:minimumSystem><nimbo:architecture>" + item.architecture + "</nimbo:architecture><enclosure url=\"" +
         item.url + "\" length=\"" + std::to_string(item.length) +
         "\" type=\"application/vnd.debian.binary-package\"/><nimbo:sha256>" + item.sha256 +
         "</nimbo:sha256><nimbo:edSignature>" + item.signature + "</nimbo:edSignature></item>\n";
}

/// A whole feed around what stands in its channel.
inline std::string feedAround(const std::string& items) {
  return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
         "<rss version=\"2.0\" xmlns:nimbo=\"urn:quellwerk:nimbo:appcast\">\n<channel><title>Nimbo</title>\n" +
         items + "</channel>\n</rss>\n";
}

inline std::string feedOf(const std::vector<UpdateItem>& items) {
  std::string all;
  for (const UpdateItem& item : items) all += xmlOf(item);
  return feedAround(all);
}

}  // namespace nimbo
