// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include "settings/dashboard_tab.h"
#include "system/process_scan.h"
#include "ui/dashboard/awake_view.h"
#include "ui/dashboard/dashboard_content.h"
#include "ui/dashboard/dashboard_pages.h"

namespace nimbo {

/// Decides all that the dashboard shows; windows only put its content on screen. Main thread only.
class DashboardController {
 public:
  explicit DashboardController(const DashboardSources& sources);

  [[nodiscard]] AwakeView& awakeView() { return awakeView_; }
  /// What the window is to show now.
  [[nodiscard]] DashboardContent content() const;
  /// The tab stored last, and from then on the one that is shown.
  [[nodiscard]] DashboardTab selectedTab() const { return tab_; }

  /// For a desktop that has no program for watching processes; shown with the next content.
  void setActivityMonitorEnabled(bool enabled) { processes_.activityMonitorEnabled = enabled; }

  /// Before the window is opened: shows `tab`, or else the selected one, and forgets unfinished input.
  void open(std::optional<DashboardTab> tab);
  /// Has the window show what the sources say now.
  void show();
  void showProcesses(ProcessScan scan);
  /// The processes in the list and those that the next click adds to it.
  [[nodiscard]] std::size_t processesWanted() const { return processes_.limit + kProcessLimitStep; }

  /// What the user does with the tabs, the process list and the Keep Awake page.
  void handle(const ControlEvent& event);

  /// `content` may be another one now.
  std::function<void()> onContentChanged;

 private:
  [[nodiscard]] double fillPage(DashboardContent& content) const;

  DashboardSources sources_;
  DashboardTab tab_;
  ProcessView processes_;
  AwakeView awakeView_;
};

}  // namespace nimbo
