// SPDX-License-Identifier: MIT
#include "platform/linux/tray/template_image_raster.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace nimbo {
namespace {

constexpr TintColor kTint{10, 20, 30};

/// A drawn picture, addressed like the page: x from the left, y from the top.
struct Picture {
  Picture(const std::vector<TemplateShape>& shapes, int sidePixels)
      : side(sidePixels), bytes(argbPixels(TemplateImage{shapes}, sidePixels, {kTint})) {}

  [[nodiscard]] int alpha(int x, int y) const { return bytes.at(static_cast<std::size_t>(4 * (y * side + x))); }

  [[nodiscard]] double coverage() const {
    double sum = 0;
    for (std::size_t i = 0; i < bytes.size(); i += 4) sum += bytes[i];
    return sum / 255;
  }

  int side;
  std::vector<std::uint8_t> bytes;
};

TemplateShape filled(const Rect& rect, double radius = 0, double alpha = 1) {
  return {{rect, radius}, alpha, std::nullopt, std::nullopt};
}

/// The memory item's chart: a rounded track at a quarter, filled from the left.
std::vector<TemplateShape> memoryChart(double fraction) {
  const RoundedRect track{{1, 6, 16, 6}, 2};
  return {{track, 0.25, std::nullopt, std::nullopt}, {{{1, 6, fraction * 16, 6}, 0}, 1, track, std::nullopt}};
}

TEST(TemplateImageRaster, EmptyPictureIsTransparent) {
  const Picture picture({}, 16);
  EXPECT_EQ(picture.bytes, std::vector<std::uint8_t>(16 * 16 * 4, 0));
}

TEST(TemplateImageRaster, SizesBelowOnePixelGiveNothing) {
  EXPECT_TRUE(argbPixels({}, 0, {kTint}).empty());
  EXPECT_TRUE(argbPixels({}, -3, {kTint}).empty());
}

TEST(TemplateImageRaster, PixelsAreAlphaThenTheTintUnmultiplied) {
  const Picture picture({filled({0, 0, 18, 18}, 0, 0.5)}, 18);
  const std::vector<std::uint8_t> first(picture.bytes.begin(), picture.bytes.begin() + 4);
  EXPECT_EQ(first, (std::vector<std::uint8_t>{128, 10, 20, 30}));
}

TEST(TemplateImageRaster, OriginIsAtTheBottomLeft) {
  const Picture picture({filled({0, 0, 2, 1})}, 18);
  EXPECT_EQ(picture.alpha(0, 17), 255);
  EXPECT_EQ(picture.alpha(1, 17), 255);
  EXPECT_EQ(picture.alpha(2, 17), 0);
  EXPECT_EQ(picture.alpha(0, 16), 0);
  EXPECT_EQ(picture.alpha(0, 0), 0);
}

TEST(TemplateImageRaster, ChartTrackAt18PixelsFillsExactlyItsPixels) {
  const Picture picture(memoryChart(0), 18);
  for (int x = 0; x < 18; ++x) {
    EXPECT_EQ(picture.alpha(x, 5), 0) << x;
    EXPECT_EQ(picture.alpha(x, 8), x >= 1 && x < 17 ? 64 : 0) << x;
    EXPECT_EQ(picture.alpha(x, 12), 0) << x;
  }
  // The middle of its long edges is straight, its corners are cut.
  EXPECT_EQ(picture.alpha(9, 6), 64);
  EXPECT_EQ(picture.alpha(9, 11), 64);
  EXPECT_LT(picture.alpha(1, 6), 40);
  EXPECT_EQ(picture.alpha(1, 6), picture.alpha(16, 6));
  EXPECT_EQ(picture.alpha(1, 6), picture.alpha(1, 11));
}

TEST(TemplateImageRaster, HalfFilledChartEndsOnAPixelBorder) {
  const Picture picture(memoryChart(0.5), 18);
  EXPECT_EQ(picture.alpha(2, 8), 255);
  EXPECT_EQ(picture.alpha(8, 8), 255);
  EXPECT_EQ(picture.alpha(9, 8), 64);
}

TEST(TemplateImageRaster, FillLevelBetweenPixelsIsAntiAliased) {
  // 0.53 × 16 = 8.48: the ninth column is covered by 0.48, over the track's quarter.
  const Picture picture(memoryChart(0.53), 18);
  EXPECT_EQ(picture.alpha(8, 8), 255);
  EXPECT_EQ(picture.alpha(9, 8), std::lround(255 * (0.48 + 0.25 * 0.52)));
  EXPECT_EQ(picture.alpha(10, 8), 64);
}

TEST(TemplateImageRaster, FillStaysInsideTheRoundedTrack) {
  const Picture full(memoryChart(1), 18);
  const Picture track(memoryChart(0), 18);
  EXPECT_EQ(full.alpha(9, 8), 255);
  EXPECT_LT(full.alpha(1, 6), 200);
  for (int y = 0; y < 18; ++y) {
    for (int x = 0; x < 18; ++x) EXPECT_EQ(full.alpha(x, y) == 0, track.alpha(x, y) == 0) << x << "," << y;
  }
}

TEST(TemplateImageRaster, DashBetweenRowsIsHalfInEachAt18AndCrispAt36Pixels) {
  const std::vector<TemplateShape> dash{filled({6, 8.5, 6, 1})};
  const Picture small(dash, 18);
  EXPECT_EQ(small.alpha(6, 8), 128);
  EXPECT_EQ(small.alpha(11, 9), 128);
  EXPECT_EQ(small.alpha(5, 8), 0);
  EXPECT_EQ(small.alpha(12, 8), 0);
  EXPECT_EQ(small.alpha(8, 7), 0);
  EXPECT_EQ(small.alpha(8, 10), 0);
  const Picture large(dash, 36);
  for (int x = 0; x < 36; ++x) {
    EXPECT_EQ(large.alpha(x, 17), x >= 12 && x < 24 ? 255 : 0) << x;
    EXPECT_EQ(large.alpha(x, 18), x >= 12 && x < 24 ? 255 : 0) << x;
    EXPECT_EQ(large.alpha(x, 16), 0) << x;
    EXPECT_EQ(large.alpha(x, 19), 0) << x;
  }
}

TEST(TemplateImageRaster, GaugeTracksAt36PixelsKeepTheirAlpha) {
  const Picture picture({filled({1, 11, 16, 4}, 2, 0.18), filled({1, 3, 16, 4}, 2, 0.18)}, 36);
  for (const int y : {6, 13, 22, 29}) EXPECT_EQ(picture.alpha(18, y), 46) << y;  // 0.18 × 255 = 45.9
  for (const int y : {5, 14, 21, 30}) EXPECT_EQ(picture.alpha(18, y), 0) << y;
  EXPECT_EQ(picture.alpha(1, 10), 0);
  EXPECT_EQ(picture.alpha(2, 10), picture.alpha(33, 10));
}

TEST(TemplateImageRaster, FillsAddUpLikeTransparentPaint) {
  const Picture picture({filled({0, 0, 18, 18}, 0, 0.5), filled({0, 0, 18, 18}, 0, 0.5)}, 18);
  EXPECT_EQ(picture.alpha(9, 9), std::lround(0.75 * 255));
}

TEST(TemplateImageRaster, RingHasAHole) {
  TemplateShape ring = filled({2, 2, 14, 14}, 7);
  ring.hole = RoundedRect{{5, 5, 8, 8}, 4};
  const Picture picture({ring}, 18);
  EXPECT_EQ(picture.alpha(9, 9), 0);
  EXPECT_EQ(picture.alpha(9, 3), 255);
  EXPECT_EQ(picture.alpha(3, 9), 255);
  EXPECT_EQ(picture.alpha(2, 2), 0);
  EXPECT_NEAR(picture.coverage(), 3.14159265 * (49 - 16), 1.0);
}

TEST(TemplateImageRaster, ClippedRingIsCutAtTheClip) {
  TemplateShape ring = filled({2, 2, 14, 14}, 7);
  ring.hole = RoundedRect{{5, 5, 8, 8}, 4};
  ring.clip = RoundedRect{{9, 0, 9, 18}, 0};
  const Picture picture({ring}, 18);
  EXPECT_EQ(picture.alpha(3, 9), 0);
  EXPECT_EQ(picture.alpha(14, 9), 255);
  EXPECT_NEAR(picture.coverage(), 3.14159265 * (49 - 16) / 2, 1.0);
}

TEST(TemplateImageRaster, CircleCoversItsArea) {
  for (const int side : {18, 36, 54}) {
    const double radius = 7.0 * side / 18;
    const Picture picture({filled({2, 2, 14, 14}, 7)}, side);
    EXPECT_NEAR(picture.coverage() / (3.14159265 * radius * radius), 1, 0.01) << side;
  }
}

TEST(TemplateImageRaster, RadiusBeyondHalfTheSideMakesAPill) {
  EXPECT_EQ(Picture({filled({2, 6, 14, 6}, 100)}, 18).bytes, Picture({filled({2, 6, 14, 6}, 3)}, 18).bytes);
}

TEST(TemplateImageRaster, EdgesAreCrispAtEveryPanelSize) {
  for (const int side : {16, 22, 24, 32, 48, 64}) {
    const Picture picture(memoryChart(0), side);
    for (int y = 0; y < side; ++y) {
      const int alpha = picture.alpha(side / 2, y);
      EXPECT_TRUE(alpha == 0 || alpha == 64) << side << " row " << y << ": " << alpha;
    }
  }
}

TEST(TemplateImageRaster, ThinDashNeverVanishes) {
  for (const int side : {16, 22, 24, 32, 48, 64}) {
    const Picture picture({filled({6, 8.5, 6, 1})}, side);
    int rows = 0;
    for (int y = 0; y < side; ++y) rows += picture.alpha(side / 2, y) == 255 ? 1 : 0;
    EXPECT_GE(rows, 1) << side;
    EXPECT_NEAR(rows, side / 18.0, 1) << side;
  }
}

TEST(TemplateImageRaster, BarsOfEqualHeightStayEqual) {
  for (const int side : {16, 22, 24, 32, 48, 64}) {
    const Picture picture({filled({1, 11, 16, 4}), filled({1, 3, 16, 4})}, side);
    int upper = 0;
    int lower = 0;
    for (int y = 0; y < side; ++y) (y < side / 2 ? upper : lower) += picture.alpha(side / 2, y) == 255 ? 1 : 0;
    EXPECT_EQ(upper, lower) << side;
  }
}

TEST(TemplateImageRaster, ShapesBeyondThePictureAreCut) {
  const Picture picture({filled({-100, -100, 300, 300})}, 18);
  EXPECT_DOUBLE_EQ(picture.coverage(), 18 * 18);
  EXPECT_DOUBLE_EQ(Picture({filled({20, 20, 5, 5})}, 18).coverage(), 0);
}

/// Relative luminance of one pixel, WCAG 2; colours as 0…255.
double luminance(const std::array<double, 3>& color) {
  const auto linear = [](double part) {
    const double share = part / 255;
    return share <= 0.04045 ? share / 12.92 : std::pow((share + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color[0]) + 0.7152 * linear(color[1]) + 0.0722 * linear(color[2]);
}

/// How many of the picture's pixels stand out from that ground by at least 3 : 1.
int pixelsSeenOn(const TintColor& ground, const std::vector<std::uint8_t>& bytes) {
  const std::array<double, 3> panel{double(ground.red), double(ground.green), double(ground.blue)};
  int seen = 0;
  for (std::size_t i = 0; i < bytes.size(); i += 4) {
    const double alpha = bytes[i] / 255.0;
    std::array<double, 3> color{};
    for (std::size_t part = 0; part < 3; ++part) {
      color[part] = bytes[i + 1 + part] * alpha + panel[part] * (1 - alpha);
    }
    const double one = luminance(color);
    const double other = luminance(panel);
    if ((std::max(one, other) + 0.05) / (std::min(one, other) + 0.05) >= 3) ++seen;
  }
  return seen;
}

TEST(TemplateImageRaster, HaloMakesInkSeenOnEveryGround) {
  const Ink ink{{0xf2, 0xf2, 0xf2}, TintColor{0x26, 0x26, 0x26}};
  const TemplateImage bar{{filled({1, 7, 16, 4}, 2)}};
  for (const int side : {16, 22, 24, 32, 44}) {
    const auto bytes = argbPixels(bar, side, ink);
    for (const TintColor ground :
         {TintColor{0, 0, 0}, TintColor{255, 255, 255}, TintColor{0x1d, 0x4e, 0xd8}, TintColor{0x80, 0x80, 0x80}}) {
      // At least a line around the bar.
      EXPECT_GE(pixelsSeenOn(ground, bytes), side * 20 / 18 * 2) << side << " on " << int(ground.blue);
    }
  }
}

TEST(TemplateImageRaster, HaloStaysWithinThePicture) {
  const auto bytes = argbPixels({{filled({0, 0, 18, 18})}}, 18, {kTint, TintColor{1, 2, 3}});
  ASSERT_EQ(bytes.size(), 18U * 18 * 4);
  for (std::size_t i = 0; i < bytes.size(); i += 4) EXPECT_EQ(bytes[i + 1], kTint.red);
}

}  // namespace
}  // namespace nimbo
