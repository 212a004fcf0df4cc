// SPDX-License-Identifier: MIT
#include "platform/linux/tray/template_image_raster.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <optional>

namespace nimbo {
namespace {

/// A rounded rectangle in pixels, y upwards as in the image.
struct Area {
  double left = 0;
  double right = 0;
  double bottom = 0;
  double top = 0;
  double radius = 0;

  [[nodiscard]] bool contains(double x, double y) const {
    if (x < left || x > right || y < bottom || y > top) return false;
    const double dx = std::max({left + radius - x, x - (right - radius), 0.0});
    const double dy = std::max({bottom + radius - y, y - (top - radius), 0.0});
    return dx * dx + dy * dy <= radius * radius;
  }

  /// Whether all of the pixel whose lower left corner is (x, y) lies within: no area bends inwards.
  [[nodiscard]] bool containsPixel(double x, double y) const {
    return contains(x, y) && contains(x + 1, y) && contains(x, y + 1) && contains(x + 1, y + 1);
  }

  /// Whether any of that pixel does: its point that is nearest to the middle.
  [[nodiscard]] bool touchesPixel(double x, double y) const {
    return contains(std::clamp((left + right) / 2, x, x + 1), std::clamp((bottom + top) / 2, y, y + 1));
  }

  /// Whether a corner's curve may run through that pixel.
  [[nodiscard]] bool bends(double x, double y) const {
    if (radius == 0) return false;
    const bool atSide = (x + 1 > left && x < left + radius) || (x < right && x + 1 > right - radius);
    const bool atEnd = (y + 1 > bottom && y < bottom + radius) || (y < top && y + 1 > top - radius);
    return atSide && atEnd && !containsPixel(x, y);
  }
};

struct PixelShape {
  Area outline;
  double alpha = 1;
  std::optional<Area> clip;
  std::optional<Area> hole;
};

/// Maps points to pixels. Edges of the drawing's half-point grid move to the nearest pixel border
/// where the scale would blur them; others, such as a bar's fill level, keep their exact place.
class Scaler {
 public:
  explicit Scaler(int side) : scale_(side / TemplateImage::kSide), whole_(std::floor(scale_) == scale_) {}

  [[nodiscard]] Area snapped(const RoundedRect& shape) const {
    Area area = exact(shape);
    if (whole_) return area;
    snap(area.left, area.right, shape.rect.x, shape.rect.maxX());
    snap(area.bottom, area.top, shape.rect.y, shape.rect.maxY());
    area.radius = std::min({area.radius, (area.right - area.left) / 2, (area.top - area.bottom) / 2});
    return area;
  }

  [[nodiscard]] Area exact(const RoundedRect& shape) const {
    const Rect& rect = shape.rect;
    const double radius = std::clamp(shape.radius, 0.0, std::max(0.0, std::min(rect.width, rect.height) / 2));
    return {rect.x * scale_, rect.maxX() * scale_, rect.y * scale_, rect.maxY() * scale_, radius * scale_};
  }

 private:
  // `low` and `high` are in points. An edge pair never closes up.
  static void snap(double& start, double& end, double low, double high) {
    const double thickness = end - start;
    if (onGrid(low)) start = std::round(start);
    if (onGrid(high)) end = std::round(end);
    if (onGrid(low) && onGrid(high) && thickness > 0) end = std::max(end, start + 1);
  }
  static bool onGrid(double edge) { return std::floor(edge * 2) == edge * 2; }

