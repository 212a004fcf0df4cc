// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "base/lifetime.h"
#include "platform/main_loop.h"
#include "platform/status_bar.h"
#include "platform/workspace.h"
#include "ui/dashboard/dashboard_controller.h"
#include "ui/user_interface.h"

namespace nimbo {

/// The dashboard from the application's side: made when it is opened for the first time, and from then on keeps its
/// controller and its window together. Highlights the item that it hangs from. Main thread.
class Dashboard {
 public:
  struct Services {
    UserInterface& windows;
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

  /// Opens under `item`, on `tab` or else on the tab shown last.
  void open(const std::shared_ptr<StatusItem>& item, std::optional<Rect> reported, std::optional<DashboardTab> tab);
  /// Stays with `item` if it hangs from that one, which is there now.
  void follow(const std::shared_ptr<StatusItem>& item, std::optional<Rect> place);
  /// Makes and fills everything without showing it.
  void loadOffscreen(DashboardTab tab);
  [[nodiscard]] bool loaded() const { return parts_ && parts_->window->prepared(); }
  void close();
  [[nodiscard]] bool visible() const { return parts_ && parts_->window->visible(); }
  /// Whether the user sees that page.
  [[nodiscard]] bool shows(DashboardTab tab) const { return visible() && parts_->controller.selectedTab() == tab; }
  /// How many of the largest processes are to be scanned exactly; 0 unless somebody looks at the list or it is being
  /// loaded off screen.
  [[nodiscard]] std::size_t processesWanted() const;
  /// Whether a click now reported by `item` must be the one that has just closed the dashboard under that item. Such
  /// a click is not meant to open it again.
  [[nodiscard]] bool justClosedBy(const StatusItem& item) const;

  // For the open dashboard; a closed one costs nothing and catches up on opening.

  /// Shows what its sources say now.
  void update();
  void updateProcesses(ProcessScan scan);

 private:
  /// In order of dependence, so that they go in the reverse order.
  struct Parts {
    Parts(const DashboardSources& sources, UserInterface& windows)
        : controller(sources), window(windows.makeDashboardWindow()) {}
    DashboardController controller;
    std::unique_ptr<DashboardWindow> window;
  };

  void create();
  void prepare(std::optional<DashboardTab> tab);
  void handle(const ControlEvent& event);
  void closed(ClosedBy by);
  void setItemHighlighted(bool highlighted);

  Services services_;
  DashboardSources sources_;
  Callbacks callbacks_;
  bool offscreen_ = false;
  std::unique_ptr<Parts> parts_;

  std::weak_ptr<StatusItem> item_;
  std::weak_ptr<StatusItem> closedItem_;
  std::chrono::duration<double> closedAt_{};
  Lifetime lifetime_;
};

}  // namespace nimbo
