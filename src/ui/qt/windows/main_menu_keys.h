// SPDX-License-Identifier: MIT
#pragma once

#include <utility>

#include "ui/main_menu.h"

class QWidget;

namespace nimbo {

/// Makes the keys of the program's menu work in its ordinary windows; there is no menu bar that would.
/// They rest while a list or a menu is open. Copying, pasting and the like are left to the controls,
/// which know the same keys. Outlives the windows.
class MainMenuKeys {
 public:
  void setListener(MenuListener chosen) { chosen_ = std::move(chosen); }
  /// For as long as the window lives.
  void serve(QWidget& window) const;

 private:
  MenuListener chosen_;
};

}  // namespace nimbo
