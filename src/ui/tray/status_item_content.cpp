// SPDX-License-Identifier: MIT
#include "ui/tray/status_item_content.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "base/size_text.h"
#include "base/text.h"
#include "ui/tray/status_item_symbols.h"

namespace nimbo {
namespace {

/// The place where a figure would be, over the middle of a track.
TemplateShape dash(Point center) { return {{{center.x - 3, center.y - 0.5, 6, 1}, 0}, 1, {}, {}}; }

TemplateImage memoryChart(std::optional<double> fraction) {
  const RoundedRect track{{1, 6, 16, 6}, 2};
  TemplateImage image{{{track, 0.25, {}, {}}}};
  if (fraction && std::isfinite(*fraction)) {
    // In steps of a sixteenth of a point: a finer one nobody could see, and every change is sent to the tray.
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

StatusItemContent compactItemContent(bool sessionActive) {
  std::string toolTip = "Nimbo · Resources, AI usage & Keep Awake";
  if (sessionActive) toolTip += " · Keeping Mac awake";
  return {{}, cloudSymbol(), toolTip, "Nimbo"};
}

}  // namespace nimbo
