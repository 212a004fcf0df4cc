// SPDX-License-Identifier: MIT
#include "ui/remote/remote_user_interface.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "support/fake_clock.h"
#include "support/fake_main_loop.h"
#include "support/fake_windows.h"
#include "support/fake_workspace.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

class RemoteUserInterfaceTest : public testing::Test {
 protected:
  RemoteUserInterfaceTest() {
    loop.onAdvance = [this](std::chrono::milliseconds step) { clock.advance(step); };
    DashboardContent content;
    content.size = {340, 500};
    auto& awake = content.page.emplace<AwakeContent>();
    awake.start = {"start", {}, ButtonLook::rounded, 13, "Keep Mac awake"};
    awake.minutes.identifier = "minutes";
    content.settingsButton.identifier = "settings";
    content.quitButton.identifier = "quit";
    content.tabs.labels = {"AI", "Mem", "Awake"};
    dashboard->setEvents({.acted =
                              [this](const ControlEvent& event) {
                                did.push_back(described(event));
                                if (event.identifier == "settings") settings->show({});
                              },
                          .closed = [this](ClosedBy by) { closed = by; }});
    dashboard->render(content);
    SettingsPageContent page{.frame = {}, .accessibleName = "General", .controls = {}, .visible = true};
    page.controls.emplace_back(CheckBoxContent{.identifier = "chart", .frame = {}, .title = "Show the chart"});
    settings->setEvents({.acted = [this](const ControlEvent& event) { did.push_back(described(event)); },
                         .becameKey = [this] { did.emplace_back("key"); },
                         .closed = [this](ClosedBy /*by*/) { did.emplace_back("settings closed"); }});
    settings->render({"Settings", {500, 400}, {}, {page}});
  }

  void show() {
    dashboard->show(place);
    windows.deliver();
  }
  [[nodiscard]] std::unique_ptr<Alert> ask() {
    return interface.showAlert({"Quit?", "", {"Keep", "Quit"}, 0},
                               [this](std::optional<std::size_t> button) { answers.push_back(button); });
  }

  FakeMainLoop loop;
  FakeClock clock;
  FakeWorkspace workspace;
  FakeWindows windows;
  RemoteUserInterface interface { {loop, clock, workspace}, windows.starter() };
  std::unique_ptr<DashboardWindow> dashboard = interface.makeDashboardWindow();
  std::unique_ptr<SettingsWindow> settings = interface.makeSettingsWindow();
  WindowPlace place{Rect{1000, 0, 24, 24}, {}};
  std::vector<std::string> did;
  std::optional<ClosedBy> closed;
  std::vector<std::optional<std::size_t>> answers;
};

TEST_F(RemoteUserInterfaceTest, NothingIsStartedBeforeAWindowIsWanted) {
  interface.setAppearance(Appearance::dark);
  EXPECT_EQ(windows.starts(), 0U);
  EXPECT_FALSE(dashboard->visible());
}

TEST_F(RemoteUserInterfaceTest, WhatIsSentWhileTheProcessStartsIsShown) {
  interface.setAppearance(Appearance::dark);
  dashboard->show(place);
  EXPECT_TRUE(dashboard->visible());

  windows.deliver();
  EXPECT_TRUE(windows.dashboard().visible());
  EXPECT_EQ(windows.dashboard().content().tabs.labels.size(), 3U);
  EXPECT_EQ(windows.last().interface.appearances().back(), Appearance::dark);
  EXPECT_FALSE(windows.malformed());
}

TEST_F(RemoteUserInterfaceTest, ContentIsSentWhenItDiffersAndSomebodySeesIt) {
  show();
  DashboardContent content = windows.dashboard().content();
  dashboard->render(content);
  EXPECT_TRUE(windows.last().sent.empty());

  content.title.text = "one";
  dashboard->render(content);
  windows.deliver();
  EXPECT_EQ(windows.dashboard().content().title.text, "one");

  dashboard->hide();
  windows.deliver();
  content.title.text = "another";
  dashboard->render(content);
  EXPECT_TRUE(windows.last().sent.empty());
  show();
  EXPECT_EQ(windows.dashboard().content().title.text, "another");
}

