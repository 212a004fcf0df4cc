// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "platform/linux/display/sway_command.h"
#include "platform/linux/display/wayland_idle_watch.h"
#include "platform/main_loop.h"

namespace nimbo {

/// The display of a session under sway, which turns it on by command only: whoever has turned it off
/// has to wait for the input that shall turn it on again. Main thread only.
class SwayDisplay {
 public:
  struct Sockets {
    std::string commands;  ///< value of SWAYSOCK
    std::string wayland;   ///< the whole path
  };

  SwayDisplay(MainLoop& loop, Sockets sockets) : loop_(loop), sockets_(std::move(sockets)) {}
  /// A display that is off is turned on.
  ~SwayDisplay();
  SwayDisplay(const SwayDisplay&) = delete;
  SwayDisplay& operator=(const SwayDisplay&) = delete;

  /// Turns it off as soon as the user's hand rests. Until then dropping the subscription takes that
  /// back. `failed` is called later when sway refuses, cannot tell of input, or the hand never rests.
  [[nodiscard]] Subscription turnOff(std::function<void()> failed);

 private:
  void waitForPause();
  void takeBack();
  void set(bool off);
  void apply();
  void applied(bool off, bool carriedOut);
  void fail();
  [[nodiscard]] std::string command(bool off) const;

  MainLoop& loop_;
  const Sockets sockets_;
  std::shared_ptr<std::monostate> request_;  // the last one
  std::function<void()> failed_;
  std::optional<WaylandIdleWatch> input_;
  Subscription patience_;
  std::unique_ptr<SwayCommand> command_;
  bool wantsOff_ = false;
  bool isOff_ = false;
  bool oldWord_ = false;  // of sway before 1.8
};

}  // namespace nimbo
