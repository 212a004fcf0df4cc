// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/sampling_loop.h"
#include "app/tray/status_items.h"
#include "app/tray/status_menu.h"
#include "app/update_checker.h"
#include "app/usage_readers.h"
#include "app/widgets/widget_destination.h"
#include "app/widgets/widget_publisher.h"
#include "app/windows/dashboard.h"
#include "app/windows/preferences.h"
#include "app/windows/toolkit.h"
#include "app/windows/update_alerts.h"
#include "awake/awake_manager.h"
#include "platform/platform_services.h"
#include "settings/settings.h"

namespace nimbo {

/// The application controller: owns every long-lived part of the running program, wires their
/// callbacks and answers the life events. Main thread; lives until the process ends.
class AppDelegate {
 public:
  /// Whether widgets are shown what the program reads.
  enum class Widgets { none, published };

  /// `platform` and `settings` outlive it.
  AppDelegate(PlatformServices& platform, UserInterfaceMaker makeUserInterface, Settings& settings, Widgets widgets);

  /// Gets the user's decision to quit, once, possibly much later.
  using QuitDecision = std::function<void(bool quit)>;

  void applicationDidFinishLaunching();
  /// Decides whether the program may end now: at once, or after asking when a session runs.
  void applicationShouldTerminate(QuitDecision decided);
  void applicationWillTerminate();

  /// The program was started again.
  void activate();
  /// Links were opened; the last one that leads somewhere counts. Before launch it waits for it.
  void open(const std::vector<std::string>& links);
  void willSleep();
  void didWake();
  void openSettings();
  void checkForUpdates();
  /// Starts the program at log-in, or no longer.
  void toggleLogin();
  void quit();

  void statusClicked(StatusItemKind kind, const StatusClick& click);

  /// Stops the session, or starts one until stopped.
  void quickToggleAwake();
  /// Stops the session, or starts one of the length chosen last.
  void quickTimedSession();
  void toggleDisplayMode();
  void turnDisplayOff();

  [[nodiscard]] AwakeManager& awake() { return awake_; }
  /// Makes the dashboard with its process list without showing it; false when there is no display.
  [[nodiscard]] bool loadDashboardOffscreen();

  /// Asked before quitting ends a session. Shows an alert unless replaced.
  std::function<void(QuitDecision)> confirmEndingAwakeSession;

 private:
  [[nodiscard]] Dashboard::Callbacks dashboardCallbacks();
  [[nodiscard]] StatusItemContent contentFor(StatusItemKind kind) const;
  [[nodiscard]] StatusMenu statusMenu();
  [[nodiscard]] Preferences::Callbacks preferencesCallbacks();
  void openDashboard(StatusItemKind kind, std::optional<DashboardTab> tab);
  void openDestination(WidgetDestination destination);
  void openSettings(std::optional<SettingsPage> page);
  void enableClaudeDesktop();
  void readingsChanged();
  void tabChanged();
  void awakeChanged();
  void usageChanged();

  void startAwake(std::optional<AwakeManager::Time> end);
  void toggleAwake(std::optional<AwakeManager::Time> end);
  void keepDisplayOn(bool on);
  void applyAwakeRules();
  void settingsChanged(const SettingsChange& change);
  void monitorsChanged();
  void configureUsage();
  void usageSettingsChanged();
  void showQuitAlert(QuitDecision decided);
  void showNotice(const std::string& title, const std::string& text);

  PlatformServices& platform_;
  Settings& settings_;
  bool sleeping_ = false;
  bool enablingClaudeDesktop_ = false;
  bool didFinishLaunching_ = false;
  std::optional<WidgetDestination> pendingDestination_;
  AwakeManager awake_;
  UsageReaders usageReaders_;
  UsageMonitor usage_;
  Toolkit toolkit_;
  SamplingLoop sampling_;
  WidgetPublisher widgets_;
  UpdateAlerts updateAlerts_;
  UpdateChecker updater_;
  Dashboard dashboard_;
  Preferences preferences_;
  StatusItems statusItems_;
  std::unique_ptr<Alert> quitAlert_;
  std::unique_ptr<Alert> notice_;
  Subscription sleepObservation_;
  Subscription terminationObservation_;
};

}  // namespace nimbo
