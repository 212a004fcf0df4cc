// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "platform/workspace.h"
#include "ui/controls/control_content.h"

namespace nimbo {

struct Color {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  double alpha = 1;  ///< straight, not premultiplied
  bool operator==(const Color&) const = default;
};

[[nodiscard]] Color color(ColorRole role, Appearance appearance);

}  // namespace nimbo
