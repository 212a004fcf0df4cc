// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "base/result.h"

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

/// `text` gives the string of a key; absent for what is none.
template <class Text>
[[nodiscard]] BundleInfo bundleInfoOf(const Text& text) {
  const auto said = [&text](const char* key) -> std::optional<std::string> {
    auto value = text(key);
    return value == "" ? std::nullopt : value;
  };
  return {.identifier = said("CFBundleIdentifier"),
          .shortVersion = said("CFBundleShortVersionString"),
          .version = said("CFBundleVersion"),
          .feedUrl = said("SUFeedURL"),
          .publicKey = said("SUPublicEDKey"),
          .appGroup = said("NimboAppGroup")};
}

struct ModuleError {
  std::string message;  ///< the system's own words
};

/// Loads parts of the application that most runs never need. Main thread only.
class ModuleLoader {
 public:
  virtual ~ModuleLoader() = default;

  /// The address of `symbol` in `module` ("nimbo-ui"), which stays loaded for the rest of the run.
  [[nodiscard]] virtual Result<void*, ModuleError> symbol(const std::string& module, const char* symbol) = 0;
};

}  // namespace nimbo