TEST_F(RemoteUserInterfaceTest, ActionsReachTheProgram) {
  show();
  windows.dashboard().act(chosen("tabs", 2));
  windows.dashboard().act(pressed("start"));
  windows.dashboard().act(typed("minutes", "90"));
  windows.dashboard().act(pressed("settings"));
  windows.deliver();
  windows.settings().click("chart");
  windows.deliver();
  EXPECT_EQ(did, (std::vector<std::string>{"tabs 2", "start", "minutes 90", "settings", "key", "chart on"}));
}

TEST_F(RemoteUserInterfaceTest, ActionThatWasOvertakenIsIgnored) {
  show();
  windows.dashboard().act(pressed("start"));
  windows.dashboard().act(pressed("quit"));
  DashboardContent content = windows.dashboard().content();
  std::get<AwakeContent>(content.page).start.title = "Stop keeping awake";  // the session has begun meanwhile
  dashboard->render(content);
  windows.deliver();
  EXPECT_EQ(did, std::vector<std::string>{"quit"});

  windows.dashboard().act(pressed("start"));
  std::get<AwakeContent>(content.page).start.enabled = false;
  dashboard->render(content);
  windows.deliver();
  EXPECT_EQ(did.size(), 1U);
}

TEST_F(RemoteUserInterfaceTest, ControlThatChangedByItselfIsSetBack) {
  settings->show({});
  windows.deliver();
  const int before = windows.settings().renders();
  windows.settings().click("chart");  // which the program refuses
  windows.deliver();
  EXPECT_EQ(windows.settings().renders(), before + 1);
}

TEST_F(RemoteUserInterfaceTest, ContentOfATimeBeforeTheUserWentOnIsLeftOut) {
  show();
  DashboardContent content = windows.dashboard().content();
  std::get<AwakeContent>(content.page).minutes.text = "9";
  dashboard->render(content);
  windows.dashboard().act(typed("minutes", "90"));
  const int before = windows.dashboard().renders();
  EXPECT_TRUE(windows.deliverToWindows());
  EXPECT_EQ(windows.dashboard().renders(), before);
  windows.deliver();
  EXPECT_EQ(windows.dashboard().renders(), before + 1);
}

TEST_F(RemoteUserInterfaceTest, WindowThatWasNeverShownIsNotMadeToBeClosed) {
  show();
  settings.reset();
  windows.deliver();
  EXPECT_TRUE(windows.last().interface.settingsWindows().empty());
}

TEST_F(RemoteUserInterfaceTest, ActionOfAClosedWindowIsIgnored) {
  show();
  windows.dashboard().act(pressed("quit"));
  dashboard->hide();
  windows.deliver();
  EXPECT_TRUE(did.empty());
}

TEST_F(RemoteUserInterfaceTest, ClosingByItselfIsToldWithItsCause) {
  show();
  windows.dashboard().clickOutside(Point{10, 800});
  windows.deliver();
  EXPECT_FALSE(dashboard->visible());
  EXPECT_EQ(closed, ClosedBy::clickElsewhere);
}

TEST_F(RemoteUserInterfaceTest, ClosingOfAnEarlierOpeningIsIgnored) {
  show();
  windows.dashboard().pressEscape();
  dashboard->show(place);
  windows.deliver();
  EXPECT_TRUE(dashboard->visible());
  EXPECT_TRUE(windows.dashboard().visible());
  EXPECT_FALSE(closed);
}

TEST_F(RemoteUserInterfaceTest, DashboardWithoutAScreenIsClosedAgain) {
  dashboard->show(place);
  windows.last().interface.setScreens({});
  windows.deliver();
  EXPECT_FALSE(dashboard->visible());
  EXPECT_TRUE(closed);
}

