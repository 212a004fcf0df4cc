// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <memory>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/mac_wording.h"
#include "support/fake_login_item.h"
#include "support/fake_settings_window.h"
#include "support/fake_user_defaults.h"
#include "ui/settings/settings_window_controller.h"

namespace nimbo {

inline constexpr std::size_t kGeneralPage = 0;
inline constexpr std::size_t kMonitorsPage = 1;
inline constexpr std::size_t kUsagePage = 2;
inline constexpr std::size_t kAwakePage = 3;
inline constexpr char kSettingsDomain[] = "test.domain";

/// An open settings window over a store in memory, and an owner that keeps a record.
class SettingsWindowTest : public testing::Test {
 protected:
  using Change = SettingsChange;
  using Kind = Change::Kind;

  SettingsWindowTest() {
    controller.show();
    domains.writes.clear();
  }

  void store(const std::string& key, nlohmann::json value) {
    domains.domains[kSettingsDomain][key] = std::move(value);
    controller.syncIfVisible();
  }
  [[nodiscard]] nlohmann::json stored(const std::string& key) const {
    const auto& values = domains.domains.at(kSettingsDomain);
    return values.contains(key) ? values.at(key) : nlohmann::json("(absent)");
  }
  /// The keys written since the last call, in order.
  [[nodiscard]] std::vector<std::string> takeWrittenKeys() {
    std::vector<std::string> keys;
    for (const auto& write : std::exchange(domains.writes, {})) keys.push_back(write.substr(sizeof kSettingsDomain));
    return keys;
  }
  [[nodiscard]] std::vector<Change> takeChanges() { return std::exchange(changes, {}); }

  [[nodiscard]] const CheckBoxContent& check(const std::string& identifier) const {
    const auto* const found = window.find<CheckBoxContent>(identifier);
    if (found == nullptr) throw std::logic_error("no check box " + identifier);
    return *found;
  }
  [[nodiscard]] const PopUpContent& choice(const std::string& identifier) const {
    const auto* const found = window.find<PopUpContent>(identifier);
    if (found == nullptr) throw std::logic_error("no pop-up " + identifier);
    return *found;
  }
  [[nodiscard]] std::string chosenItem(const std::string& identifier) const {
    return choice(identifier).items.at(choice(identifier).selected);
  }

  // On whatever page the control is.
  void click(const std::string& identifier) {
    reach(identifier, [&] { return window.click(identifier); });
  }
  void press(const std::string& identifier) {
    reach(identifier, [&] { return window.press(identifier); });
  }
  void choose(const std::string& identifier, std::size_t index) {
    reach(identifier, [&] { return window.choose(identifier, index); });
  }

  [[nodiscard]] bool shows(const std::string& text) const {
    for (const auto& page : window.content().pages) {
      for (const auto& control : page.controls) {
        const auto* const label = std::get_if<LabelContent>(&control);
        if (label != nullptr && label->text == text) return true;
      }
    }
    return false;
  }

  FakeUserDefaultsDomains domains;
  FakeUserDefaults defaults{domains, kSettingsDomain};
  Settings settings{defaults};
  BundleInfo bundle;
  FakeLoginItem login;
  std::optional<bool> automaticUpdates = false;
  bool manualSleepApplies = true;
  std::optional<std::string> widgetMessage;
  std::unique_ptr<FakeSettingsWindow> made = std::make_unique<FakeSettingsWindow>();
  FakeSettingsWindow& window = *made;  ///< lives as long as the controller

  std::vector<Change> changes;
  /// What the owner does besides keeping its record.
  std::function<void(const Change& change)> onChange = [](const Change&) {};
  std::function<void()> onLogin = [] {};
  int logins = 0;
  int updateChecks = 0;
  int updateToggles = 0;
  int claudeDesktopRequests = 0;

  SettingsWindowController controller{{settings, bundle, login, macWording()}, callbacks()};

 private:
  SettingsWindowController::Callbacks callbacks() {
    return {.makeWindow = [this] { return std::move(made); },
            .changed =
                [this](const Change& change) {
                  changes.push_back(change);
                  onChange(change);
                },
            .toggleLogin =
                [this] {
                  ++logins;
                  onLogin();
                },
            .checkForUpdates = [this] { ++updateChecks; },
            .toggleAutomaticUpdates = [this] { ++updateToggles; },
            .enableClaudeDesktop = [this] { ++claudeDesktopRequests; },
            .automaticUpdates = [this] { return automaticUpdates; },
            .manualSleepApplies = [this] { return manualSleepApplies; },
            .widgetMessage = [this] { return widgetMessage; }};
  }

  template <class Act>
  void reach(const std::string& identifier, Act act) {
    for (std::size_t tab = 0; tab < window.content().tabs.labels.size(); ++tab) {
      ASSERT_TRUE(window.selectTab(tab));
      if (act()) return;
    }
    ADD_FAILURE() << "no page lets the user reach " << identifier;
  }
};

}  // namespace nimbo
