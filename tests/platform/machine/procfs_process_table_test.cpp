// SPDX-License-Identifier: MIT
#include "platform/linux/machine/procfs_processes.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <thread>

#include "platform/contracts/process_table_contract.h"
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
}

TEST(ProcessStatus, AtMostSharedMemoryAndHugePagesAreItsAsWell) {
  EXPECT_EQ(parseProcessStatus(kStatus).most, (241668U + 12000U + 8112U) * 1024);
  EXPECT_EQ(parseProcessStatus("Name:\tvm\nRssAnon:\t8 kB\nVmSwap:\t0 kB\nHugetlbPages:\t 2048 kB\n").most,
            (8U + 2048U) * 1024);
}

TEST(ProcessStatus, AllResidentMemoryStandsInOnOldKernels) {
  EXPECT_EQ(parseProcessStatus(kOldStatus).footprint, (81920U + 2048U) * 1024);
}

TEST(ProcessStatus, ProcessWhollyInSwapHasAFootprint) {
  EXPECT_EQ(parseProcessStatus("Name:\ta\nVmRSS:\t8 kB\nRssAnon:\t0 kB\nVmSwap:\t 64 kB\n").footprint, 64U * 1024);
}

TEST(ProcessStatus, KernelThreadHasNoFootprint) { EXPECT_EQ(parseProcessStatus(kKernelThread).footprint, 0U); }

TEST(ProcessStatus, CutAndForeignTextHasNoFootprint) {
  for (const char* text : {"", "\n", "Name:\tx\nRssAnon:\t12", "Name:\tx\nRssAnon:\n", "Name:\tx\nRssAnon:\tlots kB\n",
                           "RssAnon 4 kB\n", "\xFF\xFF\n"}) {
    EXPECT_EQ(parseProcessStatus(text).footprint, 0U) << text;
  }
}

TEST(ProcessStatm, PrivatePagesAreTheResidentLessTheShared) {
  const auto pages = parseProcessPages("1322328 99528 39111 2 0 175341 0\n");
  ASSERT_TRUE(pages);
  EXPECT_EQ(pages->anonymous, 99528U - 39111U);
  EXPECT_EQ(pages->resident, 99528U);
  EXPECT_EQ(pages->size, 1322328U);
  EXPECT_EQ(parseProcessPages("0 0 0 0 0 0 0\n")->resident, 0U);
}

TEST(ProcessStatm, CountersThatCrossGiveNothingRatherThanAHugeNumber) {
  EXPECT_EQ(parseProcessPages("100 10 12 2 0 20 0\n")->anonymous, 0U);
}

TEST(ProcessStatm, CutAndForeignTextIsAbsent) {
  for (const char* text : {"", "1 2 3", "1 2\n", "1 x 3\n", "words of a kind\n"}) {
    EXPECT_FALSE(parseProcessPages(text)) << text;
  }
}

// Kernel 6.18, a virtual machine on huge pages.
constexpr char kRollup[] =
    "56464813e000-7ffe69e4a000 ---p 00000000 00:00 0                          [rollup]\n"
    "Rss:              624812 kB\nPss:              420253 kB\nPss_Dirty:        400112 kB\nPss_Anon:         100112 "
    "kB\n"
    "Pss_File:          20141 kB\nPss_Shmem:        300000 kB\nShared_Clean:       1472 kB\nShared_Dirty:          0 "
    "kB\n"
    "Private_Clean:        40 kB\nPrivate_Dirty:    400112 kB\nReferenced:       624812 kB\nAnonymous:        101234 "
    "kB\n"
    "KSM:                   0 kB\nLazyFree:              0 kB\nAnonHugePages:         0 kB\nShmemPmdMapped:        0 "
    "kB\n"
    "FilePmdMapped:         0 kB\nShared_Hugetlb:     2048 kB\nPrivate_Hugetlb:    8192 kB\nSwap:               9000 "
    "kB\n"
    "SwapPss:            7000 kB\nLocked:                0 kB\n";

TEST(ProcessRollup, FootprintIsTheShareOfAllButFiles) {
  EXPECT_EQ(parseFootprint(kRollup)->bytes, (100112U + 300000U + 8192U + 7000U) * 1024);
}

