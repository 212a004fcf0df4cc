// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include "platform/host_statistics.h"

namespace nimbo {

/// What every HostStatistics promises. A `Machine` has `statistics`, and takes what the test says of it:
/// `hasMemory(bytes)`, `usesSwap(bytes)`, `hidesSwap()`, `isPressed(level)`, `hasSpent(ticks)` and `tellsNothing()`.
template <class Machine>
class HostStatisticsContract : public testing::Test {
 protected:
  static constexpr std::uint64_t kMemory = std::uint64_t{16} << 30;
  HostStatisticsContract() { machine.hasMemory(kMemory); }

  Machine machine;
  HostStatistics& statistics = machine.statistics;
};
TYPED_TEST_SUITE_P(HostStatisticsContract);

TYPED_TEST_P(HostStatisticsContract, PhysicalMemoryIsInBytesAndZeroWhileItIsNotTold) {
  EXPECT_EQ(this->statistics.physicalMemory(), this->kMemory);
  this->machine.tellsNothing();
  EXPECT_EQ(this->statistics.physicalMemory(), 0U);
}

TYPED_TEST_P(HostStatisticsContract, WhatIsNotToldIsAbsentUntilItIs) {
  this->machine.hasSpent({1, 2, 3, 4});
  EXPECT_TRUE(this->statistics.memory());
  EXPECT_TRUE(this->statistics.cpuTicks());
  this->machine.tellsNothing();
  EXPECT_FALSE(this->statistics.memory());
  EXPECT_FALSE(this->statistics.cpuTicks());
  this->machine.hasMemory(this->kMemory);
  this->machine.hasSpent({2, 3, 4, 5});
  EXPECT_TRUE(this->statistics.memory());
  EXPECT_TRUE(this->statistics.cpuTicks());
}

TYPED_TEST_P(HostStatisticsContract, RolesOfMemoryAreTogetherNoMoreThanAllOfIt) {
  const auto memory = this->statistics.memory();
  ASSERT_TRUE(memory);
  EXPECT_LE(memory->wired + memory->compressor + memory->active + memory->inactive, this->kMemory);
  EXPECT_LE(memory->purgeable + memory->fileBacked, memory->active + memory->inactive);
}

TYPED_TEST_P(HostStatisticsContract, SwapIsWhatIsInUse) {
  for (const std::uint64_t bytes : {3U << 20U, 0U}) {
    this->machine.usesSwap(bytes);
    EXPECT_EQ(this->statistics.memory()->swapUsed, bytes);
  }
}

TYPED_TEST_P(HostStatisticsContract, MemoryIsToldWithoutTheSwapThatCannotBeRead) {
  this->machine.hidesSwap();
  ASSERT_TRUE(this->statistics.memory());
  EXPECT_EQ(this->statistics.memory()->swapUsed, std::nullopt);
}

TYPED_TEST_P(HostStatisticsContract, PressureHasThreeLevels) {
  for (const auto level : {MemoryPressure::normal, MemoryPressure::warning, MemoryPressure::critical}) {
    this->machine.isPressed(level);
    EXPECT_EQ(this->statistics.memory()->pressure, level);
  }
}

TYPED_TEST_P(HostStatisticsContract, TicksAreUserSystemIdleAndNiceAndGrow) {
  for (const CpuTicks& ticks : {CpuTicks{10, 20, 30, 40}, CpuTicks{10, 20, 30, 40}, CpuTicks{11, 22, 33, 44}}) {
    this->machine.hasSpent(ticks);
    EXPECT_EQ(this->statistics.cpuTicks(), ticks);
  }
}

REGISTER_TYPED_TEST_SUITE_P(HostStatisticsContract, PhysicalMemoryIsInBytesAndZeroWhileItIsNotTold,
                            WhatIsNotToldIsAbsentUntilItIs, RolesOfMemoryAreTogetherNoMoreThanAllOfIt,
                            SwapIsWhatIsInUse, MemoryIsToldWithoutTheSwapThatCannotBeRead, PressureHasThreeLevels,
                            TicksAreUserSystemIdleAndNiceAndGrow);

}  // namespace nimbo
