// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <optional>
#include <string>

#include "awake/awake_manager.h"
#include "platform/clock.h"
#include "platform/dates.h"
#include "settings/settings.h"
#include "ui/dashboard/awake_page_content.h"
#include "ui/dashboard/dashboard_window.h"

namespace nimbo {

/// The Keep Awake page without its pixels: checks and stores what the user chooses, and turns the
/// session's state into texts. Holds no session itself: whoever owns the manager wires the callbacks
/// to it and calls `refresh`. Main thread only.
class AwakeView {
 public:
  using Time = AwakeManager::Time;

  /// All outlive the view.
  struct Services {
    Settings& settings;
    const Clock& clock;
    const Dates& dates;
  };

  explicit AwakeView(Services services);

  /// Shows the stored choices.
  void load();
  void refresh(const AwakeManager& manager);

  [[nodiscard]] AwakePageContent content(bool visible) const;
  /// What the page's controls call; lives as long as the view.
  [[nodiscard]] AwakePageActions actions();

  /// `content` is another one now.
  std::function<void()> onContentChanged;
  /// Stop the session that runs, or start one that ends at `end`; absent for one until stopped.
  std::function<void(std::optional<Time> end)> onToggle;
  std::function<void(bool on)> onDisplay;
  /// The battery rules changed; they are stored already.
  std::function<void()> onRules;
  std::function<void()> onDisplayOff;
  std::function<void()> onExtend;

 private:
  void startOrStop();
  void selectDuration(std::size_t index);
  void editMinutes(const std::string& text);
  void pickDate(Time date);
  void switchDisplay(bool on);
  void storeRules();
  void changed() const;

  [[nodiscard]] std::int64_t duration() const;
  void fillSession(AwakePageContent& content) const;
  void fillLength(AwakePageContent& content) const;
  void fillRules(AwakePageContent& content) const;

  Services services_;
  bool active_ = false;
  bool extendable_ = false;
  std::string sessionDetail_;
  std::optional<std::string> validationMessage_;  // an input error, shown instead of the session's detail
  std::size_t durationIndex_ = 0;
  std::string minutes_;
  Time date_;
  bool displayOn_ = false;
  bool onlyOnPower_ = false;
  std::size_t floorIndex_ = 0;
};

}  // namespace nimbo
