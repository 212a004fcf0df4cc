// SPDX-License-Identifier: MIT
#include "platform/linux/tray/panel_appearance.h"

#include "platform/linux/desktop/desktop_programs.h"

namespace nimbo {

PanelAppearance::PanelAppearance(sd_bus* session, const std::string& desktop, Workspace& workspace)
    : workspace_(workspace),
      alwaysDark_(desktopIs(desktop, "GNOME")),
      appearance_(alwaysDark_ ? Appearance::dark : workspace.appearance()) {
  if (alwaysDark_) return;
  workspaceObserver_ = workspace.observeAppearance([this](Appearance /*appearance*/) { update(); });
  if (!desktopIs(desktop, "XFCE")) return;
  xfcePanel_ = followXfconf(session, "xfce4-panel", "/panels/dark-mode", [this](sd_bus_message* value) {
    int dark = 0;
    darkPanel_ = value != nullptr && sd_bus_message_read(value, "v", "b", &dark) > 0 && dark != 0;
    update();
  });
}

// A panel that is not set to dark follows the theme, which may be dark all the same.
void PanelAppearance::update() {
  const Appearance now = darkPanel_ ? Appearance::dark : workspace_.appearance();
  if (now == appearance_) return;
  appearance_ = now;
  observers_.notify();
}

}  // namespace nimbo
