// SPDX-License-Identifier: MIT
#include "platform/linux/display/desktop_display_power.h"

#include <utility>

#include "platform/linux/bus/sd_bus_calls.h"
#include "platform/linux/desktop/desktop_name.h"

namespace nimbo {
namespace {

constexpr std::chrono::milliseconds kX11Leeway{100};

}  // namespace

DesktopDisplayPower::DesktopDisplayPower(MainLoop& loop, sd_bus* session, std::string desktop, Makers makers)
    : loop_(loop), session_(session), desktop_(std::move(desktop)), make_(std::move(makers)) {}

Result<Subscription, DisplayPowerError> DesktopDisplayPower::sleepNow(std::function<void()> failed) {
  if (!x11Screen_ && make_.x11) x11Screen_ = make_.x11();
  if (x11Screen_) return turnOffX11(std::move(failed));
  if (const BusMessage call = callForDesktop()) {
    auto slot = std::make_shared<BusSlot>(callAsync(session_, call, [failed](sd_bus_message* reply) {
      if (isError(reply)) failed();
    }));
    if (*slot) return Subscription([slot] { slot->reset(); });
  }
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
  BusMessage call;
  if (desktopIs(desktop_, "KDE")) {
    call = methodCall(session_, "org.kde.kglobalaccel", "/component/org_kde_powerdevil",
                      "org.kde.kglobalaccel.Component", "invokeShortcut");
    if (call) sd_bus_message_append(call.get(), "s", "Turn Off Screen");
  } else if (desktopIs(desktop_, "GNOME")) {
    call =
        methodCall(session_, "org.gnome.ScreenSaver", "/org/gnome/ScreenSaver", "org.gnome.ScreenSaver", "SetActive");
    if (call) sd_bus_message_append(call.get(), "b", 1);
  }
  return call;
}

}  // namespace nimbo
