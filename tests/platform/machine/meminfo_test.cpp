// SPDX-License-Identifier: MIT
#include "platform/linux/machine/procfs_host_statistics.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

#include "platform/machine/meminfo_recordings.h"

namespace nimbo {
namespace {

// What the counts give once they are split, in kB.
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

Split splitOf(std::string_view text, std::uint64_t zramBytes = 0, std::uint64_t arcBytes = 0) {
  const MemoryCounts counts = parseMemInfo(text, zramBytes, arcBytes).value();
  const std::uint64_t cached = counts.purgeable + counts.fileBacked;
  return {counts.wired / 1024, counts.compressor / 1024, (counts.active + counts.inactive - cached) / 1024,
          cached / 1024};
}

std::uint64_t kilobytes(std::string_view text, std::string_view field) {
  return memInfoField(text, field).value() / 1024;
}

std::uint64_t usedOf(const Split& split) { return split.wired + split.compressed + split.app; }

TEST(MemInfo, VirtualMachineWithAReserveBeyondItsCachesHasNoneToDrop) {
  EXPECT_EQ(splitOf(kVirtualMachineMemInfo),
            (Split{.wired = 24684084 - 24371736 - 1532 - 7160, .compressed = 0, .app = 1532 + 7160, .cached = 0}));
}

TEST(MemInfo, DesktopCountsZswapAndZramAsCompressed) {
  EXPECT_EQ(splitOf(kDesktopMemInfo, 307200 * 1024), (Split{.wired = 16265608 - 5556160 - 512000 - 7168000,
                                                            .compressed = 204800 + 307200,
                                                            .app = 5120000 + 2048000,
                                                            .cached = 5556160 - 1250560}));
}

TEST(MemInfo, PartsAndFreeMemoryAreTheWhole) {
  for (const char* text : {kDesktopMemInfo, kOldKernelMemInfo}) {
    const Split split = splitOf(text, 10 << 20);
    EXPECT_EQ(split.wired + split.compressed + split.app + split.cached + kilobytes(text, "MemFree"),
              kilobytes(text, "MemTotal"));
  }
}

TEST(MemInfo, UsedMemoryIsAllThatIsNotAvailable) {
  for (const char* text : {kVirtualMachineMemInfo, kDesktopMemInfo}) {
    const auto unavailable = kilobytes(text, "MemTotal") - kilobytes(text, "MemAvailable");
    EXPECT_EQ(usedOf(splitOf(text)), unavailable);
    EXPECT_EQ(usedOf(splitOf(text, 1 << 20)), unavailable) << "compressed memory is part of it";
  }
}

TEST(MemInfo, CacheOfZfsIsNotUsed) {
  const Split before = splitOf(kDesktopMemInfo);
  const Split after = splitOf(kDesktopMemInfo, 0, 2 << 20);
  EXPECT_EQ(before.wired - after.wired, 2048U);
  EXPECT_EQ(after.cached - before.cached, 2048U);
  const std::string low = withField(kDesktopMemInfo, "MemAvailable", 1000);
  EXPECT_EQ(parseMemInfo(low, 0)->pressure, MemoryPressure::critical);
  EXPECT_EQ(parseMemInfo(low, 0, std::uint64_t{4} << 30)->pressure, MemoryPressure::normal);
}

TEST(ArcStatistics, CacheIsItsSizeBeyondTheLeast) {
  constexpr char kStats[] =
      "13 1 0x01 123 33456 5120935541 91234567890\nname                            type data\n"
      "hits                            4    81264\nc_min                           4    1000000\n"
      "c_max                           4    8000000\nsize                            4    5000000\n"
      "compressed_size                 4    4000000\n";
  EXPECT_EQ(parseArcCache(kStats), 4000000U);
  EXPECT_EQ(parseArcCache("size 4 100\nc_min 4 200\n"), 0U);
  for (const char* text :
       {"", "size", "size 4 x\n", "size 4 99999999999999999999\n", "size 4 18446744073709551615\n"}) {
    EXPECT_EQ(parseArcCache(text), 0U) << text;
  }
}

TEST(MemInfo, ZramMovesWhatNoFieldNamesFromWiredToCompressed) {
  const Split before = splitOf(kDesktopMemInfo, 0);
  const Split after = splitOf(kDesktopMemInfo, 4 << 20);
  EXPECT_EQ(before.wired - after.wired, 4096U);
  EXPECT_EQ(after.compressed - before.compressed, 4096U);
  EXPECT_EQ(after.app, before.app);
}

TEST(MemInfo, OldKernelIsSplitWithoutTheNewerFields) {
  EXPECT_EQ(memInfoField(kOldKernelMemInfo, "MemAvailable"), std::nullopt);
  EXPECT_EQ(splitOf(kOldKernelMemInfo), (Split{.wired = 4046736 - 204800 - 3379200 - 143360,
                                               .compressed = 0,
                                               .app = 1331200 + 327680,
                                               .cached = 921600 + 798720 + 143360}));
  EXPECT_EQ(swapUsed(kOldKernelMemInfo), (2097148U - 2064380U) * 1024);
}

TEST(MemInfo, MemoryThatIsInUseWithoutBeingInAListIsWired) {
  // A reserved pool of huge pages and memory of a driver: free memory falls and no list grows.
  std::string text = kDesktopMemInfo;
  const Split before = splitOf(text);
  for (const char* field : {"MemFree", "MemAvailable"}) text = withField(text, field, kilobytes(text, field) - 1024);
  const Split after = splitOf(text);
  EXPECT_EQ(after.wired - before.wired, 1024U);
  EXPECT_EQ(after.app, before.app);
  EXPECT_EQ(after.cached, before.cached);
}

TEST(MemInfo, WithoutATotalOrAPageListThereAreNoCounts) {
  for (const char* field :
       {"MemTotal", "MemFree", "Active(anon)", "Inactive(anon)", "Active(file)", "Inactive(file)"}) {
    EXPECT_FALSE(parseMemInfo(withoutField(kDesktopMemInfo, field), 0)) << field;
  }
  EXPECT_FALSE(parseMemInfo("MemFree: 1 kB\n", 0));
}

TEST(MemInfo, ListsThatSumToMoreThanIsInUseLeaveNothingWired) {
  const std::uint64_t total = kilobytes(kDesktopMemInfo, "MemTotal");
  EXPECT_EQ(splitOf(withField(kDesktopMemInfo, "Active(anon)", total)).wired, 0U);
  EXPECT_EQ(splitOf(withField(kDesktopMemInfo, "MemAvailable", total + 4)).wired, 0U);
}

TEST(MemInfo, SwapIsAbsentWhenAFieldIsAndZeroOnAMachineWithoutSwap) {
  EXPECT_EQ(swapUsed(kVirtualMachineMemInfo), 0U);
  EXPECT_EQ(swapUsed(kDesktopMemInfo), (12582908U - 10485756U) * std::uint64_t{1024});
  EXPECT_EQ(swapUsed(withoutField(kDesktopMemInfo, "SwapFree")), std::nullopt);
  EXPECT_EQ(swapUsed(withoutField(kDesktopMemInfo, "SwapTotal")), std::nullopt);
}

TEST(MemInfo, TextCutInsideALineLosesThatLineOnly) {
  const std::string whole = kDesktopMemInfo;
  const std::string cut = whole.substr(0, whole.find("Inactive(file)") + 20);
  EXPECT_EQ(memInfoField(cut, "Active(file)"), 1536000U * 1024);
  EXPECT_EQ(memInfoField(cut, "Inactive(file)"), std::nullopt);
  EXPECT_FALSE(parseMemInfo(cut, 0));
}

TEST(MemInfo, GarbageIsNotTakenForFigures) {
  for (const char* text : {"", "\n\n\n", "MemTotal", "MemTotal\n", "MemTotal:\n", "MemTotal: kB\n", "MemTotal: -5 kB\n",
                           "MemTotal: 12\n", "MemTotal: 12 MB\n", "MemTotal: 1x2 kB\n", "\xFF\xFE\x01:\x02\n",
                           "MemTotal: 99999999999999999999 kB\n", "MemTotal: 1125899906842624 kB\n"}) {
    EXPECT_EQ(memInfoField(text, "MemTotal"), std::nullopt) << text;
  }
}

TEST(MemInfo, LargestFiguresTakenDoNotOverflowTheirSums) {
  std::string text;
  for (const char* field : {"MemTotal", "MemFree", "Active(anon)", "Inactive(anon)", "Active(file)", "Inactive(file)",
                            "KReclaimable", "Zswap"}) {
    text += std::string(field) + ": 1125899906842623 kB\n";
  }
  const auto counts = parseMemInfo(text, (std::uint64_t{1} << 60) - 1).value();
  EXPECT_EQ(counts.wired, 0U);
  EXPECT_GT(counts.inactive, counts.active);
  EXPECT_LT(counts.inactive, std::uint64_t{1} << 62);
}

TEST(MemInfo, PressureWithoutStallInformationFollowsAvailableMemory) {
  const std::string text = withField(kDesktopMemInfo, "MemTotal", 1000 << 10);
  const auto pressureAt = [&](std::uint64_t megabytes) {
    return parseMemInfo(withField(text, "MemAvailable", megabytes << 10), 0)->pressure;
  };
  EXPECT_EQ(pressureAt(600), MemoryPressure::normal);
  EXPECT_EQ(pressureAt(100), MemoryPressure::normal);
  EXPECT_EQ(pressureAt(99), MemoryPressure::warning);
  EXPECT_EQ(pressureAt(50), MemoryPressure::warning);
  EXPECT_EQ(pressureAt(49), MemoryPressure::critical);
  EXPECT_EQ(pressureAt(0), MemoryPressure::critical);
  EXPECT_EQ(parseMemInfo(kOldKernelMemInfo, 0)->pressure, MemoryPressure::unknown);
}

}  // namespace
}  // namespace nimbo
