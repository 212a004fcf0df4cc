// SPDX-License-Identifier: MIT
#include "ui/dashboard/chart_bars.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

namespace nimbo {
namespace {

constexpr Size kHistorySize{300, 56};

std::vector<ChartBar> samples(const std::vector<ChartBar>& bars) {
  std::vector<ChartBar> found;
  std::copy_if(bars.begin(), bars.end(), std::back_inserter(found),
               [](const ChartBar& bar) { return bar.color != ColorRole::quaternaryLabel; });
  return found;
}

std::vector<ChartBar> slots(const std::vector<ChartBar>& bars) {
  std::vector<ChartBar> found;
  std::copy_if(bars.begin(), bars.end(), std::back_inserter(found),
               [](const ChartBar& bar) { return bar.color == ColorRole::quaternaryLabel; });
  return found;
}

TEST(HistoryBars, ThreeHundredPointsWideHasSlotsEvery7575Points) {
  const auto background = slots(historyBars({}, ColorRole::teal, kHistorySize));
  ASSERT_EQ(background.size(), 40U);
  for (std::size_t slot = 0; slot < background.size(); ++slot) {
    EXPECT_DOUBLE_EQ(background[slot].shape.rect.x, 7.575 * static_cast<double>(slot));
    EXPECT_DOUBLE_EQ(background[slot].shape.rect.width, 4.575);
    EXPECT_DOUBLE_EQ(background[slot].shape.rect.y, 0);
    EXPECT_DOUBLE_EQ(background[slot].shape.rect.height, 56);
    EXPECT_DOUBLE_EQ(background[slot].shape.radius, 2);
    EXPECT_EQ(background[slot].alpha, 0.13);
  }
  EXPECT_NEAR(background.back().shape.rect.maxX(), 300, 1e-9);
}

TEST(HistoryBars, EmptyHistoryDrawsOnlyBackgrounds) {
  EXPECT_TRUE(samples(historyBars({}, ColorRole::teal, kHistorySize)).empty());
}

TEST(HistoryBars, OneSampleOfZeroIsAThreePointBarInTheRightmostSlot) {
  const auto bars = samples(historyBars({0}, ColorRole::teal, kHistorySize));
  ASSERT_EQ(bars.size(), 1U);
  EXPECT_DOUBLE_EQ(bars[0].shape.rect.x, 39 * 7.575);
  EXPECT_DOUBLE_EQ(bars[0].shape.rect.height, 3);
  EXPECT_DOUBLE_EQ(bars[0].shape.rect.maxY(), 56);
  EXPECT_DOUBLE_EQ(bars[0].shape.radius, 2);
  EXPECT_EQ(bars[0].alpha, 1);
  EXPECT_EQ(bars[0].color, ColorRole::teal);
}

TEST(HistoryBars, BarsGrowFromTheBottomAndOnlyTheNewestIsFullyOpaque) {
  const auto bars = samples(historyBars({0.25, 1, 0.5}, ColorRole::blue, kHistorySize));
  ASSERT_EQ(bars.size(), 3U);
  EXPECT_EQ(bars[0].shape.rect, (Rect{bars[0].shape.rect.x, 42, 4.575, 14}));
  EXPECT_EQ(bars[1].shape.rect, (Rect{bars[1].shape.rect.x, 0, 4.575, 56}));
  EXPECT_EQ(bars[2].shape.rect, (Rect{bars[2].shape.rect.x, 28, 4.575, 28}));
  EXPECT_DOUBLE_EQ(bars[0].shape.rect.x, 37 * 7.575);
  EXPECT_EQ(bars[0].alpha, 0.65);
  EXPECT_EQ(bars[1].alpha, 0.65);
  EXPECT_EQ(bars[2].alpha, 1);
  EXPECT_EQ(bars[0].color, ColorRole::blue);
}

TEST(HistoryBars, FortyOneSamplesDropTheOldestAndFillAllSlots) {
  std::vector<double> history(41, 0.5);
  history[0] = 1;
  history[1] = 0.25;
  const auto bars = samples(historyBars(history, ColorRole::teal, kHistorySize));
  ASSERT_EQ(bars.size(), 40U);
  EXPECT_DOUBLE_EQ(bars[0].shape.rect.x, 0);
  EXPECT_DOUBLE_EQ(bars[0].shape.rect.height, 14);
}

TEST(HistoryBars, EachBarIsDrawnOverTheBackgroundOfItsSlot) {
  const auto bars = historyBars({0.5}, ColorRole::teal, kHistorySize);
  ASSERT_EQ(bars.size(), 41U);
  EXPECT_EQ(bars[39].color, ColorRole::quaternaryLabel);
  EXPECT_EQ(bars[40].color, ColorRole::teal);
  EXPECT_DOUBLE_EQ(bars[39].shape.rect.x, bars[40].shape.rect.x);
}

}  // namespace
}  // namespace nimbo
