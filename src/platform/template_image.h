// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "base/geometry.h"

namespace nimbo {

/// A rounded rectangle; radius 0 gives square corners.
struct RoundedRect {
  Rect rect;
  double radius = 0;
  bool operator==(const RoundedRect&) const = default;
};

/// One fill with the tint colour. Painted with `alpha` inside `outline`, inside `clip` if there is
/// one, and outside `hole` if there is one (which makes rings).
struct TemplateShape {
  RoundedRect outline;
  double alpha = 1;
  std::optional<RoundedRect> clip;
  std::optional<RoundedRect> hole;
  bool operator==(const TemplateShape&) const = default;
};

/// A status item's picture of 18 × 18 points, origin at the bottom left, without a colour of its
/// own: the system tints it to suit the bar. Plain data, so that equal pictures can be told and not
/// sent again, and so that each system draws it at the sizes its bar needs.
struct TemplateImage {
  static constexpr double kSide = 18;
  std::vector<TemplateShape> shapes;
  bool operator==(const TemplateImage&) const = default;
};

}  // namespace nimbo
