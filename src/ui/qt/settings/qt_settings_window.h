// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "ui/qt/windows/titled_window.h"
#include "ui/settings/settings_window.h"

namespace nimbo {

class SegmentedTabs;
class SettingsPage;
class Theme;

/// The tabs and pages of the settings in an ordinary window.
class QtSettingsWindow final : public SettingsWindow {
 public:
  QtSettingsWindow(const Theme& theme, WindowSystem& windowSystem);
  QtSettingsWindow(const QtSettingsWindow&) = delete;  // the widgets call it
  QtSettingsWindow& operator=(const QtSettingsWindow&) = delete;

  void setActions(SettingsWindowActions actions) override;
  void render(const SettingsWindowContent& content) override;
  void show() override;
  void close() override;
  [[nodiscard]] bool visible() const override;

  [[nodiscard]] QWidget& widget() { return window_; }

 private:
  void renderPages(const std::vector<SettingsPageContent>& contents);
  /// Selects the tab that many places further on, around the ends.
  void moveTab(int places);

  const Theme& theme_;
  SettingsWindowActions actions_;
  TitledWindow window_;

  // Owned by the window, as is the toolkit's way.
  SegmentedTabs* const tabs_;
  std::vector<SettingsPage*> pages_;
};

}  // namespace nimbo
