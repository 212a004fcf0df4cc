// SPDX-License-Identifier: MIT
#pragma once

#include <cerrno>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/display/x11_screen.h"
#include "platform/linux/files/unique_fd.h"
#include "platform/linux/power/cookie_inhibitor.h"

namespace nimbo {

/// What one assertion holds, from however many services; all of it is let go with the object.
/// Main thread only.
class Inhibition {
 public:
  struct Means {
    CookieInhibitor::Loops loops;
    std::string sessionAddress;
    std::string systemAddress;
    X11ScreenMaker makeX11Screen;
  };

  /// Nothing at first. `reason` is shown to whoever asks what keeps the machine awake; `means`
  /// outlive the object.
  Inhibition(const Means& means, std::string reason) : means_(means), reason_(std::move(reason)) {}
  Inhibition(const Inhibition&) = delete;
  Inhibition& operator=(const Inhibition&) = delete;

  // Each adds one thing to what is held, or notes why not.
  void takeCookie(const CookieService& service, Deadline deadline);
  void takeLogindLock(const char* what, Deadline deadline);

  /// Restarts everybody's idle time in an X11 session, now and then again and again; the only one
  /// of the three that costs anything later.
  void keepResettingX11();

  [[nodiscard]] bool holds() const { return !cookies_.empty() || lock_ || x11Resets_; }

  /// What went wrong first, unless that was only that there was nobody to ask.
  [[nodiscard]] PowerError error() const { return error_; }
  void note(PowerError error);

 private:
  const Means& means_;
  const std::string reason_;
  PowerError error_{ENOTSUP};
  std::vector<std::unique_ptr<CookieInhibitor>> cookies_;
  UniqueFd lock_;
  std::unique_ptr<X11Screen> x11Screen_;
  Subscription x11Resets_;
};

}  // namespace nimbo