TEST(ProcessRollup, OnlyAnonymousMemoryOfWhichAllIsTheProcesssOwnIsItsAlone) {
  const auto isAlone = [](const char* text) { return parseFootprint(text)->alone; };
  EXPECT_TRUE(isAlone("Pss_Anon: 8 kB\nPss_Shmem: 0 kB\nAnonymous: 8 kB\nSwap: 4 kB\nSwapPss: 4 kB\n"));
  EXPECT_FALSE(isAlone("Pss_Anon: 7 kB\nPss_Shmem: 0 kB\nAnonymous: 8 kB\nSwap: 4 kB\nSwapPss: 4 kB\n"));
  EXPECT_FALSE(isAlone("Pss_Anon: 8 kB\nPss_Shmem: 0 kB\nAnonymous: 8 kB\nSwap: 4 kB\nSwapPss: 2 kB\n"));
  EXPECT_FALSE(isAlone("Pss_Anon: 8 kB\nPss_Shmem: 4 kB\nAnonymous: 8 kB\nSwap: 0 kB\nSwapPss: 0 kB\n"));
}

TEST(ProcessRollup, TextThatDoesNotTellThePartsIsAbsent) {
  for (const char* text : {"", "Rss: 4 kB\nPss: 4 kB\nSwapPss: 0 kB\n", "Pss_Anon:\n", "Pss_Anon: 4"}) {
    EXPECT_FALSE(parseFootprint(text)) << text;
  }
}

struct LinuxProcesses {
  void starts(std::int32_t pid, std::uint64_t bytes, const std::string& name) const {
    const std::string folder = std::to_string(pid) + "/";
    const std::string pages = std::to_string(bytes / static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE)));
    const std::string size = " " + std::to_string(bytes / 1024) + " kB\n";
    tree.write(folder + "comm", name + "\n");
    tree.write(folder + "statm", pages + " " + pages + " 0 0 0 0 0\n");
    tree.write(folder + "status", "RssAnon:" + size);
    tree.write(folder + "smaps_rollup", "Pss_Anon:" + size);
  }
  void ends(std::int32_t pid) const { std::filesystem::remove_all(tree.path() / std::to_string(pid)); }
  void startsForbidden(std::int32_t pid) const { std::filesystem::create_directory(tree.path() / std::to_string(pid)); }

  TemporaryTree tree;
  ProcfsProcessTable table{tree.path().string()};
};
INSTANTIATE_TYPED_TEST_SUITE_P(Linux, ProcessTableContract, LinuxProcesses);

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
}

TEST_F(ProcfsProcessTableTest, WithoutSwapTheSmallFileDoes) {
  tree.write("meminfo", kVirtualMachineMemInfo);
  tree.write("2210/statm", "1322328 4000 3000 2 0 175341 0\n");
  EXPECT_EQ(readListed(2210)->footprint, 1000 * page);
  EXPECT_EQ(readListed(2210)->most, 4000 * page);
}

TEST_F(ProcfsProcessTableTest, WhileHugePagesAreInUseTheStatusTellsAllToo) {
  tree.write("meminfo", withField(kVirtualMachineMemInfo, "Hugetlb", 2048));
  tree.write("2210/statm", "1 1 0 0 0 0 0\n");
  tree.write("2210/status", kStatus);
  EXPECT_EQ(readListed(2210)->footprint, (241668U + 12000U) * 1024);
  tree.write("2210/status", "RssAnon:\t8 kB\nHugetlbPages:\t 2048 kB\n");
  EXPECT_EQ(readListed(2210)->most, (8U + 2048U) * 1024) << "more of them with the same pages";
}

TEST_F(ProcfsProcessTableTest, LargeProcessIsNotTakenForOneOfMuchMemoryBecauseOfItsFiles) {
  tree.write("meminfo", kVirtualMachineMemInfo);
  tree.write("2210/statm", "1322328 99528 39111 2 0 175341 0\n");
  tree.write("2210/status", kStatus);
  EXPECT_EQ(readListed(2210)->most, (241668U + 12000U + 8112U) * 1024);
}

