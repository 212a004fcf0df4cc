// SPDX-License-Identifier: MIT
#include "ui/dashboard/awake_view.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "settings/setting_keys.h"
#include "support/control_events.h"
#include "ui/dashboard/dashboard_world.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;
using Time = AwakeManager::Time;
using Titles = std::vector<std::string>;

constexpr std::size_t kOneHourItem = 2;
constexpr std::size_t kCustomItem = 5;
constexpr std::size_t kDateItem = 6;

class AwakeViewTest : public testing::Test {
 protected:
  AwakeContent content() const { return view.content(); }
  Time now() const { return world.clock.now(); }

  /// The end of the session that the page starts; absent when none runs or it has no end.
  std::optional<Time> endOfStarted() {
    view.handle(pressed("start"));
    const auto end = world.manager.endsAt();
    world.manager.stopByUser();
    return end;
  }

  void startSession(std::optional<Time> end, bool display = false) {
    ASSERT_TRUE(world.manager.start(end, display, now()));
  }

  DashboardWorld world;
  int changes = 0;
  std::function<void()> changed = [this] { ++changes; };
  AwakeView view{world.sources(), [this] { changed(); }};
};

TEST_F(AwakeViewTest, OffersTheSpecifiedLengthsAndFloors) {
  EXPECT_EQ(content().duration.items, (Titles{"Until I stop it", "30 minutes", "1 hour", "2 hours", "4 hours",
                                              "Custom minutes…", "Until a date / time…"}));
  EXPECT_EQ(content().battery.items, (Titles{"Never", "10%", "20%", "30%", "50%"}));
}

TEST_F(AwakeViewTest, ShowsTheDefaultsOfANewUser) {
  EXPECT_EQ(content().duration.selected, 0U);
  EXPECT_FALSE(content().display.on);
  EXPECT_FALSE(content().plugged.on);
  EXPECT_EQ(content().battery.items[content().battery.selected], "20%");
  EXPECT_FALSE(content().minutes.visible);
  EXPECT_FALSE(content().date.visible);
}

TEST_F(AwakeViewTest, StoredChoicesAreShown) {
  world.settings.setAwakeDuration(-1);
  world.settings.setAwakeCustomMinutes(45);
  world.settings.setAwakeDisplayOn(true);
  world.settings.setAwakeOnlyOnPower(true);
  world.settings.setAwakeBatteryFloor(50);
  view.reset();
  EXPECT_EQ(content().duration.selected, kCustomItem);
  EXPECT_EQ(content().minutes.text, "45");
  EXPECT_TRUE(content().minutes.visible);
  EXPECT_TRUE(content().display.on);
  EXPECT_TRUE(content().plugged.on);
  EXPECT_EQ(content().battery.items[content().battery.selected], "50%");
}

TEST_F(AwakeViewTest, StoredCustomLengthIsBroughtIntoItsRange) {
  for (const auto& [stored, shown] : {std::pair<int, const char*>{0, "1"}, {20000, "10080"}, {-7, "1"}}) {
    world.settings.setAwakeCustomMinutes(stored);
    view.reset();
    EXPECT_EQ(content().minutes.text, shown) << stored;
  }
}

TEST_F(AwakeViewTest, UnknownStoredValuesShowTheDefaults) {
  world.defaults.set(setting_keys::kAwakeDuration, 777);
  world.defaults.set(setting_keys::kAwakeBatteryFloor, 33);
  view.reset();
  EXPECT_EQ(content().duration.selected, 0U);
  EXPECT_EQ(content().battery.items[content().battery.selected], "20%");
}

TEST_F(AwakeViewTest, IdlePageTellsTheManagersMessageAndOffersToStart) {
  EXPECT_EQ(content().state.text, "Ready for your next run");
  EXPECT_EQ(content().detail.text, "Keep AI jobs running while your display rests.");
  EXPECT_EQ(content().start.title, "Keep Mac awake");
  EXPECT_TRUE(content().duration.enabled);
  EXPECT_FALSE(content().off.enabled);
  EXPECT_FALSE(content().extend.enabled);
}

TEST_F(AwakeViewTest, RunningSessionWithoutEndCannotBeExtended) {
  startSession(std::nullopt);
  EXPECT_EQ(content().state.text, "Your Mac is staying awake");
  EXPECT_EQ(content().detail.text, "Until you stop it. Display may sleep.");
  EXPECT_EQ(content().start.title, "Stop keeping awake");
  EXPECT_TRUE(content().off.enabled);
  EXPECT_FALSE(content().extend.enabled);
}

