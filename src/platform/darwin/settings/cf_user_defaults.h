// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <nlohmann/json.hpp>

#include "platform/darwin/core/cf_object.h"
#include "platform/user_defaults.h"

namespace nimbo {

/// A domain of the user's preferences, which the system keeps; what other programs change in it shows at the next
/// read. A change counts at once and is written in the background; the destructor waits until all is written.
class CfUserDefaults final : public UserDefaults {
 public:
  /// `background` runs work on another thread, and outlives it.
  CfUserDefaults(std::string_view domain, std::function<void(std::function<void()>)> background);
  ~CfUserDefaults() override;
  CfUserDefaults(const CfUserDefaults&) = delete;
  CfUserDefaults& operator=(const CfUserDefaults&) = delete;

  void registerDefault(std::string_view key, nlohmann::json value) override { registered_[key] = std::move(value); }
  [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override;
  [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key) const override;
  [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
  [[nodiscard]] std::optional<std::vector<std::string>> stringArray(std::string_view key) const override;
  void set(std::string_view key, nlohmann::json value) override;

 private:
  struct Unwritten;
  template <class Value>
  std::optional<Value> value(std::string_view key, std::optional<Value> (*read)(const nlohmann::json&)) const;

  const CfObject<CFStringRef> domain_;
  const std::function<void(std::function<void()>)> background_;
  nlohmann::json registered_ = nlohmann::json::object();
  const std::shared_ptr<Unwritten> unwritten_;
};

/// Domains of the user's preferences on any machine. One without values is none.
class CfUserDefaultsDomains final : public UserDefaultsDomains {
 public:
  [[nodiscard]] std::optional<nlohmann::json> persistentDomain(std::string_view name) const override;
  [[nodiscard]] bool setPersistentDomain(std::string_view name, const nlohmann::json& values) override;
  void removePersistentDomain(std::string_view name) override;
};

}  // namespace nimbo
