// SPDX-License-Identifier: MIT
#include "system/process_scan.h"

#include <gtest/gtest.h>

#include "support/fake_process_table.h"

namespace nimbo {
namespace {

TEST(ProcessScan, LargestFootprintComesFirst) {
  FakeProcessTable table;
  table.add(10, 300, "small");
  table.add(11, 900, "large");
  table.add(12, 600, "middle");
  EXPECT_EQ(scanProcesses(table), (ProcessScan{{{11, "large", 900}, {12, "middle", 600}, {10, "small", 300}}, 0}));
}

TEST(ProcessScan, EqualFootprintsAreOrderedByAscendingPid) {
  FakeProcessTable table;
  table.add(30, 500, "c");
  table.add(7, 500, "a");
  table.add(200, 700, "d");
  table.add(12, 500, "b");
  EXPECT_EQ(scanProcesses(table).processes,
            (std::vector<ProcessMemory>{{200, "d", 700}, {7, "a", 500}, {12, "b", 500}, {30, "c", 500}}));
}

TEST(ProcessScan, ProcessThatExitsBeforeItIsMeasuredIsCountedNotListed) {
  FakeProcessTable table;
  table.addUnreadable(41);
  table.add(42, 100, "stays");
  table.addUnreadable(43);
  EXPECT_EQ(scanProcesses(table), (ProcessScan{{{42, "stays", 100}}, 2}));
}

TEST(ProcessScan, ProcessWithoutFootprintIsNeitherListedNorCounted) {
  FakeProcessTable table;
  table.add(2, 0, "kthreadd");
  EXPECT_EQ(scanProcesses(table), ProcessScan{});
}

TEST(ProcessScan, ProcessWithoutReadableNameIsNamedByItsPid) {
  FakeProcessTable table;
  table.add(123, 4096, "");
  EXPECT_EQ(scanProcesses(table).processes.at(0).name, "Process 123");
}

TEST(ProcessScan, InvalidBytesOfANameAreReplacedNotDropped) {
  FakeProcessTable table;
  table.add(5, 4096, "caf\xE9 \xF0\x9F\x98");
  EXPECT_EQ(scanProcesses(table).processes.at(0).name, "caf\uFFFD \uFFFD");
}

TEST(ProcessScan, IdentifiersBelowOneAreNeverMeasured) {
  FakeProcessTable table;
  table.add(0, 1 << 30, "kernel");
  table.add(-1, 1 << 30, "nobody");
  table.add(1, 4096, "init");
  EXPECT_EQ(scanProcesses(table), (ProcessScan{{{1, "init", 4096}}, 0}));
  EXPECT_EQ(table.asked, std::vector<std::int32_t>{1});
}

TEST(ProcessScan, NothingListedIsAnEmptyScan) {
  FakeProcessTable table;
  EXPECT_EQ(scanProcesses(table), ProcessScan{});
}

TEST(ProcessScan, EveryProcessIsMeasuredOnceAndNoneIsLeftOut) {
  FakeProcessTable table;
  for (std::int32_t pid = 1; pid <= 3000; ++pid) table.add(pid, static_cast<std::uint64_t>(pid), "p");
  const ProcessScan scan = scanProcesses(table);
  EXPECT_EQ(scan.processes.size(), 3000U);
  EXPECT_EQ(scan.processes.front().pid, 3000);
  EXPECT_EQ(scan.processes.back().pid, 1);
  EXPECT_EQ(table.asked.size(), 3000U);
}

}  // namespace
}  // namespace nimbo
