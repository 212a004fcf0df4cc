// SPDX-License-Identifier: MIT
// The settings window as the application controller opens it, and what becomes of a changed setting.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "app/app_delegate_fixture.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

class AppDelegateSettingsTest : public AppDelegateTest {
 protected:
  AppDelegateSettingsTest() { platform.bundle.appGroup = "group"; }

  void openSettings() {
    launch();
    delegate->openSettings();
    ASSERT_NE(settingsWindow(), nullptr);
  }
  FakeSettingsWindow* settingsWindow() const {
    return interface.settingsWindows().empty() ? nullptr : interface.settingsWindows().back();
  }
  void showPage(SettingsTab page) { ASSERT_TRUE(settingsWindow()->selectTab(static_cast<std::size_t>(page))); }
  bool isOn(const std::string& identifier) const {
    const auto* const box = settingsWindow()->find<CheckBoxContent>(identifier);
    return box != nullptr && box->on;
  }
  std::shared_ptr<FakeAlert> alert() const {
    const auto open = interface.openAlerts();
    return open.empty() ? nullptr : open.back();
  }
  std::chrono::milliseconds tickInterval() const { return platform.loop.repeatingTimers().front().interval; }
};

TEST_F(AppDelegateSettingsTest, WindowIsMadeOnceAndKept) {
  openSettings();
  EXPECT_TRUE(settingsWindow()->visible());
  settingsWindow()->close();
  delegate->openSettings();
  EXPECT_EQ(interface.settingsWindows().size(), 1U);
  EXPECT_TRUE(settingsWindow()->visible());
}

TEST_F(AppDelegateSettingsTest, OpeningItClosesTheDashboard) {
  launch();
  clickItem("nimbo-memory");
  window()->act(pressed("settings"));
  EXPECT_FALSE(dashboardVisible());
  EXPECT_TRUE(settingsWindow()->visible());
  EXPECT_EQ(settingsWindow()->content().tabs.selected, 0U);
}

TEST_F(AppDelegateSettingsTest, ConfiguringSubscriptionsOpensTheirPage) {
  launch();
  clickItem("nimbo-ai");
  window()->act(pressed("configure"));
  EXPECT_TRUE(settingsWindow()->visible());
  EXPECT_EQ(settingsWindow()->content().tabs.selected, 2U);
}

TEST_F(AppDelegateSettingsTest, MainMenuOpensItAndQuits) {
  openSettings();
  settingsWindow()->close();
  EXPECT_TRUE(interface.choose(MenuRole::openSettings));
  EXPECT_TRUE(settingsWindow()->visible());
  EXPECT_FALSE(platform.loop.hasQuit());
  EXPECT_TRUE(interface.choose(MenuRole::quit));
  EXPECT_TRUE(platform.loop.hasQuit());
}

TEST_F(AppDelegateSettingsTest, PresentationMakesTheItemsAnewAtOnce) {
  openSettings();
  ASSERT_TRUE(settingsWindow()->click("menuAwake"));
  EXPECT_EQ(platform.bar.identifiers(), (std::vector<std::string>{"nimbo-ai", "nimbo-memory", "nimbo-awake"}));
  ASSERT_TRUE(settingsWindow()->click("compact"));
  EXPECT_EQ(platform.bar.identifiers().size(), 1U);
}

TEST_F(AppDelegateSettingsTest, ItemsShowWhatTheyAreToPresentAtOnce) {
  settings.setUsageEnabled(UsageProvider::codex, true);
  settings.setUsageEnabled(UsageProvider::claude, true);
  openSettings();
  const auto item = platform.bar.item("nimbo-ai");
  const std::string before = item->content.toolTip;
  ASSERT_TRUE(settingsWindow()->choose("providers", 1));
  EXPECT_NE(item->content.toolTip, before);
  EXPECT_EQ(platform.bar.item("nimbo-ai"), item);
}

TEST_F(AppDelegateSettingsTest, AppearanceRedrawsTheItemsAtOnce) {
  openSettings();
  const auto item = platform.bar.item("nimbo-memory");
  const TemplateImage before = item->content.image;
  ASSERT_TRUE(settingsWindow()->choose("memoryStyle", 1));
  EXPECT_NE(item->content.image, before);
}

TEST_F(AppDelegateSettingsTest, MonitorSwitchedOffLosesItsFiguresAndTheWidgetsLearnIt) {
  settings.setMonitorTemperature(true);
  openSettings();
  ASSERT_TRUE(platform.temperatures.runOne());
  platform.loop.runPosted();
  finishWrites();
  platform.widgets.events.clear();
  showPage(SettingsTab::monitors);
  ASSERT_TRUE(settingsWindow()->click("temperature"));
  finishWrites();
  const auto& file = platform.widgets.files.begin()->second;
  EXPECT_NE(file.find(R"("temperatureEnabled":false)"), std::string::npos) << file;
  EXPECT_EQ(file.find(R"("temperature":)"), std::string::npos) << file;
}

