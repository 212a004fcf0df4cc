// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "app/dashboard.h"
#include "app/sampling_loop.h"
#include "app/status_items.h"
#include "app/status_menu.h"
#include "platform/platform_services.h"
#include "settings/settings.h"

namespace nimbo {

/// The application controller: owns every long-lived part of the running program, wires their
/// callbacks and answers the life events. Main thread; lives until the process ends.
class AppDelegate {
 public:
  /// `platform` and `settings` outlive it.
  AppDelegate(PlatformServices& platform, UserInterfaceMaker makeUserInterface, Settings& settings);

  void applicationDidFinishLaunching();
  /// Whether the program may end now.
  [[nodiscard]] bool applicationShouldTerminate() const { return true; }
  void applicationWillTerminate();

  /// The program was started again.
  void activate();
  void willSleep();
  void didWake();
  void quit();

  void statusClicked(StatusItemKind kind, const StatusClick& click);

 private:
  [[nodiscard]] StatusItemContent contentFor(StatusItemKind kind) const;
  [[nodiscard]] StatusMenu statusMenu();
  void openDashboard(StatusItemKind kind, std::optional<DashboardTab> tab);
  void readingsChanged();
  void tabChanged();

  PlatformServices& platform_;
  Settings& settings_;
  bool sleeping_ = false;
  Dashboard dashboard_;
  SamplingLoop sampling_;
  StatusItems statusItems_;
  Subscription sleepObservation_;
  Subscription terminationObservation_;
};

}  // namespace nimbo
