// SPDX-License-Identifier: MIT
#pragma once

#include <QPointer>
#include <QWidget>
#include <vector>

#include "ui/main_menu.h"

namespace nimbo {

/// Makes the keys of the program's menu work in its ordinary windows; there is no menu bar that would.
/// They rest while a list or a menu is open. Copying, pasting and the like are left to the controls,
/// which know the same keys.
class MainMenuKeys {
 public:
  void setMenu(MainMenu menu);
  /// For as long as the window lives.
  void serve(QWidget& window);

 private:
  void attach(QWidget& window) const;

  MainMenu menu_;
  std::vector<QPointer<QWidget>> windows_;
};

}  // namespace nimbo
