// SPDX-License-Identifier: MIT
#pragma once

#include <QMargins>
#include <QPointF>
#include <QTimer>
#include <QWidget>
#include <memory>
#include <optional>

#include "base/subscription.h"
#include "ui/dashboard/menu_window.h"
#include "ui/qt/dashboard/dashboard_page.h"
#include "ui/qt/windows/window_system.h"

namespace nimbo {

/// The dashboard's page on a card with rounded corners, in a borderless window that behaves like a menu: it takes
/// keyboard and pointer while it is open. Where menus draw their shadows, the window is that much larger than the card.
class QtDashboardWindow final : public QWidget, public MenuWindow {
 public:
  QtDashboardWindow(const Theme& theme, WindowSystem& windowSystem);
  ~QtDashboardWindow() override;

  void setListener(ControlListener listener) override { listener_ = std::move(listener); }
  void setEvents(MenuWindowEvents events) override { events_ = std::move(events); }
  void render(const DashboardContent& content) override { page_->render(content); }
  void setFrame(const Rect& frame) override;
  void hangFrom(const PanelAnchor& anchor) override;
  void show() override;
  /// Takes it from the screen, with whatever its controls have opened.
  void hide() override;
  [[nodiscard]] bool visible() const override { return isVisible(); }
  [[nodiscard]] bool grabsPointer() const override { return inputGrabbed_ || catcher_; }
  void keepSecondClick() override { keepsSecondClick_ = true; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void moveEvent(QMoveEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  [[nodiscard]] QWidget* innerPopup() const;
  [[nodiscard]] bool keyDown(const QKeyEvent& key);
  /// Presses the button whose key equivalent `key` is; whether there was one.
  [[nodiscard]] bool performKeyEquivalent(const QKeyEvent& key);
  void releasedOutside();
  void clickedOutside(const QPointF& place);
  /// Has every click that is not on the card come to the catcher.
  void catchClicks();
  void letClicksGo();
  void checkDeactivation();
  void grabInput();
  void shapeCorners();
  /// Asks what is to be around the card from now on.
  void arrangeMargins();

  const Theme& theme_;
  WindowSystem& windowSystem_;
  ControlListener listener_;
  MenuWindowEvents events_;
  Subscription otherActivation_;
  const std::unique_ptr<QWindow> catcher_;
  bool keepsSecondClick_ = false;
  Subscription secondClick_;
  QTimer secondClickTimer_;
  QTimer deactivationTimer_;
  QTimer grabTimer_;
  int grabAttempts_ = 0;
  bool inputGrabbed_ = false;
  std::optional<QPointF> pressedOutside_;  ///< by the button that is down
  bool compositing_ = true;
  QRect card_;        ///< the frame, without the margins
  QMargins margins_;  ///< around it, for the shadow
  Hanging hanging_;
  bool keyIsForInnerPopup_ = false;
  DashboardPage* const page_;  ///< owned by this widget
};

}  // namespace nimbo
