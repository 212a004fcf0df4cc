// SPDX-License-Identifier: MIT
#include "ui/main_menu.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace nimbo {
namespace {

using Texts = std::vector<std::string>;

const std::vector<MainMenuSection> kMenu = mainMenu();

/// Title and key of each entry of a section.
Texts entries(std::size_t section) {
  Texts texts;
  for (const auto& entry : kMenu.at(section).entries) texts.push_back(entry.title + "|" + entry.keyEquivalent);
  return texts;
}

TEST(MainMenu, HasTheThreeUsualMenus) {
  ASSERT_EQ(kMenu.size(), 3U);
  EXPECT_EQ(kMenu[0].title, "Nimbo");
  EXPECT_EQ(kMenu[1].title, "Edit");
  EXPECT_EQ(kMenu[2].title, "Window");
}

TEST(MainMenu, EntriesHaveTheirTitlesAndKeys) {
  EXPECT_EQ(entries(0), (Texts{"Settings…|,", "|", "Quit Nimbo|q"}));
  EXPECT_EQ(entries(1), (Texts{"Cut|x", "Copy|c", "Paste|v", "Select All|a"}));
  EXPECT_EQ(entries(2), Texts{"Close Window|w"});
}

TEST(MainMenu, EntriesDoWhatTheySay) {
  std::vector<MenuRole> roles;
  for (const auto& section : kMenu) {
    for (const auto& entry : section.entries) roles.push_back(entry.role);
  }
  using enum MenuRole;
  EXPECT_EQ(roles, (std::vector{openSettings, separator, quit, cut, copy, paste, selectAll, closeWindow}));
}

}  // namespace
}  // namespace nimbo
