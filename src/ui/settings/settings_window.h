// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <variant>
#include <vector>

#include "ui/controls/content_window.h"
#include "ui/controls/control_content.h"

namespace nimbo {

using SettingsControl = std::variant<LabelContent, CheckBoxContent, PopUpContent, ButtonContent>;

/// One page; the frames of its controls are relative to its own.
struct SettingsPageContent {
  Rect frame;
  std::string accessibleName;             ///< the label of its tab
  std::vector<SettingsControl> controls;  ///< as read from top to bottom, which is also how Tab visits them
  bool visible = false;
  bool operator==(const SettingsPageContent&) const = default;
};

/// Everything the settings window shows. Frames are in points from the top left corner of the window's
/// content, without the frame that the window system draws around it.
struct SettingsWindowContent {
  std::string title;
  Size size;
  TabsContent tabs;
  std::vector<SettingsPageContent> pages;  ///< one for each tab; one is visible
  bool operator==(const SettingsWindowContent&) const = default;
};

/// An ordinary window with a title bar that can be closed and minimised, but not resized; the first time in the middle
/// of the screen.
using SettingsWindow = ContentWindow<SettingsWindowContent>;

}  // namespace nimbo
