// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace nimbo {

/// What the installed application says of itself, read once at start. A key that is missing, not a
/// string or empty is absent.
struct BundleInfo {
  std::optional<std::string> identifier;    ///< reverse-DNS name, also the settings domain
  std::optional<std::string> shortVersion;  ///< for people, such as "1.2"
  std::optional<std::string> version;       ///< of the build
  std::optional<std::string> feedUrl;       ///< "SUFeedURL"
  std::optional<std::string> publicKey;     ///< "SUPublicEDKey"
  std::optional<std::string> appGroup;      ///< "NimboAppGroup"
};

}  // namespace nimbo
