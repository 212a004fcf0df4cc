// SPDX-License-Identifier: MIT
#include "app/sampling_loop.h"

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "support/fake_platform_services.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;

class SamplingLoopTest : public ::testing::Test {
 protected:
  SamplingLoopTest() {
    setUsedPages(1000);
    sampling = makeLoop();
  }

  std::unique_ptr<SamplingLoop> makeLoop() {
    return std::make_unique<SamplingLoop>(
        platform, settings,
        SamplingLoop::Callbacks{[this] { usedAtTick = readings().memory ? readings().memory->used() : 0; },
                                [this] { ++changes; }, [this] { changesWhenFound.push_back(changes); },
                                [this] { return processesWanted; },
                                [this](ProcessScan scan) { scans.push_back(std::move(scan)); }});
  }

  void setUsedPages(std::uint64_t pages) {
    platform.host->total = 2000 * 4096;
    platform.host->counts = MemoryCounts{.wired = pages * 4096};
  }

  void setTicks(std::uint64_t busy, std::uint64_t idle) { platform.host->ticks = CpuTicks{busy, 0, idle, 0}; }

  /// Lets the temperature read that is under way come back.
  void finishTemperature() {
    ASSERT_TRUE(platform.temperatures.runOne());
    platform.loop.runPosted();
  }
  void finishScan() {
    ASSERT_TRUE(platform.utilities.runOne());
    platform.loop.runPosted();
  }

  const SystemReadings& readings() const { return sampling->readings(); }

  FakePlatformServices platform;
  Settings settings{platform.defaults};
  std::size_t processesWanted = 0;
  int changes = 0;
  std::vector<int> changesWhenFound;  ///< how many there had been when a temperature was the first
  std::optional<std::uint64_t> usedAtTick;
  std::vector<ProcessScan> scans;
  std::unique_ptr<SamplingLoop> sampling;
};

TEST_F(SamplingLoopTest, TickAnnouncesItselfBeforeItReads) {
  sampling->tick();
  EXPECT_EQ(usedAtTick, 0U);
  setUsedPages(500);
  sampling->tick();
  EXPECT_EQ(usedAtTick, 1000U * 4096);
}

TEST_F(SamplingLoopTest, TwoSecondIntervalHasLeewayOf250Milliseconds) {
  settings.setRefreshInterval(seconds(2));
  sampling->startTimer();
  ASSERT_EQ(platform.loop.repeatingTimers().size(), 1U);
  EXPECT_EQ(platform.loop.repeatingTimers()[0].interval, seconds(2));
  EXPECT_EQ(platform.loop.repeatingTimers()[0].leeway, milliseconds(250));
}

TEST_F(SamplingLoopTest, FiveSecondIntervalHasLeewayOfOneSecond) {
  sampling->startTimer();
  ASSERT_EQ(platform.loop.repeatingTimers().size(), 1U);
  EXPECT_EQ(platform.loop.repeatingTimers()[0].interval, seconds(5));
  EXPECT_EQ(platform.loop.repeatingTimers()[0].leeway, milliseconds(1000));
}

TEST_F(SamplingLoopTest, RestartingReplacesTheTimer) {
  sampling->startTimer();
  settings.setRefreshInterval(seconds(30));
  sampling->startTimer();
  ASSERT_EQ(platform.loop.repeatingTimers().size(), 1U);
  EXPECT_EQ(platform.loop.repeatingTimers()[0].interval, seconds(30));
}

TEST_F(SamplingLoopTest, FirstTickComesOneIntervalAfterTheStart) {
  sampling->startTimer();
  platform.loop.advance(milliseconds(4999));
  EXPECT_EQ(changes, 0);
  platform.loop.advance(milliseconds(1));
  EXPECT_EQ(changes, 1);
}

TEST_F(SamplingLoopTest, TickStoresMemoryAndItsUsedFraction) {
  sampling->tick();
  ASSERT_TRUE(readings().memory);
  EXPECT_EQ(readings().memory->wired, 1000U * 4096U);
  EXPECT_FALSE(readings().memoryFailed);
  EXPECT_EQ(readings().memoryHistory, std::vector{0.5});
}

