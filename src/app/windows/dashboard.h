// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "app/windows/toolkit.h"
#include "platform/main_loop.h"
#include "platform/status_bar.h"
#include "platform/workspace.h"
#include "ui/dashboard/dashboard_controller.h"
#include "ui/dashboard_panel.h"
#include "ui/user_interface.h"

namespace nimbo {

/// The dashboard from the application's side: made when it is opened for the first time, and from
/// then on keeps its controller, its window and its panel together. Main thread.
class Dashboard {
 public:
  struct Services {
    Toolkit& toolkit;
    MainLoop& mainLoop;
    Workspace& workspace;
  };
  struct Callbacks {
    std::function<void(DashboardTab tab)> tabShown;  ///< by opening it, or because the user picked it
    std::function<void()> openSettings;
    std::function<void()> configureUsage;  ///< the settings of the subscriptions
    std::function<void()> quit;
    std::function<std::vector<Rect>()> statusItemFrames;
    std::function<void()> settingsChanged;  ///< by the user, on the Keep Awake page
    std::function<void()> refreshUsage;
  };

  Dashboard(Services services, const DashboardSources& sources, Callbacks callbacks);

  /// Opens under `item`, on `tab` or else on the tab shown last. False when there is no display.
  [[nodiscard]] bool open(const std::shared_ptr<StatusItem>& item, std::optional<Rect> reported,
                          std::optional<DashboardTab> tab);
  /// Makes and fills everything without showing it. False when there is no display.
  [[nodiscard]] bool loadOffscreen(DashboardTab tab);
  void close();
  [[nodiscard]] bool visible() const { return parts_ && parts_->panel.visible(); }
  /// Whether somebody looks at the process list, or it is being loaded off screen.
  [[nodiscard]] bool wantsProcesses() const;
  /// Whether a click on `item` is the one that has just closed the dashboard.
  [[nodiscard]] bool justClosedBy(const StatusItem& item) const;

  // For the open dashboard; a closed one costs nothing and catches up on opening.

  /// Shows what its sources say now.
  void update();
  void updateProcesses(ProcessScan scan);

 private:
  /// In order of dependence, so that they go in the reverse order.
  struct Parts {
    Parts(const DashboardSources& sources, UserInterface& interface, MainLoop& loop)
        : controller(sources),
          window(interface.makeDashboardWindow()),
          panel(*window, interface, loop, sources.clock) {}
    DashboardController controller;
    std::unique_ptr<DashboardWindow> window;
    DashboardPanel panel;
  };

  [[nodiscard]] bool create();
  /// What the user does in the window.
  void handle(const ControlEvent& event);
  [[nodiscard]] bool prepare(std::optional<DashboardTab> tab);

  Services services_;
  DashboardSources sources_;
  Callbacks callbacks_;
  bool offscreen_ = false;
  std::unique_ptr<Parts> parts_;
};

}  // namespace nimbo
