// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "base/observer_list.h"
#include "base/result.h"
#include "platform/windows_process.h"
#include "ui/dashboard_panel.h"
#include "ui/qt/controls/theme.h"
#include "ui/qt/windows/main_menu_keys.h"
#include "ui/user_interface.h"

namespace nimbo {

class WindowSystem;

/// The toolkit's application object and what hangs on it. One at a time; outlives its windows. If
/// the connection to the display breaks, the toolkit ends the process with status 1.
class QtUserInterface final : public UserInterface, public Screens {
 public:
  /// Never null.
  [[nodiscard]] static Result<std::unique_ptr<QtUserInterface>, WindowsEnd> make(
      DisplayNeed need = DisplayNeed::required);
  ~QtUserInterface() override;

  [[nodiscard]] std::vector<Screen> screens() const override;
  [[nodiscard]] Subscription observeScreens(std::function<void()> changed) override {
    return screenObservers_.add(std::move(changed));
  }
  [[nodiscard]] Rect toPoints(const Rect& reported) override;
  [[nodiscard]] std::optional<Point> pointer() const override;
  void setAppearance(Appearance appearance) override;
  void setMenuListener(MenuListener chosen) override { mainMenuKeys_.setListener(std::move(chosen)); }
  [[nodiscard]] std::unique_ptr<DashboardWindow> makeDashboardWindow() override;
  /// The window alone, which hangs nowhere and does not close by itself.
  [[nodiscard]] std::unique_ptr<MenuWindow> makeMenuWindow();
  [[nodiscard]] std::unique_ptr<SettingsWindow> makeSettingsWindow() override;
  [[nodiscard]] std::unique_ptr<Alert> showAlert(const AlertContent& content, AlertAnswer answered) override;

 private:
  explicit QtUserInterface(const std::string& platform);
  void watchScreens();

  // The toolkit keeps references to the pointers and their count for as long as the application lives.
  std::array<std::string, 3> arguments_;
  std::array<char*, 4> argumentPointers_{arguments_[0].data(), arguments_[1].data(), arguments_[2].data(), nullptr};
  int argumentCount_ = 3;

  Theme theme_;
  std::unique_ptr<QApplication> application_;
  std::unique_ptr<WindowSystem> windowSystem_;
  ObserverList<> screenObservers_;
  MainMenuKeys mainMenuKeys_;
  bool placesAreInPoints_ = false;  ///< as the place of the pointer showed last
};

}  // namespace nimbo
