// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <QWidget>
#include <functional>

#include "base/subscription.h"
#include "ui/dashboard/dashboard_window.h"

namespace nimbo {

class Theme;
class WindowSystem;

/// A borderless window with rounded corners that behaves like a menu: it takes keyboard and pointer
/// while it is open and says what happens around it. It never closes by itself.
class MenuWindow final : public QWidget {
 public:
  MenuWindow(const Theme& theme, WindowSystem& windowSystem);
  ~MenuWindow() override;

  void setEvents(MenuWindowEvents events) { events_ = std::move(events); }
  /// Asked for keys that `MenuWindowEvents::keyDown` let pass; true swallows the key.
  void setKeyEquivalents(std::function<bool(const QKeyEvent&)> perform) { performKeyEquivalent_ = std::move(perform); }

  void present();
  /// Takes it from the screen, with whatever its controls have opened.
  void dismiss();
  [[nodiscard]] bool grabsPointer() const { return inputGrabbed_; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;
  void showEvent(QShowEvent* event) override;
  void hideEvent(QHideEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;

 private:
  [[nodiscard]] QWidget* innerPopup() const;
  [[nodiscard]] bool keyDown(const QKeyEvent& key);
  void clickedOutside(const QPointF& place);
  void otherApplicationActivated();
  void checkDeactivation();
  void grabInput();
  void shapeCorners();

  const Theme& theme_;
  WindowSystem& windowSystem_;
  MenuWindowEvents events_;
  std::function<bool(const QKeyEvent&)> performKeyEquivalent_;
  Subscription otherActivation_;
  QTimer deactivationTimer_;
  QTimer grabTimer_;
  int grabAttempts_ = 0;
  bool inputGrabbed_ = false;
  bool compositing_ = true;
  bool keyIsForInnerPopup_ = false;
};

}  // namespace nimbo
