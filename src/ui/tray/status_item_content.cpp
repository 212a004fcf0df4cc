// SPDX-License-Identifier: MIT
#include "ui/tray/status_item_content.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>

#include "base/size_text.h"
#include "base/text.h"

namespace nimbo {
namespace {

TemplateShape box(Rect rect, double radius = 0) { return {{rect, radius}, 1, {}, {}}; }

/// A short line over the middle of a track, for a missing figure.
TemplateShape dash(Point center) { return box({center.x - 3, center.y - 0.5, 6, 1}); }

/// Of a bar that is 16 points long, in steps of a sixteenth of a point: nobody could see finer ones, and every change
/// is sent to the tray.
double steppedWidth(double fraction) { return std::round(256 * std::clamp(fraction, 0.0, 1.0)) / 16; }

TemplateImage memoryChart(std::optional<double> fraction) {
  const RoundedRect track{{1, 6, 16, 6}, 2};
  const bool known = fraction && std::isfinite(*fraction);
  const TemplateShape fill{{{1, 6, known ? steppedWidth(*fraction) : 0, 6}, 0}, 1, track, {}};
  return {{{track, 0.25, {}, {}}, known ? fill : dash({9, 9})}};
}

/// A digit of the usual seven segments, with rounded corners.
void addDigit(TemplateImage& image, int digit, Rect cell, double stroke) {
  // One bit each: top, upper right, lower right, bottom, lower left, upper left, middle.
  constexpr std::array kSegments{0x3F, 0x06, 0x5B, 0x4F, 0x66, 0x6D, 0x7D, 0x07, 0x7F, 0x6F};
  const double half = (cell.height + stroke) / 2;
  const double right = cell.maxX() - stroke;
  const double upper = cell.maxY() - half;
  const Rect segments[]{{cell.x, cell.maxY() - stroke, cell.width, stroke},
                        {right, upper, stroke, half},
                        {right, cell.y, stroke, half},
                        {cell.x, cell.y, cell.width, stroke},
                        {cell.x, cell.y, stroke, half},
                        {cell.x, upper, stroke, half},
                        {cell.x, upper, cell.width, stroke}};
  const int lit = kSegments.at(static_cast<std::size_t>(digit));
  for (std::size_t index = 0; index < std::size(segments); ++index) {
    if ((lit >> index & 1) != 0) image.shapes.push_back({{segments[index], 0}, 1, RoundedRect{cell, 1.5}, {}});
  }
}

/// Percent in two digits, or three at 100, over a thin bar.
TemplateImage memoryFigure(std::optional<double> fraction) {
  const RoundedRect track{{1, 1.5, 16, 2}, 1};
  TemplateImage image{{{track, 0.25, {}, {}}}};
  if (!fraction || !std::isfinite(*fraction)) {
    image.shapes.push_back(dash({9, 10.5}));
    return image;
  }
  image.shapes.push_back({{{1, 1.5, steppedWidth(*fraction), 2}, 0}, 1, track, {}});
  const std::string digits = fmt::format("{:.0f}", std::clamp(*fraction, 0.0, 1.0) * 100);
  const bool three = digits.size() > 2;
  const double width = three ? 4.5 : 7;
  const double pitch = three ? 5.5 : 9;
  double x = digits.size() == 1 ? 5.5 : 1;
  for (const char digit : digits) {
    addDigit(image, digit - '0', {x, 5.5, width, 11}, three ? 1.5 : 2);
    x += pitch;
  }
  return image;
}

std::string memoryToolTip(const MemorySnapshot& memory) {
  return fmt::format("Memory: {:.0f}% · {} used of {}; {} available; {} pressure", memory.usedFraction() * 100,
                     gigabytesText(memory.used()), gigabytesText(memory.total), gigabytesText(memory.available()),
                     lowerCased(pressureWord(memory.pressure)));
}

}  // namespace

StatusItemContent memoryItemContent(const std::optional<MemorySnapshot>& memory, bool failed, MemoryPicture picture) {
  const bool readable = memory && !failed;
  StatusItemContent content{"—", {}, failed ? "Memory unavailable; retrying" : "Memory", "Memory"};
  if (readable) {
    content.title = fmt::format("{:.0f}%", memory->usedFraction() * 100);
    content.toolTip = memoryToolTip(*memory);
  }
  const auto fraction = readable ? std::optional(memory->usedFraction()) : std::nullopt;
  content.image = picture == MemoryPicture::chart    ? memoryChart(fraction)
                  : picture == MemoryPicture::figure ? memoryFigure(fraction)
                                                     : barsSymbol();
  return content;
}

StatusItemContent awakeItemContent(bool sessionActive) {
  const char* toolTip = sessionActive ? "Keep Awake is on" : "Keep Awake is off · click for session controls";
  return {{}, cupSymbol(sessionActive), toolTip, "Keep Awake"};
}

StatusItemContent compactItemContent(bool sessionActive, const Wording& wording) {
  std::string toolTip = "Nimbo · Resources, AI usage & Keep Awake";
  if (sessionActive) toolTip += fmt::format(" · Keeping {} awake", wording.computer);
  return {{}, cloudSymbol(), toolTip, "Nimbo"};
}

TemplateImage barsSymbol() {
  return {{box({1, 2, 16, 1}), box({2, 4, 4, 6}, 1), box({7, 4, 4, 12}, 1), box({12, 4, 4, 9}, 1)}};
}

TemplateImage cupSymbol(bool full) {
  // The outlines reach beyond their clips where a corner is to stay square.
  TemplateShape cup{{{2, 4, 10, 14}, 4}, 1, RoundedRect{{2, 4, 10, 8}, 0}, {}};
  const TemplateShape handle{
      {{9.5, 5.5, 7, 6}, 3}, 1, RoundedRect{{12, 4.5, 6, 8}, 0}, RoundedRect{{11, 7, 4, 3}, 1.5}};
  const TemplateShape saucer = box({1, 1.5, 14, 1.5}, 0.75);
  if (full) return {{cup, handle, saucer, box({4, 13.5, 1.5, 3.5}, 0.75), box({8.5, 13.5, 1.5, 3.5}, 0.75)}};
  cup.hole = RoundedRect{{3.5, 5.5, 7, 5}, 2.5};
  return {{cup, handle, saucer}};
}

TemplateImage cloudSymbol() { return {{box({1, 4, 16, 6}, 3), box({2.5, 5, 7, 7}, 3.5), box({6, 5, 9, 9}, 4.5)}}; }

}  // namespace nimbo
