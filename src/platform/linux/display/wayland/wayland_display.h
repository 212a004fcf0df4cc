// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>

#include "platform/display_power.h"
#include "platform/linux/display/wayland/wayland_session.h"
#include "platform/main_loop.h"

namespace nimbo {

/// The outputs of a Wayland compositor, which input does not turn on by itself: whoever has turned them off has to
/// wait for the input. Main thread only.
class WaylandDisplay final : public DisplayPower {
 public:
  /// `socket` is a whole path; `loop` outlives the object.
  WaylandDisplay(MainLoop& loop, std::string socket) : loop_(loop), socket_(std::move(socket)) {}
  /// A display that is off is turned on.
  ~WaylandDisplay() override;
  WaylandDisplay(const WaylandDisplay&) = delete;
  WaylandDisplay& operator=(const WaylandDisplay&) = delete;

  /// Turns the display off as soon as there is a pause in the input. `failed` is called when the compositor cannot
  /// do that, or cannot tell of input, or there is no pause.
  [[nodiscard]] Result<Subscription, DisplayPowerError> sleepNow(std::function<void()> failed) override;

 private:
  enum class State {
    disconnected,
    connecting,       ///< until the compositor has told what it has
    waitingForPause,  ///< the display is on
    off,              ///< until there is input
    finishing,        ///< until the compositor has carried everything out
  };

  void connect();
  void eventsHandled(bool connected);
  void introduced();
  void waitForPause();
  void turnOn();
  void finish();
  void lost();
  void takeBack();
  void fail();

  MainLoop& loop_;
  const std::string socket_;
  std::optional<WaylandSession> session_;
  State state_ = State::disconnected;
  bool leftOff_ = false;                     // by a connection that was lost
  std::function<void()> failed_;             // null when nobody waits for the display to go off
  std::shared_ptr<std::monostate> request_;  // the last one
  Subscription longestWaitForPause_;
};

}  // namespace nimbo
