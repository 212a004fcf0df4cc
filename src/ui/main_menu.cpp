// SPDX-License-Identifier: MIT
#include "ui/main_menu.h"

namespace nimbo {
namespace {

MainMenuEntry entry(const char* title, const char* keyEquivalent, const std::function<void()>& action) {
  return {title, keyEquivalent, MenuRole::none, action};
}

MainMenuEntry entry(const char* title, const char* keyEquivalent, MenuRole role) {
  return {title, keyEquivalent, role, {}};
}

MainMenuEntry separator() { return {""}; }

}  // namespace

MainMenu makeMainMenu(const MainMenuActions& actions) {
  return {{
      {"Nimbo",
       {
           entry("Settings…", ",", actions.openSettings),
           separator(),
           entry("Quit Nimbo", "q", actions.quit),
       }},
      {"Edit",
       {
           entry("Cut", "x", MenuRole::cut),
           entry("Copy", "c", MenuRole::copy),
           entry("Paste", "v", MenuRole::paste),
           entry("Select All", "a", MenuRole::selectAll),
       }},
      {"Window", {entry("Close Window", "w", MenuRole::closeWindow)}},
  }};
}

}  // namespace nimbo
