// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "base/result.h"
#include "platform/bundle.h"
#include "platform/main_loop.h"
#include "platform/windows_process.h"
#include "ui/user_interface.h"

namespace nimbo {

/// The one function that the module "nimbo-ui" exports, under the name kUserInterfaceEntryName. Null when there is no
/// display. One at a time.
using UserInterfaceEntry = UserInterface* (*)(DisplayNeed need);
inline constexpr const char* kUserInterfaceEntryName = "nimboMakeUserInterface";

/// Windows in this process, of the module "nimbo-ui", which the first of them loads. Without it no window ever gets
/// visible, which `closed` tells after each attempt, alerts go unanswered, and the user is told why, once.
class ModuleUserInterface final : public UserInterface {
 public:
  struct Services {
    MainLoop& loop;
    ModuleLoader& modules;
    Workspace& workspace;
  };

  explicit ModuleUserInterface(Services services, DisplayNeed need = DisplayNeed::required);
  ~ModuleUserInterface() override;

  void setAppearance(Appearance appearance) override;
  void setMenuListener(MenuListener chosen) override;
  [[nodiscard]] std::unique_ptr<DashboardWindow> makeDashboardWindow() override;
  [[nodiscard]] std::unique_ptr<SettingsWindow> makeSettingsWindow() override;
  [[nodiscard]] std::unique_ptr<Alert> showAlert(const AlertContent& content, AlertAnswer answered) override;

 private:
  template <class Content>
  class MissingWindow;
  class MissingAlert;

  /// Null when there is none, and there will not be any.
  [[nodiscard]] UserInterface* loaded();
  [[nodiscard]] Result<std::unique_ptr<UserInterface>, std::string> load();
  /// To a user who waits for a window.
  void complain();

  Services services_;
  const DisplayNeed need_;
  Appearance appearance_ = Appearance::light;
  MenuListener menuChosen_;

  std::optional<Result<std::unique_ptr<UserInterface>, std::string>> module_;  ///< or why it is none
  bool complained_ = false;
};

}  // namespace nimbo
