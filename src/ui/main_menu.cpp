// SPDX-License-Identifier: MIT
#include "ui/main_menu.h"

namespace nimbo {

MainMenu makeMainMenu(const MainMenuActions& actions) {
  const MainMenuEntry separator{""};
  return {{
      {"Nimbo",
       {
           {"Settings…", ",", MenuRole::none, actions.openSettings},
           separator,
           {"Quit Nimbo", "q", MenuRole::none, actions.quit},
       }},
      {"Edit",
       {
           {"Cut", "x", MenuRole::cut},
           {"Copy", "c", MenuRole::copy},
           {"Paste", "v", MenuRole::paste},
           {"Select All", "a", MenuRole::selectAll},
       }},
      {"Window", {{"Close Window", "w", MenuRole::closeWindow}}},
  }};
}

}  // namespace nimbo