TEST_F(SamplingLoopTest, FortyFirstReadingDropsTheFirst) {
  setUsedPages(200);
  sampling->tick();
  setUsedPages(1000);
  for (int i = 0; i < 39; ++i) sampling->tick();
  ASSERT_EQ(readings().memoryHistory.size(), 40U);
  EXPECT_DOUBLE_EQ(readings().memoryHistory.front(), 0.1);
  sampling->tick();
  EXPECT_EQ(readings().memoryHistory, std::vector<double>(40, 0.5));
}

TEST_F(SamplingLoopTest, MachineWithoutMemoryGivesZeroInTheHistory) {
  platform.host->total = 0;
  sampling = makeLoop();
  sampling->tick();
  EXPECT_EQ(readings().memoryHistory, std::vector{0.0});
}

TEST_F(SamplingLoopTest, FailedMemoryReadingEmptiesMemoryAndTheNextTickTriesAgain) {
  sampling->tick();
  platform.host->counts.reset();
  sampling->tick();
  EXPECT_FALSE(readings().memory);
  EXPECT_TRUE(readings().memoryFailed);
  EXPECT_EQ(readings().memoryHistory.size(), 1U) << "a failure leaves no mark in the history";
  setUsedPages(1000);
  sampling->tick();
  EXPECT_TRUE(readings().memory);
  EXPECT_FALSE(readings().memoryFailed);
}

TEST_F(SamplingLoopTest, MemoryThatIsNotMonitoredIsForgotten) {
  settings.setMonitorCpu(true);
  sampling->tick();
  settings.setMonitorMemory(false);
  sampling->tick();
  EXPECT_FALSE(readings().memory);
  EXPECT_FALSE(readings().memoryFailed);
  EXPECT_TRUE(readings().memoryHistory.empty());
}

TEST_F(SamplingLoopTest, CpuIsNotReadUnlessMonitored) {
  sampling->tick();
  setTicks(50, 50);
  sampling->tick();
  EXPECT_FALSE(readings().cpu);
  EXPECT_TRUE(readings().cpuHistory.empty());
}

TEST_F(SamplingLoopTest, CpuHistoryBeginsWithTheSecondReading) {
  settings.setMonitorCpu(true);
  sampling->tick();
  EXPECT_FALSE(readings().cpu);
  EXPECT_TRUE(readings().cpuHistory.empty());
  setTicks(25, 75);
  sampling->tick();
  EXPECT_EQ(readings().cpu, 0.25);
  EXPECT_EQ(readings().cpuHistory, std::vector{0.25});
}

TEST_F(SamplingLoopTest, TemperatureIsNotReadUnlessMonitored) {
  sampling->tick();
  EXPECT_EQ(platform.temperatures.waiting(), 0U);
}

TEST_F(SamplingLoopTest, TemperatureIsStoredWithTheTimeOfItsAcceptance) {
  settings.setMonitorTemperature(true);
  sampling->tick();
  EXPECT_EQ(changes, 1);
  ASSERT_TRUE(platform.temperatures.runOne());
  platform.clock->advance(seconds(3));
  platform.loop.runPosted();
  EXPECT_EQ(readings().temperature, 50.0);
  EXPECT_EQ(readings().temperatureDate, platform.clock->now());
  EXPECT_EQ(changes, 2);
}

TEST_F(SamplingLoopTest, FirstTemperatureIsToldBeforeItIsShownAndOnlyOnce) {
  settings.setMonitorTemperature(true);
  sampling->tick();
  finishTemperature();
  EXPECT_EQ(changesWhenFound, std::vector<int>{1});
  sampling->tick();
  finishTemperature();
  EXPECT_EQ(changesWhenFound.size(), 1U);
  sampling->willSleep();
  sampling->didWake();
  finishTemperature();
  EXPECT_EQ(changesWhenFound.size(), 2U) << "the first one since wake";
}

TEST_F(SamplingLoopTest, ChangeOfMonitorsForgetsTheTemperatureAndSamplesAtOnce) {
  settings.setMonitorTemperature(true);
  sampling->tick();
  finishTemperature();
  sampling->tick();  // a read is out
  settings.setMonitorCpu(true);
  const int before = changes;
  sampling->monitorsChanged();
  EXPECT_FALSE(readings().temperature);
  EXPECT_EQ(changes, before + 1);
  finishTemperature();
  EXPECT_FALSE(readings().temperature) << "it was read for the monitors of before";
}

