// SPDX-License-Identifier: MIT
#include "platform/linux/machine/procfs_host_statistics.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>
#include <iterator>

#include "platform/clock.h"
#include "platform/contracts/host_statistics_contract.h"
#include "platform/machine/meminfo_recordings.h"
#include "support/services/temporary_tree.h"
#include "system/system_sampler.h"

namespace nimbo {
namespace {

constexpr char kCalmPressure[] =
    "some avg10=0.00 avg60=0.12 avg300=0.30 total=81264\n"
    "full avg10=0.00 avg60=0.05 avg300=0.11 total=40210\n";

std::string pressure(const std::string& some, const std::string& full) {
  return "some avg10=" + some + " avg60=50.00 avg300=50.00 total=81264\nfull avg10=" + full +
         " avg60=50.00 avg300=50.00 total=40210\n";
}

TEST(CpuTicksText, InterruptsAndStolenTimeAreSystemAndDiskWaitIsIdle) {
  EXPECT_EQ(parseCpuTicks("cpu  1000 20 300 40000 500 6 70 8 0 0\ncpu0 1 1 1 1 1 1 1 1 1 1\n"),
            (CpuTicks{1000, 300 + 6 + 70 + 8, 40500, 20}));
}

TEST(CpuTicksText, GuestTimeIsNotCountedASecondTime) {
  EXPECT_EQ(parseCpuTicks("cpu  1000 20 300 40000 0 0 0 0 900 15\n"), (CpuTicks{1000, 300, 40000, 20}));
}

TEST(CpuTicksText, LineOfAnOldKernelEndsEarlier) {
  EXPECT_EQ(parseCpuTicks("cpu  1000 20 300 40000\n"), (CpuTicks{1000, 300, 40000, 20}));
  EXPECT_EQ(parseCpuTicks("cpu  1000 20 300 40000 7\n"), (CpuTicks{1000, 300, 40007, 20}));
}

TEST(CpuTicksText, CountersBeyond32BitsAreWhole) {
  EXPECT_EQ(parseCpuTicks("cpu  18446744073709551615 0 0 5000000000\n"),
            (CpuTicks{18446744073709551615U, 0, 5000000000, 0}));
}

TEST(CpuTicksText, CutAndForeignTextIsAbsent) {
  for (const char* text : {"", "cpu", "cpu  1000 20 300 40000 7", "cpu  1000 20 300\n", "cpu0 1 2 3 4\n",
                           "intr 1 2 3 4\n", "cpu  1000 x 300 40000\n", "cpu  1000 -20 300 40000\n"}) {
    EXPECT_EQ(parseCpuTicks(text), std::nullopt) << text;
  }
}

TEST(PressureText, LevelFollowsTheShareOfTheLastTenSeconds) {
  EXPECT_EQ(parsePressure(kCalmPressure), MemoryPressure::normal);
  EXPECT_EQ(parsePressure(pressure("4.99", "0.00")), MemoryPressure::normal);
  EXPECT_EQ(parsePressure(pressure("5.00", "0.00")), MemoryPressure::warning);
  EXPECT_EQ(parsePressure(pressure("80.00", "4.99")), MemoryPressure::warning);
  EXPECT_EQ(parsePressure(pressure("80.00", "5.00")), MemoryPressure::critical);
}

TEST(PressureText, KernelWithoutTheFullLineStillWarns) {
  EXPECT_EQ(parsePressure("some avg10=7.50 avg60=1.00 avg300=0.20 total=1\n"), MemoryPressure::warning);
}

TEST(PressureText, CutAndForeignTextIsAbsent) {
  for (const char* text : {"", "some", "some \n", "some avg10= avg60=1.00\n", "some avg60=1.00\n", "some avg10=high\n",
                           "some avg10=0.00 avg60=0.00", "full avg10=9.00\n"}) {
    EXPECT_EQ(parsePressure(text), std::nullopt) << text;
  }
}

TEST(ZramText, ThirdNumberIsWhatTheDeviceTakes) {
  EXPECT_EQ(parseZramUsed("838860800 209715200 314572800        0 314572800      512        0     1024     1024\n"),
            314572800U);
  EXPECT_EQ(parseZramUsed("  4096     74    12288        0    12288        0        0\n"), 12288U);
}

TEST(ZramText, CutAndForeignTextIsAbsent) {
  for (const char* text : {"", "1 2 3", "1 2\n", "1 2 x\n", "1 2 -3\n"}) {
    EXPECT_EQ(parseZramUsed(text), std::nullopt) << text;
  }
}

class ProcfsHostStatisticsTest : public testing::Test {
 protected:
  ProcfsHostStatisticsTest() { tree.write("proc/meminfo", kDesktopMemInfo); }

