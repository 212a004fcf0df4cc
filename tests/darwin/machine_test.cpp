// SPDX-License-Identifier: MIT
#include <sys/sysctl.h>
#include <unistd.h>

#include "darwin/fakes/fake_host.h"
#include "darwin/fakes/fake_processes.h"
#include "platform/clock.h"
#include "platform/contracts/host_statistics_contract.h"
#include "platform/contracts/process_table_contract.h"
#include "platform/darwin/machine/libproc_processes.h"
#include "platform/darwin/machine/mach_host_statistics.h"
#include "system/process_scan.h"
#include "system/system_sampler.h"

namespace nimbo {
namespace {

constexpr char kPressure[] = "kern.memorystatus_vm_pressure_level";
constexpr char kSwap[] = "vm.swapusage";

xsw_usage swapOf(std::uint64_t used) { return {1U << 30U, (1U << 30U) - used, used, 16384, 1}; }

struct DarwinMachine {
  void hasMemory(std::uint64_t bytes) {
    host.failures.clear();
    host.setValue("hw.memsize", bytes);
    const auto sixteenth = static_cast<natural_t>(bytes / host.pageSize / 16);
    host.pages.active_count = host.pages.inactive_count = 4 * sixteenth;
    host.pages.wire_count = host.pages.compressor_page_count = 2 * sixteenth;
    host.pages.external_page_count = 3 * sixteenth;
    host.pages.purgeable_count = host.pages.free_count = sixteenth;
  }
  void usesSwap(std::uint64_t bytes) { host.setValue(kSwap, swapOf(bytes)); }
  void hidesSwap() { host.values.erase(kSwap); }
  void isPressed(MemoryPressure level) {
    host.setValue(kPressure, level == MemoryPressure::normal ? 1U : level == MemoryPressure::warning ? 2U : 4U);
  }
  void hasSpent(const CpuTicks& ticks) { std::copy(ticks.begin(), ticks.end(), host.load.cpu_ticks); }
  void tellsNothing() {
    host.values.clear();
    for (const char* call : {"host_statistics", "host_statistics64"}) host.failures[call] = KERN_FAILURE;
  }

  FakeHost host;
  MachHostStatistics statistics;
};
INSTANTIATE_TYPED_TEST_SUITE_P(Darwin, HostStatisticsContract, DarwinMachine);

class MachHostStatisticsTest : public testing::Test {
 protected:
  MachHostStatisticsTest() { machine.hasMemory(std::uint64_t{16} << 30); }

