// SPDX-License-Identifier: MIT
#include "platform/linux/machine/procfs_processes.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <fstream>
#include <sstream>

#include "support/services/temporary_tree.h"

namespace nimbo {
namespace {

using std::chrono::milliseconds;

constexpr std::uint64_t kMebibyte = 1048576;

class ProcfsOwnProcessTest : public testing::Test {
 protected:
  [[nodiscard]] std::optional<ResourceUsage> usage(const std::string& status) const {
    tree.write("self/status", status);
    return readOwnUsage(std::nullopt, tree.path().string());
  }

  TemporaryTree tree;
};

TEST_F(ProcfsOwnProcessTest, FootprintIsPrivateMemoryAndItsSwapBesideAllResidentMemory) {
  const auto usage = this->usage(
      "Name:\tnimbo\nVmRSS:\t   40960 kB\nRssAnon:\t   10240 kB\nRssFile:\t   30720 kB\nVmSwap:\t    2048 kB\n");
  ASSERT_TRUE(usage);
  EXPECT_EQ(usage->physicalFootprint, 12 * kMebibyte);
  EXPECT_EQ(usage->residentSize, 40 * kMebibyte);
}

TEST_F(ProcfsOwnProcessTest, WindowsInAProcessOfTheirOwnAreCounted) {
  tree.write("self/status", "Name:\tnimbo\nVmRSS:\t 4096 kB\nRssAnon:\t 1024 kB\nVmSwap:\t 0 kB\n");
  const auto alone = readOwnUsage(77, tree.path().string());
  ASSERT_TRUE(alone) << "it has just ended";
  EXPECT_EQ(alone->residentSize, 4 * kMebibyte);

  tree.write("77/status", "Name:\twindows\nVmRSS:\t 8192 kB\nRssAnon:\t 2048 kB\nVmSwap:\t 1024 kB\n");
  tree.write("77/schedstat", "2000000000 31 4\n");
  const auto both = readOwnUsage(77, tree.path().string());
  ASSERT_TRUE(both);
  EXPECT_EQ(both->physicalFootprint, 4 * kMebibyte);
  EXPECT_EQ(both->residentSize, 12 * kMebibyte);
  EXPECT_GE(both->cpuTime - alone->cpuTime, std::chrono::seconds(2));
}

TEST_F(ProcfsOwnProcessTest, AllResidentMemoryStandsInOnOldKernels) {
  const auto usage = this->usage("Name:\tnimbo\nVmRSS:\t   40960 kB\nVmSwap:\t       0 kB\n");
  ASSERT_TRUE(usage);
  EXPECT_EQ(usage->physicalFootprint, 40 * kMebibyte);
}

TEST_F(ProcfsOwnProcessTest, UserInThousandsOfGroupsIsReadWhole) {
  std::string groups = "Groups:\t";
  for (int group = 0; group < 65536; ++group) groups += std::to_string(1000000000 + group) + ' ';
  const auto usage =
      this->usage("Name:\tnimbo\n" + groups + "\nVmRSS:\t 1024 kB\nRssAnon:\t 1024 kB\nVmSwap:\t 0 kB\n");
  ASSERT_TRUE(usage);
  EXPECT_EQ(usage->residentSize, kMebibyte);
}

TEST_F(ProcfsOwnProcessTest, MissingAndForeignTextIsAbsent) {
  EXPECT_FALSE(readOwnUsage(std::nullopt, tree.path().string()));
  for (const char* text : {"", "\n", "Name:\tnimbo\n", "VmRSS:\t many kB\nRssAnon:\t 5 kB\n", "VmRSS:\t 1024 kB"}) {
    EXPECT_FALSE(usage(text)) << text;
  }
}

TEST(RealOwnProcess, MemoryIsWhatTheKernelSaysOfThisProcess) {
  const auto usage = readOwnUsage();
  std::stringstream status;
  status << std::ifstream("/proc/self/status").rdbuf();
  const ProcessStatus memory = parseProcessStatus(status.str());
  ASSERT_TRUE(usage);
  // The reading in between may have touched a few pages.
  constexpr double kSlack = 2 * kMebibyte;
  EXPECT_NEAR(static_cast<double>(usage->physicalFootprint), static_cast<double>(memory.footprint), kSlack);
  EXPECT_NEAR(static_cast<double>(usage->residentSize), static_cast<double>(memory.resident), kSlack);
  EXPECT_LE(usage->physicalFootprint, usage->residentSize);
}

TEST(RealOwnProcess, TouchedMemoryIsAddedToTheFootprint) {
  constexpr std::size_t kSize = 16 * kMebibyte;
  const auto before = readOwnUsage();
  void* const memory =
      ::mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_POPULATE, -1, 0);
  ASSERT_NE(memory, MAP_FAILED);
  const auto after = readOwnUsage();
  ::munmap(memory, kSize);
  ASSERT_TRUE(before && after);
  EXPECT_GE(after->physicalFootprint, before->physicalFootprint + kSize - kMebibyte);
}

TEST(RealOwnProcess, WorkIsAddedToTheCpuTime) {
  const auto before = readOwnUsage();
  ASSERT_TRUE(before);
  std::optional<ResourceUsage> after;
  do {
    after = readOwnUsage();
    ASSERT_TRUE(after);
    ASSERT_GE(after->cpuTime, before->cpuTime);
  } while (after->cpuTime < before->cpuTime + milliseconds(20));
}

}  // namespace
}  // namespace nimbo