TEST_F(SamplingLoopTest, OneTemperatureReadAtATimeWithAFreshSensorEach) {
  settings.setMonitorTemperature(true);
  sampling->tick();
  sampling->tick();
  EXPECT_EQ(platform.temperatures.waiting(), 1U);
  finishTemperature();
  sampling->tick();
  finishTemperature();
  EXPECT_EQ(platform.sensorsMade, 2);
}

TEST_F(SamplingLoopTest, TemperatureThatArrivesAfterSleepBeganIsIgnored) {
  settings.setMonitorTemperature(true);
  sampling->tick();
  sampling->willSleep();
  finishTemperature();
  EXPECT_FALSE(readings().temperature);
}

TEST_F(SamplingLoopTest, TemperatureFromBeforeSleepIsIgnoredAfterWakeToo) {
  settings.setMonitorTemperature(true);
  sampling->tick();
  sampling->willSleep();
  sampling->didWake();
  finishTemperature();
  EXPECT_FALSE(readings().temperature);
  EXPECT_FALSE(readings().temperatureDate);
  sampling->tick();
  finishTemperature();
  EXPECT_EQ(readings().temperature, 50.0);
}

TEST_F(SamplingLoopTest, TemperatureSwitchedOffMeanwhileIsIgnored) {
  settings.setMonitorTemperature(true);
  sampling->tick();
  settings.setMonitorTemperature(false);
  finishTemperature();
  EXPECT_FALSE(readings().temperature);
}

TEST_F(SamplingLoopTest, MissingTemperatureLeavesTheLastOneAndItsDate) {
  settings.setMonitorTemperature(true);
  sampling->tick();
  finishTemperature();
  const auto date = readings().temperatureDate;
  platform.celsius.reset();
  platform.clock->advance(seconds(5));
  sampling->tick();
  const int changesBefore = changes;
  finishTemperature();
  EXPECT_EQ(readings().temperature, 50.0);
  EXPECT_EQ(readings().temperatureDate, date);
  EXPECT_EQ(changes, changesBefore);
}

TEST_F(SamplingLoopTest, MissingTemperatureDoesNotHoldUpTheNextRead) {
  settings.setMonitorTemperature(true);
  platform.celsius.reset();
  sampling->tick();
  finishTemperature();
  EXPECT_FALSE(readings().temperatureDate);
  platform.celsius = 61;
  sampling->tick();
  finishTemperature();
  EXPECT_EQ(readings().temperature, 61.0);
}

TEST_F(SamplingLoopTest, ProcessesAreScannedOnlyWhenWanted) {
  sampling->tick();
  EXPECT_EQ(platform.utilities.waiting(), 0U);
  processesWanted = 3;
  sampling->tick();
  EXPECT_EQ(platform.utilities.waiting(), 1U);
}

TEST_F(SamplingLoopTest, ProcessesAreNotScannedWithoutMemoryMonitoring) {
  settings.setMonitorCpu(true);
  settings.setMonitorMemory(false);
  processesWanted = 3;
  sampling->startProcessScan(SamplingLoop::Throttle::ignore);
  EXPECT_EQ(platform.utilities.waiting(), 0U);
}

TEST_F(SamplingLoopTest, ScanIsHandedOver) {
  platform.processes->add(7, 1000, "seven");
  processesWanted = 3;
  sampling->tick();
  finishScan();
  ASSERT_EQ(scans.size(), 1U);
  EXPECT_EQ(scans[0].processes, (std::vector{ProcessMemory{7, "seven", 1000}}));
}

TEST_F(SamplingLoopTest, WhatIsKnownOfProcessesIsKeptOnlyWhileSomebodyLooks) {
  processesWanted = 3;
  sampling->tick();
  finishScan();
  EXPECT_EQ(platform.processes.use_count(), 2);
  processesWanted = 0;
  sampling->tick();
  EXPECT_EQ(platform.processes.use_count(), 1);
}

