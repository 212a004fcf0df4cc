// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "awake/awake_manager.h"
#include "platform/clock.h"
#include "settings/settings.h"

namespace nimbo {

/// What the user can ask of the Keep Awake session, with the settings that go with it. Main thread only.
class AwakeCommands {
 public:
  using Time = AwakeManager::Time;

  /// All outlive it.
  AwakeCommands(AwakeManager& awake, Settings& settings, const Clock& clock);

  /// Stops the session, or starts one until `end`; absent for one until stopped.
  void toggle(std::optional<Time> end);
  /// Stops the session, or starts one of the length chosen last.
  void toggleTimed();
  /// By half an hour.
  void extend();
  /// Keeps the display on, too, or no longer; stored unless a running session cannot do it.
  void keepDisplayOn(bool on);
  /// Applies the rules of the settings.
  void applyRules();

 private:
  AwakeManager& awake_;
  Settings& settings_;
  const Clock& clock_;
};

}  // namespace nimbo
