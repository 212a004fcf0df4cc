// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "ui/dashboard/dashboard_pages.h"

namespace nimbo {

/// The Keep Awake page without its pixels: checks and stores what the user chooses, steers the session,
/// and turns its state into texts. Holds only what the user has begun to enter. Main thread only.
class AwakeView {
 public:
  using Time = AwakeManager::Time;

  /// `changed` tells that `content` is another one now.
  AwakeView(const DashboardSources& sources, std::function<void()> changed);

  /// Forgets what was entered but not used.
  void reset();
  [[nodiscard]] AwakeContent content() const;
  /// What the user does with the page's controls; nothing for those of other pages.
  void handle(const ControlEvent& event);

  /// The user has changed a setting that other windows show, too.
  std::function<void()> onSettingsChanged;

 private:
  void startOrStop();
  void selectDuration(std::size_t index);
  void editMinutes(const std::string& text);
  void pickDate(Time date);
  void switchDisplay(bool on);
  void storeRules(bool onlyOnPower, int batteryFloor);
  void settingsChanged();

  void fillSession(AwakeContent& content) const;
  void fillLength(AwakeContent& content) const;
  void fillRules(AwakeContent& content) const;

  DashboardSources sources_;
  std::function<void()> changed_;
  std::optional<std::string> validationMessage_;  // an input error, shown instead of the session's detail
  std::string minutes_;
  Time date_;
  std::optional<bool> switchedDisplay_;  // only while the session is asked
};

}  // namespace nimbo
