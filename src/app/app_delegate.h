// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/sampling_loop.h"
#include "app/system_requests.h"
#include "app/tray/notices.h"
#include "app/tray/status_items.h"
#include "app/update_checker.h"
#include "app/usage_providers.h"
#include "app/widgets/widget_publisher.h"
#include "app/windows/dashboard.h"
#include "app/windows/quit_question.h"
#include "app/windows/update_alerts.h"
#include "awake/awake_manager.h"
#include "platform/platform_services.h"
#include "remote_control/remote_control.h"
#include "settings/settings.h"
#include "ui/settings/settings_window_controller.h"
#include "ui/tray/status_item_content.h"

namespace nimbo {

/// The application controller: owns every long-lived part of the running program, wires their
/// callbacks and answers the life events. Main thread; lives until the process ends.
class AppDelegate {
 public:
  /// Whether there is a user, to whom widgets show what the program reads, and who is told that there is no tray.
  enum class Audience { none, user };

  /// All outlive it.
  AppDelegate(PlatformServices& platform, UserInterface& windows, Settings& settings, Audience audience);

  void applicationDidFinishLaunching();
  void applicationWillTerminate();

  /// The program was started again.
  void activate();
  /// Links were opened; the last one that leads somewhere counts. Before launch it waits for it.
  void open(const std::vector<std::string>& links);
  /// What other programs may ask.
  [[nodiscard]] RemoteControlHandlers remoteControlHandlers();
  void openSettings(std::optional<SettingsTab> tab = std::nullopt);
  /// Ends the program, after asking when a session runs.
  void quit() { quitQuestion_.quit(); }
  /// Makes the dashboard with its process list without showing it.
  void loadDashboardOffscreen();
  [[nodiscard]] bool dashboardLoaded() const { return dashboard_.loaded(); }

  [[nodiscard]] AwakeManager& awake() { return awake_; }

 private:
  [[nodiscard]] SamplingLoop::Callbacks samplingCallbacks();
  [[nodiscard]] Dashboard::Callbacks dashboardCallbacks();
  [[nodiscard]] StatusItems::Callbacks statusItemCallbacks();
  [[nodiscard]] SettingsWindowController::Callbacks settingsWindowCallbacks(UserInterface& windows);
  [[nodiscard]] StatusItemContent contentFor(StatusItemTab tab) const;
  [[nodiscard]] MemoryPicture memoryPicture() const;
  [[nodiscard]] StatusMenu statusMenu();

  void willSleep();
  void didWake();
  void statusClicked(StatusItemTab item, const StatusClick& click);
  /// Under `item`, on `tab` or else on the tab shown last.
  void openDashboard(StatusItemTab item, std::optional<DashboardTab> tab);

  void trayIsAbsent(const std::string& advice);
  void readingsChanged();
  void tabShown(DashboardTab tab);
  /// The status items and the open dashboard.
  void refreshViews();
  void usageChanged();
  void settingsChanged(const SettingsChange& change);

  PlatformServices& platform_;
  const Clock& clock_;
  const Audience audience_;
  Settings& settings_;
  bool sleeping_ = false;
  bool didFinishLaunching_ = false;
  std::optional<DashboardTab> pendingTab_;  ///< of a link that was opened before launch
  Notices notices_;
  AwakeManager awake_;
  UsageProviders usage_;
  SamplingLoop sampling_;
  WidgetPublisher widgets_;
  UpdateAlerts updateAlerts_;
  UpdateChecker updater_;
  Dashboard dashboard_;
  SystemRequests systemRequests_;
  SettingsWindowController settingsWindow_;
  QuitQuestion quitQuestion_;
  StatusItems statusItems_;
  Subscription appearanceObservation_;
  Subscription sleepObservation_;
  Subscription terminationObservation_;
};

}  // namespace nimbo
