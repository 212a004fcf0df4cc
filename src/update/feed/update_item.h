// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>

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

}  // namespace nimbo
