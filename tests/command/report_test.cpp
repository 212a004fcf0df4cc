// SPDX-License-Identifier: MIT
#include "command/report.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>

namespace nimbo {
namespace {

using std::chrono::hours;

/// Times are told by the clock of Greenwich.
class ReportTest : public testing::Test {
 protected:
  ReportTest() {
    ::setenv("TZ", "UTC", 1);
    ::tzset();
  }

  /// A state that was read now.
  UsageState read(std::vector<UsageWindow> windows) const {
    return {.enabled = true, .snapshot = UsageSnapshot{std::move(windows), now_}};
  }
  [[nodiscard]] Report report(UsageState codex, UsageState claude = {}) const {
    return reportOf(UsageStates{{UsageProvider::codex, std::move(codex)}, {UsageProvider::claude, std::move(claude)}},
                    now_);
  }

  const ReportTime now_{std::chrono::seconds(1795219200)};  // 2026-11-21 00:00
};

TEST_F(ReportTest, FullestLimitOfAllIsTheShortLine) {
  const Report shown = report(read({{"5-hour", 40, now_ + hours(2)}, {"Weekly", 10}}), read({{"5-hour", 76.6}}));
  EXPECT_EQ(shown.text, "AI 23% left");
  EXPECT_STREQ(shown.level, "high");
  EXPECT_EQ(shown.percentage, 77);
  EXPECT_EQ(shown.page(false),
            "Codex 5-hour   ████████████░░░░░░░░  60% left, resets 02:00\n"
            "Codex Weekly   ██████████████████░░  90% left\n"
            "Claude 5-hour  █████░░░░░░░░░░░░░░░  23% left\n");
}

TEST_F(ReportTest, LimitThatIsNearlyReachedIsRedOnATerminal) {
  EXPECT_EQ(report(read({{"Weekly", 95}})).page(true), "Codex Weekly  \x1b[31m█\x1b[0m░░░░░░░░░░░░░░░░░░░  5% left\n");
  for (const auto& [used, level] : {std::pair(74.9, "normal"), {75.0, "high"}, {89.9, "high"}, {90.0, "full"}}) {
    EXPECT_STREQ(report(read({{"Weekly", used}})).level, level) << used;
  }
}

TEST_F(ReportTest, UsageThatIsOffAbsentOrOldSaysSo) {
  EXPECT_STREQ(report({}).level, "off");
  EXPECT_EQ(report({}).text, "");
  EXPECT_EQ(report({.enabled = true}).text, "AI –");
  EXPECT_STREQ(report({.enabled = true}).level, "normal");
  EXPECT_STREQ(report({.enabled = true, .message = "Sign in again."}).level, "failed");

  UsageState old = read({{"Weekly", 10}});
  old.message = "Couldn’t reach the provider.";
  EXPECT_STREQ(report(old).level, "old");
  EXPECT_EQ(report(old).page(false),
            "Codex Weekly  ██████████████████░░  90% left\n"
            "Codex         Last read 00:00. Couldn’t reach the provider.\n");
}

TEST_F(ReportTest, UsageForProgramsHasEveryFigure) {
  UsageState codex = read({{"5-hour", 61.5, now_ + hours(2)}});
  codex.snapshot->source = "Elsewhere";
  EXPECT_EQ(report(codex).figures.dump(),
            R"({"codex":{"enabled":true,"message":null,"fetchedAt":"2026-11-21T00:00:00Z","source":"Elsewhere",)"
            R"("windows":[{"title":"5-hour","usedPercent":61.5,"resetsAt":"2026-11-21T02:00:00Z"}]},)"
            R"("claude":{"enabled":false,"message":null,"fetchedAt":null,"source":null,"windows":[]}})");
}

TEST_F(ReportTest, MemoryHasItsPartsAndWhatGoesWithIt) {
  constexpr std::uint64_t kGigabyte = 1U << 30U;
  SystemReadings readings;
  readings.memory = MemorySnapshot();
  readings.memory->total = 10 * kGigabyte;
  readings.memory->app = 4 * kGigabyte;
  readings.memory->wired = kGigabyte;
  readings.memory->pressure = MemoryPressure::warning;
  readings.cpu = 0.5;
  readings.temperature = 54.4;
  const Report shown = reportOf(readings);
  EXPECT_EQ(shown.text, "Memory 50% · CPU 50% · 54°");
  EXPECT_STREQ(shown.level, "high");
  EXPECT_EQ(shown.page(false),
            "Memory        ██████████░░░░░░░░░░  50%, 5.0 GB of 10.0 GB\n"
            "Applications  ████████░░░░░░░░░░░░  4.0 GB\n"
            "Wired         ██░░░░░░░░░░░░░░░░░░  1.0 GB\n"
            "Compressed    ░░░░░░░░░░░░░░░░░░░░  0.0 GB\n"
            "Available     ██████████░░░░░░░░░░  5.0 GB\n"
            "CPU           ██████████░░░░░░░░░░  50%\n"
            "Swap used                           unavailable\n"
            "Pressure                            Elevated\n"
            "Temperature                         54 °C\n");
  EXPECT_EQ(shown.figures["swapUsedBytes"], nullptr);
  EXPECT_EQ(shown.figures["usedBytes"], 5 * kGigabyte);
}

TEST_F(ReportTest, ProcessesAreAlignedForEyes) {
  const Report shown = reportOf(std::vector<ProcessMemory>{{12345, "firefox", 3U << 30U}, {7, "cat", 1U << 20U}});
  EXPECT_EQ(shown.text, "firefox 3.0 GB");
  EXPECT_EQ(shown.page(false), "   3.0 GB    12345  firefox\n     1 MB        7  cat\n");
}

}  // namespace
}  // namespace nimbo
