// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

#include "platform/main_loop.h"
#include "platform/user_defaults.h"

namespace nimbo {

/// Preferences in `<folder>/<domain>.json`, a file that people may edit: it is looked at once in a turn of
/// the main loop, keys nobody knows are kept, and a text that is no JSON object is kept aside, not
/// overwritten. A change counts at once and is written in the background, one after the other, so that a
/// slow disk holds nobody up; the destructor waits until all is written.
class JsonUserDefaults final : public UserDefaults {
 public:
  /// Both outlive it.
  struct Services {
    MainLoop& loop;
    std::function<void(std::function<void()>)> background;  ///< runs work on another thread, without delay
  };

  JsonUserDefaults(const std::filesystem::path& folder, std::string_view domain, Services services);
  ~JsonUserDefaults() override;  // NOLINT(bugprone-exception-escape): see there
  JsonUserDefaults(const JsonUserDefaults&) = delete;
  JsonUserDefaults& operator=(const JsonUserDefaults&) = delete;

  void registerDefault(std::string_view key, nlohmann::json value) override;
  [[nodiscard]] std::optional<bool> boolean(std::string_view key) const override;
  [[nodiscard]] std::optional<std::int64_t> integer(std::string_view key) const override;
  [[nodiscard]] std::optional<std::string> string(std::string_view key) const override;
  [[nodiscard]] std::optional<std::vector<std::string>> stringArray(std::string_view key) const override;
  void set(std::string_view key, nlohmann::json value) override;

 private:
  struct State;

  const std::shared_ptr<State> state_;  // shared with the background
};

/// Domains as the files `<folder>/<name>.json`. One whose file exists but cannot be read is not replaced,
/// so that nothing stands in the way of its user correcting it.
class JsonUserDefaultsDomains final : public UserDefaultsDomains {
 public:
  explicit JsonUserDefaultsDomains(std::filesystem::path folder) : folder_(std::move(folder)) {}

  [[nodiscard]] std::optional<nlohmann::json> persistentDomain(std::string_view name) const override;
  [[nodiscard]] bool setPersistentDomain(std::string_view name, const nlohmann::json& values) override;
  void removePersistentDomain(std::string_view name) override;

 private:
  std::filesystem::path folder_;
};

}  // namespace nimbo