TEST_F(ProcfsProcessTableTest, ProcessWithNothingButSharedMemoryIsACandidate) {
  tree.write("meminfo", kVirtualMachineMemInfo);
  tree.write("7/statm", "999 500 500 2 0 20 0\n");
  tree.write("7/comm", "database\n");
  tree.write("7/smaps_rollup", "Pss_Anon: 0 kB\nPss_Shmem: 1900 kB\n");
  EXPECT_EQ(scanProcesses(table, 3).processes, (std::vector<ProcessMemory>{{7, "database", 1900 * 1024}}));
}

TEST_F(ProcfsProcessTableTest, NameThatWasCutIsCompletedFromTheCommand) {
  using namespace std::string_literals;
  const auto named = [this](const char* name, std::string_view command) {
    tree.write("7/comm", std::string(name) + "\n");
    tree.write("7/cmdline", command);
    return table.name(7);
  };
  EXPECT_EQ(named("gnome-terminal-", "/usr/libexec/gnome-terminal-server\0--x\0"s), "gnome-terminal-server");
  EXPECT_EQ(named("unattended-upgr", "/usr/bin/python3\0/usr/bin/unattended-upgrade\0"s), "unattended-upgrade");
  EXPECT_EQ(named("gnome-terminal-", "something else\0"s), "gnome-terminal-");
  EXPECT_EQ(named("gnome-terminal-", ""), "gnome-terminal-");
  EXPECT_EQ(named("gnome-shell", "/usr/bin/gnome-shell-extended\0"s), "gnome-shell") << "it is whole";
  EXPECT_EQ(named("memfd:my-sealed", "/usr/bin/my-tool\0--x\0"s), "my-tool");
  EXPECT_EQ(named("3", "/usr/bin/my-tool\0--x\0"s), "my-tool");
  EXPECT_EQ(named("a\nb\\c", ""), "a\nb\\c");
  EXPECT_EQ(named("memfd:x", ""), "memfd:x");
  EXPECT_EQ(table.name(8), "") << "gone";
}

TEST_F(ProcfsProcessTableTest, UnknownStateOfSwapCountsAsInUse) {
  tree.write("2210/statm", "1 1 0 0 0 0 0\n");
  tree.write("2210/status", kStatus);
  EXPECT_EQ(table.read(2210)->footprint, (241668U + 12000U) * 1024);
  EXPECT_EQ(readListed(2210)->footprint, (241668U + 12000U) * 1024);
}

TEST_F(ProcfsProcessTableTest, SwapThatFillsIsNoticedAtTheNextList) {
  tree.write("meminfo", kVirtualMachineMemInfo);
  tree.write("7/statm", "9 2 1 0 0 0 0\n");
  tree.write("7/status", kStatus);
  EXPECT_EQ(readListed(7)->footprint, page);
  tree.write("meminfo", kDesktopMemInfo);
  EXPECT_EQ(readListed(7)->footprint, (241668U + 12000U) * 1024);
}

TEST_F(ProcfsProcessTableTest, ProcessThatEndsBeforeItsNameIsReadIsNameless) {
  tree.write("meminfo", kVirtualMachineMemInfo);
  tree.write("7/statm", "9 2 1 0 0 0 0\n");
  EXPECT_EQ(readListed(7)->footprint, page);
  EXPECT_EQ(scanProcesses(table, 3).processes.at(0).name, "Process 7");
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
  tree.write("9/statm", "900 225 97 0 0 0 0\n");
  tree.write("9/status", status + "\nVmRSS:\t 900 kB\nRssAnon:\t 512 kB\nVmSwap:\t 0 kB\nThreads:\t1\n");
  EXPECT_EQ(table.read(9)->footprint, 512U * 1024);
}

std::string fileOfThisProcess(const char* name) {
  std::string text;
  std::array<char, 4096> buffer;
  FILE* const file = std::fopen((std::string("/proc/self/") + name).c_str(), "r");
  while (const std::size_t size = std::fread(buffer.data(), 1, buffer.size(), file)) text.append(buffer.data(), size);
  std::fclose(file);
  return text;
}

/// Memory that the kernel fills: a sanitizer would make memory of its own for what the test touches.
class FilledMemory {
 public:
  FilledMemory(std::size_t size, int sharing)
      : size_(size),
        memory_(::mmap(nullptr, size, PROT_READ | PROT_WRITE, sharing | MAP_ANONYMOUS | MAP_POPULATE, -1, 0)) {}
  ~FilledMemory() { ::munmap(memory_, size_); }
  FilledMemory(const FilledMemory&) = delete;
  FilledMemory& operator=(const FilledMemory&) = delete;