TEST_F(SamplingLoopTest, TwoSecondIntervalStillScansAtMostEveryFiveSeconds) {
  settings.setRefreshInterval(seconds(2));
  processesWanted = 3;
  sampling->startTimer();
  int finished = 0;
  for (int second = 1; second <= 20; ++second) {
    platform.loop.advance(seconds(1));
    while (platform.utilities.runOne()) ++finished;
    platform.loop.runPosted();
  }
  EXPECT_EQ(finished, 4) << "at 2, 8, 14 and 20 s";
}

TEST_F(SamplingLoopTest, ThirtySecondIntervalScansAtMostEveryThirtySeconds) {
  settings.setRefreshInterval(seconds(30));
  processesWanted = 3;
  sampling->startProcessScan(SamplingLoop::Throttle::apply);
  finishScan();
  platform.clock->advance(seconds(29));
  sampling->startProcessScan(SamplingLoop::Throttle::apply);
  EXPECT_EQ(platform.utilities.waiting(), 0U);
  platform.clock->advance(seconds(1));
  sampling->startProcessScan(SamplingLoop::Throttle::apply);
  EXPECT_EQ(platform.utilities.waiting(), 1U);
}

TEST_F(SamplingLoopTest, ForcedScanIgnoresTheThrottleButNotARunningScan) {
  processesWanted = 3;
  sampling->startProcessScan(SamplingLoop::Throttle::ignore);
  sampling->startProcessScan(SamplingLoop::Throttle::ignore);
  EXPECT_EQ(platform.utilities.waiting(), 1U);
  finishScan();
  sampling->startProcessScan(SamplingLoop::Throttle::ignore);
  EXPECT_EQ(platform.utilities.waiting(), 1U);
}

TEST_F(SamplingLoopTest, ScanFromBeforeSleepIsNotShown) {
  processesWanted = 3;
  sampling->tick();
  sampling->willSleep();
  finishScan();
  EXPECT_TRUE(scans.empty());
  platform.clock->advance(seconds(10));
  sampling->didWake();
  finishScan();
  EXPECT_EQ(scans.size(), 1U) << "the next scan is not blocked by the dropped one";
}

TEST_F(SamplingLoopTest, NoTickBetweenSleepAndWake) {
  sampling->startTimer();
  sampling->willSleep();
  EXPECT_TRUE(platform.loop.repeatingTimers().empty());
  platform.loop.advance(seconds(600));
  EXPECT_EQ(changes, 0);
  sampling->didWake();
  EXPECT_EQ(changes, 1) << "one sample at once";
  platform.loop.advance(seconds(5));
  EXPECT_EQ(changes, 2);
}

TEST_F(SamplingLoopTest, NothingIsReadOrStartedUntilTheMachineWakes) {
  sampling->startTimer();
  sampling->willSleep();
  settings.setRefreshInterval(seconds(2));
  sampling->tick();
  sampling->startTimer();
  sampling->monitorsChanged();
  EXPECT_EQ(changes, 0);
  EXPECT_TRUE(platform.loop.repeatingTimers().empty());
  sampling->didWake();
  EXPECT_EQ(platform.loop.repeatingTimers().at(0).interval, seconds(2));
}

TEST_F(SamplingLoopTest, WakeEmptiesHistoriesAndStartsAFreshCpuDelta) {
  settings.setMonitorCpu(true);
  for (std::uint64_t i = 1; i <= 5; ++i) {
    setTicks(10 * i, 90 * i);
    sampling->tick();
  }
  ASSERT_EQ(readings().cpuHistory.size(), 4U);
  sampling->willSleep();
  setTicks(5000, 5000);
  sampling->didWake();
  EXPECT_EQ(readings().memoryHistory.size(), 1U);
  EXPECT_TRUE(readings().cpuHistory.empty());
  EXPECT_FALSE(readings().cpu) << "ticks from before sleep do not count";
  setTicks(5075, 5025);
  sampling->tick();
  EXPECT_EQ(readings().cpu, 0.75);
}

TEST_F(SamplingLoopTest, ResultsForADestroyedLoopAreDropped) {
  settings.setMonitorTemperature(true);
  processesWanted = 3;
  sampling->tick();
  sampling.reset();
  EXPECT_TRUE(platform.temperatures.runOne());
  EXPECT_TRUE(platform.utilities.runOne());
  EXPECT_EQ(platform.loop.runPosted(), 2U);
  EXPECT_TRUE(scans.empty());
}

}  // namespace
}  // namespace nimbo
