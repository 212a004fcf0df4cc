// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <memory>
#include <string>
#include <vector>

#include "ui/qt/controls/theme.h"
#include "ui/qt/qt_outer_loop.h"
#include "ui/qt/windows/main_menu_keys.h"
#include "ui/user_interface.h"

namespace nimbo {

class ScreenWatch;
class WindowSystem;

/// The toolkit's application object and what hangs on it. One at a time; outlives its windows. If
/// the connection to the display breaks, the toolkit ends the process with status 1, which loses
/// nothing: whatever the program stores is on disk as soon as it is set.
class QtUserInterface final : public UserInterface {
 public:
  /// Null when no display can be reached.
  [[nodiscard]] static std::unique_ptr<QtUserInterface> make(DisplayNeed need = DisplayNeed::required);
  ~QtUserInterface() override;

  [[nodiscard]] OuterLoop& loop() override { return loop_; }
  [[nodiscard]] std::vector<Screen> screens() const override;
  [[nodiscard]] Subscription observeScreens(std::function<void()> changed) override;
  [[nodiscard]] Rect toPoints(const Rect& reported) override;
  void setAppearance(Appearance appearance) override;
  void setMainMenu(const MainMenu& menu) override;
  [[nodiscard]] std::unique_ptr<DashboardWindow> makeDashboardWindow() override;
  [[nodiscard]] std::unique_ptr<SettingsWindow> makeSettingsWindow() override;
  [[nodiscard]] std::unique_ptr<Alert> showAlert(const AlertContent& content,
                                                 std::function<void(std::size_t button)> answered) override;

 private:
  explicit QtUserInterface(const std::string& platform);

  // The toolkit keeps references to both for as long as the application lives.
  std::vector<std::string> arguments_;
  std::vector<char*> argumentPointers_;
  int argumentCount_;

  Theme theme_;
  std::unique_ptr<QApplication> application_;
  QtOuterLoop loop_;
  std::unique_ptr<WindowSystem> windowSystem_;
  std::unique_ptr<ScreenWatch> screenWatch_;
  MainMenuKeys mainMenuKeys_;
  bool placesAreInPoints_ = false;  ///< as the pointer told last
};

}  // namespace nimbo
