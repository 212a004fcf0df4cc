// SPDX-License-Identifier: MIT
#include "ui/main_menu.h"

namespace nimbo {

std::vector<MainMenuSection> mainMenu() {
  using enum MenuRole;
  return {
      {"Nimbo", {{openSettings, "Settings…", ","}, {separator}, {quit, "Quit Nimbo", "q"}}},
      {"Edit", {{cut, "Cut", "x"}, {copy, "Copy", "c"}, {paste, "Paste", "v"}, {selectAll, "Select All", "a"}}},
      {"Window", {{closeWindow, "Close Window", "w"}}},
  };
}

}  // namespace nimbo
