// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace nimbo {

/// What an entry does: something of the program, or something to the control or window that has the keyboard focus.
enum class MenuRole { separator, openSettings, quit, cut, copy, paste, selectAll, closeWindow };

/// Gets openSettings and quit; the others are done where the menu is.
using MenuListener = std::function<void(MenuRole chosen)>;

struct MainMenuEntry {
  MenuRole role = MenuRole::separator;
  std::string title = {};
  std::string keyEquivalent = {};  ///< one letter pressed with Command (Control on Linux)
};

struct MainMenuSection {
  std::string title;
  std::vector<MainMenuEntry> entries;
};

/// The menu of the program, which gives its windows and text fields the usual keyboard shortcuts.
[[nodiscard]] std::vector<MainMenuSection> mainMenu();

}  // namespace nimbo
