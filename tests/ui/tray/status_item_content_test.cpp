// SPDX-License-Identifier: MIT
#include "ui/tray/status_item_content.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "platform/mac_wording.h"

namespace nimbo {
namespace {

constexpr std::uint64_t kGigabyte = 1ULL << 30U;

MemorySnapshot snapshot() {
  MemorySnapshot memory;
  memory.total = 16 * kGigabyte;
  memory.app = 6 * kGigabyte;
  memory.wired = 5 * kGigabyte / 2;
  memory.compressed = 27 * kGigabyte / 10;
  memory.pressure = MemoryPressure::normal;
  return memory;
}

const TemplateShape kMemoryTrack{{{1, 6, 16, 6}, 2}, 0.25, {}, {}};
const TemplateShape kDash{{{6, 8.5, 6, 1}, 0}, 1, {}, {}};

TEST(MemoryItem, ReadsAsSpecifiedByItsFigures) {
  const auto content = memoryItemContent(snapshot(), false, true);
  EXPECT_EQ(content.title, "70%");
  EXPECT_EQ(content.toolTip, "Memory: 70% · 11.2 GB used of 16.0 GB; 4.8 GB available; normal pressure");
  EXPECT_EQ(content.accessibleName, "Memory");
}

TEST(MemoryItem, ToolTipSpellsPressureInLowerCase) {
  const auto ending = [](MemoryPressure pressure) {
    auto memory = snapshot();
    memory.pressure = pressure;
    const auto text = memoryItemContent(memory, false, true).toolTip;
    return text.substr(text.rfind("; "));
  };
  EXPECT_EQ(ending(MemoryPressure::warning), "; elevated pressure");
  EXPECT_EQ(ending(MemoryPressure::critical), "; high pressure");
  EXPECT_EQ(ending(MemoryPressure::unknown), "; unavailable pressure");
}

TEST(MemoryItem, ChartFillsTheTrackInsideItsRoundedEnds) {
  auto memory = snapshot();
  memory.app = 8 * kGigabyte;
  memory.wired = 0;
  memory.compressed = 0;
  const auto image = memoryItemContent(memory, false, true).image;
  ASSERT_EQ(image.shapes.size(), 2U);
  EXPECT_EQ(image.shapes[0], kMemoryTrack);
  EXPECT_EQ(image.shapes[1], (TemplateShape{{{1, 6, 8, 6}, 0}, 1, RoundedRect{{1, 6, 16, 6}, 2}, {}}));
}

TEST(MemoryItem, ChartOfEmptyAndFullMemory) {
  auto memory = snapshot();
  memory.wired = 0;
  memory.compressed = 0;
  memory.app = 0;
  EXPECT_EQ(memoryItemContent(memory, false, true).image.shapes.at(1).outline.rect.width, 0);
  memory.app = memory.total;
  EXPECT_EQ(memoryItemContent(memory, false, true).image.shapes.at(1).outline.rect.width, 16);
}

TEST(MemoryItem, ChartStaysTheSameForAChangeThatNobodyCanSee) {
  auto memory = snapshot();
  memory.app = 8 * kGigabyte;
  const auto before = memoryItemContent(memory, false, true).image;
  memory.app += 10 << 20;
  EXPECT_EQ(memoryItemContent(memory, false, true).image, before);
  memory.app += 100 << 20;
  EXPECT_NE(memoryItemContent(memory, false, true).image, before);
}

TEST(MemoryItem, FailedReadingShowsADashAndSaysSo) {
  const auto content = memoryItemContent(std::nullopt, true, true);
  EXPECT_EQ(content.title, "—");
  EXPECT_EQ(content.toolTip, "Memory unavailable; retrying");
  EXPECT_EQ(content.image, (TemplateImage{{kMemoryTrack, kDash}}));
}

TEST(MemoryItem, FailureOutweighsAnOldReading) {
  EXPECT_EQ(memoryItemContent(snapshot(), true, true), memoryItemContent(std::nullopt, true, true));
}

TEST(MemoryItem, MemoryThatIsNotWatchedHasNotFailed) {
  const auto content = memoryItemContent(std::nullopt, false, true);
  EXPECT_EQ(content.title, "—");
  EXPECT_EQ(content.toolTip, "Memory");
  EXPECT_EQ(content.image, (TemplateImage{{kMemoryTrack, kDash}}));
}

TEST(MemoryItem, TotalOfZeroReadsZeroPercent) {
  EXPECT_EQ(memoryItemContent(MemorySnapshot{}, false, true).title, "0%");
}

TEST(MemoryItem, WithoutTheChartItShowsASymbol) {
  const auto content = memoryItemContent(snapshot(), false, false);
  EXPECT_EQ(content.image, barsSymbol());
  EXPECT_EQ(content.title, "70%");
  EXPECT_EQ(memoryItemContent(std::nullopt, true, false).image, barsSymbol());
}

TEST(AwakeItem, ToolTipTellsWhetherASessionRuns) {
  EXPECT_EQ(awakeItemContent(true).toolTip, "Keep Awake is on");
  EXPECT_EQ(awakeItemContent(false).toolTip, "Keep Awake is off · click for session controls");
  EXPECT_EQ(awakeItemContent(true).accessibleName, "Keep Awake");
  EXPECT_EQ(awakeItemContent(true).image, cupSymbol());
  EXPECT_FALSE(awakeItemContent(true).title.has_value());
}

TEST(CompactItem, ToolTipMentionsARunningSession) {
  EXPECT_EQ(compactItemContent(false, macWording()).toolTip, "Nimbo · Resources, AI usage & Keep Awake");
  EXPECT_EQ(compactItemContent(true, macWording()).toolTip,
            "Nimbo · Resources, AI usage & Keep Awake · Keeping Mac awake");
  EXPECT_EQ(compactItemContent(false, macWording()).image, cloudSymbol());
  EXPECT_EQ(compactItemContent(false, macWording()).accessibleName, "Nimbo");
}

bool covers(const RoundedRect& shape, Point point) {
  const Rect& rect = shape.rect;
  const double radius = shape.radius;
  const double x = std::clamp(point.x, rect.x + radius, rect.maxX() - radius);
  const double y = std::clamp(point.y, rect.y + radius, rect.maxY() - radius);
  const double distance = std::hypot(point.x - x, point.y - y);
  return rect.contains(point) && distance <= radius;
}

bool covers(const TemplateImage& image, Point point) {
  return std::any_of(image.shapes.begin(), image.shapes.end(), [&](const TemplateShape& shape) {
    return covers(shape.outline, point) && (!shape.clip || covers(*shape.clip, point)) &&
           (!shape.hole || !covers(*shape.hole, point));
  });
}

class Symbols : public testing::TestWithParam<TemplateImage (*)()> {};

TEST_P(Symbols, FillAFairPartOfThePictureAndKeepItsMargin) {
  const TemplateImage image = GetParam()();
  int covered = 0;
  for (double x = 0.125; x < TemplateImage::kSide; x += 0.25) {
    for (double y = 0.125; y < TemplateImage::kSide; y += 0.25) {
      if (!covers(image, {x, y})) continue;
      ++covered;
      EXPECT_TRUE(x > 1 && x < 17 && y > 1 && y < 17) << x << ", " << y;
    }
  }
  EXPECT_GT(covered, 72 * 72 / 4);
  EXPECT_LT(covered, 72 * 72 * 2 / 3);
}

INSTANTIATE_TEST_SUITE_P(All, Symbols, testing::Values(&barsSymbol, &cupSymbol, &cloudSymbol));

TEST(CupSymbol, HasAHandleOneCanSeeThroughAndStandsClearOfItsSaucer) {
  const TemplateImage cup = cupSymbol();
  EXPECT_TRUE(covers(cup, {7.5, 10}));
  EXPECT_FALSE(covers(cup, {13, 11}));
  EXPECT_TRUE(covers(cup, {15.2, 11}));
  EXPECT_FALSE(covers(cup, {7.5, 5.2}));
  EXPECT_TRUE(covers(cup, {7.5, 3.7}));
}

}  // namespace
}  // namespace nimbo
