// SPDX-License-Identifier: MIT
#include "system/system_sampler.h"

#include <gtest/gtest.h>

#include <limits>

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
  host.memory = 1000 * kPage;
  host.pages =
      PageCounts{.wired = 100, .compressor = 50, .active = 300, .inactive = 350, .purgeable = 20, .fileBacked = 180};
  host.swap = 12345;
  host.level = 2;
  EXPECT_EQ(snapshot(), (MemorySnapshot{.total = 1000 * kPage,
                                        .app = 450 * kPage,
                                        .wired = 100 * kPage,
                                        .compressed = 50 * kPage,
                                        .cached = 200 * kPage,
                                        .swap = 12345,
                                        .pressure = MemoryPressure::warning,
                                        .timestamp = clock.now()}));
}

TEST_F(SystemSamplerMemory, SizesFollowThePageSize) {
  host.bytesPerPage = 16384;
  host.pages = PageCounts{.wired = 3};
  EXPECT_EQ(snapshot().wired, 3U * 16384);
}

TEST_F(SystemSamplerMemory, UnreadablePageCountsGiveNoSnapshot) {
  host.pages.reset();
  EXPECT_EQ(SystemSampler(host, clock).snapshot(), std::nullopt);
}

TEST_F(SystemSamplerMemory, UnreadablePageSizeGivesNoSnapshot) {
  host.bytesPerPage.reset();
  EXPECT_EQ(SystemSampler(host, clock).snapshot(), std::nullopt);
}

TEST_F(SystemSamplerMemory, FailureIsNotRemembered) {
  SystemSampler sampler(host, clock);
  host.pages.reset();
  EXPECT_FALSE(sampler.snapshot());
  host.pages = PageCounts{};
  EXPECT_TRUE(sampler.snapshot());
}

TEST_F(SystemSamplerMemory, UnreadableSwapGivesASnapshotWithoutSwap) {
  host.swap.reset();
  EXPECT_EQ(snapshot().swap, std::nullopt);
}

TEST_F(SystemSamplerMemory, UnusedSwapIsZeroNotAbsent) { EXPECT_EQ(snapshot().swap, 0U); }

TEST_F(SystemSamplerMemory, WiredBeyondPhysicalMemoryTakesAllOfIt) {
  host.memory = 10 * kPage;
  host.pages = PageCounts{.wired = 11, .compressor = 5, .active = 7, .inactive = 7, .purgeable = 1, .fileBacked = 3};
  const MemorySnapshot memory = snapshot();
  EXPECT_EQ(memory.wired, memory.total);
  EXPECT_EQ(memory.compressed, 0U);
  EXPECT_EQ(memory.app, 0U);
  EXPECT_EQ(memory.cached, 0U);
}

TEST_F(SystemSamplerMemory, CachedBeyondPagesInUseLeavesNoAppAndTakesWhatIsLeft) {
  host.memory = 100 * kPage;
  host.pages =
      PageCounts{.wired = 60, .compressor = 10, .active = 20, .inactive = 20, .purgeable = 15, .fileBacked = 30};
  const MemorySnapshot memory = snapshot();
  EXPECT_EQ(memory.app, 0U);
  EXPECT_EQ(memory.cached, 30 * kPage);
}

TEST_F(SystemSamplerMemory, CompressedIsCappedByWhatWiredLeft) {
  host.memory = 100 * kPage;
  host.pages = PageCounts{.wired = 60, .compressor = 70, .active = 20, .inactive = 20};
  const MemorySnapshot memory = snapshot();
  EXPECT_EQ(memory.compressed, 40 * kPage);
  EXPECT_EQ(memory.app, 0U);
}

TEST_F(SystemSamplerMemory, AppIsCappedByWhatWiredAndCompressedLeft) {
  host.memory = 100 * kPage;
  host.pages = PageCounts{.wired = 40, .compressor = 40, .active = 90, .inactive = 0, .fileBacked = 10};
  const MemorySnapshot memory = snapshot();
  EXPECT_EQ(memory.app, 20 * kPage);
  EXPECT_EQ(memory.cached, 0U);
  EXPECT_EQ(memory.used(), memory.total);
}

TEST_F(SystemSamplerMemory, EveryPressureLevelHasItsWord) {
  const auto word = [&](std::optional<std::uint32_t> level) {
    host.level = level;
    return pressureWord(snapshot().pressure);
  };
  EXPECT_EQ(word(1), "Normal");
  EXPECT_EQ(word(2), "Elevated");
  EXPECT_EQ(word(4), "High");
  for (const std::uint32_t other : {0U, 3U, 5U, std::numeric_limits<std::uint32_t>::max()}) {
    EXPECT_EQ(word(other), "Unavailable") << other;
  }
  EXPECT_EQ(word(std::nullopt), "Unavailable");
}

TEST_F(SystemSamplerMemory, TotalIsReadOnceAndTimestampIsOfTheReading) {
  SystemSampler sampler(host, clock);
  const std::uint64_t before = host.memory;
  host.memory = 1;
  clock.advance(std::chrono::seconds(5));
  const auto memory = sampler.snapshot();
  EXPECT_EQ(memory->total, before);
  EXPECT_EQ(memory->timestamp, clock.now());
  EXPECT_EQ(host.physicalMemoryReads, 1);
}

using SystemSamplerDeathTest = SystemSamplerTest;

TEST_F(SystemSamplerDeathTest, PageCountThatOverflowsIsFatal) {
  for (auto count : {&PageCounts::wired, &PageCounts::compressor, &PageCounts::active, &PageCounts::inactive,
                     &PageCounts::purgeable, &PageCounts::fileBacked}) {
    PageCounts pages;
    pages.*count = (std::uint64_t{1} << 52);
    host.pages = pages;
    EXPECT_DEATH((void)snapshot(), "");
    pages.*count -= 1;
    host.pages = pages;
    EXPECT_LE(snapshot().used(), host.memory);
  }
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
