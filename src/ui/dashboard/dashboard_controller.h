// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>

#include "settings/dashboard_tab.h"
#include "system/process_scan.h"
#include "ui/dashboard/awake_view.h"
#include "ui/dashboard/dashboard_content.h"
#include "ui/dashboard/dashboard_sources.h"
#include "ui/dashboard/resources_view.h"

namespace nimbo {

/// Decides all that the dashboard shows; windows only put its content on screen. Main thread only.
class DashboardController {
 public:
  explicit DashboardController(const DashboardSources& sources);

  [[nodiscard]] AwakeView& awakeView() { return awakeView_; }
  [[nodiscard]] const DashboardContent& content() const { return content_; }
  /// The tab stored last, and from then on the one that is shown.
  [[nodiscard]] DashboardTab selectedTab() const { return tab_; }

  /// For a desktop that has no program for watching processes; shown with the next content.
  void setActivityMonitorEnabled(bool enabled) { activityMonitorEnabled_ = enabled; }

  /// Before the window is opened: shows `tab`, or else the selected one, and forgets unfinished input.
  void open(std::optional<DashboardTab> tab);
  /// Makes the content anew from what the sources say now.
  void show();
  void showProcesses(ProcessScan scan);

  void tabChanged(std::size_t index);
  void expandClicked();
  void collapseClicked();

  /// `content` is another one now.
  std::function<void()> onContentChanged;

 private:
  DashboardSources sources_;
  DashboardTab tab_;
  bool activityMonitorEnabled_ = true;
  ProcessScan processes_;
  std::size_t processLimit_ = kCollapsedProcessLimit;
  AwakeView awakeView_;
  DashboardContent content_;
};

}  // namespace nimbo
