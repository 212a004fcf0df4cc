// SPDX-License-Identifier: MIT
#include "ui/controls/palette.h"

namespace nimbo {
namespace {

Color shade(Appearance appearance, Color light, Color dark) { return appearance == Appearance::dark ? dark : light; }

}  // namespace

Color color(ColorRole role, Appearance appearance) {
  switch (role) {
    case ColorRole::label:
      return shade(appearance, {0x1C, 0x1C, 0x1E}, {0xF2, 0xF2, 0xF5});
    case ColorRole::secondaryLabel:
      return shade(appearance, {0x5E, 0x5E, 0x66}, {0xA8, 0xA8, 0xB0});
    case ColorRole::tertiaryLabel:
      return shade(appearance, {0x75, 0x75, 0x7D}, {0x8A, 0x8A, 0x93});
    case ColorRole::quaternaryLabel:
      return shade(appearance, {0x00, 0x00, 0x00, 0.10}, {0xFF, 0xFF, 0xFF, 0.12});
    case ColorRole::teal:
      return shade(appearance, {0x00, 0x74, 0x8A}, {0x4C, 0xC4, 0xD9});
    case ColorRole::indigo:
      return shade(appearance, {0x4F, 0x4C, 0xCB}, {0x92, 0x90, 0xFA});
    case ColorRole::orange:
      return shade(appearance, {0xA8, 0x54, 0x00}, {0xFF, 0xA0, 0x2E});
    case ColorRole::green:
      return shade(appearance, {0x1B, 0x7A, 0x36}, {0x3D, 0xD0, 0x63});
    case ColorRole::red:
      return shade(appearance, {0xC5, 0x25, 0x1C}, {0xFF, 0x70, 0x67});
    case ColorRole::blue:
      return shade(appearance, {0x00, 0x66, 0xD6}, {0x55, 0xA6, 0xFF});
  }
  return {};
}

Color panelBackground(Appearance appearance) { return shade(appearance, {0xF7, 0xF7, 0xF8}, {0x26, 0x26, 0x29}); }

Color cardGround(Appearance appearance) { return shade(appearance, {0xFF, 0xFF, 0xFF, 0.6}, {0x1C, 0x1C, 0x1F, 0.6}); }

Color separatorColor(Appearance appearance) {
  return shade(appearance, {0x00, 0x00, 0x00, 0.12}, {0xFF, 0xFF, 0xFF, 0.14});
}

Color accentGround(Appearance appearance) { return shade(appearance, {0x00, 0x66, 0xD6}, {0x1C, 0x6C, 0xD8}); }

Color accentLabel(Appearance /*appearance*/) { return {0xFF, 0xFF, 0xFF}; }

Color fieldGround(Appearance appearance) { return shade(appearance, {0xFF, 0xFF, 0xFF}, {0x1C, 0x1C, 0x1F}); }

Color fieldBorder(Appearance appearance) { return shade(appearance, {0x8A, 0x8A, 0x91}, {0x77, 0x77, 0x7F}); }

}  // namespace nimbo
