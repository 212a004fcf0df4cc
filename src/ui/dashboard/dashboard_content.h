// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "settings/usage_provider.h"
#include "system/system_readings.h"
#include "ui/controls/control_content.h"

namespace nimbo {

// Frames are in points from the top left corner of the dashboard, unless said otherwise.

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

/// What the Keep Awake page shows. All of it is hidden on the other pages.
struct AwakeContent {
  LabelContent state;
  LabelContent detail;
  ButtonContent start;
  ButtonContent extend;
  LabelContent durationTitle;
  PopUpContent duration;
  TextFieldContent minutes;
  DatePickerContent date;
  CheckBoxContent display;
  CheckBoxContent plugged;
  LabelContent batteryTitle;
  PopUpContent battery;
  ButtonContent off;
  LabelContent note;
  bool operator==(const AwakeContent&) const = default;
};

/// A bar that shows how much is left.
struct UsageBarContent {
  Rect frame;
  double fraction = 0;  ///< 0…1, filled from the left
  ColorRole tint = ColorRole::teal;
  double alpha = 1;
  std::string accessibleName = {};
  std::string accessibleValue = {};
  std::string toolTip = {};
  bool operator==(const UsageBarContent&) const = default;
};

/// One limit window.
struct UsageRowContent {
  LabelContent title;
  LabelContent amount;
  UsageBarContent bar;
  LabelContent reset;
  bool operator==(const UsageRowContent&) const = default;
};

/// One provider. Frames are relative to the scrolled document, as are those of the rows.
struct UsageCardContent {
  UsageProvider provider = UsageProvider::codex;
  Rect frame;
  LabelContent title = {};
  ButtonContent link = {};
  LabelContent status = {};
  ButtonContent connect = {};
  std::vector<UsageRowContent> rows = {};
  bool operator==(const UsageCardContent&) const = default;
};

/// What the AI page shows.
struct UsageContent {
  Rect scroll;
  Size document;
  std::vector<UsageCardContent> cards;
  ButtonContent refresh;
  LabelContent progress;  ///< beside the button while a refresh runs
  ButtonContent configure;
  LabelContent note;
  bool visible = true;  ///< of everything
  bool operator==(const UsageContent&) const = default;
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

  AwakeContent awake;
  UsageContent usage;

  Rect footerSeparator;
  ButtonContent quitButton;
  LabelContent quitHint;

  bool operator==(const DashboardContent&) const = default;
};

}  // namespace nimbo
