// SPDX-License-Identifier: MIT
#include "ui/tray/status_item_content.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "base/size_text.h"
#include "base/text.h"

namespace nimbo {
namespace {

TemplateShape box(Rect rect, double radius = 0) { return {{rect, radius}, 1, {}, {}}; }

/// A short line over the middle of a track, for a missing figure.
TemplateShape dash(Point center) { return box({center.x - 3, center.y - 0.5, 6, 1}); }

TemplateImage memoryChart(std::optional<double> fraction) {
  const RoundedRect track{{1, 6, 16, 6}, 2};
  TemplateImage image{{{track, 0.25, {}, {}}}};
  if (fraction && std::isfinite(*fraction)) {
    // In steps of a sixteenth of a point: nobody could see finer ones, and every change is sent to the tray.
    const double width = std::round(256 * std::clamp(*fraction, 0.0, 1.0)) / 16;
    image.shapes.push_back({{{1, 6, width, 6}, 0}, 1, track, {}});
  } else {
    image.shapes.push_back(dash({9, 9}));
  }
  return image;
}

std::string memoryToolTip(const MemorySnapshot& memory) {
  return fmt::format("Memory: {:.0f}% · {} used of {}; {} available; {} pressure", memory.usedFraction() * 100,
                     gigabytesText(memory.used()), gigabytesText(memory.total), gigabytesText(memory.available()),
                     lowerCased(pressureWord(memory.pressure)));
}

}  // namespace

StatusItemContent memoryItemContent(const std::optional<MemorySnapshot>& memory, bool failed, bool showChart) {
  const bool readable = memory && !failed;
  StatusItemContent content{"—", {}, failed ? "Memory unavailable; retrying" : "Memory", "Memory"};
  if (readable) {
    content.title = fmt::format("{:.0f}%", memory->usedFraction() * 100);
    content.toolTip = memoryToolTip(*memory);
  }
  content.image =
      showChart ? memoryChart(readable ? std::optional(memory->usedFraction()) : std::nullopt) : barsSymbol();
  return content;
}

StatusItemContent awakeItemContent(bool sessionActive) {
  const char* toolTip = sessionActive ? "Keep Awake is on" : "Keep Awake is off · click for session controls";
  return {{}, cupSymbol(), toolTip, "Keep Awake"};
}

StatusItemContent compactItemContent(bool sessionActive, const Wording& wording) {
  std::string toolTip = "Nimbo · Resources, AI usage & Keep Awake";
  if (sessionActive) toolTip += fmt::format(" · Keeping {} awake", wording.computer);
  return {{}, cloudSymbol(), toolTip, "Nimbo"};
}

TemplateImage barsSymbol() {
  return {{box({1, 2, 16, 1}), box({2, 4, 4, 6}, 1), box({7, 4, 4, 12}, 1), box({12, 4, 4, 9}, 1)}};
}

TemplateImage cupSymbol() {
  // The outlines reach beyond their clips where a corner is to stay square.
  const TemplateShape cup{{{3, 6, 9, 14}, 4}, 1, RoundedRect{{3, 6, 9, 9}, 0}, {}};
  const TemplateShape handle{
      {{9.5, 8, 6.5, 6}, 3}, 1, RoundedRect{{12, 7, 6, 8}, 0}, RoundedRect{{11, 9.5, 3.5, 3}, 1.5}};
  return {{cup, handle, box({1, 3, 14, 1.5}, 0.75)}};
}

TemplateImage cloudSymbol() { return {{box({1, 4, 16, 6}, 3), box({2.5, 5, 7, 7}, 3.5), box({6, 5, 9, 9}, 4.5)}}; }

}  // namespace nimbo
