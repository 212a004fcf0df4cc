// SPDX-License-Identifier: MIT
#include "system/system_sampler.h"

#include <gtest/gtest.h>

#include "support/fake_clock.h"
#include "support/fake_host_statistics.h"

namespace nimbo {
namespace {

constexpr std::uint64_t kPage = 4096;

class SystemSamplerTest : public testing::Test {
 protected:
  MemorySnapshot snapshot() {
    SystemSampler sampler(host, clock);
    return sampler.snapshot().value();
  }

  FakeHostStatistics host;
  FakeClock clock;
};

using SystemSamplerMemory = SystemSamplerTest;
using SystemSamplerCpu = SystemSamplerTest;

TEST_F(SystemSamplerMemory, OrdinaryMachineIsSplitIntoItsParts) {
  host.total = 1000 * kPage;
  host.counts = MemoryCounts{.wired = 100 * kPage,
                             .compressor = 50 * kPage,
                             .active = 300 * kPage,
                             .inactive = 350 * kPage,
                             .purgeable = 20 * kPage,
                             .fileBacked = 180 * kPage};
  host.swap = 12345;
  host.pressure = MemoryPressure::warning;
  EXPECT_EQ(snapshot(), (MemorySnapshot{.total = 1000 * kPage,
                                        .app = 450 * kPage,
                                        .wired = 100 * kPage,
                                        .compressed = 50 * kPage,
                                        .cached = 200 * kPage,
                                        .swap = 12345,
                                        .pressure = MemoryPressure::warning,
                                        .timestamp = clock.now()}));
}

TEST_F(SystemSamplerMemory, UnreadableMemoryGivesNoSnapshot) {
  host.counts.reset();
  EXPECT_EQ(SystemSampler(host, clock).snapshot(), std::nullopt);
}

TEST_F(SystemSamplerMemory, FailureIsNotRemembered) {
  SystemSampler sampler(host, clock);
  host.counts.reset();
  EXPECT_FALSE(sampler.snapshot());
  host.counts = MemoryCounts{};
  EXPECT_TRUE(sampler.snapshot());
}

TEST_F(SystemSamplerMemory, UnreadableSwapGivesASnapshotWithoutSwap) {
  host.swap.reset();
  EXPECT_EQ(snapshot().swap, std::nullopt);
}

TEST_F(SystemSamplerMemory, UnusedSwapIsZeroNotAbsent) { EXPECT_EQ(snapshot().swap, 0U); }

TEST_F(SystemSamplerMemory, WiredBeyondPhysicalMemoryTakesAllOfIt) {
  host.total = 10 * kPage;
  host.counts = MemoryCounts{.wired = 11 * kPage,
                             .compressor = 5 * kPage,
                             .active = 7 * kPage,
                             .inactive = 7 * kPage,
                             .purgeable = 1 * kPage,
                             .fileBacked = 3 * kPage};
  const MemorySnapshot memory = snapshot();
  EXPECT_EQ(memory.wired, memory.total);
  EXPECT_EQ(memory.compressed, 0U);
  EXPECT_EQ(memory.app, 0U);
  EXPECT_EQ(memory.cached, 0U);
}

TEST_F(SystemSamplerMemory, CachedBeyondPagesInUseLeavesNoAppAndTakesWhatIsLeft) {
  host.total = 100 * kPage;
  host.counts = MemoryCounts{.wired = 60 * kPage,
                             .compressor = 10 * kPage,
                             .active = 20 * kPage,
                             .inactive = 20 * kPage,
                             .purgeable = 15 * kPage,
                             .fileBacked = 30 * kPage};
  const MemorySnapshot memory = snapshot();
  EXPECT_EQ(memory.app, 0U);
  EXPECT_EQ(memory.cached, 30 * kPage);
}

TEST_F(SystemSamplerMemory, CompressedIsCappedByWhatWiredLeft) {
  host.total = 100 * kPage;
  host.counts =
      MemoryCounts{.wired = 60 * kPage, .compressor = 70 * kPage, .active = 20 * kPage, .inactive = 20 * kPage};
  const MemorySnapshot memory = snapshot();
  EXPECT_EQ(memory.compressed, 40 * kPage);
  EXPECT_EQ(memory.app, 0U);
}

TEST_F(SystemSamplerMemory, AppIsCappedByWhatWiredAndCompressedLeft) {
  host.total = 100 * kPage;
  host.counts = MemoryCounts{
      .wired = 40 * kPage, .compressor = 40 * kPage, .active = 90 * kPage, .inactive = 0, .fileBacked = 10 * kPage};
  const MemorySnapshot memory = snapshot();
  EXPECT_EQ(memory.app, 20 * kPage);
  EXPECT_EQ(memory.cached, 0U);
  EXPECT_EQ(memory.used(), memory.total);
}

TEST_F(SystemSamplerMemory, PressureIsTheHosts) {
  for (const auto pressure :
       {MemoryPressure::normal, MemoryPressure::warning, MemoryPressure::critical, MemoryPressure::unknown}) {
    host.pressure = pressure;
    EXPECT_EQ(snapshot().pressure, pressure);
  }
}

TEST_F(SystemSamplerMemory, TotalIsReadOnceAndTimestampIsOfTheReading) {
  SystemSampler sampler(host, clock);
  const std::uint64_t before = host.total;
  host.total = 1;
  clock.advance(std::chrono::seconds(5));
  const auto memory = sampler.snapshot();
  EXPECT_EQ(memory->total, before);
  EXPECT_EQ(memory->timestamp, clock.now());
  EXPECT_EQ(host.physicalMemoryReads, 1);
}

using SystemSamplerDeathTest = SystemSamplerTest;

TEST_F(SystemSamplerDeathTest, SumThatOverflowsIsFatal) {
  constexpr std::uint64_t kHalf = std::uint64_t{1} << 63;
  for (const MemoryCounts& counts :
       {MemoryCounts{.active = kHalf, .inactive = kHalf}, MemoryCounts{.purgeable = kHalf, .fileBacked = kHalf}}) {
    host.counts = counts;
    EXPECT_DEATH((void)snapshot(), "");
  }
  host.counts = MemoryCounts{.active = kHalf, .inactive = kHalf - 1, .purgeable = kHalf, .fileBacked = kHalf - 1};
  EXPECT_LE(snapshot().used(), host.total);
}

TEST_F(SystemSamplerCpu, FirstReadingGivesNothingSecondAFraction) {
  SystemSampler sampler(host, clock);
  host.ticks = CpuTicks{100, 50, 1000, 5};
  EXPECT_EQ(sampler.cpuUsage(), std::nullopt);
  host.ticks = CpuTicks{110, 55, 1080, 10};
  EXPECT_DOUBLE_EQ(sampler.cpuUsage().value(), 0.2);
}

TEST_F(SystemSamplerCpu, UserSystemAndNiceAllCountAsBusy) {
  for (const std::size_t busy : {0U, 1U, 3U}) {
    SystemSampler sampler(host, clock);
    host.ticks = CpuTicks{};
    EXPECT_FALSE(sampler.cpuUsage());
    host.ticks->at(busy) = 30;
    host.ticks->at(2) = 70;
    EXPECT_DOUBLE_EQ(sampler.cpuUsage().value(), 0.3) << busy;
  }
}

TEST_F(SystemSamplerCpu, CounterThatWrappedGivesItsTrueDelta) {
  SystemSampler sampler(host, clock);
  host.ticks = CpuTicks{0xFFFFFFF6, 0, 1000, 0};
  EXPECT_FALSE(sampler.cpuUsage());
  host.ticks = CpuTicks{20, 0, 1070, 0};
  EXPECT_DOUBLE_EQ(sampler.cpuUsage().value(), 0.3);
}

TEST_F(SystemSamplerCpu, NoTicksGiveNothingAndTheNextReadingIsMeasuredFromThem) {
  SystemSampler sampler(host, clock);
  host.ticks = CpuTicks{10, 10, 10, 10};
  EXPECT_FALSE(sampler.cpuUsage());
  EXPECT_FALSE(sampler.cpuUsage());
  host.ticks = CpuTicks{20, 10, 40, 10};
  EXPECT_DOUBLE_EQ(sampler.cpuUsage().value(), 0.25);
}

TEST_F(SystemSamplerCpu, AllIdleIsZeroAndNoIdleIsOne) {
  SystemSampler sampler(host, clock);
  host.ticks = CpuTicks{0, 0, 0, 0};
  EXPECT_FALSE(sampler.cpuUsage());
  host.ticks = CpuTicks{0, 0, 50, 0};
  EXPECT_DOUBLE_EQ(sampler.cpuUsage().value(), 0.0);
  host.ticks = CpuTicks{20, 20, 50, 10};
  EXPECT_DOUBLE_EQ(sampler.cpuUsage().value(), 1.0);
}

TEST_F(SystemSamplerCpu, UnreadableCountersGiveNothingAndKeepThePreviousOnes) {
  SystemSampler sampler(host, clock);
  host.ticks = CpuTicks{0, 0, 0, 0};
  EXPECT_FALSE(sampler.cpuUsage());
  host.ticks.reset();
  EXPECT_FALSE(sampler.cpuUsage());
  host.ticks = CpuTicks{40, 0, 60, 0};
  EXPECT_DOUBLE_EQ(sampler.cpuUsage().value(), 0.4);
}

}  // namespace
}  // namespace nimbo