TEST_F(AppDelegateSettingsTest, TemperatureReadBeforeAChangeOfMonitorsIsDropped) {
  settings.setMonitorTemperature(true);
  openSettings();
  showPage(SettingsTab::monitors);
  ASSERT_TRUE(settingsWindow()->click("cpu"));  // while the first read is still out
  ASSERT_TRUE(platform.temperatures.runOne());
  platform.loop.runPosted();
  finishWrites();
  EXPECT_EQ(platform.widgets.files.begin()->second.find(R"("temperature":)"), std::string::npos);
}

TEST_F(AppDelegateSettingsTest, IntervalRestartsTheTimer) {
  openSettings();
  EXPECT_EQ(tickInterval(), 5s);
  showPage(SettingsTab::monitors);
  const auto item = platform.bar.item("nimbo-memory");
  const std::string before = item->content.toolTip;
  platform.host->counts = MemoryCounts{.wired = kGibibyte * 4, .active = kGibibyte * 8};
  ASSERT_TRUE(settingsWindow()->choose("interval", 3));
  EXPECT_EQ(tickInterval(), 30s);
  EXPECT_NE(item->content.toolTip, before) << "one sample is taken at once";
}

TEST_F(AppDelegateSettingsTest, SubscriptionSwitchedOnIsReadAsIfAskedForByHand) {
  openSettings();
  showPage(SettingsTab::usage);
  ASSERT_TRUE(settingsWindow()->click("codex"));
  EXPECT_EQ(platform.background.waiting(), 1U);
  EXPECT_NE(platform.bar.item("nimbo-ai")->content.toolTip.find("Refreshing…"), std::string::npos);
  const auto timers = platform.loop.repeatingTimers();
  EXPECT_TRUE(std::ranges::any_of(timers, [](const auto& timer) { return timer.interval == 60s; }))
      << "the user may be asked";
  ASSERT_TRUE(settingsWindow()->click("codex"));
  EXPECT_EQ(platform.bar.item("nimbo-ai")->content.toolTip, "AI usage · enable a subscription in Settings");
}

TEST_F(AppDelegateSettingsTest, BatteryRuleEndsARunningSession) {
  openSettings();
  platform.batteries.onBattery(40);
  toggleAwake();
  ASSERT_TRUE(delegate->awake().isActive());
  showPage(SettingsTab::awake);
  ASSERT_TRUE(settingsWindow()->choose("battery", 4));  // at 50 %
  EXPECT_FALSE(delegate->awake().isActive());
}

TEST_F(AppDelegateSettingsTest, DisplayChoiceReachesARunningSession) {
  openSettings();
  toggleAwake();
  showPage(SettingsTab::awake);
  ASSERT_TRUE(settingsWindow()->click("display"));
  EXPECT_TRUE(settings.awakeDisplayOn());
  EXPECT_EQ(platform.assertions.held().size(), 2U);
}

TEST_F(AppDelegateSettingsTest, ChoiceMadeOnTheDashboardShowsInTheOpenWindow) {
  launch();
  clickItem("nimbo-ai");
  delegate->openSettings();
  EXPECT_FALSE(isOn("display"));
  window()->act(switched("display", true));
  EXPECT_TRUE(isOn("display"));
}

TEST_F(AppDelegateSettingsTest, LoginIsRegisteredAndUnregistered) {
  openSettings();
  ASSERT_TRUE(settingsWindow()->click("login"));
  EXPECT_EQ(platform.login.current, LoginItemStatus::enabled);
  EXPECT_TRUE(isOn("login"));
  ASSERT_TRUE(settingsWindow()->click("login"));
  EXPECT_EQ(platform.login.current, LoginItemStatus::notRegistered);
  EXPECT_FALSE(isOn("login"));
}

TEST_F(AppDelegateSettingsTest, LoginThatWaitsForApprovalOpensTheSystemsPage) {
  platform.login.current = LoginItemStatus::requiresApproval;
  openSettings();
  ASSERT_TRUE(settingsWindow()->click("login"));
  EXPECT_EQ(platform.login.settingsOpened, 1);
  EXPECT_EQ(platform.login.timesRegistered + platform.login.timesUnregistered, 0);
}

