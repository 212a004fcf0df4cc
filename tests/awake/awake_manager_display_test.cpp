// SPDX-License-Identifier: MIT
#include "awake/awake_fixture.h"

namespace nimbo {
namespace {

constexpr const char* kRefused = "macOS couldn’t keep your Mac awake (error 5). Please try again.";
constexpr const char* kNotOff = "macOS couldn’t turn the display off. Your Mac is still awake.";

class AwakeManagerDisplayTest : public AwakeManagerTest {};

TEST_F(AwakeManagerDisplayTest, ChoiceWhileIdleIsAcceptedAndChangesNothing) {
  EXPECT_TRUE(manager.setKeepDisplayOn(true));
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(client.calls, Log{});
  EXPECT_EQ(told, Log{});
}

TEST_F(AwakeManagerDisplayTest, ChoiceComesAndGoesWithinASession) {
  start(at(14, 0));
  EXPECT_TRUE(manager.setKeepDisplayOn(true));
  EXPECT_TRUE(manager.keepsDisplayOn());
  EXPECT_TRUE(manager.setKeepDisplayOn(false));
  EXPECT_FALSE(manager.keepsDisplayOn());
  EXPECT_TRUE(manager.isActive());
  EXPECT_EQ(manager.endsAt(), at(14, 0));
  EXPECT_EQ(told, (Log{"", "", ""}));
}

TEST_F(AwakeManagerDisplayTest, RefusedChoiceIsToldAndTheSessionGoesOn) {
  start(at(14, 0));
  client.refuse(kPreventDisplaySleep, 5);
  EXPECT_FALSE(manager.setKeepDisplayOn(true));
  EXPECT_TRUE(manager.isActive());
  EXPECT_FALSE(manager.keepsDisplayOn());
  EXPECT_EQ(timerEnd(), at(14, 0));
  EXPECT_EQ(told, (Log{"", kRefused}));
}

TEST_F(AwakeManagerDisplayTest, ChoiceIsKeptForLaterUnlessItIsRefused) {
  start();
  client.refuse("PreventUserIdleDisplaySleep", 5);
  manager.keepDisplayOn(true);
  EXPECT_FALSE(settings.awakeDisplayOn());
  client.grant("PreventUserIdleDisplaySleep");
  manager.keepDisplayOn(true);
  EXPECT_TRUE(settings.awakeDisplayOn());
}

TEST_F(AwakeManagerDisplayTest, AcceptedChoiceClearsAnEarlierFailure) {
  start();
  client.refuse(kPreventDisplaySleep, 5);
  ASSERT_FALSE(manager.setKeepDisplayOn(true));
  client.grant(kPreventDisplaySleep);
  EXPECT_TRUE(manager.setKeepDisplayOn(true));
  EXPECT_EQ(manager.message(), "");
}

TEST_F(AwakeManagerDisplayTest, TurningTheDisplayOffAsksTheSystemAndKeepsTheSession) {
  start();
  manager.turnDisplayOff();
  EXPECT_EQ(display.pending(), 1U);
  display.carryOut();
  EXPECT_TRUE(display.asleep);
  EXPECT_TRUE(manager.isActive());
  EXPECT_EQ(told, Log{""});
}

TEST_F(AwakeManagerDisplayTest, DisplayThatIsKeptOnIsNotTurnedOff) {
  start({}, true);
  manager.turnDisplayOff();
  EXPECT_EQ(display.requests, 0);
  EXPECT_EQ(told, Log{""});
}

TEST_F(AwakeManagerDisplayTest, DisplayIsNotTurnedOffWithoutASession) {
  manager.turnDisplayOff();
  EXPECT_EQ(display.requests, 0);
  EXPECT_EQ(told, Log{});
}

TEST_F(AwakeManagerDisplayTest, SessionWhoseEndHasPassedEndsInsteadOfTurningTheDisplayOff) {
  start(at(14, 0));
  clock.setNow(at(14, 0));  // the timer has not come round yet
  manager.turnDisplayOff();
  EXPECT_EQ(display.requests, 0);
  EXPECT_EQ(told, (Log{"", "Timer finished. Normal sleep is allowed."}));
}

TEST_F(AwakeManagerDisplayTest, DesktopThatRefusesIsToldAndTheSessionGoesOn) {
  start();
  manager.turnDisplayOff();
  display.fail();
  EXPECT_EQ(told, (Log{"", kNotOff}));
  EXPECT_TRUE(manager.isActive());
  EXPECT_EQ(display.pending(), 0U);
}

TEST_F(AwakeManagerDisplayTest, DesktopThatCannotBeAskedIsToldInItsOwnWords) {
  display.nothingToAsk = DisplayPowerError{"There is no display here."};
  start();
  manager.turnDisplayOff();
  EXPECT_EQ(told, (Log{"", "There is no display here."}));
  EXPECT_TRUE(manager.isActive());
}

TEST_F(AwakeManagerDisplayTest, RequestIsTakenBackWhenTheSessionEnds) {
  start();
  manager.turnDisplayOff();
  manager.stopByUser();
  EXPECT_EQ(display.pending(), 0U);
  display.fail();
  EXPECT_EQ(manager.message(), "Session ended. Normal sleep is allowed.");
}

TEST_F(AwakeManagerDisplayTest, RequestIsTakenBackWhenTheDisplayIsToStayOn) {
  start();
  manager.turnDisplayOff();
  ASSERT_TRUE(manager.setKeepDisplayOn(true));
  EXPECT_EQ(display.pending(), 0U);

  ASSERT_TRUE(manager.setKeepDisplayOn(false));
  manager.turnDisplayOff();
  ASSERT_TRUE(start({}, true));
  EXPECT_EQ(display.pending(), 0U);
}

TEST_F(AwakeManagerDisplayTest, RequestOutlivesAStartThatLetsTheDisplaySleep) {
  start();
  manager.turnDisplayOff();
  ASSERT_TRUE(start(at(14, 0)));
  EXPECT_EQ(display.pending(), 1U);
}

TEST_F(AwakeManagerDisplayTest, SecondRequestReplacesTheFirst) {
  start();
  manager.turnDisplayOff();
  manager.turnDisplayOff();
  EXPECT_EQ(display.requests, 2);
  EXPECT_EQ(display.pending(), 1U);
}

}  // namespace
}  // namespace nimbo
