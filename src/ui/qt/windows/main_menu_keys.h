// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "ui/main_menu.h"

class QWidget;

namespace nimbo {

class WindowSystem;

/// The program's menu. Where no bar shows it, its keys work in the program's ordinary windows, and rest while a list or
/// a menu is open; copying, pasting and the like are then left to the controls, which know the same keys. Outlives the
/// windows.
class MainMenuKeys {
 public:
  void setListener(MenuListener chosen) { chosen_ = std::move(chosen); }
  /// Before there are windows.
  void showIn(WindowSystem& windowSystem);
  /// For as long as the window lives.
  void serve(QWidget& window) const;
  /// Does what an entry of the bar stands for.
  void choose(MenuRole role) const;

 private:
  MenuListener chosen_;
  bool shown_ = false;
};

}  // namespace nimbo
