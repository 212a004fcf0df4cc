// SPDX-License-Identifier: MIT
#include <utility>

#include "awake/awake_fixture.h"

namespace nimbo {
namespace {

using namespace std::chrono_literals;

constexpr const char* kConnect = "Connect the charger to keep this Mac awake.";
constexpr const char* kAtTwenty = "Session stopped: battery is at or below 20%.";

class AwakeManagerBatteryTest : public AwakeManagerTest {
 protected:
  /// As the user chooses them.
  void setRules(bool onlyOnPower, int floor) {
    editRules(onlyOnPower, floor);
    manager.rulesChanged();
  }
  /// As somebody edits them in the file.
  void editRules(bool onlyOnPower, int floor) {
    settings.setAwakeOnlyOnPower(onlyOnPower);
    settings.setAwakeBatteryFloor(floor);
  }
};

TEST_F(AwakeManagerBatteryTest, ChargeAtTheDefaultFloorRefusesToStart) {
  sources.onBattery(20);
  EXPECT_FALSE(start(at(14, 0)));
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(told, Log{kAtTwenty});
  EXPECT_EQ(client.calls, Log{});
  EXPECT_EQ(timerEnd(), std::nullopt);
}

TEST_F(AwakeManagerBatteryTest, ChargeAboveTheDefaultFloorStarts) {
  sources.onBattery(21);
  EXPECT_TRUE(start());
  EXPECT_EQ(told, Log{""});
}

TEST_F(AwakeManagerBatteryTest, RunningSessionEndsWhenTheFloorIsReached) {
  sources.onBattery(22);
  start(at(14, 0), true);
  sources.onBattery(21);
  EXPECT_TRUE(manager.isActive());
  sources.onBattery(20);
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_EQ(timerEnd(), std::nullopt);
  EXPECT_TRUE(client.held().empty());
  EXPECT_EQ(told, (Log{"", kAtTwenty}));
}

TEST_F(AwakeManagerBatteryTest, LowBatteryOnMainsRunsUntilTheChargerIsPulled) {
  sources.onMains(5);
  EXPECT_TRUE(start());
  sources.onBattery(5);
  EXPECT_EQ(manager.message(), kAtTwenty);
}

TEST_F(AwakeManagerBatteryTest, OnlyOnPowerStartsOnMainsAndEndsWithoutTheCharger) {
  setRules(true, 0);
  sources.onMains(80);
  EXPECT_TRUE(start());
  sources.onBattery(80);
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(told, (Log{"", kConnect}));
}

TEST_F(AwakeManagerBatteryTest, OnlyOnPowerRefusesToStartOnBattery) {
  setRules(true, 0);
  sources.onBattery(100);
  EXPECT_FALSE(start());
  EXPECT_EQ(told, Log{kConnect});
}

TEST_F(AwakeManagerBatteryTest, StartThatTheRulesRefuseEndsARunningSession) {
  ASSERT_TRUE(start(at(15, 0), true));
  sources.changeSilently({{FakePowerSources::battery(kBatteryPower, 10)}});
  EXPECT_FALSE(start(at(16, 0), true));
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(manager.endsAt(), std::nullopt);
  EXPECT_EQ(timerEnd(), std::nullopt);
  EXPECT_TRUE(client.held().empty());
  EXPECT_EQ(manager.message(), kAtTwenty);
}

TEST_F(AwakeManagerBatteryTest, MachineWithoutABatteryIsNeverStopped) {
  setRules(true, 50);
  sources.none();
  EXPECT_TRUE(start());
  sources.unavailable();
  EXPECT_TRUE(manager.isActive());
}

TEST_F(AwakeManagerBatteryTest, UnknownChargeDoesNotReachTheFloor) {
  sources.onBattery(std::nullopt);
  EXPECT_TRUE(start());
  sources.onBattery(std::nullopt);
  EXPECT_TRUE(manager.isActive());
}

/// The charger is pulled after the first reading, and nobody is told.
class PulledMeanwhile final : public PowerSources {
 public:
  [[nodiscard]] std::optional<std::vector<PowerSourceDescription>> list() const override {
    const char* const state = std::exchange(pulled_, true) ? kBatteryPower : "AC Power";
    return {{FakePowerSources::battery(state, 80)}};
  }
  [[nodiscard]] Subscription observe(std::function<void()> changed) override {
    return sources.observe(std::move(changed));
  }

  FakePowerSources sources;

