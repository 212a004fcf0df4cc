// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <vector>

#include "ui/settings/settings_window.h"

namespace nimbo {

class SegmentedTabs;
class SettingsPage;
class Theme;
class WindowSystem;

/// The tabs and pages of the settings in an ordinary window.
class QtSettingsWindow final : public QWidget, public SettingsWindow {
 public:
  QtSettingsWindow(const Theme& theme, WindowSystem& windowSystem);

  void setEvents(WindowEvents events) override { events_ = std::move(events); }
  void render(const SettingsWindowContent& content) override;
  void show(const WindowPlace& place = {}) override;
  void hide() override { QWidget::close(); }
  [[nodiscard]] bool visible() const override { return isVisible(); }

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void renderPages(const std::vector<SettingsPageContent>& contents);
  /// Selects the tab that many places further on, around the ends.
  void moveTab(int places);

  const Theme& theme_;
  WindowSystem& windowSystem_;
  WindowEvents events_;
  const ControlListener listener_;  ///< calls the one that is set then
  bool placed_ = false;

  // Owned by this widget, as is the toolkit's way.
  SegmentedTabs* const tabs_;
  std::vector<SettingsPage*> pages_;
};

}  // namespace nimbo
