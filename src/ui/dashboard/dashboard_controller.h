// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <vector>

#include "settings/dashboard_tab.h"
#include "ui/dashboard/awake_view.h"
#include "ui/dashboard/dashboard_content.h"
#include "ui/dashboard/resources_view.h"
#include "ui/dashboard/usage_view.h"

namespace nimbo {

/// The settings that the dashboard follows.
struct DashboardPreferences {
  std::vector<DashboardTab> tabOrder{kAllDashboardTabs.begin(), kAllDashboardTabs.end()};
  DashboardTab lastDashboardTab = DashboardTab::ai;
  bool monitorMemory = true;
  bool monitorCpu = false;
  bool monitorTemperature = false;
  std::chrono::seconds refreshInterval{5};
  std::vector<UsageProvider> providerOrder{kAllUsageProviders.begin(), kAllUsageProviders.end()};
};

/// Decides all that the dashboard shows; windows only put its content on screen. It samples
/// nothing: readings and settings are pushed in. Main thread only.
class DashboardController {
 public:
  explicit DashboardController(AwakeView::Services services);

  /// The Keep Awake page; follows the settings by itself.
  [[nodiscard]] AwakeView& awakeView() { return awakeView_; }
  [[nodiscard]] UsageView& usageView() { return usageView_; }

  [[nodiscard]] const DashboardContent& content() const { return content_; }
  [[nodiscard]] DashboardTab selectedTab() const;

  /// The first call shows the preferred tab, later ones keep the one that is shown.
  void apply(const DashboardPreferences& preferences);
  void update(const ResourcesSample& sample);
  void updateProcesses(ProcessScan scan);
  void updateTemperature(std::optional<double> celsius);

  /// Shows a tab on the program's behalf, which is not reported to `onTabChanged`.
  void selectTab(DashboardTab tab);

  /// For a desktop that has no program for watching processes.
  void setActivityMonitorEnabled(bool enabled);

  void tabChanged(std::size_t index);
  void expandClicked();
  void collapseClicked();
  void settingsClicked() const;
  void quitClicked() const;
  void activityClicked() const;

  /// `content` is another one now.
  std::function<void()> onContentChanged;
  std::function<void()> onSettings;
  std::function<void()> onQuit;
  /// The process list grew or shrank.
  std::function<void()> onExpand;
  std::function<void()> onActivityMonitor;
  /// The user picked a tab.
  std::function<void()> onTabChanged;

 private:
  [[nodiscard]] std::size_t segmentOf(DashboardTab tab) const;
  void refresh();

  std::vector<DashboardTab> tabOrder_{kAllDashboardTabs.begin(), kAllDashboardTabs.end()};
  std::size_t selectedSegment_ = 0;
  bool configuredOrder_ = false;
  ResourcesPage resources_;
  AwakeView awakeView_;
  UsageView usageView_;
  DashboardContent content_;
};

}  // namespace nimbo
