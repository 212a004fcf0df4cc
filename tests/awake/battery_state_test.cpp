// SPDX-License-Identifier: MIT
#include "awake/awake_rules.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/fake_power_sources.h"

namespace nimbo {
namespace {

using Description = PowerSourceDescription;

class BatteryStateTest : public testing::Test {
 protected:
  [[nodiscard]] std::optional<BatteryState> read(std::vector<Description> descriptions) {
    sources.change(std::move(descriptions));
    return readBattery(sources);
  }
  [[nodiscard]] std::optional<int> percent(std::optional<std::int64_t> current, std::optional<std::int64_t> maximum) {
    const auto battery = read({{"InternalBattery", "Battery Power", current, maximum}});
    EXPECT_TRUE(battery && battery->onBattery);
    return battery ? battery->percent : std::nullopt;
  }

  FakePowerSources sources;
};

TEST_F(BatteryStateTest, MachineWithoutPowerSourcesHasNoReading) { EXPECT_EQ(read({}), std::nullopt); }

TEST_F(BatteryStateTest, SystemThatDoesNotAnswerGivesNoReading) {
  sources.unavailable();
  EXPECT_EQ(readBattery(sources), std::nullopt);
}

TEST_F(BatteryStateTest, OtherSourcesAreNoInternalBattery) {
  EXPECT_EQ(read({{"UPS", "Battery Power", 50, 100}, {"internalbattery", "Battery Power", 50, 100}}), std::nullopt);
}

TEST_F(BatteryStateTest, SourceWithoutTypeOrStateIsSkipped) {
  const Description nothing{};
  const Description typeless{std::nullopt, "Battery Power", 50, 100};
  const Description stateless{"InternalBattery", std::nullopt, 50, 100};
  EXPECT_EQ(read({nothing, typeless, stateless}), std::nullopt);
  EXPECT_EQ(read({nothing, typeless, stateless, {"InternalBattery", "Battery Power", 60, 100}}),
            (BatteryState{true, 60}));
}

TEST_F(BatteryStateTest, FirstOfTwoInternalBatteriesCounts) {
  EXPECT_EQ(read({{"UPS", "AC Power", 100, 100},
                  {"InternalBattery", "Battery Power", 80, 100},
                  {"InternalBattery", "AC Power", 10, 100}}),
            (BatteryState{true, 80}));
}

TEST_F(BatteryStateTest, AnyStateButBatteryPowerIsNotOnBattery) {
  for (const char* state : {"AC Power", "Off Line", "", "battery power", "Battery Power "}) {
    EXPECT_EQ(read({{"InternalBattery", state, 5, 100}}), (BatteryState{false, 5})) << state;
  }
}

TEST_F(BatteryStateTest, PercentIsCurrentOfMaximum) {
  EXPECT_EQ(percent(57, 100), 57);
  EXPECT_EQ(percent(3219, 5000), 64);
  EXPECT_EQ(percent(0, 100), 0);
  EXPECT_EQ(percent(100, 100), 100);
}

TEST_F(BatteryStateTest, EveryWholePercentIsItself) {
  for (int whole = 0; whole <= 100; ++whole) EXPECT_EQ(percent(whole, 100), whole);
}

TEST_F(BatteryStateTest, PercentIsCutNotRounded) {
  EXPECT_EQ(percent(2, 3), 66);
  EXPECT_EQ(percent(1999, 10000), 19);
}

TEST_F(BatteryStateTest, PercentStaysInItsRange) {
  EXPECT_EQ(percent(130, 100), 100);
  EXPECT_EQ(percent(-3, 100), 0);
  EXPECT_EQ(percent(std::numeric_limits<std::int64_t>::max(), 1), 100);
  EXPECT_EQ(percent(std::numeric_limits<std::int64_t>::min(), 1), 0);
}

TEST_F(BatteryStateTest, UnusableMaximumLeavesOnlyTheState) {
  EXPECT_EQ(percent(57, 0), std::nullopt);
  EXPECT_EQ(percent(57, -100), std::nullopt);
}

TEST_F(BatteryStateTest, MissingCapacityLeavesOnlyTheState) {
  EXPECT_EQ(percent(std::nullopt, 100), std::nullopt);
  EXPECT_EQ(percent(57, std::nullopt), std::nullopt);
}

}  // namespace
}  // namespace nimbo