  double scale_;
  bool whole_;
};

// A ring's edges stay where they are: rounding the inner and the outer one would make it uneven.
PixelShape scaled(const TemplateShape& shape, const Scaler& scaler) {
  PixelShape result;
  result.alpha = std::clamp(shape.alpha, 0.0, 1.0);
  result.outline = shape.hole ? scaler.exact(shape.outline) : scaler.snapped(shape.outline);
  if (shape.clip) result.clip = shape.hole ? scaler.exact(*shape.clip) : scaler.snapped(*shape.clip);
  if (shape.hole) result.hole = scaler.exact(*shape.hole);
  return result;
}

Area intersection(const Area& a, const Area& b) {
  return {std::max(a.left, b.left), std::min(a.right, b.right), std::max(a.bottom, b.bottom), std::min(a.top, b.top),
          0};
}

/// How much of the pixel at (x, y) lies within the straight edges of `area`.
double overlap(const Area& area, double x, double y) {
  const double width = std::min(area.right, x + 1) - std::max(area.left, x);
  const double height = std::min(area.top, y + 1) - std::max(area.bottom, y);
  return std::max(width, 0.0) * std::max(height, 0.0);
}

double sampledCoverage(const PixelShape& shape, double x, double y) {
  constexpr int kSteps = 8;
  int inside = 0;
  for (int row = 0; row < kSteps; ++row) {
    for (int column = 0; column < kSteps; ++column) {
      const double px = x + (column + 0.5) / kSteps;
      const double py = y + (row + 0.5) / kSteps;
      if (shape.outline.contains(px, py) && (!shape.clip || shape.clip->contains(px, py)) &&
          !(shape.hole && shape.hole->contains(px, py))) {
        ++inside;
      }
    }
  }
  return static_cast<double>(inside) / (kSteps * kSteps);
}

// Straight edges are exact; only pixels in the corners of something round are sampled.
double coverage(const PixelShape& shape, const Area& bounds, double x, double y) {
  const double straight = overlap(bounds, x, y);
  if (straight == 0 || !shape.outline.touchesPixel(x, y) || (shape.clip && !shape.clip->touchesPixel(x, y))) return 0;
  const bool hollow = shape.hole && shape.hole->touchesPixel(x, y);
  if (shape.outline.bends(x, y) || (shape.clip && shape.clip->bends(x, y)) || (hollow && shape.hole->bends(x, y))) {
    return sampledCoverage(shape, x, y);
  }
  return hollow ? straight - overlap(intersection(bounds, *shape.hole), x, y) : straight;
}

void paint(const PixelShape& shape, int side, std::vector<double>& alphas) {
  const Area bounds = shape.clip ? intersection(shape.outline, *shape.clip) : shape.outline;
  const auto pixel = [side](double edge) { return static_cast<int>(std::clamp(edge, 0.0, double(side))); };
  for (int y = pixel(std::floor(bounds.bottom)); y < pixel(std::ceil(bounds.top)); ++y) {
    for (int x = pixel(std::floor(bounds.left)); x < pixel(std::ceil(bounds.right)); ++x) {
      const double source = shape.alpha * coverage(shape, bounds, x, y);
      double& alpha =
          alphas[static_cast<std::size_t>(side - 1 - y) * static_cast<std::size_t>(side) + static_cast<std::size_t>(x)];
      alpha = source + alpha * (1 - source);
    }
  }
}

/// How strong a halo is at each pixel: the faintest ink, such as a bar's ground, has a clear one, which ends within
/// reach.
std::vector<double> haloOf(const std::vector<double>& alphas, int side) {
  constexpr double kContrast = 3;
  const double reach = std::max(1.0, 0.7 * side / TemplateImage::kSide);
  const int steps = static_cast<int>(std::ceil(reach));
  std::vector<double> shares;  // by the distance in columns and rows
  for (int row = 0; row <= steps; ++row) {
    for (int column = 0; column <= steps; ++column) {
      shares.push_back(std::clamp(reach + 1 - std::hypot(column, row), 0.0, 1.0));
    }
  }
  std::vector<double> halo(alphas.size(), 0.0);
  const auto index = [](int x, int y, int width) {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x);
  };
  for (int y = 0; y < side; ++y) {
    for (int x = 0; x < side; ++x) {
      const double strength = std::min(1.0, kContrast * alphas[index(x, y, side)]);
      if (strength == 0) continue;
      for (int dy = -std::min(steps, y); dy <= std::min(steps, side - 1 - y); ++dy) {
        for (int dx = -std::min(steps, x); dx <= std::min(steps, side - 1 - x); ++dx) {
          double& strongest = halo[index(x + dx, y + dy, side)];
          strongest = std::max(strongest, strength * shares[index(std::abs(dx), std::abs(dy), steps + 1)]);
        }
      }
    }
  }
  return halo;
}

// No call of the library's: parts are not negative.
// NOLINTNEXTLINE(bugprone-incorrect-roundings)
std::uint8_t byteOf(double part) { return static_cast<std::uint8_t>(part + 0.5); }

}  // namespace

std::vector<std::uint8_t> argbPixels(const TemplateImage& image, int side, const Ink& ink) {
  if (side <= 0) return {};
  const auto count = static_cast<std::size_t>(side) * static_cast<std::size_t>(side);
  std::vector<double> alphas(count, 0.0);
  const Scaler scaler(side);
  for (const TemplateShape& shape : image.shapes) paint(scaled(shape, scaler), side, alphas);
  const std::vector<double> halo = ink.halo ? haloOf(alphas, side) : std::vector<double>();
  const TintColor around = ink.halo.value_or(ink.tint);

  std::vector<std::uint8_t> bytes(count * 4, 0);
  for (std::size_t i = 0; i < count; ++i) {
    const double below = ink.halo ? halo[i] * (1 - alphas[i]) : 0;
    const double alpha = alphas[i] + below;
    if (byteOf(alpha * 255) == 0) continue;
    const auto mixed = [&](std::uint8_t own, std::uint8_t other) {
      return below == 0 ? own : byteOf((own * alphas[i] + other * below) / alpha);
    };
    bytes[i * 4] = byteOf(alpha * 255);
    bytes[i * 4 + 1] = mixed(ink.tint.red, around.red);
    bytes[i * 4 + 2] = mixed(ink.tint.green, around.green);
    bytes[i * 4 + 3] = mixed(ink.tint.blue, around.blue);
  }
  return bytes;
}

}  // namespace nimbo
