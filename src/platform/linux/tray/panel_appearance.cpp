// SPDX-License-Identifier: MIT
#include "platform/linux/tray/panel_appearance.h"

#include <utility>

#include "platform/linux/desktop/desktop_programs.h"

namespace nimbo {

PanelAppearance::PanelAppearance(Services services, const std::string& desktop)
    : workspace_(services.workspace), own_([] { return std::nullopt; }) {
  workspaceObserver_ = workspace_.observeAppearance([this](Appearance /*appearance*/) { update(); });
  if (desktopIs(desktop, "GNOME")) {
    own_ = [] { return Appearance::dark; };
  } else if (desktopIs(desktop, "KDE")) {
    own_ = [&plasma = services.plasma] { return plasma.ofPanels(); };
    filesObserver_ = services.plasma.observe([this] { update(); });
  } else if (desktopIs(desktop, "XFCE")) {
    // A panel that is not set to dark follows the theme, which may be dark all the same.
    xfcePanel_ = followXfconf(services.session, "xfce4-panel", "/panels/dark-mode", [this](sd_bus_message* value) {
      int dark = 0;
      const bool isDark = value != nullptr && sd_bus_message_read(value, "v", "b", &dark) > 0 && dark != 0;
      own_ = [isDark] { return isDark ? std::optional(Appearance::dark) : std::nullopt; };
      update();
    });
  }
  update();
}

void PanelAppearance::update() {
  const Appearance now = own_().value_or(workspace_.appearance());
  if (std::exchange(appearance_, now) != now) observers_.notify();
}

}  // namespace nimbo
