// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace nimbo {

/// What an entry does to the control or window that has the keyboard focus; `none` when it runs an action.
enum class MenuRole { none, cut, copy, paste, selectAll, closeWindow };

struct MainMenuEntry {
  std::string title;               ///< empty for a separator
  std::string keyEquivalent = {};  ///< one letter pressed with Command (Control on Linux)
  MenuRole role = MenuRole::none;
  std::function<void()> action = {};  ///< of an entry without a role
};

struct MainMenuSection {
  std::string title;
  std::vector<MainMenuEntry> entries;
};

struct MainMenu {
  std::vector<MainMenuSection> sections;
};

struct MainMenuActions {
  std::function<void()> openSettings;
  std::function<void()> quit;
};

/// The menu of the program, which gives its windows and text fields the usual keyboard shortcuts.
[[nodiscard]] MainMenu makeMainMenu(const MainMenuActions& actions);

}  // namespace nimbo
