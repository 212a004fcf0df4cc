// SPDX-License-Identifier: MIT
#pragma once

#include "ui/qt/dashboard/dashboard_page.h"
#include "ui/qt/dashboard/menu_window.h"

namespace nimbo {

/// The dashboard's page in a menu window.
class QtDashboardWindow final : public DashboardWindow {
 public:
  QtDashboardWindow(const Theme& theme, WindowSystem& windowSystem);

  void setActions(DashboardActions actions) override;
  void setEvents(MenuWindowEvents events) override;
  void render(const DashboardContent& content) override;
  void setFrame(const Rect& frame) override;
  void show() override;
  void hide() override;
  [[nodiscard]] bool visible() const override;
  [[nodiscard]] bool grabsPointer() const override;

 private:
  MenuWindow window_;
  DashboardPage* const page_;  // owned by the window
};

}  // namespace nimbo
