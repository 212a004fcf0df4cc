// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <nlohmann/json_fwd.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nimbo {

/// One domain of user preferences: typed values by key over a layer of registered defaults. A stored
/// value of another type than the one asked for reads like a missing one. Main thread only.
/// Values are JSON: booleans, numbers, strings, arrays and objects.
class UserDefaults {
 public:
  virtual ~UserDefaults() = default;

  /// Sets what a read returns while the user has not stored `key`. Never written to disk.
  virtual void registerDefault(std::string_view key, nlohmann::json value) = 0;

  // The stored value, else the registered one, else absent.
  [[nodiscard]] virtual std::optional<bool> boolean(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<std::int64_t> integer(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<std::string> string(std::string_view key) const = 0;
  [[nodiscard]] virtual std::optional<std::vector<std::string>> stringArray(std::string_view key) const = 0;

  /// Takes effect at once. When it cannot be written to disk it holds for this run only.
  virtual void set(std::string_view key, nlohmann::json value) = 0;
};

/// Named preference domains, read and replaced whole. Main thread only. Dates and data, which some systems keep among
/// the values, come as JSON's binary values and go back unchanged.
class UserDefaultsDomains {
 public:
  virtual ~UserDefaultsDomains() = default;

  /// An object; absent when there is no such domain or it cannot be read.
  [[nodiscard]] virtual std::optional<nlohmann::json> persistentDomain(std::string_view name) const = 0;

  /// Writes the whole domain; false when that failed and the old one stands.
  [[nodiscard]] virtual bool setPersistentDomain(std::string_view name, const nlohmann::json& values) = 0;

  /// Forgets the whole domain; nothing happens when there is none.
  virtual void removePersistentDomain(std::string_view name) = 0;
};

}  // namespace nimbo
