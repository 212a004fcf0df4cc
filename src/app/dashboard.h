// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include "app/system_readings.h"
#include "app/user_interface_maker.h"
#include "platform/clock.h"
#include "platform/main_loop.h"
#include "platform/status_bar.h"
#include "platform/workspace.h"
#include "settings/settings.h"
#include "ui/dashboard_controller.h"
#include "ui/dashboard_panel.h"
#include "ui/user_interface.h"

namespace nimbo {

/// The dashboard from the application's side: loads the toolkit when it is opened for the first
/// time, and from then on keeps its controller, its window and its panel together. Main thread.
class Dashboard {
 public:
  struct Services {
    MainLoop& mainLoop;
    const Clock& clock;
    Workspace& workspace;
  };
  struct Callbacks {
    std::function<void()> tabChanged;  ///< the user picked another tab
    std::function<void()> quit;
    std::function<std::vector<Rect>()> statusItemFrames;
  };

  Dashboard(Services services, UserInterfaceMaker makeUserInterface, const Settings& settings, Callbacks callbacks);

  /// Opens under `item`, on `tab` or else on the tab shown last. False when there is no display.
  [[nodiscard]] bool open(const std::shared_ptr<StatusItem>& item, std::optional<Rect> reported,
                          std::optional<DashboardTab> tab, const SystemReadings& readings);
  void close();
  [[nodiscard]] bool visible() const { return parts_ && parts_->panel->visible(); }
  /// Whether a click on `item` is the one that has just closed the dashboard.
  [[nodiscard]] bool justClosedBy(const StatusItem& item) const;
  /// Absent before the dashboard was first opened.
  [[nodiscard]] std::optional<DashboardTab> selectedTab() const;

  /// Shows the readings if the dashboard is open; a closed one costs nothing and catches up on opening.
  void update(const SystemReadings& readings);
  void updateProcesses(ProcessScan scan);

 private:
  /// In order of dependence, so that they go in the reverse order.
  struct Parts {
    std::unique_ptr<UserInterface> interface;
    Subscription appearance;
    DashboardController controller;
    std::unique_ptr<DashboardWindow> window;
    std::unique_ptr<DashboardPanel> panel;
  };

  [[nodiscard]] bool create();
  void wire(Parts& parts);
  void show(const SystemReadings& readings);

  Services services_;
  UserInterfaceMaker makeUserInterface_;
  const Settings& settings_;
  Callbacks callbacks_;
  std::unique_ptr<Parts> parts_;
};

}  // namespace nimbo