TEST_F(RemoteUserInterfaceTest, ProcessEndsAMinuteAfterTheLastWindow) {
  show();
  settings->show({});
  windows.deliver();
  dashboard->hide();
  loop.advance(10min);
  EXPECT_TRUE(windows.running());

  windows.settings().close();
  windows.deliver();
  EXPECT_FALSE(settings->visible());
  loop.advance(RemoteUserInterface::kIdleTime - 1s);
  EXPECT_TRUE(windows.running());
  loop.advance(1s);
  EXPECT_FALSE(windows.running());
  EXPECT_TRUE(loop.repeatingTimers().empty());

  show();
  EXPECT_EQ(windows.starts(), 2U);
  EXPECT_TRUE(windows.dashboard().visible());
}

TEST_F(RemoteUserInterfaceTest, OpenAlertKeepsTheProcess) {
  auto alert = ask();
  windows.deliver();
  loop.advance(10min);
  EXPECT_TRUE(windows.running());
  alert.reset();
  windows.deliver();
  EXPECT_TRUE(windows.last().interface.openAlerts().empty());
  loop.advance(RemoteUserInterface::kIdleTime);
  EXPECT_FALSE(windows.running());
}

TEST_F(RemoteUserInterfaceTest, AlertIsAnsweredOnce) {
  const auto alert = ask();
  windows.deliver();
  alert->present();
  windows.deliver();
  EXPECT_EQ(windows.last().interface.alerts().back()->presents(), 1);
  windows.last().interface.alerts().back()->answer(1);
  windows.deliver();
  windows.end(WindowsEnd::died);
  EXPECT_EQ(answers, std::vector<std::optional<std::size_t>>{1});
}

TEST_F(RemoteUserInterfaceTest, MenuKeysReachTheProgram) {
  std::vector<MenuRole> chosen;
  interface.setMenuListener([&](MenuRole role) { chosen.push_back(role); });
  show();
  EXPECT_TRUE(windows.last().interface.choose(MenuRole::quit));
  windows.deliver();
  EXPECT_EQ(chosen, std::vector{MenuRole::quit});
}

TEST_F(RemoteUserInterfaceTest, OpenWindowsComeBackAfterADeathOnce) {
  show();
  settings->show({});
  windows.deliver();
  windows.end(WindowsEnd::died);
  windows.deliver();
  EXPECT_EQ(windows.starts(), 2U);
  EXPECT_TRUE(windows.dashboard().visible());
  EXPECT_TRUE(windows.settings().visible());
  EXPECT_FALSE(closed);

  windows.end(WindowsEnd::died);
  EXPECT_EQ(windows.starts(), 2U);
  EXPECT_FALSE(dashboard->visible());
  EXPECT_FALSE(settings->visible());
  EXPECT_TRUE(closed);
  EXPECT_EQ(did.back(), "settings closed");
}

TEST_F(RemoteUserInterfaceTest, ClosedWindowsStayClosedAfterADeath) {
  show();
  dashboard->hide();
  windows.end(WindowsEnd::died);
  EXPECT_EQ(windows.starts(), 1U);
  show();
  EXPECT_EQ(windows.starts(), 2U);
}

TEST_F(RemoteUserInterfaceTest, DeathAnswersAQuestionAsClosingItWould) {
  const auto alert = ask();
  windows.deliver();
  windows.end(WindowsEnd::died);
  EXPECT_EQ(answers, std::vector<std::optional<std::size_t>>{0});
  EXPECT_EQ(windows.starts(), 1U);
}

