// SPDX-License-Identifier: MIT
#include "ui/settings/settings_window_controller.h"

#include <memory>
#include <optional>

#include "ui/settings/settings_window_fixture.h"

namespace nimbo {
namespace {

constexpr char kSavedNote[] = "Nimbo stays in the menu bar. Settings are saved as you change them.";
constexpr char kApprovalNote[] = "Approval needed in System Settings → General → Login Items. Click above to open it.";

class SettingsWindowControllerTest : public SettingsWindowTest {
 protected:
  [[nodiscard]] std::vector<bool> pagesVisible() const {
    std::vector<bool> visible;
    for (const auto& page : window.content().pages) visible.push_back(page.visible);
    return visible;
  }
};

// Pages and the window.

TEST_F(SettingsWindowControllerTest, OpensOnTheFirstOfFourPages) {
  EXPECT_TRUE(window.visible());
  EXPECT_EQ(window.shows(), 1);
  EXPECT_EQ(window.content().tabs.selected, kGeneralPage);
  EXPECT_EQ(pagesVisible(), (std::vector{true, false, false, false}));
}

TEST_F(SettingsWindowControllerTest, TabShowsItsPageAndHidesTheOthers) {
  for (const std::size_t tab : {kAwakePage, kMonitorsPage, kUsagePage, kGeneralPage}) {
    ASSERT_TRUE(window.selectTab(tab));
    std::vector<bool> expected(4, false);
    expected[tab] = true;
    EXPECT_EQ(pagesVisible(), expected);
    EXPECT_EQ(window.content().tabs.selected, tab);
  }
  EXPECT_EQ(takeChanges(), std::vector<Change>{});
}

TEST_F(SettingsWindowControllerTest, TabThatIsNotThereIsIgnored) {
  controller.handle(chosen("tabs", kUsagePage));
  controller.handle(chosen("tabs", 4));
  EXPECT_EQ(pagesVisible(), (std::vector{false, false, true, false}));
}

TEST_F(SettingsWindowControllerTest, ReopenedWindowKeepsItsPageUnlessAnotherIsAskedFor) {
  ASSERT_TRUE(window.selectTab(kUsagePage));
  window.close();
  controller.show();
  EXPECT_TRUE(window.visible());
  EXPECT_EQ(window.content().tabs.selected, kUsagePage);
  controller.show(SettingsTab::awake);
  EXPECT_EQ(window.content().tabs.selected, kAwakePage);
}

TEST_F(SettingsWindowControllerTest, OpensWithWhatWasStoredMeanwhile) {
  window.close();
  settings.setMonitorCpu(true);
  EXPECT_FALSE(check("cpu").on);
  controller.show();
  EXPECT_TRUE(check("cpu").on);
}

TEST_F(SettingsWindowControllerTest, BecomingKeyShowsWhatWasStoredMeanwhile) {
  settings.setAwakeBatteryFloor(50);
  settings.setMenuRotation(true);
  EXPECT_EQ(chosenItem("battery"), "20%");
  ASSERT_TRUE(window.becomeKey());
  EXPECT_EQ(chosenItem("battery"), "50%");
  EXPECT_TRUE(check("menuRotation").on);
}

TEST_F(SettingsWindowControllerTest, EveryActionShowsWhatElseWasStoredMeanwhile) {
  settings.setMonitorCpu(true);
  click("codex");
  EXPECT_TRUE(check("cpu").on);
  settings.setMonitorCpu(false);
  choose("interval", 0);
  EXPECT_FALSE(check("cpu").on);
  settings.setMonitorCpu(true);
  press("checkUpdates");
  EXPECT_TRUE(check("cpu").on);
}

TEST_F(SettingsWindowControllerTest, ChangesFromElsewhereReachAnOpenWindowOnly) {
  settings.setMonitorCpu(true);
  controller.syncIfVisible();
  EXPECT_TRUE(check("cpu").on);
  window.close();
  const int renders = window.renders();
  settings.setMonitorCpu(false);
  controller.syncIfVisible();
  EXPECT_EQ(window.renders(), renders);
}

TEST_F(SettingsWindowControllerTest, OwnerIsToldAfterTheSettingIsWrittenAndBeforeItIsShown) {
  bool stored = false;
  bool shown = true;
  onChange = [&](const Change&) {
    stored = settings.monitorCpu();
    shown = check("cpu").on;
  };
  click("cpu");
  EXPECT_TRUE(stored);
  EXPECT_FALSE(shown);
}

TEST_F(SettingsWindowControllerTest, WhatTheOwnerPutsBackIsShownAtOnce) {
  onChange = [this](const Change& change) {
    if (change.kind == Kind::display) settings.setAwakeDisplayOn(false);
  };
  click("display");
  EXPECT_FALSE(check("display").on);
}

// Launch at login.

TEST_F(SettingsWindowControllerTest, LoginAsksTheOwnerAndShowsTheNewState) {
  onLogin = [this] { login.current = LoginItemStatus::enabled; };
  EXPECT_EQ(check("login").title, "Launch at login");
  click("login");
  EXPECT_TRUE(check("login").on);
  EXPECT_EQ(takeChanges(), std::vector<Change>{});
  EXPECT_EQ(takeWrittenKeys(), std::vector<std::string>{});
}

TEST_F(SettingsWindowControllerTest, RefusedLoginStaysUnticked) {
  const int renders = window.renders();
  click("login");
  EXPECT_EQ(logins, 1);
  EXPECT_FALSE(check("login").on);
  EXPECT_GT(window.renders(), renders) << "the window has to be told, since its box is ticked by now";
}

TEST_F(SettingsWindowControllerTest, EnabledLoginThatStaysEnabledStaysTicked) {
  login.current = LoginItemStatus::enabled;
  controller.syncIfVisible();
  click("login");
  EXPECT_EQ(logins, 1);
  EXPECT_TRUE(check("login").on);
}

TEST_F(SettingsWindowControllerTest, NoteAsksForApprovalOnlyWhileItIsNeeded) {
  for (const auto status : {LoginItemStatus::notRegistered, LoginItemStatus::enabled}) {
    login.current = status;
    controller.syncIfVisible();
    EXPECT_TRUE(shows(kSavedNote));
    EXPECT_FALSE(shows(kApprovalNote));
  }
  login.current = LoginItemStatus::requiresApproval;
  ASSERT_TRUE(window.becomeKey());
  EXPECT_TRUE(shows(kApprovalNote));
  EXPECT_FALSE(shows(kSavedNote));
  EXPECT_FALSE(check("login").on);
}

// Updates and the desktop fallback.

TEST_F(SettingsWindowControllerTest, UpdatesBoxOnlyAsksTheOwner) {
  EXPECT_EQ(check("updates").title, "Check for updates automatically");
  click("updates");
  EXPECT_EQ(updateToggles, 1);
  EXPECT_FALSE(check("updates").on);
  EXPECT_EQ(takeChanges(), std::vector<Change>{});
  EXPECT_EQ(takeWrittenKeys(), std::vector<std::string>{});
}

TEST_F(SettingsWindowControllerTest, UpdatesBoxShowsWhatTheOwnerSays) {
  automaticUpdates = true;
  click("updates");
  EXPECT_TRUE(check("updates").on);
  automaticUpdates = false;
  controller.syncIfVisible();
  EXPECT_FALSE(check("updates").on);
}

TEST_F(SettingsWindowControllerTest, UpdatesBoxOfABuildWithoutAFeedIsDisabledAndSaysWhy) {
  automaticUpdates.reset();
  controller.syncIfVisible();
  EXPECT_FALSE(check("updates").on);
  EXPECT_FALSE(check("updates").enabled);
  EXPECT_EQ(check("updates").toolTip, "This build has no update feed.");
  EXPECT_TRUE(shows("This build has no update feed."));
  automaticUpdates = true;
  controller.syncIfVisible();
  EXPECT_TRUE(check("updates").enabled);
  EXPECT_FALSE(shows("This build has no update feed."));
}

TEST_F(SettingsWindowControllerTest, ButtonsAskTheOwnerOnce) {
  press("checkUpdates");
  EXPECT_EQ(updateChecks, 1);
  EXPECT_EQ(claudeDesktopRequests, 0);
  press("enableClaudeDesktop");
  EXPECT_EQ(updateChecks, 1);
  EXPECT_EQ(claudeDesktopRequests, 1);
  EXPECT_EQ(takeChanges(), std::vector<Change>{});
}

// The widgets' trouble.

TEST_F(SettingsWindowControllerTest, WidgetMessageIsThereOnlyWhileThereIsOne) {
  const auto without = window.content();
  widgetMessage = "Widget sharing unavailable.";
  controller.syncIfVisible();
  EXPECT_TRUE(shows("Widget sharing unavailable."));
  widgetMessage.reset();
  controller.syncIfVisible();
  EXPECT_EQ(window.content(), without);
}

// Without a display.

TEST_F(SettingsWindowControllerTest, WindowIsMadeWhenItIsFirstOpened) {
  int windows = 0;
  SettingsWindowController::Callbacks counting;
  counting.automaticUpdates = [] { return false; };
  counting.manualSleepApplies = [] { return true; };
  counting.widgetMessage = [] { return std::nullopt; };
  counting.makeWindow = [&]() -> std::unique_ptr<SettingsWindow> {
    ++windows;
    return std::make_unique<FakeSettingsWindow>();
  };
  SettingsWindowController other({settings, bundle, login, macWording()}, counting);
  other.syncIfVisible();
  EXPECT_EQ(windows, 0);
  other.show();
  other.show();
  EXPECT_EQ(windows, 1);
}

TEST_F(SettingsWindowControllerTest, WindowThatCannotBeShownCostsNothingLater) {
  window.close();
  window.canBeShown = false;
  controller.show();
  EXPECT_FALSE(window.visible());
  const int renders = window.renders();
  controller.syncIfVisible();
  EXPECT_EQ(window.renders(), renders);
}

}  // namespace
}  // namespace nimbo
