// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace nimbo {

inline constexpr std::size_t kMaximumPackageBytes = std::size_t{256} << 20;

/// One package in a feed, as the feed describes it; docs/updates.md has the format.
struct UpdateItem {
  std::string version;        ///< of the build: compared
  std::string shortVersion;   ///< for people
  std::string minimumSystem;  ///< oldest version of the C library; empty for any
  std::string architecture;   ///< Debian's name
  std::string url;            ///< of the package
  std::size_t length = 0;     ///< of the package, in bytes
  std::string sha256;         ///< of the package, in small hexadecimal letters
  std::string signature;      ///< of `updateStatement`, Ed25519 in base64

  bool operator==(const UpdateItem&) const = default;
};

/// What is signed: all that an update is judged by, a line each.
[[nodiscard]] std::string updateStatement(const UpdateItem& item);

/// Whether every field (but the signature, which verifying judges) is of its form. Then none holds a line
/// break, so that a statement says one thing only.
[[nodiscard]] bool isWellFormed(const UpdateItem& item);

/// The last part of the package's URL; empty when it is not the plain name of a Debian package.
[[nodiscard]] std::string packageFileName(const UpdateItem& item);

/// Whether the owner of `publicKey` (Ed25519, in base64) has signed what the item says.
[[nodiscard]] bool isSigned(const UpdateItem& item, const std::string& publicKey);

/// Whether `package` is the very one that the item describes. Takes a second for 300 MB.
[[nodiscard]] bool describes(const UpdateItem& item, std::string_view package);

/// Whether `text` is numbers with dots between them, such as "1.10.2". The numbers may be of any length.
[[nodiscard]] bool isVersion(std::string_view text);

/// Number by number; missing ones count as 0. False also when either is no version: what cannot be
/// compared is not newer.
[[nodiscard]] bool isNewerVersion(std::string_view candidate, std::string_view than);

}  // namespace nimbo