 private:
  mutable bool pulled_ = false;
};

TEST_F(AwakeManagerBatteryTest, ChargerPulledBetweenReadingAndObservingEndsTheSession) {
  PulledMeanwhile pulled;
  AwakeManager late({loop, clock, client, pulled, display, settings, macWording()});
  setRules(true, 20);
  EXPECT_FALSE(late.start(at(14, 0), true, clock.now()));
  EXPECT_FALSE(late.isActive());
  EXPECT_EQ(late.message(), kConnect);
  EXPECT_TRUE(client.held().empty());
  EXPECT_EQ(pulled.sources.observers(), 0);
}

TEST_F(AwakeManagerBatteryTest, PowerSourcesAreObservedWhileASessionWithARuleRuns) {
  EXPECT_EQ(sources.observers(), 0);
  start();
  EXPECT_EQ(sources.observers(), 1);
  manager.stopByUser();
  EXPECT_EQ(sources.observers(), 0);
}

TEST_F(AwakeManagerBatteryTest, SecondStartKeepsTheObserver) {
  start(at(14, 0));
  start(at(15, 0));
  EXPECT_EQ(sources.subscriptions, 1);
  EXPECT_EQ(sources.observers(), 1);
}

TEST_F(AwakeManagerBatteryTest, WithoutARuleNothingIsObservedAndNothingEndsTheSession) {
  setRules(false, 0);
  sources.onMains(50);
  EXPECT_TRUE(start());
  EXPECT_EQ(sources.subscriptions, 0);
  sources.onBattery(0);
  manager.checkBattery();
  EXPECT_TRUE(manager.isActive());
}

TEST_F(AwakeManagerBatteryTest, OnlyOnPowerAloneNeedsTheObserver) {
  setRules(true, 0);
  EXPECT_TRUE(start());
  EXPECT_EQ(sources.observers(), 1);
}

TEST_F(AwakeManagerBatteryTest, RulesMakeAndDropTheObserverOfARunningSession) {
  start();
  setRules(false, 0);
  EXPECT_EQ(sources.observers(), 0);
  setRules(false, 30);
  EXPECT_EQ(sources.observers(), 1);
  setRules(true, 30);
  EXPECT_EQ(sources.subscriptions, 2);
}

TEST_F(AwakeManagerBatteryTest, RulesAreAppliedToARunningSessionAtOnce) {
  sources.onBattery(45);
  start();
  setRules(false, 50);
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(sources.observers(), 0);
  EXPECT_EQ(told, (Log{"", "Session stopped: battery is at or below 50%."}));
}

TEST_F(AwakeManagerBatteryTest, RulesThatAllowTheSessionTellNothing) {
  sources.onBattery(45);
  start();
  setRules(false, 30);
  EXPECT_TRUE(manager.isActive());
  EXPECT_EQ(told, Log{""});
}

TEST_F(AwakeManagerBatteryTest, RulesWhileIdleWaitForTheNextSession) {
  sources.onBattery(45);
  const int readings = sources.readings;
  setRules(true, 50);
  EXPECT_EQ(sources.readings, readings);
  EXPECT_EQ(sources.subscriptions, 0);
  EXPECT_EQ(told, Log{});
  EXPECT_FALSE(start());
  EXPECT_EQ(told, Log{kConnect});
}

TEST_F(AwakeManagerBatteryTest, EditedRulesCountFromTheNextStart) {
  sources.onBattery(80);
  editRules(true, 20);
  EXPECT_FALSE(start());
  EXPECT_EQ(told, Log{kConnect});
}

TEST_F(AwakeManagerBatteryTest, EditedRulesCountForARunningSessionFromTheNextTick) {
  editRules(false, 0);
  ASSERT_TRUE(start());
  manager.tick(clock.now());
  EXPECT_EQ(sources.observers(), 0);
  editRules(false, 20);
  manager.tick(clock.now() + 2s);
  EXPECT_EQ(sources.observers(), 1);
  EXPECT_EQ(told, Log{""});
  sources.changeSilently(std::vector{FakePowerSources::battery(kBatteryPower, 45)});
  editRules(false, 50);
  manager.tick(clock.now() + 4s);
  EXPECT_EQ(told, (Log{"", "Session stopped: battery is at or below 50%."}));
}

TEST_F(AwakeManagerBatteryTest, TickReadsTheChargeOnceInHalfAMinute) {
  sources.onBattery(60);
  ASSERT_TRUE(start());
  manager.tick(clock.now());
  const int before = sources.readings;
  manager.tick(clock.now() + 29s);
  EXPECT_EQ(sources.readings, before);
  sources.changeSilently(std::vector{FakePowerSources::battery(kBatteryPower, 20)});
  manager.tick(clock.now() + 30s);
  EXPECT_FALSE(manager.isActive());
  EXPECT_EQ(manager.message(), kAtTwenty);
}

TEST_F(AwakeManagerBatteryTest, TickAfterTheClockWasSetBackReadsTheCharge) {
  sources.onBattery(60);
  ASSERT_TRUE(start());
  manager.tick(clock.now());
  sources.changeSilently(std::vector{FakePowerSources::battery(kBatteryPower, 20)});
  manager.tick(clock.now() - 24h);
  EXPECT_FALSE(manager.isActive());
}

TEST_F(AwakeManagerBatteryTest, TickWithoutASessionOrWithoutARuleReadsNothing) {
  manager.tick(clock.now());
  EXPECT_EQ(sources.readings, 0);
  setRules(false, 0);
  ASSERT_TRUE(start());
  const int before = sources.readings;
  manager.tick(clock.now() + 1h);
  EXPECT_EQ(sources.readings, before);
}

TEST_F(AwakeManagerBatteryTest, CheckWhileIdleDoesNotEvenRead) {
  sources.onBattery(5);
  manager.checkBattery();
  EXPECT_EQ(sources.readings, 0);
  EXPECT_EQ(told, Log{});
}

TEST_F(AwakeManagerBatteryTest, ChangesAfterTheSessionAreNotRead) {
  start();
  manager.stopByUser();
  const int readings = sources.readings;
  sources.onBattery(5);
  EXPECT_EQ(sources.readings, readings);
  EXPECT_EQ(told, (Log{"", "Session ended. Normal sleep is allowed."}));
}

}  // namespace
}  // namespace nimbo
