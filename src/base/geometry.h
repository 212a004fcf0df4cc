// SPDX-License-Identifier: MIT
#pragma once

namespace nimbo {

/// Lengths are in points: logical pixels, before the screen's scale factor.
struct Point {
  double x = 0;
  double y = 0;
  bool operator==(const Point&) const = default;
};

struct Size {
  double width = 0;
  double height = 0;
  bool operator==(const Size&) const = default;
};

struct Rect {
  double x = 0;
  double y = 0;
  double width = 0;
  double height = 0;

  [[nodiscard]] double maxX() const { return x + width; }
  [[nodiscard]] double maxY() const { return y + height; }
  [[nodiscard]] bool contains(Point point) const {
    return point.x >= x && point.x < maxX() && point.y >= y && point.y < maxY();
  }
  bool operator==(const Rect&) const = default;
};

}  // namespace nimbo
