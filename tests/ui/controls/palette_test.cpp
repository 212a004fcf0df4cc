// SPDX-License-Identifier: MIT
#include "ui/controls/palette.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace nimbo {
namespace {

// Relative luminance and contrast ratio as the Web Content Accessibility Guidelines 2.1 define them.

double linear(std::uint8_t channel) {
  const double value = channel / 255.0;
  return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

double luminance(const Color& color) {
  return 0.2126 * linear(color.red) + 0.7152 * linear(color.green) + 0.0722 * linear(color.blue);
}

double contrast(const Color& first, const Color& second) {
  const auto [darker, lighter] = std::minmax({luminance(first), luminance(second)});
  return (lighter + 0.05) / (darker + 0.05);
}

class PaletteInAppearance : public testing::TestWithParam<Appearance> {};

TEST_P(PaletteInAppearance, TextRolesAreReadableAtSmallSizes) {
  for (const auto role : {ColorRole::label, ColorRole::secondaryLabel, ColorRole::teal, ColorRole::indigo,
                          ColorRole::orange, ColorRole::green, ColorRole::red, ColorRole::blue}) {
    EXPECT_GE(contrast(color(role, GetParam()), color(ColorRole::background, GetParam())), 4.5)
        << "role " << static_cast<int>(role);
    EXPECT_EQ(color(role, GetParam()).alpha, 1);
  }
}

TEST_P(PaletteInAppearance, LabelsStepBackInOrderAndTertiaryStaysReadable) {
  const auto ratio = [](ColorRole role) {
    return contrast(color(role, GetParam()), color(ColorRole::background, GetParam()));
  };
  EXPECT_GT(ratio(ColorRole::label), ratio(ColorRole::secondaryLabel));
  EXPECT_GT(ratio(ColorRole::secondaryLabel), ratio(ColorRole::tertiaryLabel));
  EXPECT_GE(ratio(ColorRole::tertiaryLabel), 3.5);
  EXPECT_EQ(color(ColorRole::tertiaryLabel, GetParam()).alpha, 1);
}

/// What is seen of `upper`, perhaps half transparent, on the opaque `lower`.
Color blended(const Color& upper, const Color& lower) {
  const auto channel = [&](std::uint8_t above, std::uint8_t below) {
    return static_cast<std::uint8_t>(std::lround(above * upper.alpha + below * (1 - upper.alpha)));
  };
  return {channel(upper.red, lower.red), channel(upper.green, lower.green), channel(upper.blue, lower.blue)};
}

TEST_P(PaletteInAppearance, TextAndBarsAreReadableOnACardToo) {
  const Color ground = blended(color(ColorRole::cardGround, GetParam()), color(ColorRole::background, GetParam()));
  EXPECT_NE(ground, color(ColorRole::background, GetParam()));
  for (const auto role :
       {ColorRole::label, ColorRole::secondaryLabel, ColorRole::teal, ColorRole::orange, ColorRole::red}) {
    EXPECT_GE(contrast(color(role, GetParam()), ground), 4.5) << "role " << static_cast<int>(role);
  }
}

TEST_P(PaletteInAppearance, FillsOfBarsStandOutFromTheirGroundAndThePage) {
  const Color page = color(ColorRole::background, GetParam());
  for (const Color& below : {page, blended(color(ColorRole::cardGround, GetParam()), page)}) {
    const Color ground = blended(color(ColorRole::quaternaryLabel, GetParam()), below);
    for (const auto role : {ColorRole::orangeFill, ColorRole::teal, ColorRole::red}) {
      EXPECT_GE(contrast(color(role, GetParam()), ground), 3) << "role " << static_cast<int>(role);
      EXPECT_GE(contrast(color(role, GetParam()), below), 3) << "role " << static_cast<int>(role);
    }
  }
}

TEST_P(PaletteInAppearance, GroundsAndLinesAreFaint) {
  EXPECT_LT(color(ColorRole::quaternaryLabel, GetParam()).alpha, 0.3);
  EXPECT_LT(color(ColorRole::separator, GetParam()).alpha, 0.3);
  EXPECT_EQ(color(ColorRole::background, GetParam()).alpha, 1);
}

TEST_P(PaletteInAppearance, TextOnTheAccentIsReadableAndTheAccentStandsOut) {
  EXPECT_GE(contrast(color(ColorRole::accentLabel, GetParam()), color(ColorRole::accentGround, GetParam())), 4.5);
  EXPECT_GE(contrast(color(ColorRole::accentGround, GetParam()), color(ColorRole::background, GetParam())), 3);
  EXPECT_EQ(color(ColorRole::accentGround, GetParam()).alpha, 1);
}

TEST_P(PaletteInAppearance, FieldsHaveAVisibleEdgeAndReadableTextAndPlaceholder) {
  const Color ground = color(ColorRole::fieldGround, GetParam());
  EXPECT_GE(contrast(color(ColorRole::fieldBorder, GetParam()), color(ColorRole::background, GetParam())), 3);
  EXPECT_GE(contrast(color(ColorRole::fieldBorder, GetParam()), ground), 3);
  EXPECT_GE(contrast(color(ColorRole::label, GetParam()), ground), 7);
  EXPECT_GE(contrast(color(ColorRole::tertiaryLabel, GetParam()), ground), 4.5) << "the placeholder";
  EXPECT_EQ(ground.alpha, 1);
  EXPECT_EQ(color(ColorRole::fieldBorder, GetParam()).alpha, 1);
}

INSTANTIATE_TEST_SUITE_P(Appearances, PaletteInAppearance, testing::Values(Appearance::light, Appearance::dark));

TEST(Palette, OrangeFillIsNotBrownWhichIsADarkOrange) {
  EXPECT_GT(luminance(color(ColorRole::orangeFill, Appearance::light)),
            1.4 * luminance(color(ColorRole::orange, Appearance::light)));
}

TEST(Palette, LightAndDarkAreOpposites) {
  EXPECT_GT(luminance(color(ColorRole::background, Appearance::light)), 0.8);
  EXPECT_LT(luminance(color(ColorRole::background, Appearance::dark)), 0.05);
}

}  // namespace
}  // namespace nimbo
