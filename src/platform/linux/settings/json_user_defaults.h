// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <nlohmann/json.hpp>

#include "platform/linux/settings/json_domain_file.h"
#include "platform/user_defaults.h"

namespace nimbo {

/// Preferences in `<folder>/<domain>.json`, a file that people may edit: what they change is seen at the
/// next read, keys nobody knows are kept, and a text that is no JSON object is kept aside, not overwritten.
class JsonUserDefaults final : public UserDefaults {
 public:
  JsonUserDefaults(const std::filesystem::path& folder, std::string_view domain) : file_(folder, domain) {}

  void registerDefault(std::string_view key, nlohmann::json value) override;
  [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override;
  [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key) const override;
  [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
  [[nodiscard]] std::optional<std::vector<std::string>> stringArray(std::string_view key) const override;
  void set(std::string_view key, nlohmann::json value) override;

 private:
  template <class Value>
  std::optional<Value> value(std::string_view key, std::optional<Value> (*read)(const nlohmann::json&)) const;

  mutable JsonDomainFile file_;  // reading may find that the file changed
  nlohmann::json registered_ = nlohmann::json::object();
  nlohmann::json unsaved_ = nlohmann::json::object();  // what could not be written; tried again with the next change
};

}  // namespace nimbo
