// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/main_loop.h"
#include "platform/status_bar.h"
#include "settings/dashboard_tab.h"
#include "settings/settings.h"

namespace nimbo {

/// The tab that a status item is for; absent for the compact item, which is for the whole program.
using StatusItemTab = std::optional<DashboardTab>;

/// Which status items should be there.
struct StatusItemPlan {
  /// In the order in which they are made; never empty, so that the program stays reachable.
  std::vector<StatusItemTab> shown;
  /// The tab whose item is shown while one item rotates through the tabs; absent when none does.
  std::optional<DashboardTab> rotationTab;

  bool operator==(const StatusItemPlan&) const = default;
};

/// `rotationTab` is the tab of the previous plan and is kept while it is still among the choices.
[[nodiscard]] StatusItemPlan planStatusItems(const Settings& settings, std::optional<DashboardTab> rotationTab);

/// The tab after `tab` in the menu's tabs, the first after the last; absent when there is nothing to
/// rotate.
[[nodiscard]] std::optional<DashboardTab> nextRotationTab(const Settings& settings, DashboardTab tab);

/// The program's items in the menu bar or tray: makes and removes them as the settings ask, keeps
/// their content current, and rotates one item through the tabs. Main thread.
class StatusItems {
 public:
  struct Callbacks {
    std::function<StatusItemContent(StatusItemTab)> content;
    std::function<void(StatusItemTab, const StatusClick&)> clicked;
    /// The menu as it is now; asked ahead of time too, so it changes nothing.
    std::function<StatusMenu()> menu;
    std::function<void()> menuWillOpen;
    std::function<void(StatusItemTab)> moved;  ///< its known frame is another
    /// Asked at each rotation step; true while the machine sleeps or the dashboard is open.
    std::function<bool()> rotationPaused;
  };

  StatusItems(StatusBar& statusBar, MainLoop& mainLoop, const Settings& settings, Callbacks callbacks);

  /// Makes the items that the settings ask for, in their order, removes the others, brings every item's
  /// content up to date, and restarts the rotation.
  void configure();
  /// Brings every item's content up to date.
  void refresh();
  void restartRotation();
  void stopRotation() { rotationTimer_.reset(); }

  [[nodiscard]] std::optional<DashboardTab> rotationTab() const { return rotationTab_; }
  /// Null when there is no such item.
  [[nodiscard]] std::shared_ptr<StatusItem> item(StatusItemTab tab) const;
  /// The item that stands for the whole program: compact, else AI, else memory, else Keep Awake.
  [[nodiscard]] StatusItemTab firstItem() const;
  /// Where the items are as far as the bar has told, some with a click only.
  [[nodiscard]] std::vector<Rect> knownFrames() const;
  [[nodiscard]] std::optional<Rect> knownFrame(StatusItemTab tab) const;

 private:
  /// One place in the bar. The one that rotates stands for one tab after the other.
  struct Slot {
    StatusItemName name;
    StatusItemTab tab;
    std::shared_ptr<StatusItem> item{};
    std::optional<Rect> frame{};
  };

  [[nodiscard]] StatusItemName nameOf(StatusItemTab tab) const;
  [[nodiscard]] StatusItemContent contentOf(StatusItemTab tab) const;
  void updateItems();
  void rotate();
  [[nodiscard]] StatusItemHandlers handlersFor(Slot& slot);
  [[nodiscard]] const Slot* find(StatusItemTab tab) const;

  StatusBar& statusBar_;
  MainLoop& mainLoop_;
  const Settings& settings_;
  Callbacks callbacks_;
  std::list<Slot> slots_;  ///< in the order in which they were made
  std::optional<DashboardTab> rotationTab_;
  Subscription rotationTimer_;
  Subscription itemOrder_;
  bool trackingStatusMenu_ = false;
};

}  // namespace nimbo
