// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>
#include <utility>

#include "platform/linux/settings/json_user_defaults.h"
#include "support/fake_main_loop.h"

namespace nimbo {

/// The settings file for tests of what is in it, not of when: each call comes in a turn of the main loop of
/// its own, and a change is written before `set` returns.
class TurningUserDefaults final : public UserDefaults {
 public:
  TurningUserDefaults(const std::filesystem::path& folder, std::string_view domain)
      : defaults_(folder, domain, {loop_, [](const auto& work) { work(); }}) {}

  void registerDefault(std::string_view key, nlohmann::json value) override {
    defaults_.registerDefault(key, std::move(value));
  }
  [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override { return turned().boolean(key); }
  [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key) const override {
    return turned().integer(key);
  }
  [[nodiscard]] std::optional<std::string> string(std::string_view key) const override { return turned().string(key); }
  [[nodiscard]] std::optional<std::vector<std::string>> stringArray(std::string_view key) const override {
    return turned().stringArray(key);
  }
  void set(std::string_view key, nlohmann::json value) override {
    defaults_.set(key, std::move(value));
    loop_.runPosted();
  }

 private:
  [[nodiscard]] const JsonUserDefaults& turned() const {
    loop_.runPosted();
    return defaults_;
  }

  mutable FakeMainLoop loop_;
  JsonUserDefaults defaults_;
};

}  // namespace nimbo
