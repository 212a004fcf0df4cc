// SPDX-License-Identifier: MIT
#include "platform/linux/machine/procfs_processes.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstdio>

#include "platform/machine/meminfo_recordings.h"
#include "support/services/temporary_tree.h"
#include "system/process_scan.h"

namespace nimbo {
namespace {

// Kernel 6.18.
constexpr char kStatus[] =
    "Name:\tgnome-shell\nUmask:\t0022\nState:\tS (sleeping)\nTgid:\t2210\nNgid:\t0\nPid:\t2210\nPPid:\t1980\n"
    "TracerPid:\t0\nUid:\t1000\t1000\t1000\t1000\nGid:\t1000\t1000\t1000\t1000\nFDSize:\t256\n"
    "Groups:\t4 24 27 30 46 100 1000 \nNStgid:\t2210\nNSpid:\t2210\nNSpgid:\t2210\nNSsid:\t2210\nKthread:\t0\n"
    "VmPeak:\t 5410912 kB\nVmSize:\t 5289312 kB\nVmLck:\t       0 kB\nVmPin:\t       0 kB\nVmHWM:\t  412044 kB\n"
    "VmRSS:\t  398112 kB\nRssAnon:\t  241668 kB\nRssFile:\t  148332 kB\nRssShmem:\t    8112 kB\n"
    "VmData:\t  701232 kB\nVmStk:\t     132 kB\nVmExe:\t       8 kB\nVmLib:\t  131284 kB\nVmPTE:\t    1648 kB\n"
    "VmSwap:\t   12000 kB\nHugetlbPages:\t       0 kB\nCoreDumping:\t0\nTHP_enabled:\t1\nThreads:\t31\n"
    "Cpus_allowed:\tff\nvoluntary_ctxt_switches:\t81234\nnonvoluntary_ctxt_switches:\t9120\n";

// Kernel 3.13: one figure for all resident memory.
constexpr char kOldStatus[] =
    "Name:\tXorg\nState:\tS (sleeping)\nTgid:\t1201\nPid:\t1201\nVmPeak:\t  412044 kB\nVmSize:\t  398112 kB\n"
    "VmLck:\t       0 kB\nVmPin:\t       0 kB\nVmHWM:\t   98304 kB\nVmRSS:\t   81920 kB\nVmData:\t   70123 kB\n"
    "VmStk:\t     136 kB\nVmSwap:\t    2048 kB\nThreads:\t3\n";

constexpr char kKernelThread[] =
    "Name:\tkworker/0:1H-kblockd\nUmask:\t0000\nState:\tI (idle)\nTgid:\t88\nNgid:\t0\nPid:\t88\nPPid:\t2\n"
    "FDSize:\t64\nGroups:\t \nKthread:\t1\nThreads:\t1\nCpus_allowed:\t1\n";

TEST(ProcessStatus, FootprintIsPrivateMemoryAndItsSwap) {
  const ProcessStatus reading = parseProcessStatus(kStatus);
  EXPECT_EQ(reading.footprint, (241668U + 12000U) * 1024);
  EXPECT_EQ(reading.name, "gnome-shell");
}

TEST(ProcessStatus, AllResidentMemoryStandsInOnOldKernels) {
  EXPECT_EQ(parseProcessStatus(kOldStatus).footprint, (81920U + 2048U) * 1024);
}

TEST(ProcessStatus, ProcessWhollyInSwapHasAFootprint) {
  EXPECT_EQ(parseProcessStatus("Name:\ta\nVmRSS:\t8 kB\nRssAnon:\t0 kB\nVmSwap:\t 64 kB\n").footprint, 64U * 1024);
}

TEST(ProcessStatus, KernelThreadHasNoFootprintAndNoNameIsLookedUp) {
  const ProcessStatus reading = parseProcessStatus(kKernelThread);
  EXPECT_EQ(reading.footprint, 0U);
  EXPECT_EQ(reading.name, "");
}

TEST(ProcessStatus, EscapedNewlineAndBackslashInANameAreUndone) {
  EXPECT_EQ(parseProcessStatus("Name:\ta\\nb\\\\c\\\\n\nRssAnon:\t4 kB\n").name, "a\nb\\c\\n");
  EXPECT_EQ(parseProcessStatus("Name:\tend\\\nRssAnon:\t4 kB\n").name, "end\\");
}

TEST(ProcessStatus, NameKeepsBlanksTabsAndColons) {
  EXPECT_EQ(parseProcessStatus("Name:\t Web\t: x \nRssAnon:\t4 kB\n").name, " Web\t: x ");
}

TEST(ProcessStatus, CutAndForeignTextHasNoFootprint) {
  for (const char* text : {"", "\n", "Name:\tx\nRssAnon:\t12", "Name:\tx\nRssAnon:\n", "Name:\tx\nRssAnon:\tlots kB\n",
                           "RssAnon 4 kB\n", "\xFF\xFF\n"}) {
    EXPECT_EQ(parseProcessStatus(text).footprint, 0U) << text;
  }
}

TEST(ProcessStatm, PrivatePagesAreTheResidentLessTheShared) {
  EXPECT_EQ(parseAnonymousPages("1322328 99528 39111 2 0 175341 0\n"), 99528U - 39111U);
  EXPECT_EQ(parseAnonymousPages("0 0 0 0 0 0 0\n"), 0U);
}

TEST(ProcessStatm, CountersThatCrossGiveNothingRatherThanAHugeNumber) {
  EXPECT_EQ(parseAnonymousPages("100 10 12 2 0 20 0\n"), 0U);
}

TEST(ProcessStatm, CutAndForeignTextIsAbsent) {
  for (const char* text : {"", "1 2 3", "1 2\n", "1 x 3\n", "words of a kind\n"}) {
    EXPECT_EQ(parseAnonymousPages(text), std::nullopt) << text;
  }
}

class ProcfsProcessTableTest : public testing::Test {
 protected:
  std::optional<ProcessReading> readListed(std::int32_t pid) {
    (void)table.list();
    return table.read(pid);
  }

