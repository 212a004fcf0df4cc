// SPDX-License-Identifier: MIT
#include "ui/tray/status_item_content.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

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
  const auto content = memoryItemContent(snapshot(), false, MemoryPicture::chart);
  EXPECT_EQ(content.title, "70%");
  EXPECT_EQ(content.toolTip, "Memory: 70% · 11.2 GB used of 16.0 GB; 4.8 GB available; normal pressure");
  EXPECT_EQ(content.accessibleName, "Memory");
}

TEST(MemoryItem, ToolTipSpellsPressureInLowerCase) {
  const auto ending = [](MemoryPressure pressure) {
    auto memory = snapshot();
    memory.pressure = pressure;
    const auto text = memoryItemContent(memory, false, MemoryPicture::chart).toolTip;
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
  const auto image = memoryItemContent(memory, false, MemoryPicture::chart).image;
  ASSERT_EQ(image.shapes.size(), 2U);
  EXPECT_EQ(image.shapes[0], kMemoryTrack);
  EXPECT_EQ(image.shapes[1], (TemplateShape{{{1, 6, 8, 6}, 0}, 1, RoundedRect{{1, 6, 16, 6}, 2}, {}}));
}

TEST(MemoryItem, ChartOfEmptyAndFullMemory) {
  auto memory = snapshot();
  memory.wired = 0;
  memory.compressed = 0;
  memory.app = 0;
  EXPECT_EQ(memoryItemContent(memory, false, MemoryPicture::chart).image.shapes.at(1).outline.rect.width, 0);
  memory.app = memory.total;
  EXPECT_EQ(memoryItemContent(memory, false, MemoryPicture::chart).image.shapes.at(1).outline.rect.width, 16);
}

TEST(MemoryItem, ChartStaysTheSameForAChangeThatNobodyCanSee) {
  auto memory = snapshot();
  memory.app = 8 * kGigabyte;
  const auto before = memoryItemContent(memory, false, MemoryPicture::chart).image;
  memory.app += 10 << 20;
  EXPECT_EQ(memoryItemContent(memory, false, MemoryPicture::chart).image, before);
  memory.app += 100 << 20;
  EXPECT_NE(memoryItemContent(memory, false, MemoryPicture::chart).image, before);
}

TEST(MemoryItem, FailedReadingShowsADashAndSaysSo) {
  const auto content = memoryItemContent(std::nullopt, true, MemoryPicture::chart);
  EXPECT_EQ(content.title, "—");
  EXPECT_EQ(content.toolTip, "Memory unavailable; retrying");
  EXPECT_EQ(content.image, (TemplateImage{{kMemoryTrack, kDash}}));
}

TEST(MemoryItem, FailureOutweighsAnOldReading) {
  EXPECT_EQ(memoryItemContent(snapshot(), true, MemoryPicture::chart),
            memoryItemContent(std::nullopt, true, MemoryPicture::chart));
}

TEST(MemoryItem, MemoryThatIsNotWatchedHasNotFailed) {
  const auto content = memoryItemContent(std::nullopt, false, MemoryPicture::chart);
  EXPECT_EQ(content.title, "—");
  EXPECT_EQ(content.toolTip, "Memory");
  EXPECT_EQ(content.image, (TemplateImage{{kMemoryTrack, kDash}}));
}

TEST(MemoryItem, TotalOfZeroReadsZeroPercent) {
  EXPECT_EQ(memoryItemContent(MemorySnapshot{}, false, MemoryPicture::chart).title, "0%");
}

TEST(MemoryItem, SymbolStandsBesideTheFigure) {
  const auto content = memoryItemContent(snapshot(), false, MemoryPicture::symbol);
  EXPECT_EQ(content.image, barsSymbol());
  EXPECT_EQ(content.title, "70%");
  EXPECT_EQ(memoryItemContent(std::nullopt, true, MemoryPicture::symbol).image, barsSymbol());
}

TEST(AwakeItem, ToolTipTellsWhetherASessionRuns) {
  EXPECT_EQ(awakeItemContent(true).toolTip, "Keep Awake is on");
  EXPECT_EQ(awakeItemContent(false).toolTip, "Keep Awake is off · click for session controls");
  EXPECT_EQ(awakeItemContent(true).accessibleName, "Keep Awake");
  EXPECT_EQ(awakeItemContent(true).image, cupSymbol(true));
  EXPECT_EQ(awakeItemContent(false).image, cupSymbol(false));
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

/// Which points of a fine grid an image covers.
std::vector<bool> coverage(const TemplateImage& image) {
  std::vector<bool> grid;
  for (double y = 0.125; y < TemplateImage::kSide; y += 0.25) {
    for (double x = 0.125; x < TemplateImage::kSide; x += 0.25) grid.push_back(covers(image, {x, y}));
  }
  return grid;
}

class Symbols : public testing::TestWithParam<TemplateImage> {};

TEST_P(Symbols, FillAFairPartOfThePictureAndKeepItsMargin) {
  const auto grid = coverage(GetParam());
  const auto covered = std::ranges::count(grid, true);
  EXPECT_GT(covered, 72 * 72 / 6);
  EXPECT_LT(covered, 72 * 72 * 2 / 3);
  for (std::size_t i = 0; i < grid.size(); ++i) {
    const std::size_t x = i % 72;
    const std::size_t y = i / 72;
    EXPECT_TRUE(!grid[i] || (x >= 4 && x < 68 && y >= 4 && y < 68)) << x << ", " << y;
  }
}

MemorySnapshot used(double fraction) {
  MemorySnapshot memory;
  memory.total = 1000;
  memory.app = static_cast<std::uint64_t>(fraction * 1000);
  return memory;
}

TemplateImage figure(double fraction) { return memoryItemContent(used(fraction), false, MemoryPicture::figure).image; }

INSTANTIATE_TEST_SUITE_P(All, Symbols,
                         testing::Values(barsSymbol(), cupSymbol(true), cupSymbol(false), cloudSymbol(), figure(0.07),
                                         figure(0.43), figure(1)));

TEST(CupSymbol, HasAHandleOneCanSeeThroughAndStandsClearOfItsSaucer) {
  for (const bool full : {true, false}) {
    const TemplateImage cup = cupSymbol(full);
    EXPECT_FALSE(covers(cup, {13, 8.5}));
    EXPECT_TRUE(covers(cup, {15.8, 8.5}));
    EXPECT_FALSE(covers(cup, {7.5, 3.5}));
    EXPECT_TRUE(covers(cup, {7.5, 2}));
  }
}

TEST(CupSymbol, TellsPlainlyWhetherASessionRuns) {
  const auto full = coverage(cupSymbol(true));
  const auto empty = coverage(cupSymbol(false));
  int different = 0;
  for (std::size_t i = 0; i < full.size(); ++i) different += full[i] != empty[i] ? 1 : 0;
  EXPECT_GT(different, std::ranges::count(full, true) / 3);
}

TEST(MemoryFigure, WithoutAReadingIsADash) {
  const auto image = memoryItemContent(std::nullopt, true, MemoryPicture::figure).image;
  EXPECT_TRUE(covers(image, {9, 10.5}));
  EXPECT_FALSE(covers(image, {9, 14}));
}

}  // namespace
}  // namespace nimbo