  TemporaryTree tree;
  ProcfsHostStatistics host{(tree.path() / "proc").string(), (tree.path() / "sys").string(), std::chrono::seconds(0)};
};

struct LinuxMachine {
  void hasMemory(std::uint64_t bytes) {
    memory = withField(withField(kVirtualMachineMemInfo, "MemTotal", bytes / 1024), "MemAvailable", bytes / 2048);
    tree.write("proc/meminfo", memory);
  }
  void usesSwap(std::uint64_t bytes) {
    constexpr std::uint64_t kFree = 4096;
    memory = withField(withField(memory, "SwapTotal", kFree + bytes / 1024), "SwapFree", kFree);
    tree.write("proc/meminfo", memory);
  }
  void hidesSwap() { tree.write("proc/meminfo", withoutField(withoutField(memory, "SwapTotal"), "SwapFree")); }
  void isPressed(MemoryPressure level) {
    const auto share = [&](MemoryPressure from) { return level >= from ? "9.00" : "0.00"; };
    tree.write("proc/pressure/memory", pressure(share(MemoryPressure::warning), share(MemoryPressure::critical)));
  }
  void hasSpent(const CpuTicks& ticks) {
    std::string line = "cpu ";
    for (const std::size_t index : {0U, 3U, 1U, 2U}) line += ' ' + std::to_string(ticks.at(index));
    tree.write("proc/stat", line + '\n');
  }
  void tellsNothing() {
    for (const char* file : {"proc/meminfo", "proc/stat"}) tree.write(file, "");
  }

