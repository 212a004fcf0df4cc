// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "base/geometry.h"
#include "platform/template_image.h"
#include "settings/usage_provider.h"
#include "ui/controls/control_content.h"

namespace nimbo {

// Frames are in points from the top left corner of the dashboard, unless said otherwise.

/// One filled shape of a chart, in points from the chart's top left corner.
struct ChartBar {
  RoundedRect shape;
  ColorRole color = ColorRole::label;
  std::optional<double> alpha = {};  ///< takes the place of the colour's own
  std::optional<RoundedRect> clip = {};
  bool operator==(const ChartBar&) const = default;
};

struct ChartContent {
  Rect frame;
  std::vector<ChartBar> bars = {};  ///< in drawing order
  double opacity = 1;
  std::string accessibleName = {};
  std::string toolTip = {};
  // What it says to those who cannot see it.
  bool progress = false;     ///< a bar of progress and no chart
  double percent = 0;        ///< 0…100
  std::string reading = {};  ///< the same in words; empty while there is nothing to read
  bool visible = true;
  bool operator==(const ChartContent&) const = default;
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

// Each page has all that it shows besides the head and the foot of the dashboard.

struct ResourcesContent {
  LabelContent hero;
  LabelContent subtitle;
  ChartContent history;
  LabelContent pressure;
  LabelContent time;
  ChartContent breakdown;
  MemoryRowContent app;
  MemoryRowContent wired;
  MemoryRowContent compressed;
  MemoryRowContent available;
  MemoryRowContent swap;
  LabelContent cpu;
  LabelContent temperature;
  LabelContent processTitle;
  ButtonContent lessButton;
  ButtonContent moreButton;
  ProcessListContent processes;
  LabelContent processNote;
  ButtonContent activityButton;
  LabelContent footer;
  bool operator==(const ResourcesContent&) const = default;
};

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

/// One limit window. Its frame is relative to the card; those of its parts are relative to it.
struct UsageRowContent {
  Rect frame;
  LabelContent title;
  LabelContent amount;
  ChartContent bar;  ///< how much is left
  LabelContent reset;
  bool operator==(const UsageRowContent&) const = default;
};

/// One provider. Its frame is relative to the scrolled document; those of its parts are relative to it.
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

struct UsageContent {
  Rect scroll;
  Size document;
  std::vector<UsageCardContent> cards;
  ButtonContent refresh;
  LabelContent progress;  ///< beside the button while a refresh runs
  ButtonContent configure;
  LabelContent note;
  bool operator==(const UsageContent&) const = default;
};

/// Everything the dashboard shows, ready to be put on screen: nothing left to decide or to format.
struct DashboardContent {
  Size size;  ///< of the whole dashboard, footer included

  LabelContent title;
  TabsContent tabs;
  ButtonContent settingsButton;

  /// Of the selected tab. What nobody looks at is not made.
  std::variant<ResourcesContent, AwakeContent, UsageContent> page;

  Rect footerSeparator;
  ButtonContent quitButton;
  LabelContent quitHint;

  bool operator==(const DashboardContent&) const = default;
};

}  // namespace nimbo
