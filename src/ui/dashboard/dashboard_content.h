// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "system/memory_snapshot.h"
#include "ui/controls/control_content.h"
#include "ui/controls/tabs_content.h"
#include "ui/dashboard/awake_page_content.h"
#include "ui/dashboard/usage_page_content.h"

namespace nimbo {

// Frames are in points from the top left corner of the dashboard.

struct HistoryContent {
  Rect frame;
  std::vector<double> history;  ///< 0…1, oldest first
  ColorRole tint = ColorRole::teal;
  std::string accessibleName = {};
  bool visible = true;
  bool operator==(const HistoryContent&) const = default;
};

struct BreakdownContent {
  Rect frame;
  std::optional<MemorySnapshot> snapshot;
  std::string accessibleName = {};
  bool visible = true;
  bool operator==(const BreakdownContent&) const = default;
};

/// A scrolling list; the labels' frames are relative to the scrolled document.
struct ProcessListContent {
  Rect frame;
  Size document;
  std::vector<LabelContent> labels;
  bool visible = true;
  bool operator==(const ProcessListContent&) const = default;
};

struct MemoryRowContent {
  LabelContent title;
  LabelContent value;
  bool operator==(const MemoryRowContent&) const = default;
};

/// Everything the dashboard shows, ready to be put on screen: nothing left to decide or to format.
struct DashboardContent {
  Size size;  ///< of the whole dashboard, footer included

  LabelContent title;
  TabsContent tabs;
  ButtonContent settingsButton;

  LabelContent hero;
  LabelContent subtitle;
  HistoryContent history;
  LabelContent pressure;
  LabelContent time;
  BreakdownContent breakdown;
  std::array<MemoryRowContent, 5> rows;
  LabelContent cpu;
  LabelContent temperature;
  LabelContent processTitle;
  ButtonContent lessButton;
  ButtonContent moreButton;
  ProcessListContent processes;
  LabelContent processNote;
  ButtonContent activityButton;
  LabelContent footer;

  AwakePageContent awake;
  UsagePageContent usage;

  Rect footerSeparator;
  ButtonContent quitButton;
  LabelContent quitHint;

  bool operator==(const DashboardContent&) const = default;
};

}  // namespace nimbo
