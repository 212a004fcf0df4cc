// SPDX-License-Identifier: MIT
#include "platform/linux/tray/panel_appearance.h"

#include <utility>

#include "platform/linux/desktop/desktop_programs.h"

namespace nimbo {

PanelAppearance::PanelAppearance(Services services, const std::string& desktop) : workspace_(services.workspace) {
  const auto ofWindows = [this] { return workspace_.appearance(); };
  workspaceObserver_ = workspace_.observeAppearance([this](Appearance /*appearance*/) { update(); });
  if (desktopIs(desktop, "GNOME")) {
    read_ = [] { return Appearance::dark; };
  } else if (desktopIs(desktop, "KDE")) {
    read_ = [&plasma = services.plasma, ofWindows] { return plasma.ofPanels().value_or(ofWindows()); };
    filesObserver_ = services.plasma.observe([this] { update(); });
  } else if (desktopIs(desktop, "XFCE")) {
    read_ = ofWindows;
    // A panel that is not set to dark follows the theme, which may be dark all the same.
    xfcePanel_ = followXfconf(services.session, "xfce4-panel", "/panels/dark-mode", [=, this](sd_bus_message* value) {
      int dark = 0;
      const bool isDark = value != nullptr && sd_bus_message_read(value, "v", "b", &dark) > 0 && dark != 0;
      read_ = [=] { return isDark ? Appearance::dark : ofWindows(); };
      update();
    });
  } else if (desktopIsAny(desktop, {"MATE", "LXQt", "Budgie", "Unity", "Pantheon"})) {
    read_ = ofWindows;
  } else {
    read_ = [] { return std::nullopt; };
  }
  update();
}

void PanelAppearance::update() {
  const auto now = read_();
  if (std::exchange(appearance_, now) != now) observers_.notify();
}

}  // namespace nimbo
