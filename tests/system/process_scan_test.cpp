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
  EXPECT_EQ(scanProcesses(table, 3), (ProcessScan{{{11, "large", 900}, {12, "middle", 600}, {10, "small", 300}}, 0}));
}

TEST(ProcessScan, EqualFootprintsAreOrderedByAscendingPid) {
  FakeProcessTable table;
  table.add(30, 500, "c");
  table.add(7, 500, "a");
  table.add(200, 700, "d");
  table.add(12, 500, "b");
  EXPECT_EQ(scanProcesses(table, 3).processes,
            (std::vector<ProcessMemory>{{200, "d", 700}, {7, "a", 500}, {12, "b", 500}, {30, "c", 500}}));
}

TEST(ProcessScan, ProcessThatExitsBeforeItIsReadIsCountedNotListed) {
  FakeProcessTable table;
  table.addUnreadable(41);
  table.add(42, 100, "stays");
  table.addUnreadable(43);
  EXPECT_EQ(scanProcesses(table, 3), (ProcessScan{{{42, "stays", 100}}, 2}));
}

TEST(ProcessScan, ProcessWithoutFootprintIsNeitherListedNorCounted) {
  FakeProcessTable table;
  table.add(2, 0, "kthreadd");
  EXPECT_EQ(scanProcesses(table, 3), ProcessScan{});
}

TEST(ProcessScan, ProcessWithoutReadableNameIsNamedByItsPid) {
  FakeProcessTable table;
  table.add(123, 4096, "");
  EXPECT_EQ(scanProcesses(table, 3).processes.at(0).name, "Process 123");
}

TEST(ProcessScan, InvalidBytesOfANameAreReplacedNotDropped) {
  FakeProcessTable table;
  table.add(5, 4096, "caf\xE9 \xF0\x9F\x98");
  EXPECT_EQ(scanProcesses(table, 3).processes.at(0).name, "caf\uFFFD \uFFFD");
}

TEST(ProcessScan, IdentifiersBelowOneAreNeverRead) {
  FakeProcessTable table;
  table.add(0, 1 << 30, "kernel");
  table.add(-1, 1 << 30, "nobody");
  table.add(1, 4096, "init");
  EXPECT_EQ(scanProcesses(table, 3), (ProcessScan{{{1, "init", 4096}}, 0}));
  EXPECT_EQ(table.asked, std::vector<std::int32_t>{1});
}

TEST(ProcessScan, WhatMayBeAmongTheLargestIsMeasured) {
  FakeProcessTable table;
  table.add(5, {30, 41}, "small", 31);
  table.add(4, {40, 90}, "editor", 42);
  table.add(2, {300, 310}, "parent", 60);
  table.add(3, {300, 311}, "fork", 55);
  table.add(6, {300, 320}, "fork", 2);
  table.add(7, {300, 321}, "fork", 1);
  table.add(1, {5, 500}, "database", 450);
  EXPECT_EQ(scanProcesses(table, 4).processes, (std::vector<ProcessMemory>{{1, "database", 450},
                                                                           {2, "parent", 60},
                                                                           {3, "fork", 55},
                                                                           {4, "editor", 42},
                                                                           {5, "small", 30},
                                                                           {6, "fork", 2},
                                                                           {7, "fork", 1}}));
  EXPECT_EQ(table.measured, (std::vector<std::int32_t>{1, 7, 6, 3, 2, 4})) << "the last cannot be among four";
}

TEST(ProcessScan, WhatMayNotBeLookedIntoKeepsItsEstimate) {
  FakeProcessTable table;
  table.add(1, {400, 900}, "server", std::nullopt);
  table.add(2, {0, 700}, "shared only", std::nullopt);
  table.add(3, {100, 500}, "mine", 450);
  EXPECT_EQ(scanProcesses(table, 2), (ProcessScan{{{3, "mine", 450}, {1, "server", 400}}, 0}));
}

TEST(ProcessScan, ThousandLargeForksAreNotAllMeasuredAndPushNothingOffTheList) {
  FakeProcessTable table;
  for (std::int32_t pid = 1; pid <= 1000; ++pid) table.add(pid, {300, 305}, "fork", 3);
  table.add(2000, {50, 306}, "editor", 50);
  const auto scan = scanProcesses(table, 3);
  EXPECT_EQ(scan.processes.size(), 1001U);
  EXPECT_EQ(scan.processes.at(0), (ProcessMemory{2000, "editor", 50}));
  EXPECT_EQ(scan.processes.at(1).bytes, 3U);
  EXPECT_EQ(table.measured.size(), 6U);
}

TEST(ProcessScan, ProcessesTooLargeToMeasureThemAllKeepTheirEstimates) {
  constexpr std::uint64_t kGigabyte = std::uint64_t{1} << 30;
  FakeProcessTable table;
  for (std::int32_t pid = 1; pid <= 5; ++pid) table.add(pid, {9, 8 * kGigabyte}, "backend", 4);
  EXPECT_EQ(scanProcesses(table, 3).processes.at(0).bytes, 9U);
  EXPECT_EQ(table.measured.size(), 2U);
}

TEST(ProcessScan, WithoutAnyWantedNothingIsMeasuredOrNamed) {
  FakeProcessTable table;
  table.add(1, {4, 9}, "a", 7);
  EXPECT_EQ(scanProcesses(table, 0).processes, (std::vector<ProcessMemory>{{1, "Process 1", 4}}));
}

TEST(ProcessScan, NamesAreLookedUpForAFewTimesAsManyAsAreWanted) {
  FakeProcessTable table;
  for (std::int32_t pid = 1; pid <= 1000; ++pid) table.add(pid, static_cast<std::uint64_t>(pid), "p");
  const auto scan = scanProcesses(table, 2);
  EXPECT_EQ(scan.processes.at(7).name, "p") << "a list may be made longer before the next scan";
  EXPECT_EQ(table.named.size(), 8U);
}

TEST(ProcessScan, NameThatBreaksLinesOrSteersATerminalDoesNot) {
  FakeProcessTable table;
  table.add(5, 4096, "a\nb\tc\x1b[31m\x7f");
  EXPECT_EQ(scanProcesses(table, 3).processes.at(0).name, "a\uFFFDb\uFFFDc\uFFFD[31m\uFFFD");
}

TEST(ProcessScan, NothingListedIsAnEmptyScan) {
  FakeProcessTable table;
  EXPECT_EQ(scanProcesses(table, 3), ProcessScan{});
}

TEST(ProcessScan, EveryProcessIsReadOnceAndNoneIsLeftOut) {
  FakeProcessTable table;
  for (std::int32_t pid = 1; pid <= 3000; ++pid) table.add(pid, static_cast<std::uint64_t>(pid), "p");
  const ProcessScan scan = scanProcesses(table, 3);
  EXPECT_EQ(scan.processes.size(), 3000U);
  EXPECT_EQ(scan.processes.front().pid, 3000);
  EXPECT_EQ(scan.processes.back().pid, 1);
  EXPECT_EQ(table.asked.size(), 3000U);
}

}  // namespace
}  // namespace nimbo