TEST_F(AppDelegateSettingsTest, RefusedLoginIsToldWithTheSystemsReason) {
  platform.login.refusal = "Read-only file system";
  openSettings();
  ASSERT_TRUE(settingsWindow()->click("login"));
  EXPECT_FALSE(isOn("login"));
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->content().title, "Couldn’t update launch at login");
  EXPECT_EQ(alert()->content().text,
            "Keep Nimbo in Applications before enabling launch at login. Read-only file system");
  EXPECT_TRUE(alert()->answer(0));
  EXPECT_EQ(alert(), nullptr);
}

TEST_F(AppDelegateSettingsTest, RefusedEndOfLoginIsToldAndTheBoxStaysTicked) {
  platform.login.current = LoginItemStatus::enabled;
  platform.login.refusal = "Read-only file system";
  openSettings();
  ASSERT_TRUE(isOn("login"));
  ASSERT_TRUE(settingsWindow()->click("login"));
  EXPECT_EQ(platform.login.timesUnregistered, 1);
  EXPECT_TRUE(isOn("login"));
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->content().title, "Couldn’t update launch at login");
}

TEST_F(AppDelegateSettingsTest, DesktopFallbackAsksForTrustBeforeItOpensTheApplication) {
  openSettings();
  showPage(SettingsTab::usage);
  ASSERT_TRUE(settingsWindow()->press("enableClaudeDesktop"));
  ASSERT_TRUE(settingsWindow()->press("enableClaudeDesktop"));
  EXPECT_TRUE(platform.desktop.applicationsOpened.empty());
  EXPECT_TRUE(platform.screens->log.empty()) << "the main thread does not wait";
  finishWrites();
  EXPECT_EQ(platform.screens->log, std::vector<std::string>{"request trust"});
  platform.loop.runPosted();
  EXPECT_EQ(platform.desktop.applicationsOpened, (std::vector<std::string>{"com.anthropic.claudefordesktop"}));
  EXPECT_EQ(alert(), nullptr);
}

TEST_F(AppDelegateSettingsTest, DesktopFallbackDoesNotWaitForAReadThatIsUnderWay) {
  settings.setUsageEnabled(UsageProvider::claude, true);
  openSettings();
  showPage(SettingsTab::usage);
  ASSERT_TRUE(settingsWindow()->press("enableClaudeDesktop"));
  finishWrites();
  EXPECT_EQ(platform.desktop.applicationsOpened, (std::vector<std::string>{"com.anthropic.claudefordesktop"}));
  ASSERT_TRUE(settingsWindow()->press("enableClaudeDesktop"));
  finishWrites();
  EXPECT_EQ(platform.desktop.applicationsOpened.size(), 2U);
}

TEST_F(AppDelegateSettingsTest, MissingDesktopApplicationIsTold) {
  platform.desktop.installed.clear();
  openSettings();
  showPage(SettingsTab::usage);
  ASSERT_TRUE(settingsWindow()->press("enableClaudeDesktop"));
  finishWrites();
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->content().title, "Claude Desktop couldn’t be opened");
}

TEST_F(AppDelegateSettingsTest, CheckWithoutAFeedSaysSo) {
  openSettings();
  ASSERT_TRUE(settingsWindow()->press("checkUpdates"));
  ASSERT_NE(alert(), nullptr);
  EXPECT_EQ(alert()->content().title, "Updates aren’t connected yet");
  EXPECT_TRUE(platform.updateFeeds.empty());
}

TEST_F(AppDelegateSettingsTest, UpdaterOfAConfiguredBuildStartsAtLaunchAndFollowsTheCheckBox) {
  platform.bundle.feedUrl = "https://updates.example/feed.xml";
  platform.bundle.publicKey = "key";
  openSettings();
  ASSERT_EQ(platform.updateFeeds.size(), 1U);
  ASSERT_TRUE(settingsWindow()->click("updates"));
  EXPECT_TRUE(platform.updater->automatic);
  EXPECT_TRUE(isOn("updates"));
  ASSERT_TRUE(settingsWindow()->press("checkUpdates"));
  EXPECT_EQ(platform.updater->checks, 1);
}

TEST_F(AppDelegateSettingsTest, FailedWidgetFileIsToldInTheWindow) {
  platform.widgets.failsToWrite = true;
  openSettings();
  showPage(SettingsTab::monitors);
  ASSERT_TRUE(settingsWindow()->click("cpu"));
  finishWrites();
  bool told = false;
  for (const auto& control : settingsWindow()->content().pages.front().controls) {
    const auto* const label = std::get_if<LabelContent>(&control);
    told = told || (label != nullptr && label->text.starts_with("Widget sharing unavailable."));
  }
  EXPECT_TRUE(told);
}

class AppDelegateLinksTest : public AppDelegateTest {};

