// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <variant>
#include <vector>

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

struct SettingsWindowEvents {
  ControlListener acted = {};            ///< what the user does with the controls
  std::function<void()> becameKey = {};  ///< the window got the keyboard focus
  std::function<void()> closed = {};     ///< it is gone from the screen
};

/// An ordinary window with a title bar that can be closed and minimised, but not resized. Closing hides
/// it. Main thread only.
class SettingsWindow {
 public:
  virtual ~SettingsWindow() = default;

  virtual void setEvents(SettingsWindowEvents events) = 0;
  /// Shows `content`; touches only what differs from what is shown.
  virtual void render(const SettingsWindowContent& content) = 0;

  /// Brings it to the front with the keyboard focus; the first time in the middle of the screen.
  virtual void show() = 0;
  virtual void close() = 0;
  [[nodiscard]] virtual bool visible() const = 0;
};

}  // namespace nimbo
