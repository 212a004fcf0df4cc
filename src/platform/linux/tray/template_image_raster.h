// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "platform/template_image.h"

namespace nimbo {

/// What a picture is drawn in.
struct TintColor {
  std::uint8_t red = 0;
  std::uint8_t green = 0;
  std::uint8_t blue = 0;
  bool operator==(const TintColor&) const = default;
};

struct Ink {
  TintColor tint;
  std::optional<TintColor> halo{};  ///< of a thin line around everything, for a ground that may be dark or light
};

/// Draws `image` at `side` × `side` pixels: four bytes each (alpha, red, green, blue; the colour not
/// multiplied by alpha), rows from the top. Wholly transparent pixels are four zeros.
[[nodiscard]] std::vector<std::uint8_t> argbPixels(const TemplateImage& image, int side, const Ink& ink);

}  // namespace nimbo
