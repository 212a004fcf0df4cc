// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "base/bounded_json.h"
#include "platform/user_defaults.h"

namespace nimbo {

/// Preference domains in memory. Records every write that changes something.
class FakeUserDefaultsDomains final : public UserDefaultsDomains {
 public:
  std::map<std::string, nlohmann::json, std::less<>> domains;
  std::vector<std::string> writes;  ///< "domain" for a whole one, "domain/key" for one value
  bool failsToWrite = false;        ///< whole domains only

  [[nodiscard]] std::optional<nlohmann::json> persistentDomain(std::string_view name) const override {
    const auto found = domains.find(name);
    if (found == domains.end()) return std::nullopt;
    return found->second;
  }

  [[nodiscard]] bool setPersistentDomain(std::string_view name, const nlohmann::json& values) override {
    if (failsToWrite) return false;
    const auto found = domains.find(name);
    if (found != domains.end() && found->second == values) return true;
    domains[std::string(name)] = values;
    writes.emplace_back(name);
    return true;
  }

  void removePersistentDomain(std::string_view name) override {
    if (const auto found = domains.find(name); found != domains.end()) domains.erase(found);
  }
};

/// One domain of a `FakeUserDefaultsDomains`.
class FakeUserDefaults final : public UserDefaults {
 public:
  FakeUserDefaults(FakeUserDefaultsDomains& domains, std::string domain)
      : domains_(domains), domain_(std::move(domain)) {}

  nlohmann::json registered = nlohmann::json::object();

  void registerDefault(std::string_view key, nlohmann::json value) override { registered[key] = std::move(value); }

  [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override { return value(key, booleanValue); }
  [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key) const override {
    return value(key, integerValue);
  }
  [[nodiscard]] std::optional<std::string> string(std::string_view key) const override {
    return value(key, stringValue);
  }
  [[nodiscard]] std::optional<std::vector<std::string>> stringArray(std::string_view key) const override {
    return value(key, stringArrayValue);
  }

  void set(std::string_view key, nlohmann::json value) override {
    auto& stored = domains_.domains.try_emplace(domain_, nlohmann::json::object()).first->second;
    if (stored.contains(key) && stored.at(key) == value) return;
    stored[key] = std::move(value);
    domains_.writes.push_back(domain_ + "/" + std::string(key));
  }

 private:
  template <class Value>
  std::optional<Value> value(std::string_view key, std::optional<Value> (*read)(const nlohmann::json&)) const {
    const auto stored = domains_.domains.find(domain_);
    if (stored != domains_.domains.end() && stored->second.contains(key)) {
      if (auto result = read(stored->second.at(key))) return result;
    }
    return registered.contains(key) ? read(registered.at(key)) : std::nullopt;
  }

  FakeUserDefaultsDomains& domains_;
  std::string domain_;
};

}  // namespace nimbo
