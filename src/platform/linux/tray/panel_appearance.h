// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "base/observer_list.h"
#include "platform/linux/bus/xfconf_property.h"
#include "platform/workspace.h"

namespace nimbo {

/// Whether the panel that holds the tray is dark or light, which is not always what the desktop's
/// windows are; icons are drawn to stand out from it. Main thread only.
class PanelAppearance {
 public:
  /// `desktop` is the value of XDG_CURRENT_DESKTOP. `workspace` outlives this object.
  PanelAppearance(sd_bus* session, const std::string& desktop, Workspace& workspace);
  PanelAppearance(const PanelAppearance&) = delete;
  PanelAppearance& operator=(const PanelAppearance&) = delete;

  [[nodiscard]] Appearance appearance() const { return appearance_; }
  [[nodiscard]] Subscription observe(std::function<void()> changed) { return observers_.add(std::move(changed)); }

 private:
  void update();

  Workspace& workspace_;
  const bool alwaysDark_;
  bool darkPanel_ = false;  // by the panel's own setting
  Appearance appearance_;
  ObserverList<> observers_;
  Subscription workspaceObserver_;
  XfconfProperty xfcePanel_;
};

}  // namespace nimbo
