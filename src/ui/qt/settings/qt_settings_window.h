// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <vector>

#include "base/geometry.h"
#include "ui/settings/settings_window.h"

namespace nimbo {

class ScrollArea;
class SegmentedTabs;
class SettingsPage;
class Theme;
class WindowSystem;

/// The tabs and pages of the settings in an ordinary window. On a screen that is not high enough the pages scroll
/// under the tabs.
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
  /// Gives the window the height that its content wants, or else the screen has.
  void fit();
  /// Selects the tab that many places further on, around the ends.
  void moveTab(int places);

  const Theme& theme_;
  WindowSystem& windowSystem_;
  WindowEvents events_;
  const ControlListener listener_;  ///< calls the one that is set then
  bool placed_ = false;
  Size size_;           ///< that the content wants
  Rect pagesFrame_;     ///< in a window of that size
  double pageEnd_ = 0;  ///< the bottom of the last control of the page in front

  // Owned by this widget, as is the toolkit's way.
  SegmentedTabs* const tabs_;
  ScrollArea* const scroll_;
  std::vector<SettingsPage*> pages_;
};

}  // namespace nimbo
