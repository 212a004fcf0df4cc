// SPDX-License-Identifier: MIT
#include "platform/linux/display/desktop_display_power.h"

#include <utility>

#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/linux/desktop/desktop_programs.h"

namespace nimbo {
namespace {

constexpr std::chrono::milliseconds kX11Leeway{100};

}  // namespace

Result<Subscription, DisplayPowerError> DesktopDisplayPower::sleepNow(std::function<void()> failed) {
  if (!x11Screen_ && make_.x11) x11Screen_ = make_.x11();
  if (x11Screen_) return turnOffX11(std::move(failed));
  auto call = std::make_shared<BusSlot>(callAsync(callForDesktop(), [failed](sd_bus_message* reply) {
    if (isError(reply)) failed();
  }));
  if (*call) return Subscription([call] { call->reset(); });
  if (!wayland_ && make_.wayland) wayland_ = make_.wayland();
  if (wayland_) return wayland_->sleepNow(std::move(failed));
  return tl::unexpected(DisplayPowerError{"This desktop offers no way to turn the display off."});
}

Subscription DesktopDisplayPower::turnOffX11(std::function<void()> failed) {
  auto timer = std::make_shared<Subscription>();
  *timer = loop_.every(kPauseBeforeOff, kX11Leeway,
                       [screen = x11Screen_, weak = std::weak_ptr(timer), failed = std::move(failed)] {
                         if (const auto once = weak.lock()) once->reset();
                         if (!screen->turnOff()) failed();
                       });
  return Subscription([timer] { timer->reset(); });
}

/// Null where nothing is known to do it.
BusMessage DesktopDisplayPower::callForDesktop() const {
  constexpr BusMethod kInvoke{"org.kde.kglobalaccel", "/component/org_kde_powerdevil", "org.kde.kglobalaccel.Component",
                              "invokeShortcut"};
  constexpr BusMethod kSetActive{"org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver",
                                 "SetActive"};
  if (desktopIs(desktop_, "KDE")) return methodCall(session_, kInvoke, "Turn Off Screen");
  if (desktopIs(desktop_, "GNOME")) return methodCall(session_, kSetActive, true);
  return {};
}

}  // namespace nimbo
