// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "platform/display_power.h"
#include "platform/linux/bus/sd_bus_connection.h"
#include "platform/linux/display/display_modules.h"
#include "platform/main_loop.h"

namespace nimbo {

/// The display turned off in the way of the desktop that runs: by the X server, by what the desktop
/// has on the session bus, or by the Wayland compositor. Main thread only.
class DesktopDisplayPower final : public DisplayPower {
 public:
  struct Makers {
    X11ScreenMaker x11;
    WaylandDisplayMaker wayland;
  };

  /// `session` may be null; `loop` outlives the object. `desktop` is the value of XDG_CURRENT_DESKTOP.
  DesktopDisplayPower(MainLoop& loop, sd_bus* session, std::string desktop, Makers makers)
      : loop_(loop), session_(session), desktop_(std::move(desktop)), make_(std::move(makers)) {}

  [[nodiscard]] Result<Subscription, DisplayPowerError> sleepNow(std::function<void()> failed) override;

 private:
  [[nodiscard]] Subscription turnOffX11(std::function<void()> failed);
  [[nodiscard]] BusMessage callForDesktop() const;

  MainLoop& loop_;
  sd_bus* const session_;
  const std::string desktop_;
  const Makers make_;
  std::shared_ptr<X11Screen> x11Screen_;
  std::unique_ptr<DisplayPower> wayland_;
};

}  // namespace nimbo