  TemporaryTree tree;
  std::string memory;
  ProcfsHostStatistics statistics{(tree.path() / "proc").string(), (tree.path() / "sys").string()};
};
INSTANTIATE_TYPED_TEST_SUITE_P(Linux, HostStatisticsContract, LinuxMachine);

TEST_F(ProcfsHostStatisticsTest, EveryZramDeviceCountsAndOtherDisksDoNot) {
  const auto compressorBytes = [&] { return host.memory()->compressor; };
  const std::uint64_t zswap = 204800 * 1024;
  EXPECT_EQ(compressorBytes(), zswap);
  tree.write("sys/block/zram0/mm_stat", "9 9 1048576 0 0 0 0\n");
  EXPECT_EQ(compressorBytes(), zswap + (1 << 20));
  tree.write("sys/block/zram3/mm_stat", "9 9 2097152 0 0 0 0\n");
  tree.write("sys/block/zram4/mm_stat", "no numbers\n");
  tree.write("sys/block/zram5/size", "0\n");
  tree.write("sys/block/sda/mm_stat", "9 9 4194304 0 0 0 0\n");
  EXPECT_EQ(compressorBytes(), zswap + (3 << 20));
}

TEST_F(ProcfsHostStatisticsTest, DevicesThatWereFoundAreFollowedAndOthersLookedForNowAndThen) {
  ProcfsHostStatistics seldom{(tree.path() / "proc").string(), (tree.path() / "sys").string()};
  tree.write("sys/block/zram0/mm_stat", "9 9 1048576 0 0 0 0\n");
  const auto before = seldom.memory()->compressor;
  tree.write("sys/block/zram0/mm_stat", "9 9 2097152 0 0 0 0\n");
  tree.write("sys/block/zram1/mm_stat", "9 9 1048576 0 0 0 0\n");
  EXPECT_EQ(seldom.memory()->compressor - before, 1U << 20U);
}

TEST_F(ProcfsHostStatisticsTest, CacheOfZfsIsReadBesides) {
  const auto wired = host.memory()->wired;
  tree.write("proc/spl/kstat/zfs/arcstats", "1 1\nname type data\nc_min 4 1048576\nsize 4 3145728\n");
  EXPECT_EQ(wired - host.memory()->wired, 2U << 20);
}

TEST_F(ProcfsHostStatisticsTest, PressureIsTheWorseOfStallsAndOfWhatIsAvailable) {
  tree.write("proc/pressure/memory", pressure("9.00", "0.00"));
  EXPECT_EQ(host.memory()->pressure, MemoryPressure::warning);
  tree.write("proc/pressure/memory", kCalmPressure);
  EXPECT_EQ(host.memory()->pressure, MemoryPressure::normal);
  tree.write("proc/meminfo", withField(kDesktopMemInfo, "MemAvailable", 16265608 / 100 * 4));
  EXPECT_EQ(host.memory()->pressure, MemoryPressure::critical);
  tree.write("proc/meminfo", withoutField(kDesktopMemInfo, "MemAvailable"));
  EXPECT_EQ(host.memory()->pressure, MemoryPressure::normal);
}

TEST_F(ProcfsHostStatisticsTest, AvailableMemoryDecidesThePressureOnOtherKernels) {
  EXPECT_EQ(host.memory()->pressure, MemoryPressure::normal);
  tree.write("proc/meminfo", withField(kDesktopMemInfo, "MemAvailable", 16265608 / 100 * 8));
  EXPECT_EQ(host.memory()->pressure, MemoryPressure::warning);
  tree.write("proc/pressure/memory", "not supported\n");
  EXPECT_EQ(host.memory()->pressure, MemoryPressure::warning);
}

TEST_F(ProcfsHostStatisticsTest, PressureIsAbsentWhenTheKernelTellsNeither) {
  tree.write("proc/meminfo", kOldKernelMemInfo);
  EXPECT_EQ(host.memory()->pressure, MemoryPressure::unknown);
}

TEST_F(ProcfsHostStatisticsTest, TicksComeFromTheFirstLineOfALongFile) {
  std::string text = "cpu  10 20 30 40 50 60 70 80 90 100\n";
  for (int cpu = 0; cpu < 512; ++cpu) text += "cpu" + std::to_string(cpu) + " 1 1 1 1 1 1 1 1 1 1\n";
  tree.write("proc/stat", text);
  EXPECT_EQ(host.cpuTicks(), (CpuTicks{10, 240, 90, 20}));
}

TEST_F(ProcfsHostStatisticsTest, LongestPossibleTickLineIsReadWhole) {
  std::string text = "cpu ";
  for (int field = 0; field < 10; ++field) text += " 10000000000000000000";
  tree.write("proc/stat", text + "\n");
  EXPECT_EQ(host.cpuTicks()->at(0), 10000000000000000000U);
}

TEST_F(ProcfsHostStatisticsTest, CounterThatStepsBackStandsStill) {
  tree.write("proc/stat", "cpu  100 0 100 1000 500\n");
  EXPECT_EQ(host.cpuTicks(), (CpuTicks{100, 100, 1500, 0}));
  tree.write("proc/stat", "cpu  110 0 105 1003 490\n");
  EXPECT_EQ(host.cpuTicks(), (CpuTicks{110, 105, 1500, 0}));
  tree.write("proc/stat", "cpu  120 0 110 1010 495\n");
  EXPECT_EQ(host.cpuTicks(), (CpuTicks{120, 110, 1505, 0}));
}

TEST_F(ProcfsHostStatisticsTest, CounterThatBeginsAnewGoesOnFromWhereItWas) {
  tree.write("proc/stat", "cpu  1000 0 1000 6221800 0\n");
  EXPECT_EQ(host.cpuTicks(), (CpuTicks{1000, 1000, 6221800, 0}));
  tree.write("proc/stat", "cpu  1010 0 1005 5873300 0\n");
  EXPECT_EQ(host.cpuTicks(), std::nullopt);
  tree.write("proc/stat", "cpu  1020 0 1010 5873400 0\n");
  EXPECT_EQ(host.cpuTicks(), (CpuTicks{1020, 1010, 6221900, 0}));
  tree.write("proc/stat", "cpu  1030 0 1015 100 0\n");
  EXPECT_EQ(host.cpuTicks(), std::nullopt);
  tree.write("proc/stat", "cpu  1040 0 1020 200 0\n");
  EXPECT_EQ(host.cpuTicks(), (CpuTicks{1040, 1020, 6222000, 0}));
}

TEST_F(ProcfsHostStatisticsTest, LoadIsTrueAgainRightAfterCountersBeganAnew) {
  const SystemClock clock;
  tree.write("proc/stat", "cpu  1000 0 1000 6221800 0\n");
  (void)SystemSampler(host, clock).cpuUsage();
  SystemSampler afterWake(host, clock);
  tree.write("proc/stat", "cpu  1010 0 1005 5873300 0\n");
  EXPECT_EQ(afterWake.cpuUsage(), std::nullopt);
  tree.write("proc/stat", "cpu  1020 0 1010 5873400 0\n");
  EXPECT_EQ(afterWake.cpuUsage(), std::nullopt);
  tree.write("proc/stat", "cpu  1030 0 1030 5873470 0\n");
  EXPECT_DOUBLE_EQ(afterWake.cpuUsage().value_or(-1), 0.3);
}

TEST_F(ProcfsHostStatisticsTest, MissingFilesAreAbsentUntilTheyAppear) {
  EXPECT_EQ(host.cpuTicks(), std::nullopt);
  tree.write("proc/stat", "cpu  1 2 3 4\n");
  EXPECT_TRUE(host.cpuTicks());
}

std::uint64_t realMemAvailable() {
  std::ifstream file("/proc/meminfo");
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  return memInfoField(text, "MemAvailable").value_or(0);
}

TEST(RealHostStatistics, ReadingsOfThisMachineAgreeWithEachOther) {
  ProcfsHostStatistics host;
  const SystemClock clock;
  SystemSampler sampler(host, clock);
  const auto memory = sampler.snapshot();
  ASSERT_TRUE(memory);
  EXPECT_GT(memory->app, 0U);
  EXPECT_GT(memory->wired, 0U);
  EXPECT_LE(memory->used() + memory->cached, memory->total);
  EXPECT_TRUE(memory->swap);
  EXPECT_NE(memory->pressure, MemoryPressure::unknown);
}

// The two are read one after the other.
TEST(RealHostStatistics, UsedMemoryIsThatOfMemAvailable) {
  ProcfsHostStatistics host;
  const SystemClock clock;
  const auto memory = SystemSampler(host, clock).snapshot();
  ASSERT_TRUE(memory);
  constexpr double kTenthOfAGigabyte = 1e8;
  EXPECT_NEAR(static_cast<double>(memory->available()), static_cast<double>(realMemAvailable()), kTenthOfAGigabyte);
}

TEST(RealHostStatistics, TicksOfThisMachineOnlyGrow) {
  ProcfsHostStatistics host;
  const auto before = host.cpuTicks();
  const auto after = host.cpuTicks();
  ASSERT_TRUE(before && after);
  for (std::size_t index = 0; index < before->size(); ++index) EXPECT_GE((*after)[index], (*before)[index]);
  EXPECT_GT((*after)[2], 0U);
}

}  // namespace
}  // namespace nimbo
