// SPDX-License-Identifier: MIT
#include "platform/linux/machine/meminfo.h"

#include <gtest/gtest.h>

#include <cmath>
#include <ostream>
#include <string>

#include "platform/machine/meminfo_recordings.h"

namespace nimbo {
namespace {

constexpr std::uint64_t kPage = 4096;

// What the pages give once they are split, in kB.
struct Split {
  std::uint64_t wired = 0;
  std::uint64_t compressed = 0;
  std::uint64_t app = 0;
  std::uint64_t cached = 0;
  bool operator==(const Split&) const = default;
};

void PrintTo(const Split& split, std::ostream* out) {
  *out << "wired " << split.wired << ", compressed " << split.compressed << ", app " << split.app << ", cached "
       << split.cached;
}

Split splitOf(const MemInfo& info, std::uint64_t zramBytes = 0) {
  const PageCounts pages = pageCounts(info, zramBytes, kPage).value();
  const std::uint64_t cached = pages.purgeable + pages.fileBacked;
  return {pages.wired * 4, pages.compressor * 4, (pages.active + pages.inactive - cached) * 4, cached * 4};
}

// Used memory by us less MemTotal - MemAvailable, in percent of the whole.
double usedAgainstAvailable(const MemInfo& info, std::uint64_t zramBytes = 0) {
  const Split split = splitOf(info, zramBytes);
  const auto used = static_cast<double>((split.wired + split.compressed + split.app) * 1024);
  return (used - static_cast<double>(*info.total - *info.available)) * 100 / static_cast<double>(*info.total);
}

std::string without(std::string text, const std::string& field) {
  const auto start = text.find('\n' + field + ':');
  return text.erase(start, text.find('\n', start + 1) - start);
}

TEST(MemInfo, VirtualMachineIsSplitByThePageLists) {
  EXPECT_EQ(splitOf(parseMemInfo(kVirtualMachineMemInfo)),
            (Split{.wired = 92452, .compressed = 0, .app = 1532 + 7160, .cached = 14420 + 29540 + 134432}));
}

TEST(MemInfo, DesktopCountsZswapAndZramAsCompressed) {
  EXPECT_EQ(splitOf(parseMemInfo(kDesktopMemInfo), 307200 * 1024), (Split{.wired = 2829448,
                                                                          .compressed = 204800 + 307200,
                                                                          .app = 5120000 + 2048000,
                                                                          .cached = 1536000 + 2457600 + 512000}));
}

TEST(MemInfo, PartsAndFreeMemoryAreTheWhole) {
  for (const char* text : {kVirtualMachineMemInfo, kDesktopMemInfo, kOldKernelMemInfo}) {
    const MemInfo info = parseMemInfo(text);
    const Split split = splitOf(info, 10 << 20);
    EXPECT_EQ((split.wired + split.compressed + split.app + split.cached) * 1024 + *info.free, *info.total);
  }
}

TEST(MemInfo, UsedMemoryIsThatOfMemAvailableWithinThreePercent) {
  EXPECT_LT(std::abs(usedAgainstAvailable(parseMemInfo(kVirtualMachineMemInfo))), 3);
  EXPECT_LT(std::abs(usedAgainstAvailable(parseMemInfo(kDesktopMemInfo), 307200 * 1024)), 3);
}

TEST(MemInfo, ZramMovesWhatNoFieldNamesFromWiredToCompressed) {
  const MemInfo info = parseMemInfo(kDesktopMemInfo);
  const Split before = splitOf(info, 0);
  const Split after = splitOf(info, 4 << 20);
  EXPECT_EQ(before.wired - after.wired, 4096U);
  EXPECT_EQ(after.compressed - before.compressed, 4096U);
  EXPECT_EQ(after.app, before.app);
}

TEST(MemInfo, OldKernelIsSplitWithoutTheNewerFields) {
  const MemInfo info = parseMemInfo(kOldKernelMemInfo);
  EXPECT_EQ(info.available, std::nullopt);
  EXPECT_EQ(splitOf(info), (Split{.wired = 4046736 - 204800 - 3379200 - 143360,
                                  .compressed = 0,
                                  .app = 1331200 + 327680,
                                  .cached = 921600 + 798720 + 143360}));
  EXPECT_EQ(swapUsed(info), (2097148U - 2064380U) * 1024);
}

TEST(MemInfo, MemoryThatIsInUseWithoutBeingInAListIsWired) {
  // A reserved pool of huge pages and memory of a driver: free memory falls and no list grows.
  MemInfo info = parseMemInfo(kDesktopMemInfo);
  const Split before = splitOf(info);
  *info.free -= 1 << 20;
  const Split after = splitOf(info);
  EXPECT_EQ(after.wired - before.wired, 1024U);
  EXPECT_EQ(after.app, before.app);
  EXPECT_EQ(after.cached, before.cached);
}

TEST(MemInfo, WithoutATotalOrAPageListThereAreNoPages) {
  for (const char* field : {"MemFree", "Active(anon)", "Inactive(anon)", "Active(file)", "Inactive(file)"}) {
    EXPECT_EQ(pageCounts(parseMemInfo(without(kDesktopMemInfo, field)), 0, kPage), std::nullopt) << field;
  }
  EXPECT_EQ(pageCounts(parseMemInfo("MemFree: 1 kB\n"), 0, kPage), std::nullopt);
}

TEST(MemInfo, ListsThatSumToMoreThanIsInUseLeaveNothingWired) {
  MemInfo info = parseMemInfo(kDesktopMemInfo);
  info.activeAnonymous = info.total;
  EXPECT_EQ(splitOf(info).wired, 0U);
  info.free = *info.total + kPage;
  EXPECT_EQ(splitOf(info).wired, 0U);
}

TEST(MemInfo, SwapIsAbsentWhenAFieldIsAndZeroOnAMachineWithoutSwap) {
  EXPECT_EQ(swapUsed(parseMemInfo(kVirtualMachineMemInfo)), 0U);
  EXPECT_EQ(swapUsed(parseMemInfo(kDesktopMemInfo)), (12582908U - 10485756U) * std::uint64_t{1024});
  EXPECT_EQ(swapUsed(parseMemInfo(without(kDesktopMemInfo, "SwapFree"))), std::nullopt);
  EXPECT_EQ(swapUsed(parseMemInfo(without(kDesktopMemInfo, "SwapTotal"))), std::nullopt);
}

TEST(MemInfo, TextCutInsideALineLosesThatLineOnly) {
  const std::string whole = kDesktopMemInfo;
  const MemInfo cut = parseMemInfo(whole.substr(0, whole.find("Inactive(file)") + 20));
  EXPECT_EQ(cut.activeFile, 1536000U * 1024);
  EXPECT_EQ(cut.inactiveFile, std::nullopt);
  EXPECT_EQ(pageCounts(cut, 0, kPage), std::nullopt);
}

TEST(MemInfo, GarbageIsNotTakenForFigures) {
  for (const char* text : {"", "\n\n\n", "MemTotal", "MemTotal\n", "MemTotal:\n", "MemTotal: kB\n", "MemTotal: -5 kB\n",
                           "MemTotal: 12\n", "MemTotal: 12 MB\n", "MemTotal: 1x2 kB\n", "\xFF\xFE\x01:\x02\n",
                           "MemTotal: 99999999999999999999 kB\n", "MemTotal: 1125899906842624 kB\n"}) {
    EXPECT_EQ(parseMemInfo(text).total, std::nullopt) << text;
  }
}

TEST(MemInfo, LargestFiguresTakenDoNotOverflowTheirSums) {
  std::string text;
  for (const char* field : {"MemTotal", "MemFree", "Active(anon)", "Inactive(anon)", "Active(file)", "Inactive(file)",
                            "KReclaimable", "Zswap"}) {
    text += std::string(field) + ": 1125899906842623 kB\n";
  }
  const auto pages = pageCounts(parseMemInfo(text), (std::uint64_t{1} << 60) - 1, kPage).value();
  EXPECT_EQ(pages.wired, 0U);
  EXPECT_GT(pages.inactive, pages.active);
  EXPECT_LT(pages.inactive, std::uint64_t{1} << 50);
}

TEST(MemInfo, PressureWithoutStallInformationFollowsAvailableMemory) {
  MemInfo info;
  info.total = 1000 << 20;
  const auto levelAt = [&](std::uint64_t megabytes) {
    info.available = megabytes << 20;
    return pressureLevel(info);
  };
  EXPECT_EQ(levelAt(600), 1U);
  EXPECT_EQ(levelAt(100), 1U);
  EXPECT_EQ(levelAt(99), 2U);
  EXPECT_EQ(levelAt(50), 2U);
  EXPECT_EQ(levelAt(49), 4U);
  EXPECT_EQ(levelAt(0), 4U);
  EXPECT_EQ(pressureLevel(parseMemInfo(kOldKernelMemInfo)), std::nullopt);
}

}  // namespace
}  // namespace nimbo