TEST_F(AppDelegateLinksTest, LinkOpensItsTabUnderTheFirstItem) {
  launch();
  delegate->open({"nimbo://awake"});
  ASSERT_TRUE(dashboardVisible());
  EXPECT_EQ(content().tabs.selected, 2U);
  EXPECT_EQ(settings.lastDashboardTab(), DashboardTab::awake);
}

TEST_F(AppDelegateLinksTest, LinkMovesTheOpenDashboardToItsTab) {
  launch();
  clickItem("nimbo-memory");
  delegate->open({"nimbo://usage"});
  ASSERT_TRUE(dashboardVisible());
  EXPECT_EQ(content().tabs.selected, 0U);
}

TEST_F(AppDelegateLinksTest, LastLinkThatLeadsSomewhereCounts) {
  launch();
  delegate->open({"nimbo://usage", "nimbo://awake", "nimbo://memory", "https://example.com"});
  EXPECT_EQ(content().tabs.selected, 2U);
}

TEST_F(AppDelegateLinksTest, LinksThatLeadNowhereOpenNothing) {
  launch();
  delegate->open({"nimbo://memory", "nimbo://usage?x=1"});
  EXPECT_EQ(window(), nullptr);
}

TEST_F(AppDelegateLinksTest, LinkBeforeLaunchOpensOnceRightAfterIt) {
  delegate->open({"nimbo://usage"});
  delegate->open({"nimbo://awake"});
  EXPECT_EQ(window(), nullptr);
  launch();
  EXPECT_EQ(window(), nullptr) << "the loop has not turned yet";
  platform.loop.runPosted();
  ASSERT_TRUE(dashboardVisible());
  EXPECT_EQ(window()->shows(), 1);
  EXPECT_EQ(content().tabs.selected, 2U);
  clickItem("nimbo-ai");
  platform.loop.runPosted();
  EXPECT_FALSE(dashboardVisible());
  delegate->open({"nimbo://memory"});
  EXPECT_EQ(content().tabs.selected, 2U);
}

class AppDelegateWidgetsTest : public AppDelegateTest {
 protected:
  std::size_t writes() const {
    return static_cast<std::size_t>(std::ranges::count_if(
        platform.widgets.events, [](const std::string& event) { return event.starts_with("write "); }));
  }
  void acceptTemperature() {
    ASSERT_TRUE(platform.temperatures.runOne());
    platform.loop.runPosted();
    finishWrites();
  }
};

TEST_F(AppDelegateWidgetsTest, FirstTemperatureIsWrittenAtOnceAndTheNextOnesEveryFiveMinutes) {
  settings.setMonitorTemperature(true);
  platform.bundle.appGroup = "group";
  launch();
  finishWrites();
  EXPECT_EQ(writes(), 1U) << "the first tick";
  acceptTemperature();
  EXPECT_EQ(writes(), 2U) << "the first temperature";
  platform.loop.advance(5s);
  acceptTemperature();
  EXPECT_EQ(writes(), 2U);
  platform.loop.advance(296s);
  finishWrites();
  EXPECT_EQ(writes(), 3U);
}

TEST_F(AppDelegateWidgetsTest, NothingIsWrittenForAUserWithNothingToShow) {
  platform.bundle.appGroup = "group";
  launch();
  platform.loop.advance(1h);
  finishWrites();
  EXPECT_TRUE(platform.widgets.events.empty());
}

TEST_F(AppDelegateWidgetsTest, AllowancesReachTheWidgetsWhenTheyHaveBeenRead) {
  settings.setUsageEnabled(UsageProvider::codex, true);
  platform.bundle.appGroup = "group";
  platform.secretFiles.texts["/home/u/.codex/auth.json"] = R"({"tokens":{"access_token":"secret"}})";
  launch();
  finishWrites();
  ASSERT_TRUE(platform.background.runOne());
  platform.loop.runPosted();
  ASSERT_TRUE(platform.network.answer(200, R"({"rate_limit":{"primary_window":{"used_percent":25}}})"));
  platform.loop.runPosted();
  finishWrites();
  const auto& file = platform.widgets.files.begin()->second;
  EXPECT_NE(file.find(R"("usedPercent":25)"), std::string::npos) << file;
  EXPECT_EQ(file.find("secret"), std::string::npos);
}

TEST_F(AppDelegateWidgetsTest, ProgramWithoutWidgetsNeverWrites) {
  settings.setMonitorTemperature(true);
  platform.bundle.appGroup = "group";
  delegate = std::make_unique<AppDelegate>(platform, interface, settings, AppDelegate::Audience::none);
  launch();
  acceptTemperature();
  EXPECT_TRUE(platform.widgets.events.empty());
}

}  // namespace
}  // namespace nimbo
