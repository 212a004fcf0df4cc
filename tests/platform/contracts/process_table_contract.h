// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/process_table.h"

namespace nimbo {

/// What every ProcessTable promises. `Processes` have a `table`, and come and go as the test says: `starts(pid, bytes,
/// name)`, `ends(pid)` and `startsForbidden(pid)`, which may not be measured.
template <class Processes>
class ProcessTableContract : public testing::Test {
 protected:
  static constexpr std::uint64_t kBytes = 12 << 20;

  std::vector<std::int32_t> listed() {
    auto pids = table.list();
    std::erase_if(pids, [](std::int32_t pid) { return pid < 1; });
    std::sort(pids.begin(), pids.end());
    return pids;
  }

  Processes processes;
  ProcessTable& table = processes.table;
};
TYPED_TEST_SUITE_P(ProcessTableContract);

TYPED_TEST_P(ProcessTableContract, ProcessesAreListedWhileTheyRun) {
  this->processes.starts(20, this->kBytes, "a");
  this->processes.starts(7, this->kBytes, "b");
  EXPECT_EQ(this->listed(), (std::vector<std::int32_t>{7, 20}));
  this->processes.ends(20);
  this->processes.starts(21, this->kBytes, "c");
  EXPECT_EQ(this->listed(), (std::vector<std::int32_t>{7, 21}));
}

TYPED_TEST_P(ProcessTableContract, RunningProcessIsMeasuredAndHasItsName) {
  this->processes.starts(7, this->kBytes, "w\xFFi th\nall");
  (void)this->table.list();
  const auto reading = this->table.read(7);
  ASSERT_TRUE(reading);
  EXPECT_EQ(reading->footprint, this->kBytes);
  EXPECT_GE(reading->most, this->kBytes);
  EXPECT_EQ(this->table.footprint(7), this->kBytes);
  EXPECT_EQ(this->table.name(7), "w\xFFi th\nall");
}

TYPED_TEST_P(ProcessTableContract, ProcessThatEndsAfterItWasListedIsAbsentAndNameless) {
  this->processes.starts(7, this->kBytes, "a");
  EXPECT_EQ(this->listed(), std::vector<std::int32_t>{7});
  this->processes.ends(7);
  EXPECT_EQ(this->table.read(7), std::nullopt);
  EXPECT_EQ(this->table.footprint(7), std::nullopt);
  EXPECT_EQ(this->table.name(7), "");
}

TYPED_TEST_P(ProcessTableContract, ProcessThatMayNotBeMeasuredIsListedAndAbsent) {
  this->processes.startsForbidden(9);
  EXPECT_EQ(this->listed(), std::vector<std::int32_t>{9});
  EXPECT_EQ(this->table.read(9), std::nullopt);
  EXPECT_EQ(this->table.footprint(9), std::nullopt);
}

TYPED_TEST_P(ProcessTableContract, ProcessWithoutMemoryHasAtMostNone) {
  this->processes.starts(2, 0, "kernel thread");
  (void)this->table.list();
  EXPECT_EQ(this->table.read(2), (ProcessReading{0, 0}));
}

REGISTER_TYPED_TEST_SUITE_P(ProcessTableContract, ProcessesAreListedWhileTheyRun, RunningProcessIsMeasuredAndHasItsName,
                            ProcessThatEndsAfterItWasListedIsAbsentAndNameless,
                            ProcessThatMayNotBeMeasuredIsListedAndAbsent, ProcessWithoutMemoryHasAtMostNone);

}  // namespace nimbo
