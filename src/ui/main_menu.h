// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace nimbo {

/// What an entry does that belongs to whatever has the keyboard focus rather than to the program.
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

/// The menu of the program. It exists for its keys: text fields and windows answer to the usual ones.
[[nodiscard]] MainMenu makeMainMenu(const MainMenuActions& actions);

}  // namespace nimbo
