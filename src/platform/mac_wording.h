// SPDX-License-Identifier: MIT
#pragma once

#include "platform/wording.h"

namespace nimbo {

/// The words of macOS. Plain data, so that every system tests the texts made of it.
[[nodiscard]] inline const Wording& macWording() {
  static const Wording wording{
      .computer = "Mac",
      .laptop = "MacBook",
      .bar = "menu bar",
      .system = "macOS",
      .systemMonitor = "Activity Monitor",
      .quitKeys = "⌘Q",
      .quitKeysWidth = 25,
      .swapPlace = "on disk",
      .accessibility = "Accessibility access",
      .loginSettings = "System Settings → General → Login Items",
      .loginAdvice = "Keep Nimbo in Applications before enabling launch at login. ",
      .widgetsUnavailable = "Widget sharing unavailable. Install a signed build with its app group configured.",
      .signInReadStillWaiting = "A sign-in read is still waiting on Keychain. Check for a macOS prompt, then refresh.",
      .signInReadTimedOut = "Sign-in access timed out. Check Keychain access and refresh.",
      .desktopFallbackHelp = "Allow Accessibility, then leave Claude’s\nSettings → Usage page open.",
      .desktopShowsNothing = "Desktop fallback: leave Claude → Settings → Usage open, then refresh.",
  };
  return wording;
}

}  // namespace nimbo
