// SPDX-License-Identifier: MIT
#include "ui/module/module_user_interface.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "support/fake_main_loop.h"
#include "support/fake_user_interface.h"
#include "support/fake_workspace.h"

namespace nimbo {
namespace {

// What the module's one function made last, and for whom; absent for a display that cannot be reached.
FakeUserInterface* made = nullptr;
std::optional<DisplayNeed> neededBy;
bool displayReached = true;

UserInterface* makeFake(DisplayNeed need) {
  neededBy = need;
  return displayReached ? made = new FakeUserInterface : nullptr;
}

class FakeModules final : public ModuleLoader {
 public:
  [[nodiscard]] Result<void*, ModuleError> symbol(const std::string& module, const char* symbol) override {
    asked.push_back(module + "." + symbol);
    if (!installed) return tl::unexpected(ModuleError{"nimbo-ui: no such file"});
    return reinterpret_cast<void*>(&makeFake);
  }

  bool installed = true;
  std::vector<std::string> asked;
};

class ModuleUserInterfaceTest : public testing::Test {
 protected:
  ModuleUserInterfaceTest() {
    made = nullptr;
    neededBy.reset();
    displayReached = true;
  }

  [[nodiscard]] std::unique_ptr<Alert> ask() {
    return interface.showAlert({"Quit?", "", {"Keep", "Quit"}, 0},
                               [this](std::optional<std::size_t> button) { answers.push_back(button); });
  }

  FakeMainLoop loop;
  FakeModules modules;
  FakeWorkspace workspace;
  std::vector<std::optional<std::size_t>> answers;
  ModuleUserInterface interface {
    { loop, modules, workspace }
  };
};

TEST_F(ModuleUserInterfaceTest, TheFirstWindowLoadsTheModuleAndTellsItWhatWasSaidBefore) {
  std::vector<MenuRole> chosen;
  interface.setAppearance(Appearance::dark);
  interface.setMenuListener([&](MenuRole role) { chosen.push_back(role); });
  EXPECT_EQ(modules.asked, std::vector<std::string>{});

  const auto dashboard = interface.makeDashboardWindow();
  const auto settings = interface.makeSettingsWindow();
  EXPECT_EQ(modules.asked, std::vector<std::string>{"nimbo-ui.nimboMakeUserInterface"});
  EXPECT_EQ(neededBy, DisplayNeed::required);
  EXPECT_EQ(made->appearances(), std::vector{Appearance::dark});
  EXPECT_TRUE(made->choose(MenuRole::quit));
  EXPECT_EQ(chosen, std::vector{MenuRole::quit});
  settings->show({});
  EXPECT_TRUE(made->settingsWindows()[0]->visible());
  EXPECT_EQ(made->windows().size(), 1U);
}

TEST_F(ModuleUserInterfaceTest, WhatIsSaidLaterGoesOnAtOnce) {
  interface.setAppearance(Appearance::dark);
  const auto alert = ask();
  interface.setAppearance(Appearance::light);
  interface.setMenuListener([](MenuRole) {});
  EXPECT_EQ(made->appearances(), (std::vector{Appearance::dark, Appearance::light}));
  EXPECT_TRUE(made->choose(MenuRole::openSettings));
  made->alerts()[0]->answer(1);
  EXPECT_EQ(answers, std::vector{std::optional<std::size_t>(1)});
  EXPECT_TRUE(workspace.notices.empty());
}

TEST_F(ModuleUserInterfaceTest, WithoutTheModuleAWindowClosesAtOnceAndTheUserIsToldWhyOnce) {
  modules.installed = false;
  const auto dashboard = interface.makeDashboardWindow();
  const auto settings = interface.makeSettingsWindow();
  EXPECT_FALSE(dashboard->prepared());
  EXPECT_TRUE(workspace.notices.empty()) << "before anybody wants to see it";

  int closed = 0;
  dashboard->setEvents({.closed = [&](ClosedBy by) { closed += by == ClosedBy::other ? 1 : 100; }});
  dashboard->render({});
  dashboard->show({});
  EXPECT_FALSE(dashboard->visible());
  EXPECT_EQ(closed, 0) << "not from within the call";
  loop.runPosted();
  EXPECT_EQ(closed, 1);
  dashboard->hide();
  dashboard->show({});
  settings->show({});
  loop.runPosted();
  EXPECT_EQ(closed, 2);
  const std::vector<std::pair<std::string, std::string>> told{
      {"Nimbo can’t show its windows", "nimbo-ui: no such file"}};
  EXPECT_EQ(workspace.notices, told);
  EXPECT_EQ(modules.asked.size(), 1U);
}

TEST_F(ModuleUserInterfaceTest, WithoutTheModuleAnAlertGoesUnansweredAndMayEndThen) {
  modules.installed = false;
  std::unique_ptr<Alert> alert;
  alert = interface.showAlert({"Quit?", "", {"Keep", "Quit"}, 0}, [&](std::optional<std::size_t> button) {
    answers.push_back(button);
    alert.reset();
  });
  alert->present();
  EXPECT_TRUE(answers.empty()) << "not from within the call";
  loop.runPosted();
  EXPECT_EQ(answers, std::vector{std::optional<std::size_t>()});
  EXPECT_EQ(alert, nullptr);
  EXPECT_EQ(workspace.notices.size(), 1U);
}

TEST_F(ModuleUserInterfaceTest, NobodyHearsOfAWindowOrAnAlertThatIsGone) {
  modules.installed = false;
  auto settings = interface.makeSettingsWindow();
  settings->setEvents({.closed = [](ClosedBy) { ADD_FAILURE(); }});
  settings->show({});
  settings.reset();
  ask().reset();
  loop.runPosted();
  EXPECT_TRUE(answers.empty());
}

TEST_F(ModuleUserInterfaceTest, AMissingDisplayIsAReasonAsWell) {
  displayReached = false;
  ModuleUserInterface offscreen({loop, modules, workspace}, DisplayNeed::optional);
  const auto alert = offscreen.showAlert({}, [](std::optional<std::size_t>) {});
  EXPECT_EQ(neededBy, DisplayNeed::optional);
  ASSERT_EQ(workspace.notices.size(), 1U);
  EXPECT_EQ(workspace.notices[0].second, "No display can be reached.");
  offscreen.setAppearance(Appearance::dark);
  offscreen.setMenuListener({});
}

}  // namespace
}  // namespace nimbo