  DarwinMachine machine;
  FakeHost& host = machine.host;
  MachHostStatistics& statistics = machine.statistics;
  const SystemClock clock;
};

TEST_F(MachHostStatisticsTest, PagesAreCountedInBytesEachInItsRole) {
  host.pages.free_count = 1;
  host.pages.active_count = 2;
  host.pages.inactive_count = 3;
  host.pages.wire_count = 4;
  host.pages.purgeable_count = 5;
  host.pages.speculative_count = 6;
  host.pages.compressor_page_count = 0xFFFFFFFF;
  host.pages.throttled_count = 7;
  host.pages.external_page_count = 8;
  host.pages.internal_page_count = 9;
  const auto memory = statistics.memory();
  ASSERT_TRUE(memory);
  EXPECT_EQ(memory->active, 2U * 16384);
  EXPECT_EQ(memory->inactive, 3U * 16384);
  EXPECT_EQ(memory->wired, 4U * 16384);
  EXPECT_EQ(memory->purgeable, 5U * 16384);
  EXPECT_EQ(memory->compressor, std::uint64_t{0xFFFFFFFF} * 16384);
  EXPECT_EQ(memory->fileBacked, 8U * 16384);
}

TEST_F(MachHostStatisticsTest, PageHasTheSizeThatTheHostSays) {
  host.pages.wire_count = 3;
  host.pageSize = 4096;
  EXPECT_EQ(statistics.memory()->wired, 3U * 4096);
  host.failures["host_page_size"] = KERN_FAILURE;
  EXPECT_FALSE(statistics.memory());
}

TEST_F(MachHostStatisticsTest, NewerKernelsLongerRecordIsReadAsFarAsItIsKnown) {
  host.pages.wire_count = 3;
  host.pagesWords = 62;
  EXPECT_EQ(statistics.memory()->wired, 3U * 16384);
}

TEST_F(MachHostStatisticsTest, KernelThatEndsBeforeWhatIsNeededTellsNothing) {
  host.pages.external_page_count = 3;
  host.pagesWords = 35;
  EXPECT_EQ(statistics.memory()->fileBacked, 3U * 16384);
  for (const std::size_t words : {34U, 24U}) {
    host.passASecond();
    host.pagesWords = words;
    EXPECT_FALSE(statistics.memory()) << words;
  }
}

TEST_F(MachHostStatisticsTest, UnknownLevelsOfPressureAreUnknown) {
  for (const unsigned level : {0U, 3U, 5U, 0xFFFFFFFFU}) {
    host.setValue(kPressure, level);
    EXPECT_EQ(statistics.memory()->pressure, MemoryPressure::unknown) << level;
  }
  host.setValue(kPressure, std::uint64_t{1});
  EXPECT_EQ(statistics.memory()->pressure, MemoryPressure::unknown) << "of another size";
  host.values.erase(kPressure);
  EXPECT_EQ(statistics.memory()->pressure, MemoryPressure::unknown);
}

TEST_F(MachHostStatisticsTest, LoadIsRightAcrossAWrapOfTheCounters) {
  SystemSampler sampler(statistics, clock);
  machine.hasSpent({0xFFFFFFF0, 0, 0xFFFFFFF0, 0});
  EXPECT_EQ(sampler.cpuUsage(), std::nullopt);
  machine.hasSpent({0x10, 0, 0x50, 0});
  EXPECT_DOUBLE_EQ(sampler.cpuUsage().value_or(-1), 0.25);
}

TEST_F(MachHostStatisticsTest, LoadIsAbsentWhileTheKernelDoesNotCountAnew) {
  SystemSampler sampler(statistics, clock);
  const auto usage = [&](natural_t user) {
    machine.hasSpent({user, 0, user, 0});
    return sampler.cpuUsage();
  };
  for (natural_t reading = 0; reading < 10; ++reading) EXPECT_EQ(usage(reading).has_value(), reading > 0);
  EXPECT_EQ(usage(20), std::nullopt);
  EXPECT_EQ(usage(21), std::nullopt);
  host.passASecond();
  EXPECT_EQ(usage(22), 0.5);
}

TEST_F(MachHostStatisticsTest, RightToTheHostIsTakenOnceAndGivenBack) {
  EXPECT_EQ(host.rights(), 1);
  {
    MachHostStatistics another;
    (void)another.memory();
    (void)another.cpuTicks();
    EXPECT_EQ(host.rights(), 2);
  }
  EXPECT_EQ(host.rights(), 1);
}

TEST_F(MachHostStatisticsTest, WithoutTheRightThereAreOnlyNamedValues) {
  host.failures["mach_host_self"] = KERN_FAILURE;
  MachHostStatistics blind;
  host.failures.clear();
  EXPECT_FALSE(blind.memory());
  EXPECT_FALSE(blind.cpuTicks());
  EXPECT_GT(blind.physicalMemory(), 0U);
}

TEST_F(MachHostStatisticsTest, MoreBytesThanCanBeCountedAreAFault) {
  host.pages.wire_count = 0xFFFFFFFF;
  host.pageSize = std::uint64_t{1} << 40;
  EXPECT_DEATH((void)statistics.memory(), "");
}

struct DarwinProcesses {
  void starts(std::int32_t pid, std::uint64_t bytes, const char* name) {
    kernel.running[pid] = {name, bytes, 2 * bytes};
  }
  void ends(std::int32_t pid) { kernel.running.erase(pid); }
  void startsForbidden(std::int32_t pid) { kernel.running[pid] = {.name = "root's", .isOurs = false}; }

  FakeProcesses kernel;
  LibprocProcessTable table;
};
INSTANTIATE_TYPED_TEST_SUITE_P(Darwin, ProcessTableContract, DarwinProcesses);

class LibprocProcessesTest : public testing::Test {
 protected:
  DarwinProcesses processes;
  FakeProcesses& kernel = processes.kernel;
};

TEST_F(LibprocProcessesTest, ScanHasTheReadableOnesWithTheirFootprints) {
  processes.starts(12, 5 << 20, "small");
  processes.starts(300, 9 << 20, "large");
  processes.starts(40, 0, "empty");
  processes.starts(50, 5 << 20, "");
  processes.startsForbidden(1);
  const auto scan = scanProcesses(processes.table, 10);
  EXPECT_EQ(scan.processes,
            (std::vector<ProcessMemory>{{300, "large", 9 << 20}, {12, "small", 5 << 20}, {50, "Process 50", 5 << 20}}));
  EXPECT_EQ(scan.unreadable, 1);
}

TEST_F(LibprocProcessesTest, ThoseThatStartWhileTheyAreCountedAreListed) {
  kernel.onCounted = [&] {
    for (std::int32_t pid = 1; pid <= 1000; ++pid) processes.starts(pid, 1, "child");
  };
  EXPECT_EQ(processes.table.list().size(), 1U + 20 + 256) << "as many as there is room for";
  EXPECT_EQ(processes.table.list().size(), 1001U);
}

TEST_F(LibprocProcessesTest, NobodyIsListedWhenTheKernelRefuses) {
  processes.starts(12, 5 << 20, "a");
  kernel.onCounted = [&] { kernel.isListed = false; };
  EXPECT_TRUE(processes.table.list().empty());
  EXPECT_TRUE(processes.table.list().empty());
}

TEST_F(LibprocProcessesTest, OwnUsageIsOfThisProcess) {
  EXPECT_FALSE(readOwnUsage());
  processes.starts(::getpid(), 12 << 20, "nimbo");
  auto usage = readOwnUsage();
  ASSERT_TRUE(usage);
  EXPECT_EQ(usage->physicalFootprint, 12U << 20);
  EXPECT_EQ(usage->residentSize, 24U << 20);
  const auto before = usage->cpuTime;
  while (usage->cpuTime < before + std::chrono::milliseconds(20)) {
    usage = readOwnUsage();
    ASSERT_TRUE(usage);
  }
}

}  // namespace
}  // namespace nimbo
