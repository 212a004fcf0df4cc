// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

#include "base/observer_list.h"
#include "platform/linux/bus/xfconf_property.h"
#include "platform/linux/desktop/plasma_colors.h"
#include "platform/workspace.h"

namespace nimbo {

/// Whether the panel that holds the tray is dark or light, which is not always what the desktop's windows are; icons
/// are drawn to stand out from it. Not known where panels are the user's own choice, such as waybar, or have a theme
/// of their own, such as Cinnamon's. Main thread only.
class PanelAppearance {
 public:
  /// What outlives the panel's appearance.
  struct Services {
    sd_bus* session;
    Workspace& workspace;
    PlasmaColors& plasma;
  };

  /// `desktop` is the value of XDG_CURRENT_DESKTOP.
  PanelAppearance(Services services, const std::string& desktop);
  PanelAppearance(const PanelAppearance&) = delete;
  PanelAppearance& operator=(const PanelAppearance&) = delete;

  [[nodiscard]] std::optional<Appearance> appearance() const { return appearance_; }
  [[nodiscard]] Subscription observe(std::function<void()> changed) { return observers_.add(std::move(changed)); }

 private:
  void update();

  Workspace& workspace_;
  std::function<std::optional<Appearance>()> read_;
  std::optional<Appearance> appearance_;
  ObserverList<> observers_;
  Subscription workspaceObserver_;
  Subscription filesObserver_;
  XfconfProperty xfcePanel_;
};

}  // namespace nimbo