 private:
  const std::size_t size_;
  void* const memory_;
};

TEST(RealProcessTable, OwnProcessIsListedWithItsName) {
  ASSERT_EQ(::prctl(PR_SET_NAME, "nim\\bo\n test"), 0);
  ProcfsProcessTable table;
  const auto pids = table.list();
  EXPECT_NE(std::find(pids.begin(), pids.end(), ::getpid()), pids.end());
  EXPECT_EQ(table.name(::getpid()), "nim\\bo\n test");
}

TEST(RealProcessTable, BothWaysOfMeasuringSeeNewMemory) {
  constexpr std::size_t kSize = 64 << 20;
  const auto byStatus = [] { return parseProcessStatus(fileOfThisProcess("status")).footprint; };
  const auto byStatm = [] {
    return parseProcessPages(fileOfThisProcess("statm"))->anonymous *
           static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
  };
  const std::uint64_t statusBefore = byStatus();
  const std::uint64_t statmBefore = byStatm();
  const FilledMemory memory(kSize, MAP_PRIVATE);
  EXPECT_NEAR(static_cast<double>(byStatus() - statusBefore), kSize, kSize / 16.0);
  EXPECT_NEAR(static_cast<double>(byStatm() - statmBefore), kSize, kSize / 16.0);
}

/// Until the process does nothing, so that its memory stays as it is; ten seconds at most.
void waitForRest(pid_t pid) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
  const std::string path = "/proc/" + std::to_string(pid) + "/stat";
  while (readAttribute(path).value_or("").find(") S ") == std::string::npos) {
    ASSERT_LT(std::chrono::steady_clock::now(), end);
    std::this_thread::yield();
  }
}

/// A copy of this process that waits for its end, with this object.
class Fork {
 public:
  Fork() : pid(::fork()) {
    while (pid == 0) ::pause();
  }
  ~Fork() {
    ::kill(pid, SIGKILL);
    ::waitpid(pid, nullptr, 0);
  }
  Fork(const Fork&) = delete;
  Fork& operator=(const Fork&) = delete;

  const pid_t pid;
};

double ownMegabytes() {
  ProcfsProcessTable table;
  return static_cast<double>(table.footprint(::getpid()).value_or(0)) / (1 << 20);
}

TEST(RealProcessTable, SharedMemoryCounts) {
  const double before = ownMegabytes();
  const FilledMemory memory(64 << 20, MAP_SHARED);
  EXPECT_NEAR(ownMegabytes() - before, 64, 4);
}

TEST(RealProcessTable, MemoryThatForksHaveInCommonIsDividedAmongThem) {
  const FilledMemory memory(64 << 20, MAP_PRIVATE);
  const double alone = ownMegabytes();
  const Fork one;
  const Fork two;
  const Fork three;
  EXPECT_GT(alone, 64);
  EXPECT_LT(ownMegabytes(), alone - 40);
}

/// A program of its own, so with memory that it shares with nobody: a shell that does what it is told.
class Shell {
 public:
  Shell() {
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()), 0);
    ours_.reset(ends[0]);
    const UniqueFd its(ends[1]);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, its.get(), STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, its.get(), STDOUT_FILENO);
    std::array<char, 3> name{"sh"};
    std::array<char*, 2> arguments{name.data(), nullptr};
    EXPECT_EQ(::posix_spawn(&pid, "/bin/sh", &actions, nullptr, arguments.data(), environ), 0);
    ::posix_spawn_file_actions_destroy(&actions);
    run("");
  }
  ~Shell() {
    ours_.reset();
    ::waitpid(pid, nullptr, 0);
  }
  Shell(const Shell&) = delete;
  Shell& operator=(const Shell&) = delete;

  /// Until it is done.
  void run(const std::string& command) const {
    const std::string line = command + "\necho\n";
    EXPECT_EQ(::write(ours_.get(), line.data(), line.size()), static_cast<ssize_t>(line.size()));
    char answer = 0;
    EXPECT_EQ(::read(ours_.get(), &answer, 1), 1);
    waitForRest(pid);
  }

  pid_t pid = 0;

 private:
  UniqueFd ours_;
};

