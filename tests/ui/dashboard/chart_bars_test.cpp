// SPDX-License-Identifier: MIT
#include "ui/dashboard/chart_bars.h"

#include <gtest/gtest.h>

namespace nimbo {
namespace {

constexpr Size kBreakdownSize{300, 8};
const RoundedRect kOutline{{0, 0, 300, 8}, 4};

MemorySnapshot snapshotOf(std::uint64_t total, std::uint64_t app, std::uint64_t wired, std::uint64_t compressed) {
  MemorySnapshot snapshot;
  snapshot.total = total;
  snapshot.app = app;
  snapshot.wired = wired;
  snapshot.compressed = compressed;
  return snapshot;
}

void expectOnlyBackground(const std::vector<ChartBar>& bars) {
  ASSERT_EQ(bars.size(), 1U);
  EXPECT_EQ(bars[0], (ChartBar{kOutline, ColorRole::quaternaryLabel, 0.25, {}}));
}

TEST(BreakdownBars, NoSnapshotDrawsOnlyTheBackground) { expectOnlyBackground(breakdownBars({}, kBreakdownSize)); }

TEST(BreakdownBars, TotalOfZeroDrawsOnlyTheBackground) {
  expectOnlyBackground(breakdownBars(snapshotOf(0, 1, 2, 3), kBreakdownSize));
}

TEST(BreakdownBars, PartsFollowOneAnotherInTheirColoursInsideTheRoundedBar) {
  const auto bars = breakdownBars(snapshotOf(1000, 300, 100, 200), kBreakdownSize);
  ASSERT_EQ(bars.size(), 4U);
  EXPECT_EQ(bars[0], (ChartBar{kOutline, ColorRole::quaternaryLabel, 0.25, {}}));
  EXPECT_EQ(bars[1], (ChartBar{{{0, 0, 90, 8}, 0}, ColorRole::teal, 1, kOutline}));
  EXPECT_EQ(bars[2], (ChartBar{{{90, 0, 30, 8}, 0}, ColorRole::indigo, 1, kOutline}));
  EXPECT_EQ(bars[3], (ChartBar{{{120, 0, 60, 8}, 0}, ColorRole::orangeFill, 1, kOutline}));
}

TEST(BreakdownBars, PartsThatMakeUpTheTotalFillTheBarExactly) {
  constexpr std::uint64_t kTotal = 17'179'869'184;
  const auto bars =
      breakdownBars(snapshotOf(kTotal, kTotal / 3, kTotal / 7, kTotal - kTotal / 3 - kTotal / 7), kBreakdownSize);
  ASSERT_EQ(bars.size(), 4U);
  EXPECT_DOUBLE_EQ(bars[2].shape.rect.x, bars[1].shape.rect.maxX());
  EXPECT_DOUBLE_EQ(bars[3].shape.rect.x, bars[2].shape.rect.maxX());
  EXPECT_NEAR(bars[3].shape.rect.maxX(), 300, 1e-9);
}

TEST(AllowanceBars, TrackIsFilledFromTheLeftByWhatIsLeft) {
  const RoundedRect track{{0, 0, 276, 7}, 4};
  const auto bars = allowanceBars(0.25, ColorRole::red, {276, 7});
  ASSERT_EQ(bars.size(), 2U);
  EXPECT_EQ(bars[0], (ChartBar{track, ColorRole::quaternaryLabel, {}, {}}));
  EXPECT_EQ(bars[1], (ChartBar{{{0, 0, 69, 7}, 0}, ColorRole::red, {}, track}));
  EXPECT_EQ(allowanceBars(0, ColorRole::red, {276, 7}).size(), 1U);
}

}  // namespace
}  // namespace nimbo
