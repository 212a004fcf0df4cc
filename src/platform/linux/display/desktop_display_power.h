// SPDX-License-Identifier: MIT
#pragma once

#include <systemd/sd-bus.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/display_power.h"
#include "platform/linux/bus/sd_bus_handles.h"
#include "platform/linux/display/sway_display.h"
#include "platform/linux/display/x11_screen.h"
#include "platform/main_loop.h"

namespace nimbo {

/// The display turned off in the way of the desktop that runs: by the X server, by a
/// command to sway, or by what the desktop has on the session bus. Main thread only.
class DesktopDisplayPower final : public DisplayPower {
 public:
  struct Setup {
    std::string desktop;        ///< value of XDG_CURRENT_DESKTOP
    SwayDisplay::Sockets sway;  ///< of commands: empty outside sway
  };

  /// `session` may be null; `loop` outlives the object.
  DesktopDisplayPower(MainLoop& loop, sd_bus* session, X11ScreenMaker makeX11Screen, Setup setup);

  [[nodiscard]] Result<Subscription, DisplayPowerError> sleepNow(std::function<void()> failed) override;

 private:
  [[nodiscard]] Subscription turnOffX11(std::function<void()> failed);
  [[nodiscard]] BusMessage callForDesktop() const;

  MainLoop& loop_;
  sd_bus* const session_;
  const X11ScreenMaker makeX11Screen_;
  const std::string desktop_;
  std::shared_ptr<X11Screen> x11Screen_;
  std::optional<SwayDisplay> sway_;
};

}  // namespace nimbo
