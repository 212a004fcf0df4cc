// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "base/observer_list.h"
#include "ui/qt/controls/theme.h"
#include "ui/qt/windows/main_menu_keys.h"
#include "ui/user_interface.h"

namespace nimbo {

class WindowSystem;

/// The toolkit's application object and what hangs on it. One at a time; outlives its windows. If
/// the connection to the display breaks, the toolkit ends the process with status 1, which loses
/// nothing: whatever the program stores is on disk as soon as it is set.
class QtUserInterface final : public UserInterface, private OuterLoop {
 public:
  /// Null when no display can be reached.
  [[nodiscard]] static std::unique_ptr<QtUserInterface> make(DisplayNeed need = DisplayNeed::required);
  ~QtUserInterface() override;

  [[nodiscard]] OuterLoop& loop() override { return *this; }
  [[nodiscard]] std::vector<Screen> screens() const override;
  [[nodiscard]] Subscription observeScreens(std::function<void()> changed) override {
    return screenObservers_.add(std::move(changed));
  }
  [[nodiscard]] Rect toPoints(const Rect& reported) override;
  void setAppearance(Appearance appearance) override;
  void setMainMenu(const MainMenu& menu) override { mainMenuKeys_.setMenu(menu); }
  [[nodiscard]] std::unique_ptr<DashboardWindow> makeDashboardWindow() override;
  [[nodiscard]] std::unique_ptr<SettingsWindow> makeSettingsWindow() override;
  [[nodiscard]] std::unique_ptr<Alert> showAlert(const AlertContent& content,
                                                 std::function<void(std::size_t button)> answered) override;

 private:
  explicit QtUserInterface(const std::string& platform);
  void watchScreens();

  // The toolkit's event loop as the outer one. Nothing called from it may run a nested event loop
  // (modal dialogs, menus that wait): the inner main loop would stand still meanwhile.
  void run(int descriptor, const std::function<void()>& dispatchPending) override;
  void stop() override;

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