  const std::uint64_t page = static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
  TemporaryTree tree;
  ProcfsProcessTable table{tree.path().string()};
};

TEST_F(ProcfsProcessTableTest, OnlyNumbersAreProcesses) {
  for (const char* name : {"1", "42", "4194304", "self", "sys", "12abc", "-7x", "99999999999"}) {
    tree.write(std::string(name) + "/status", kStatus);
  }
  auto pids = table.list();
  std::sort(pids.begin(), pids.end());
  EXPECT_EQ(pids, (std::vector<std::int32_t>{1, 42, 4194304}));
}

TEST_F(ProcfsProcessTableTest, MissingRootListsAndReadsNothing) {
  ProcfsProcessTable nowhere((tree.path() / "none").string());
  EXPECT_TRUE(nowhere.list().empty());
  EXPECT_EQ(nowhere.read(1), std::nullopt);
}

TEST_F(ProcfsProcessTableTest, WhileSwapIsInUseTheStatusTellsAll) {
  tree.write("meminfo", kDesktopMemInfo);
  tree.write("2210/status", kStatus);
  tree.write("2210/statm", "1 1 0 0 0 0 0\n");
  EXPECT_EQ(readListed(2210)->footprint, (241668U + 12000U) * 1024);
  EXPECT_EQ(readListed(2210)->name, "gnome-shell");
}

TEST_F(ProcfsProcessTableTest, WithoutSwapTheTwoSmallFilesDo) {
  tree.write("meminfo", kVirtualMachineMemInfo);
  tree.write("2210/statm", "1322328 99528 39111 2 0 175341 0\n");
  tree.write("2210/comm", "gnome-shell\n");
  EXPECT_EQ(readListed(2210)->footprint, (99528U - 39111U) * page);
  EXPECT_EQ(readListed(2210)->name, "gnome-shell");
}

TEST_F(ProcfsProcessTableTest, UnknownStateOfSwapCountsAsInUse) {
  tree.write("2210/status", kStatus);
  EXPECT_EQ(table.read(2210)->name, "gnome-shell");
  EXPECT_EQ(readListed(2210)->name, "gnome-shell");
}

TEST_F(ProcfsProcessTableTest, SwapThatFillsIsNoticedAtTheNextList) {
  tree.write("meminfo", kVirtualMachineMemInfo);
  tree.write("7/statm", "9 2 1 0 0 0 0\n");
  tree.write("7/comm", "small\n");
  tree.write("7/status", kStatus);
  EXPECT_EQ(readListed(7)->footprint, page);
  tree.write("meminfo", kDesktopMemInfo);
  EXPECT_EQ(readListed(7)->footprint, (241668U + 12000U) * 1024);
}

TEST_F(ProcfsProcessTableTest, NameInCommIsTakenAsItIsWithoutTheLastNewline) {
  tree.write("meminfo", kVirtualMachineMemInfo);
  tree.write("7/statm", "9 2 1 0 0 0 0\n");
  tree.write("7/comm", "a\nb\\c\n");
  EXPECT_EQ(readListed(7)->name, "a\nb\\c");
}

TEST_F(ProcfsProcessTableTest, ProcessThatEndsBeforeItsNameIsReadIsNameless) {
  tree.write("meminfo", kVirtualMachineMemInfo);
  tree.write("7/statm", "9 2 1 0 0 0 0\n");
  EXPECT_EQ(readListed(7)->footprint, page);
  EXPECT_EQ(readListed(7)->name, "");
  EXPECT_EQ(scanProcesses(table).processes.at(0).name, "Process 7");
}

TEST_F(ProcfsProcessTableTest, ExitedAndEmptyAreAbsent) {
  for (const char* memInfo : {kVirtualMachineMemInfo, kDesktopMemInfo}) {
    tree.write("meminfo", memInfo);
    EXPECT_EQ(readListed(5), std::nullopt);
    tree.write("6/status", "");
    tree.write("6/statm", "");
    EXPECT_EQ(readListed(6), std::nullopt);
  }
}

TEST_F(ProcfsProcessTableTest, MemoryBehindThousandsOfGroupsIsFound) {
  std::string status = "Name:\tdomain-user\nGroups:\t";
  for (int group = 0; group < 65536; ++group) status += std::to_string(1900000000 + group) + ' ';
  tree.write("9/status", status + "\nVmRSS:\t 900 kB\nRssAnon:\t 512 kB\nVmSwap:\t 0 kB\nThreads:\t1\n");
  EXPECT_EQ(table.read(9)->footprint, 512U * 1024);
  EXPECT_EQ(table.read(9)->name, "domain-user");
}

std::string fileOfThisProcess(const char* name) {
  std::string text;
  std::array<char, 4096> buffer;
  FILE* const file = std::fopen((std::string("/proc/self/") + name).c_str(), "r");
  while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), file)) text.append(buffer.data(), size);
  std::fclose(file);
  return text;
}

