// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "ui/dashboard/dashboard_sources.h"
#include "ui/dashboard/dashboard_window.h"

namespace nimbo {

/// The Keep Awake page without its pixels: checks and stores what the user chooses, and turns the
/// session's state into texts. Holds only what the user has begun to enter. Main thread only.
class AwakeView {
 public:
  using Time = AwakeManager::Time;

  /// Requests to the owner of the session.
  struct Requests {
    /// Stop the session that runs, or start one that ends at `end`; absent for one until stopped.
    std::function<void(std::optional<Time> end)> toggle;
    std::function<void(bool on)> keepDisplayOn;
    std::function<void()> rulesChanged;  ///< the battery rules; they are stored already
    std::function<void()> turnDisplayOff;
    std::function<void()> extend;
  };

  /// `changed` tells that `content` is another one now.
  AwakeView(const DashboardSources& sources, std::function<void()> changed);

  /// Forgets what was entered but not used.
  void reset();
  [[nodiscard]] AwakeContent content(bool visible) const;
  /// What the page's controls call; lives as long as the view.
  [[nodiscard]] AwakeActions actions(const Requests& requests);

 private:
  void startOrStop(const std::function<void(std::optional<Time> end)>& toggle);
  void selectDuration(std::size_t index);
  void editMinutes(const std::string& text);
  void pickDate(Time date);
  void switchDisplay(bool on, const std::function<void(bool on)>& keepDisplayOn);
  void storeRules(bool onlyOnPower, int batteryFloor, const std::function<void()>& rulesChanged);

  void fillSession(AwakeContent& content) const;
  void fillLength(AwakeContent& content) const;
  void fillRules(AwakeContent& content) const;

  DashboardSources sources_;
  std::function<void()> changed_;
  std::optional<std::string> validationMessage_;  // an input error, shown instead of the session's detail
  std::string minutes_;
  Time date_;
  std::optional<bool> switchedDisplay_;  // only while the owner is asked
};

}  // namespace nimbo
