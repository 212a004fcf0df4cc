// SPDX-License-Identifier: MIT
#include "ui/main_menu.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/fake_user_interface.h"

namespace nimbo {
namespace {

class MainMenuTest : public testing::Test {
 protected:
  /// Title and key of each entry of a section.
  [[nodiscard]] std::vector<std::string> entries(std::size_t section) const {
    std::vector<std::string> texts;
    for (const auto& entry : menu.sections.at(section).entries)
      texts.push_back(entry.title + "|" + entry.keyEquivalent);
    return texts;
  }

  int settingsOpened = 0;
  int quits = 0;
  MainMenu menu = makeMainMenu({[this] { ++settingsOpened; }, [this] { ++quits; }});
};

using Texts = std::vector<std::string>;

TEST_F(MainMenuTest, HasTheThreeUsualMenus) {
  ASSERT_EQ(menu.sections.size(), 3U);
  EXPECT_EQ(menu.sections[0].title, "Nimbo");
  EXPECT_EQ(menu.sections[1].title, "Edit");
  EXPECT_EQ(menu.sections[2].title, "Window");
}

TEST_F(MainMenuTest, EntriesHaveTheirTitlesAndKeys) {
  EXPECT_EQ(entries(0), (Texts{"Settings…|,", "|", "Quit Nimbo|q"}));
  EXPECT_EQ(entries(1), (Texts{"Cut|x", "Copy|c", "Paste|v", "Select All|a"}));
  EXPECT_EQ(entries(2), Texts{"Close Window|w"});
}

TEST_F(MainMenuTest, ProgramsOwnEntriesAct) {
  const auto& entries = menu.sections[0].entries;
  entries[0].action();
  EXPECT_EQ(settingsOpened, 1);
  EXPECT_EQ(quits, 0);
  entries[2].action();
  EXPECT_EQ(settingsOpened, 1);
  EXPECT_EQ(quits, 1);
  EXPECT_FALSE(entries[1].action);
}

TEST_F(MainMenuTest, OthersBelongToWhateverHasTheFocus) {
  std::vector<MenuRole> roles;
  for (const std::size_t section : {1U, 2U}) {
    for (const auto& entry : menu.sections[section].entries) {
      EXPECT_FALSE(entry.action) << entry.title;
      roles.push_back(entry.role);
    }
  }
  EXPECT_EQ(roles,
            (std::vector{MenuRole::cut, MenuRole::copy, MenuRole::paste, MenuRole::selectAll, MenuRole::closeWindow}));
  for (const auto& entry : menu.sections[0].entries) EXPECT_EQ(entry.role, MenuRole::none) << entry.title;
}

TEST_F(MainMenuTest, ToolkitKeepsTheMenuThatWasSet) {
  FakeUserInterface interface;
  EXPECT_TRUE(interface.mainMenu().sections.empty());
  interface.setMainMenu(menu);
  ASSERT_EQ(interface.mainMenu().sections.size(), 3U);
  interface.mainMenu().sections[0].entries[2].action();
  EXPECT_EQ(quits, 1);
}

}  // namespace
}  // namespace nimbo
