// SPDX-License-Identifier: MIT
#include "system/system_readings.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

TEST(MemorySnapshot, UsedIsAppAndWiredAndCompressedButNotCached) {
  const MemorySnapshot memory{
      .total = 100, .app = 30, .wired = 20, .compressed = 10, .cached = 25, .swap = {}, .timestamp = {}};
  EXPECT_EQ(memory.used(), 60U);
  EXPECT_EQ(memory.available(), 40U);
  EXPECT_DOUBLE_EQ(memory.usedFraction(), 0.6);
}

TEST(MemorySnapshot, TotalOfNothingIsUsedToZero) { EXPECT_DOUBLE_EQ(MemorySnapshot{}.usedFraction(), 0); }

TEST(MemorySnapshot, EveryPressureHasItsWord) {
  EXPECT_EQ(pressureWord(MemoryPressure::normal), "Normal");
  EXPECT_EQ(pressureWord(MemoryPressure::warning), "Elevated");
  EXPECT_EQ(pressureWord(MemoryPressure::critical), "High");
  EXPECT_EQ(pressureWord(MemoryPressure::unknown), "Unavailable");
}

TEST(SystemReadings, HistoryClampsToZeroAndOne) {
  std::vector<double> history;
  appendToHistory(history, -0.5);
  appendToHistory(history, 1.5);
  EXPECT_EQ(history, (std::vector{0.0, 1.0}));
}

TEST(SystemReadings, HistoryKeepsTheLastForty) {
  std::vector<double> history;
  for (int value = 0; value <= 40; ++value) appendToHistory(history, value / 100.0);
  EXPECT_EQ(history.size(), 40U);
  EXPECT_EQ(history.front(), 0.01);
  EXPECT_EQ(history.back(), 0.4);
}

}  // namespace
}  // namespace nimbo
