// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "base/geometry.h"
#include "system/memory_snapshot.h"

namespace nimbo {

/// Colours by meaning; the toolkit has one value of each for light and one for dark appearance.
enum class ColorRole { label, secondaryLabel, tertiaryLabel, quaternaryLabel, teal, indigo, orange, green, red, blue };

enum class FontWeight { regular, medium, semibold };
enum class TextAlignment { left, right };

struct TextStyle {
  double size = 13;  ///< points
  FontWeight weight = FontWeight::regular;
  ColorRole color = ColorRole::label;
  TextAlignment alignment = TextAlignment::left;
  bool monospacedDigits = false;
  bool operator==(const TextStyle&) const = default;
};

// Frames are in points from the top left corner of the dashboard.

struct LabelContent {
  Rect frame;
  TextStyle style;
  std::string text = {};
  std::string toolTip = {};
  bool visible = true;
  bool operator==(const LabelContent&) const = default;
};

enum class ButtonLook { rounded, inlined, icon };

struct ButtonContent {
  std::string identifier;  ///< stable name for tests and assistive technology
  Rect frame;
  ButtonLook look = ButtonLook::rounded;
  double textSize = 13;
  std::string title = {};           ///< the visible text, or the name of the symbol for `icon`
  std::string accessibleName = {};  ///< what a screen reader says; the title when empty
  std::string toolTip = {};
  std::string keyEquivalent = {};  ///< one letter pressed with Command (Control on Linux); empty for none
  bool visible = true;
  bool enabled = true;
  bool operator==(const ButtonContent&) const = default;
};

struct TabsContent {
  Rect frame;
  std::vector<std::string> labels;
  std::size_t selected = 0;
  bool operator==(const TabsContent&) const = default;
};

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

  Rect footerSeparator;
  ButtonContent quitButton;
  LabelContent quitHint;

  bool operator==(const DashboardContent&) const = default;
};

}  // namespace nimbo