TEST_F(RemoteUserInterfaceTest, WithoutADisplayAQuestionIsUnseenAndWindowsAreClosed) {
  const auto alert = ask();
  dashboard->show(place);
  windows.end(WindowsEnd::noDisplay);
  EXPECT_EQ(answers, std::vector<std::optional<std::size_t>>{std::nullopt});
  EXPECT_FALSE(dashboard->visible());
  EXPECT_EQ(windows.starts(), 1U);
  ASSERT_EQ(workspace.notices.size(), 1U);
  EXPECT_EQ(workspace.notices[0].second, "No display can be reached.");

  show();  // perhaps there is one now
  EXPECT_EQ(windows.starts(), 2U);
  windows.end(WindowsEnd::cannotRun);
  ASSERT_EQ(workspace.notices.size(), 2U);
  EXPECT_EQ(workspace.notices[1].second, "A part of it is missing. Install it again.");

  show();
  windows.end(WindowsEnd::noWaylandPlugin);
  ASSERT_EQ(workspace.notices.size(), 3U);
  EXPECT_EQ(workspace.notices[2].second, "Qt’s plugin for Wayland is missing. Install the package qt6-wayland.");
}

TEST_F(RemoteUserInterfaceTest, AfterThreeDeathsInAMinuteTheUserIsToldInstead) {
  for (int death = 0; death < 3; ++death) {
    dashboard->show(place);
    dashboard->hide();
    windows.end(WindowsEnd::died);
    loop.advance(10s);
  }
  dashboard->show(place);
  EXPECT_FALSE(dashboard->visible());
  EXPECT_EQ(windows.starts(), 3U);
  ASSERT_EQ(workspace.notices.size(), 1U);

  const auto alert = ask();
  EXPECT_TRUE(answers.empty());
  loop.runPosted();
  EXPECT_EQ(answers, std::vector<std::optional<std::size_t>>{std::nullopt});

  loop.advance(40s);
  show();
  EXPECT_TRUE(dashboard->visible());
  EXPECT_EQ(windows.starts(), 4U);
}

TEST_F(RemoteUserInterfaceTest, ProcessThatReadsNoMoreCountsAsDead) {
  show();
  windows.hasRoom = false;
  settings->show({});
  windows.hasRoom = true;
  loop.runPosted();
  windows.deliver();
  EXPECT_EQ(windows.starts(), 2U);
  EXPECT_TRUE(windows.dashboard().visible());
  EXPECT_TRUE(windows.settings().visible());
}

TEST_F(RemoteUserInterfaceTest, ProcessThatTalksNonsenseIsEnded) {
  for (const std::string nonsense : {"", "{}", "[0]", "[99,[]]", "[2,[[\"quit\",\"\",[7,null]]]]", "[1,[0,9]]"}) {
    loop.advance(RemoteUserInterface::kDeathSpan);
    dashboard->show(place);
    windows.deliver();
    dashboard->hide();
    const auto before = windows.starts();
    windows.receive(nonsense);
    EXPECT_FALSE(windows.running()) << nonsense;
    EXPECT_EQ(windows.starts(), before);
  }
  EXPECT_TRUE(did.empty());
}

TEST_F(RemoteUserInterfaceTest, OtherVersionOfTheWindowsIsNotUsed) {
  dashboard->show(place);
  windows.receive(encode(WindowsReady{kRecordVersion + 1}));
  EXPECT_FALSE(windows.running());
  EXPECT_FALSE(dashboard->visible());
}

TEST_F(RemoteUserInterfaceTest, AnswersAndKeysThatDoNotExistAreIgnored) {
  const auto alert = ask();
  windows.deliver();
  windows.receive(encode(AlertAnswered{77, 0}));
  windows.receive(encode(AlertAnswered{1, 2}));
  windows.receive(encode(MenuChosen{MenuRole::quit}));
  windows.receive(encode(Acted{WindowName::dashboard, 1, {"quit"}, ""}));
  EXPECT_TRUE(answers.empty());
  EXPECT_TRUE(did.empty());
  EXPECT_TRUE(windows.running());
}

}  // namespace
}  // namespace nimbo
