// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <string>

#include "ui/settings/settings_window_content.h"

namespace nimbo {

/// What the user did in the settings window.
struct SettingsWindowActions {
  std::function<void(std::size_t index)> selectTab;
  std::function<void(const std::string& identifier, bool on)> check;
  std::function<void(const std::string& identifier, std::size_t index)> choose;
  std::function<void(const std::string& identifier)> press;
  /// The window got the keyboard focus.
  std::function<void()> becameKey;
};

/// An ordinary window with a title bar that can be closed and minimised, but not resized. Closing hides
/// it. Main thread only.
class SettingsWindow {
 public:
  virtual ~SettingsWindow() = default;

  virtual void setActions(SettingsWindowActions actions) = 0;
  /// Shows `content`; touches only what differs from what is shown.
  virtual void render(const SettingsWindowContent& content) = 0;

  /// Brings it to the front with the keyboard focus; the first time in the middle of the screen.
  virtual void show() = 0;
  virtual void close() = 0;
  [[nodiscard]] virtual bool visible() const = 0;
};

}  // namespace nimbo
