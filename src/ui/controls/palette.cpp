// SPDX-License-Identifier: MIT
#include "ui/controls/palette.h"

namespace nimbo {
namespace {

Color lightColor(ColorRole role) {
  switch (role) {
    case ColorRole::label:
      return {0x1C, 0x1C, 0x1E};
    case ColorRole::secondaryLabel:
      return {0x5E, 0x5E, 0x66};
    case ColorRole::tertiaryLabel:
      return {0x75, 0x75, 0x7D};
    case ColorRole::quaternaryLabel:
      return {0x00, 0x00, 0x00, 0.10};
    case ColorRole::teal:
      return {0x00, 0x74, 0x8A};
    case ColorRole::indigo:
      return {0x4F, 0x4C, 0xCB};
    case ColorRole::orange:
      return {0xA8, 0x54, 0x00};
    case ColorRole::green:
      return {0x1B, 0x7A, 0x36};
    case ColorRole::red:
      return {0xC5, 0x25, 0x1C};
    case ColorRole::blue:
      return {0x00, 0x66, 0xD6};
  }
  return {};
}

Color darkColor(ColorRole role) {
  switch (role) {
    case ColorRole::label:
      return {0xF2, 0xF2, 0xF5};
    case ColorRole::secondaryLabel:
      return {0xA8, 0xA8, 0xB0};
    case ColorRole::tertiaryLabel:
      return {0x8A, 0x8A, 0x93};
    case ColorRole::quaternaryLabel:
      return {0xFF, 0xFF, 0xFF, 0.12};
    case ColorRole::teal:
      return {0x4C, 0xC4, 0xD9};
    case ColorRole::indigo:
      return {0x92, 0x90, 0xFA};
    case ColorRole::orange:
      return {0xFF, 0xA0, 0x2E};
    case ColorRole::green:
      return {0x3D, 0xD0, 0x63};
    case ColorRole::red:
      return {0xFF, 0x70, 0x67};
    case ColorRole::blue:
      return {0x55, 0xA6, 0xFF};
  }
  return {};
}

}  // namespace

Color color(ColorRole role, Appearance appearance) {
  return appearance == Appearance::dark ? darkColor(role) : lightColor(role);
}

Color panelBackground(Appearance appearance) {
  return appearance == Appearance::dark ? Color{0x26, 0x26, 0x29} : Color{0xF7, 0xF7, 0xF8};
}

Color cardGround(Appearance appearance) {
  return appearance == Appearance::dark ? Color{0x1C, 0x1C, 0x1F, 0.6} : Color{0xFF, 0xFF, 0xFF, 0.6};
}

Color separatorColor(Appearance appearance) {
  return appearance == Appearance::dark ? Color{0xFF, 0xFF, 0xFF, 0.14} : Color{0x00, 0x00, 0x00, 0.12};
}

Color accentGround(Appearance appearance) {
  return appearance == Appearance::dark ? Color{0x1C, 0x6C, 0xD8} : Color{0x00, 0x66, 0xD6};
}

Color accentLabel(Appearance /*appearance*/) { return {0xFF, 0xFF, 0xFF}; }

Color fieldGround(Appearance appearance) {
  return appearance == Appearance::dark ? Color{0x1C, 0x1C, 0x1F} : Color{0xFF, 0xFF, 0xFF};
}

Color fieldBorder(Appearance appearance) {
  return appearance == Appearance::dark ? Color{0x77, 0x77, 0x7F} : Color{0x8A, 0x8A, 0x91};
}

}  // namespace nimbo