TEST_F(AwakeViewTest, RunningSessionNamesItsEndAndWhatTheDisplayDoes) {
  startSession(Time(std::chrono::seconds(1'795'271'400)), true);
  EXPECT_EQ(content().detail.text, "Until 2026-11-21 14:30. Display stays on.");
  EXPECT_TRUE(content().extend.enabled);
}

TEST_F(AwakeViewTest, StatesDifferInColour) {
  const auto idle = content().state.style.color;
  startSession(std::nullopt);
  EXPECT_NE(content().state.style.color, idle);
}

TEST_F(AwakeViewTest, LengthIsLockedWhileASessionRuns) {
  startSession(std::nullopt);
  EXPECT_FALSE(content().duration.enabled);
  EXPECT_FALSE(content().minutes.enabled);
  EXPECT_FALSE(content().date.enabled);
  EXPECT_TRUE(content().display.enabled);
  EXPECT_TRUE(content().plugged.enabled);
  EXPECT_TRUE(content().battery.enabled);
}

TEST_F(AwakeViewTest, SwitchShowsWhatIsHeldWhileRunningAndTheStoredChoiceOtherwise) {
  world.settings.setAwakeDisplayOn(true);
  startSession(std::nullopt, false);
  EXPECT_FALSE(content().display.on);
  world.manager.stopByUser();
  EXPECT_TRUE(content().display.on);
}

TEST_F(AwakeViewTest, ReopeningDuringASessionKeepsTheHeldDisplayState) {
  startSession(std::nullopt, true);
  view.reset();
  EXPECT_TRUE(content().display.on);
}

TEST_F(AwakeViewTest, ChosenLengthIsStoredAndShowsItsField) {
  view.handle(chosen("duration", kCustomItem));
  EXPECT_EQ(world.settings.awakeDuration(), -1);
  EXPECT_TRUE(content().minutes.visible);
  EXPECT_FALSE(content().date.visible);
  view.handle(chosen("duration", kDateItem));
  EXPECT_EQ(world.settings.awakeDuration(), -2);
  EXPECT_FALSE(content().minutes.visible);
  EXPECT_TRUE(content().date.visible);
  view.handle(chosen("duration", kOneHourItem));
  EXPECT_EQ(world.settings.awakeDuration(), 3600);
  EXPECT_FALSE(content().minutes.visible);
  EXPECT_FALSE(content().date.visible);
}

TEST_F(AwakeViewTest, StartWithoutEndRunsUntilStopped) {
  view.handle(pressed("start"));
  EXPECT_TRUE(world.manager.isActive());
  EXPECT_FALSE(world.manager.endsAt());
}

TEST_F(AwakeViewTest, EveryFixedLengthCountsFromNow) {
  const std::vector<std::chrono::seconds> lengths{30min, 1h, 2h, 4h};
  for (std::size_t item = 1; item <= lengths.size(); ++item) {
    view.handle(chosen("duration", item));
    EXPECT_EQ(endOfStarted(), now() + lengths[item - 1]) << item;
  }
}

TEST_F(AwakeViewTest, CustomLengthCountsFromNowAndIsStored) {
  view.handle(chosen("duration", kCustomItem));
  view.handle(typed("minutes", "90"));
  EXPECT_EQ(endOfStarted(), now() + 90min);
  EXPECT_EQ(world.settings.awakeCustomMinutes(), 90);
}

TEST_F(AwakeViewTest, BadCustomLengthStartsNothingAndSaysSo) {
  view.handle(chosen("duration", kCustomItem));
  for (const char* text : {"ten", "0", "10081", "", "  ", "1.5", "-3", "99999999999999999999", "4 5", "12a"}) {
    view.handle(typed("minutes", text));
    view.handle(pressed("start"));
    EXPECT_EQ(content().detail.text, "Enter a whole number from 1 to 10080 minutes.") << text;
  }
  EXPECT_FALSE(world.manager.isActive());
  EXPECT_EQ(world.settings.awakeCustomMinutes(), 60);
}

TEST_F(AwakeViewTest, InputErrorStaysOverTheDetailUntilTheMinutesChange) {
  view.handle(chosen("duration", kCustomItem));
  view.handle(typed("minutes", "x"));
  view.handle(pressed("start"));
  EXPECT_EQ(content().detail.text, "Enter a whole number from 1 to 10080 minutes.");
  view.handle(typed("minutes", "x1"));
  EXPECT_EQ(content().detail.text, "Keep AI jobs running while your display rests.");
}

TEST_F(AwakeViewTest, InputErrorGoesWithAnotherLengthAndWithAStart) {
  view.handle(chosen("duration", kCustomItem));
  view.handle(typed("minutes", "x"));
  view.handle(pressed("start"));
  view.handle(chosen("duration", 0));
  EXPECT_EQ(content().detail.text, "Keep AI jobs running while your display rests.");

  view.handle(chosen("duration", kCustomItem));
  view.handle(pressed("start"));
  ASSERT_EQ(content().detail.text, "Enter a whole number from 1 to 10080 minutes.");
  startSession({});  // by another control
  ASSERT_EQ(content().detail.text, "Enter a whole number from 1 to 10080 minutes.");
  view.handle(pressed("start"));
  EXPECT_NE(content().detail.text, "Enter a whole number from 1 to 10080 minutes.");
}

TEST_F(AwakeViewTest, WrongMinutesDoNotMatterToAnotherLength) {
  view.handle(typed("minutes", "x"));
  view.handle(chosen("duration", kOneHourItem));
  EXPECT_EQ(endOfStarted(), now() + 1h);
}

TEST_F(AwakeViewTest, OnlyValidMinutesAreStoredWhileTyping) {
  view.handle(typed("minutes", "12"));
  EXPECT_EQ(world.settings.awakeCustomMinutes(), 12);
  view.handle(typed("minutes", "12x"));
  EXPECT_EQ(world.settings.awakeCustomMinutes(), 12);
  EXPECT_EQ(content().minutes.text, "12x");
}

TEST_F(AwakeViewTest, PickerSuggestsAnHourFromNowOnTheMinute) {
  world.clock.setNow(Time(std::chrono::seconds(1'795'271'459)));
  const AwakeView fresh(world.sources(), [] {});
  EXPECT_EQ(fresh.content().date.date, Time(std::chrono::seconds(1'795'271'400 + 3600)));
}

TEST_F(AwakeViewTest, PickedDateIsTheEnd) {
  view.handle(chosen("duration", kDateItem));
  const Time end = now() + 49h;
  view.handle(picked("date", end));
  EXPECT_EQ(content().date.date, end);
  EXPECT_EQ(endOfStarted(), end);
}

TEST_F(AwakeViewTest, PastDateReachesTheManagerWhichRefusesIt) {
  view.handle(chosen("duration", kDateItem));
  view.handle(picked("date", now() - 1min));
  view.handle(pressed("start"));
  EXPECT_EQ(content().detail.text, "Choose an end time in the future.");
  EXPECT_EQ(content().state.text, "Ready for your next run");
}

TEST_F(AwakeViewTest, DateThatHasPassedGivesWayToANewSuggestionWhenThePageIsLoadedAgain) {
  view.handle(picked("date", now() + 2h));
  view.reset();
  EXPECT_EQ(content().date.date, now() + 2h);
  const Time picked = content().date.date;
  world.clock.advance(3h);
  view.reset();
  EXPECT_GT(content().date.date, picked);
  EXPECT_GT(content().date.date, now());
}

TEST_F(AwakeViewTest, SessionIsStoppedWhateverTheLength) {
  view.handle(chosen("duration", kCustomItem));
  view.handle(typed("minutes", "x"));
  startSession(now() + 1h);
  view.handle(pressed("start"));
  EXPECT_FALSE(world.manager.isActive());
}

TEST_F(AwakeViewTest, DisplaySwitchIsStoredBeforeItIsReported) {
  bool stored = false;
  view.onSettingsChanged = [&] { stored = world.settings.awakeDisplayOn(); };
  view.handle(switched("display", true));
  EXPECT_TRUE(stored);
}

TEST_F(AwakeViewTest, RefusedDisplaySwitchGoesBackAndThatIsAChange) {
  startSession(std::nullopt);
  world.assertions.refuse(kPreventDisplaySleep, 5);
  std::vector<bool> shown;
  changed = [&] { shown.push_back(content().display.on); };
  view.handle(switched("display", true));
  EXPECT_EQ(shown, (std::vector<bool>{true, false}));
  EXPECT_EQ(content().detail.text, "macOS couldn’t keep your Mac awake (error 5). Please try again.");
}

TEST_F(AwakeViewTest, EitherRuleIsStoredBeforeItIsReported) {
  bool onlyOnPower = false;
  int floor = -1;
  view.onSettingsChanged = [&] {
    onlyOnPower = world.settings.awakeOnlyOnPower();
    floor = world.settings.awakeBatteryFloor();
  };
  view.handle(switched("plugged", true));
  EXPECT_TRUE(onlyOnPower);
  EXPECT_EQ(floor, 20);
  view.handle(chosen("battery", 4));
  EXPECT_EQ(floor, 50);
  view.handle(chosen("battery", 0));
  EXPECT_EQ(floor, 0);
  view.handle(switched("plugged", false));
  EXPECT_FALSE(onlyOnPower);
}

TEST_F(AwakeViewTest, ButtonsReachTheSession) {
  startSession(now() + 1h);
  view.handle(pressed("displayOff"));
  view.handle(pressed("extend"));
  EXPECT_EQ(world.displayPower.requests, 1);
  EXPECT_EQ(world.manager.endsAt(), now() + 90min);
}

TEST_F(AwakeViewTest, IndicesBeyondTheListsAreClamped) {
  view.handle(chosen("duration", 99));
  EXPECT_EQ(world.settings.awakeDuration(), -2);
  view.handle(chosen("battery", 99));
  EXPECT_EQ(world.settings.awakeBatteryFloor(), 50);
}

TEST_F(AwakeViewTest, EachActionIsReportedAsOneChange) {
  view.handle(chosen("duration", 1));
  EXPECT_EQ(changes, 1);
  view.handle(typed("minutes", "7"));
  EXPECT_EQ(changes, 2);
  view.handle(picked("date", now() + 1h));
  EXPECT_EQ(changes, 3);
  view.handle(switched("plugged", true));
  EXPECT_EQ(changes, 4);
  view.handle(pressed("start"));
  EXPECT_EQ(changes, 5);
}

TEST_F(AwakeViewTest, ControlsCarryTheirHelpAndNames) {
  const auto page = content();
  EXPECT_EQ(page.minutes.placeholder, "1–10080 minutes");
  EXPECT_EQ(page.minutes.toolTip, "Custom session length in minutes (up to 7 days)");
  EXPECT_EQ(page.minutes.accessibleName, "Custom duration in minutes");
  EXPECT_EQ(page.date.accessibleName, "Session end date and time");
  EXPECT_EQ(page.durationTitle.text, "Session");
  EXPECT_EQ(page.duration.accessibleName, "Session");
  EXPECT_EQ(page.display.title, "Keep display on too");
  EXPECT_EQ(page.display.toolTip, "Off by default: the display may sleep while the Mac stays awake.");
  EXPECT_EQ(page.plugged.title, "Only while connected to power");
  EXPECT_EQ(page.batteryTitle.text, "Stop on battery at");
  EXPECT_EQ(page.battery.accessibleName, "Stop on battery at");
  EXPECT_EQ(page.off.title, "Turn display off now");
  EXPECT_EQ(page.extend.title, "+30 min");
  EXPECT_EQ(page.note.text,
            "Keep your MacBook’s lid open. Manual Sleep still applies. App-specific background limits still apply.");
}

TEST_F(AwakeViewTest, SystemWhoseLocksBindTheirOwnerMayRefuseManualSleep) {
  world.assertions.manualSleep = false;
  EXPECT_EQ(content().note.text,
            "Keep your MacBook’s lid open. Manual Sleep may be refused during a session. App-specific background "
            "limits still apply.");
}

TEST_F(AwakeViewTest, DisplayThatCannotSleepDuringASessionIsTold) {
  world.assertions.displayStaysOn = true;
  view.handle(pressed("start"));
  EXPECT_EQ(content().detail.text, "Until you stop it. The display stays on, too.");
  EXPECT_FALSE(content().display.on);
  view.handle(switched("display", true));
  EXPECT_EQ(content().detail.text, "Until you stop it. Display stays on.");
}

TEST_F(AwakeViewTest, EverythingLiesOnThePageAndNothingOverlaps) {
  for (const std::size_t item : {kCustomItem, kDateItem}) {
    view.handle(chosen("duration", item));
    const auto page = content();
    std::vector<Rect> frames{page.state.frame,         page.detail.frame,   page.start.frame,   page.extend.frame,
                             page.durationTitle.frame, page.duration.frame, page.display.frame, page.plugged.frame,
                             page.batteryTitle.frame,  page.battery.frame,  page.off.frame,     page.note.frame};
    frames.push_back(item == kCustomItem ? page.minutes.frame : page.date.frame);
    for (std::size_t one = 0; one < frames.size(); ++one) {
      const Rect& a = frames[one];
      EXPECT_TRUE(a.x >= 17 && a.x + a.width <= 323 && a.y >= 56 && a.y + a.height <= 446) << one;
      for (std::size_t other = one + 1; other < frames.size(); ++other) {
        const Rect& b = frames[other];
        const bool apart =
            a.x + a.width <= b.x || b.x + b.width <= a.x || a.y + a.height <= b.y || b.y + b.height <= a.y;
        EXPECT_TRUE(apart) << one << " and " << other;
      }
    }
  }
}

}  // namespace
}  // namespace nimbo