std::optional<std::uint64_t> measured(ProcfsProcessTable& table, pid_t wanted) {
  for (const std::int32_t pid : table.list()) (void)table.read(pid);
  return table.footprint(wanted);
}

TEST(RealProcessTable, WhatIsKnownOfAProcessIsWhatANewTableSeesWhoeverSharesItsMemory) {
  const TemporaryTree tree;
  const Shell shell;
  ProcfsProcessTable kept;
  const auto now = [&] {
    ProcfsProcessTable plain;
    const auto seen = measured(kept, shell.pid);
    EXPECT_EQ(seen, measured(plain, shell.pid));
    EXPECT_EQ(measured(kept, shell.pid), seen) << "it has not changed";
    return static_cast<double>(seen.value_or(0)) / (1 << 20);
  };
  const double before = now();
  shell.run("mkfifo " + (tree.path() / "gate").string() + "; cd " + tree.path().string());
  shell.run("x=$(head -c 20000000 /dev/zero | tr '\\0' x)");
  const double alone = now();
  EXPECT_GT(alone, before + 19);
  shell.run("read y <gate & echo $! >child");
  waitForRest(std::stoi(readAttributeLine((tree.path() / "child").string())));
  EXPECT_LT(now(), alone * 0.6) << "its child has the other half";
  shell.run("echo >gate; wait");
  EXPECT_NEAR(now(), alone, alone / 10);
  shell.run("x=");
  EXPECT_LT(now(), alone);
}

TEST(RealProcessTable, ScanWhileProcessesComeAndGoIsThatOfANewTable) {
  const FilledMemory shared(8 << 20, MAP_SHARED);
  std::vector<std::unique_ptr<Fork>> forks(100);
  const auto seen = [&](ProcfsProcessTable& table) {
    std::map<std::int32_t, ProcessReading> readings;
    for (const std::int32_t pid : table.list()) {
      const bool isOurs = std::ranges::any_of(forks, [pid](const auto& fork) { return fork && fork->pid == pid; });
      if (const auto reading = table.read(pid); reading && isOurs) readings[pid] = *reading;
    }
    return readings;
  };
  ProcfsProcessTable kept;
  for (std::size_t round = 0; round < 4; ++round) {
    for (std::size_t index = round % 2; index < forks.size(); index += 2) {
      forks[index] = forks[index] ? nullptr : std::make_unique<Fork>();
    }
    for (const auto& fork : forks) {
      if (fork) waitForRest(fork->pid);
    }
    ProcfsProcessTable plain;
    const auto ours = seen(kept);
    EXPECT_EQ(ours.size(), static_cast<std::size_t>(std::ranges::count_if(forks, [](auto& fork) { return !!fork; })));
    EXPECT_EQ(ours, seen(plain));
  }
}

TEST(RealProcessTable, AtMostHalfOfTheDescriptorsAreKept) {
  const auto open = [] {
    std::ptrdiff_t count = 0;
    visitFolder("/proc/self/fd", [&](std::string_view) { ++count; });
    return count;
  };
  std::vector<std::unique_ptr<Fork>> forks(100);
  for (auto& fork : forks) fork = std::make_unique<Fork>();
  rlimit usual{};
  ::getrlimit(RLIMIT_NOFILE, &usual);
  const rlimit few{100, usual.rlim_max};
  ::setrlimit(RLIMIT_NOFILE, &few);
  ProcfsProcessTable table;
  ::setrlimit(RLIMIT_NOFILE, &usual);
  (void)table.list();
  const auto before = open();
  for (int scan = 0; scan < 2; ++scan) {
    (void)table.list();
    for (const auto& fork : forks) EXPECT_GT(table.read(fork->pid)->most, 0U);
    EXPECT_EQ(open() - before, 50);
  }
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
  const ProcessScan scan = scanProcesses(table, 3);
  const auto self = std::find_if(scan.processes.begin(), scan.processes.end(),
                                 [](const ProcessMemory& process) { return process.pid == ::getpid(); });
  ASSERT_NE(self, scan.processes.end());
  EXPECT_GT(self->bytes, 0U);
  EXPECT_TRUE(std::is_sorted(scan.processes.begin(), scan.processes.end(),
                             [](const auto& left, const auto& right) { return left.bytes > right.bytes; }));
}

}  // namespace
}  // namespace nimbo
