// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "base/observer_list.h"
#include "platform/linux/bus/bus_name_watch.h"
#include "platform/linux/bus/xfconf_property.h"
#include "platform/linux/desktop/desktop_programs.h"
#include "platform/linux/desktop/plasma_colors.h"
#include "platform/workspace.h"

namespace nimbo {

/// The desktop, asked through its settings portal and, where that has no opinion, by the name of
/// the theme. Main thread only.
class PortalWorkspace final : public Workspace {
 public:
  struct Setup {
    std::string desktop;                                      ///< value of XDG_CURRENT_DESKTOP
    std::string searchPath;                                   ///< value of PATH
    std::string gtkTheme;                                     ///< value of GTK_THEME; usually empty
    std::vector<std::filesystem::path> applicationFolders{};  ///< with desktop entries, see applicationFolders()
    PlasmaColors* plasma = nullptr;  ///< tell on Plasma what its portal does not; outlive the workspace
  };

  PortalWorkspace(MainLoop& loop, sd_bus* session, Setup setup);

  [[nodiscard]] Appearance appearance() const override { return appearance_; }
  [[nodiscard]] Subscription observeAppearance(std::function<void(Appearance)> changed) override {
    return observers_.add(std::move(changed));
  }
  [[nodiscard]] bool hasSystemMonitor() const override {
    return findSystemMonitor(setup_.desktop, setup_.searchPath).has_value();
  }
  [[nodiscard]] bool openSystemMonitor() override;
  void openLink(const std::string& url) override;
  bool openApplication(const std::string& bundleIdentifier) override;
  void revealFile(const std::filesystem::path& file) override;
  void notify(const std::string& title, const std::string& text) override;

 private:
  void readColorScheme(const char* method);
  void setColorScheme(sd_bus_message* value);
  void update();
  [[nodiscard]] bool callOr(BusSlot& pending, const BusMessage& call, const std::function<bool()>& otherwise);
  [[nodiscard]] bool openByProgram(const std::string& url);

  sd_bus* const session_;
  const Setup setup_;
  std::optional<Appearance> portal_;
  std::string themeName_;
  Appearance appearance_ = Appearance::light;
  ObserverList<Appearance> observers_;
  BusSlot settingChanged_;
  BusSlot query_;
  BusSlot link_;
  BusSlot application_;
  BusSlot file_;
  BusSlot notice_;
  std::optional<BusNameWatch> portalOwner_;
  XfconfProperty xfceTheme_;
  Subscription plasmaFiles_;
  DetachedPrograms programs_;
};

}  // namespace nimbo
