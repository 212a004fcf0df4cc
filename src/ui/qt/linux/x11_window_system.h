// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <QAbstractNativeEventFilter>
#include <vector>

#include "ui/qt/windows/window_system.h"

namespace nimbo {

/// X11, over the toolkit's own connection, which it must not outlive.
class X11WindowSystem final : public WindowSystem, private QAbstractNativeEventFilter {
 public:
  X11WindowSystem(xcb_connection_t& connection, bool waylandSession);

  [[nodiscard]] bool compositing() const override;
  [[nodiscard]] bool menusDrawShadows() const override { return true; }
  void announceMargins(QWidget& window, const QMargins& margins) override;
  [[nodiscard]] bool popupsHearAllClicks() const override { return !waylandSession_; }
  [[nodiscard]] std::unique_ptr<QWindow> makeClickCatcher() override;
  [[nodiscard]] bool inputIsFree() override;
  [[nodiscard]] Subscription holdPointer() override;
  [[nodiscard]] Subscription observeOtherActivation(std::function<void()> activated) override;
  void hang(QWidget& window, const QRect& frame, const Hanging& hanging) override;
  [[nodiscard]] QMargins panelMargins(const QRect& screen) const override;
  void activate(QWidget& window) override;

 private:
  bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;
  void activeWindowChanged();
  [[nodiscard]] bool grabPointer();
  [[nodiscard]] xcb_atom_t atom(const std::string& name) const;
  [[nodiscard]] std::vector<std::uint32_t> properties(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const;
  [[nodiscard]] std::uint32_t property(xcb_window_t window, xcb_atom_t name, xcb_atom_t type) const;
  [[nodiscard]] bool isPartOfDesktop(xcb_window_t window) const;

  xcb_connection_t& connection_;
  const bool waylandSession_;
  xcb_window_t root_ = XCB_WINDOW_NONE;
  xcb_atom_t compositorSelection_ = XCB_ATOM_NONE;
  xcb_atom_t activeWindowAtom_ = XCB_ATOM_NONE;
  xcb_window_t activeWindow_ = XCB_WINDOW_NONE;
  std::function<void()> otherActivated_;
};

}  // namespace nimbo