TEST(RealProcessTable, OwnProcessIsListedWithItsName) {
  ASSERT_EQ(::prctl(PR_SET_NAME, "nim\\bo\n test"), 0);
  ProcfsProcessTable table;
  const auto pids = table.list();
  EXPECT_NE(std::find(pids.begin(), pids.end(), ::getpid()), pids.end());
  EXPECT_EQ(table.read(::getpid())->name, "nim\\bo\n test");
  EXPECT_EQ(parseProcessStatus(fileOfThisProcess("status")).name, "nim\\bo\n test");
}

TEST(RealProcessTable, BothWaysOfMeasuringSeeNewMemory) {
  constexpr std::size_t kSize = 64 << 20;
  const auto byStatus = [] { return parseProcessStatus(fileOfThisProcess("status")).footprint; };
  const auto byStatm = [] {
    return parseAnonymousPages(fileOfThisProcess("statm")).value() *
           static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
  };
  const std::uint64_t statusBefore = byStatus();
  const std::uint64_t statmBefore = byStatm();
  // Populated by the kernel: a sanitizer would make memory of its own for what the test touches.
  constexpr int kFlags = MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE;
  void* const memory = ::mmap(nullptr, kSize, PROT_READ | PROT_WRITE, kFlags, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  EXPECT_NEAR(static_cast<double>(byStatus() - statusBefore), kSize, kSize / 16.0);
  EXPECT_NEAR(static_cast<double>(byStatm() - statmBefore), kSize, kSize / 16.0);
  ::munmap(memory, kSize);
}

TEST(RealProcessTable, ChildThatWasReapedIsAbsent) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(0);
  ASSERT_GT(child, 0);
  ASSERT_EQ(::waitpid(child, nullptr, 0), child);
  ProcfsProcessTable table;
  EXPECT_EQ(table.read(child), std::nullopt);
  (void)table.list();
  EXPECT_EQ(table.read(child), std::nullopt);
}

TEST(RealProcessTable, ScanOfThisMachineFindsThisProcess) {
  ProcfsProcessTable table;
  const ProcessScan scan = scanProcesses(table);
  const auto self = std::find_if(scan.processes.begin(), scan.processes.end(),
                                 [](const ProcessMemory& process) { return process.pid == ::getpid(); });
  ASSERT_NE(self, scan.processes.end());
  EXPECT_GT(self->bytes, 0U);
  EXPECT_TRUE(std::is_sorted(scan.processes.begin(), scan.processes.end(),
                             [](const auto& left, const auto& right) { return left.bytes > right.bytes; }));
}

}  // namespace
}  // namespace nimbo
